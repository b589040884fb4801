#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"
#include "StandIns/MadePackages.h"
#include "StandIns/StandInRun.h"
#include "Support/EnvironmentVariable.h"
#include "Support/OtherReaders.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace tarvik::test {
namespace {

using Practice::SigningIdentity;
using Practice::XarWriter;
using testing::HasSubstr;
using testing::Not;

constexpr const char* noSignature = "Status: no signature\n";
constexpr const char* untrusted = "Status: signed by untrusted certificate\n";
constexpr const char* trusted = "Status: signed by a certificate trusted by macOS\n";
constexpr const char* invalid = "Status: package is invalid (checksum did not verify)\n";

class PkgutilSignature : public testing::Test {
protected:
    void trust(const SigningIdentity& identity, const std::string& name = "practice.pem") const {
        makeFile(machine / "Library/Keychains/TrustedCertificates" / name, identity.authorityAsPem());
    }
    CommandResult check(const std::string& bytes) const {
        makeFile(package, bytes);
        return runStandIn("pkgutil", {"--check-signature", package});
    }
    void expectStatus(const std::string& bytes, const char* words, int status) const {
        const auto result = check(bytes);
        EXPECT_EQ(result.status, status);
        EXPECT_THAT(result.stdout, HasSubstr("Package \"Editor.pkg\":\n   " + std::string(words)));
        EXPECT_EQ(result.stderr, "");
    }

    TemporaryFolder folder;
    const fs::path machine = folder / "machine";
    const fs::path package = folder / "Editor.pkg";
    const EnvironmentVariable root{"TARVIK_ROOT", machine.native()};
    const XarWriter archive = Practice::PackageWriter::component(editorComponent());
};

TEST_F(PkgutilSignature, IsNotThere) {
    expectStatus(archive.bytes(), noSignature, 1);
    expectStatus("text", noSignature, 1);
    expectStatus("", noSignature, 1);
    fs::remove(package);
    makeFolder(package / "Contents");
    EXPECT_THAT(runStandIn("pkgutil", {"--check-signature", package}).stdout, HasSubstr(noSignature));
    EXPECT_EQ(runStandIn("pkgutil", {"--check-signature", folder / "missing.pkg"}).status, 1);
}

TEST_F(PkgutilSignature, IsTrustedOnlyByTheMachinesOwnCertificates) {
    const auto identity = SigningIdentity::made();
    for (const auto kind : {XarWriter::Signature::rsa, XarWriter::Signature::rsaAndCms}) {
        const std::string bytes = archive.bytes(&identity, kind);
        fs::remove_all(machine);
        expectStatus(bytes, untrusted, 1);
        makeFile(machine / "Library/Keychains/TrustedCertificates/broken", "no certificate");
        expectStatus(bytes, untrusted, 1);
        trust(identity);
        expectStatus(bytes, trusted, 0);
        const EnvironmentVariable none("TARVIK_ROOT", std::nullopt);
        expectStatus(bytes, untrusted, 1);
    }
}

TEST_F(PkgutilSignature, TellsTheChainOfCertificates) {
    const auto identity = SigningIdentity::made({.maker = "Acme\nStatus: signed"});
    const auto result = check(archive.bytes(&identity));
    EXPECT_THAT(result.stdout,
                HasSubstr("   Certificate Chain:\n    1. Acme?Status: signed\n"
                          "       Expires: 2100-01-01 00:00:00 +0000\n       SHA256 Fingerprint:\n           "));
    EXPECT_THAT(result.stdout, HasSubstr("    2. Practice Certification Authority\n"));
    // As another program computes it.
    makeFile(folder / "authority.pem", identity.authorityAsPem());
    const auto other = CommandRunner::run(
        "/usr/bin/env", {"openssl", "x509", "-in", folder / "authority.pem", "-noout", "-fingerprint", "-sha256"});
    std::string expected = other.stdout.substr(other.stdout.find('=') + 1);
    std::string printed = result.stdout.substr(result.stdout.rfind("Fingerprint:\n") + 13);
    std::erase_if(expected, [](char letter) { return letter == ':' || letter == '\n'; });
    std::erase_if(printed, [](char letter) { return letter == ' ' || letter == '\n'; });
    EXPECT_EQ(printed, expected);
}

TEST_F(PkgutilSignature, OfAnotherAuthorityOfTheSameNameIsNotTrusted) {
    const auto real = CommandRunner::run(
        "/usr/bin/env", {"openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", folder / "key", "-out",
                         folder / "other.pem", "-subj", "/CN=Practice Certification Authority", "-days", "30"});
    ASSERT_EQ(real.status, 0) << real.stderr;
    makeFile(machine / "Library/Keychains/TrustedCertificates/other.pem", contentOf(folder / "other.pem"));
    const auto identity = SigningIdentity::made();
    expectStatus(archive.bytes(&identity), untrusted, 1);
}

TEST_F(PkgutilSignature, ExpiresAndBeginsWithItsCertificate) {
    const auto old = SigningIdentity::made({.from = 1'600'000'000, .to = 1'700'000'000});
    trust(old);
    expectStatus(archive.bytes(&old), "Status: signed by a certificate that has since expired\n", 1);
    const auto early = SigningIdentity::made({.from = 4'000'000'000, .to = 4'100'000'000});
    expectStatus(archive.bytes(&early), untrusted, 1);
}

TEST_F(PkgutilSignature, IsInvalidForAnyOtherTable) {
    const auto identity = SigningIdentity::made();
    trust(identity);
    const std::string good = archive.bytes(&identity, XarWriter::Signature::rsaAndCms);
    XarWriter changed = archive;
    changed.addFile("more", "x");
    // The signatures of one package in another: the places are the same.
    const std::string other = changed.bytes(&identity, XarWriter::Signature::rsaAndCms);
    const auto heapOf = [](const std::string& bytes) {
        std::size_t packed = 0;
        for (std::size_t at = 8; at < 16; ++at) packed = packed << 8 | static_cast<unsigned char>(bytes[at]);
        return 28 + packed;
    };
    constexpr std::size_t digestSize = 20;
    constexpr std::size_t rsaSize = 256;
    const std::string words = good.substr(heapOf(good) + digestSize, rsaSize);
    std::string forged = other;
    forged.replace(heapOf(other) + digestSize, rsaSize, words);
    expectStatus(forged, invalid, 1);
    std::string forgedCms = other;
    const std::size_t cmsSize = identity.cmsSignature(std::string(digestSize, 'x')).size();
    forgedCms.replace(heapOf(other) + digestSize + rsaSize, cmsSize, good, heapOf(good) + digestSize + rsaSize,
                      cmsSize);
    expectStatus(forgedCms, invalid, 1);
    std::string cut = good;
    cut.resize(heapOf(good) + digestSize + 10);
    expectStatus(cut, invalid, 1);
    expectStatus(good, trusted, 0);
}

TEST_F(PkgutilSignature, IsNeverTrustedAfterABitOfTheTableOrTheSignatureWasFlipped) {
    const auto identity = SigningIdentity::made();
    trust(identity);
    const std::string good = archive.bytes(&identity);
    std::size_t packed = 0;
    for (std::size_t at = 8; at < 16; ++at) packed = packed << 8 | static_cast<unsigned char>(good[at]);
    const std::size_t end = 28 + packed + 20 + 256;
    for (std::size_t at = 0; at < end; at += 37) {
        std::string bad = good;
        bad[at] = static_cast<char>(bad[at] ^ 2);
        const auto result = check(bad);
        EXPECT_EQ(result.status, 1) << at;
        EXPECT_THAT(result.stdout, Not(HasSubstr("trusted"))) << at;
    }
}

TEST_F(PkgutilSignature, IsOneThatOpensslFindsRightToo) {
    const auto identity = SigningIdentity::made();
    const std::string good = archive.bytes(&identity);
    makeFile(package, good);
    // Python takes the archive apart by itself, openssl verifies.
    const std::string script =
        "import sys,zlib,struct,base64,re,subprocess,hashlib,os\n"
        "b=open(sys.argv[1],'rb').read(); h=struct.unpack('>4sHHQQL',b[:28]); t=b[28:28+h[3]]; heap=b[28+h[3]:]\n"
        "x=zlib.decompress(t).decode(); assert hashlib.sha1(t).digest()==heap[:20]\n"
        "c=base64.b64decode(re.search('X509Certificate>([^<]*)<',x).group(1))\n"
        "d=os.path.dirname(sys.argv[1])\n"
        "open(d+'/c','wb').write(c); open(d+'/h','wb').write(heap[:20]); open(d+'/s','wb').write(heap[20:276])\n"
        "subprocess.run(['openssl','x509','-inform','der','-in',d+'/c','-pubkey','-noout','-out',d+'/k'],check=True)\n"
        "print(subprocess.run(['openssl','pkeyutl','-verify','-pubin','-inkey',d+'/k','-in',d+'/h','-sigfile',d+'/s',"
        "'-pkeyopt','digest:sha1'],capture_output=True,text=True).stdout)\n";
    EXPECT_THAT(OtherReaders::python(script, package), HasSubstr("Verified Successfully"));
}

}  // namespace
}  // namespace tarvik::test
