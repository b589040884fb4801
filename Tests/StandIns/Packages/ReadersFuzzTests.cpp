#include "Packages/Component.h"
#include "Packages/Cpio.h"
#include "Packages/Distribution.h"
#include "Packages/PackageFailure.h"
#include "Packages/Payload.h"
#include "Packages/SafeName.h"
#include "Packages/Unpacking.h"
#include "Packages/XarArchive.h"
#include "Platform/Files/FileError.h"
#include "StandIns/MadePackages.h"
#include "Support/Mutator.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

namespace tarvik::test {
namespace {

using namespace packages;
using Practice::Compression;

/// Of thousands of broken forms of good bytes, each is read or refused with a sentence; nothing else happens.
void tryBroken(const char* what, const std::string& good, const std::vector<std::string>& pieces, int tries,
               const std::function<void(const std::string&)>& read) {
    Mutator mutator(20'261'122, pieces);
    int taken = 0;
    int refused = 0;
    for (int attempt = 0; attempt < tries; ++attempt) {
        try {
            read(mutator.mutated(good));
            ++taken;
        } catch (const PackageFailure&) {
            ++refused;
        }
    }
    std::cout << what << ": " << tries << " tried, " << taken << " taken, " << refused << " refused\n";
    EXPECT_GT(refused, 0) << what;
    EXPECT_NO_THROW(read(good)) << what;
}

ByteSource sourceOf(const std::string& bytes) {
    auto isGiven = std::make_shared<bool>(false);
    return [&bytes, isGiven]() -> std::string_view {
        if (*isGiven) return {};
        *isGiven = true;
        return bytes;
    };
}

std::string allOf(const ByteSource& source, std::size_t limit) {
    std::string all;
    for (std::string_view block = source(); !block.empty(); block = source()) {
        all += block;
        if (all.size() > limit) failTooLarge("That is enough.");
    }
    return all;
}

TEST(PackageReaders, TakeOrRefuseBrokenArchives) {
    const TemporaryFolder folder;
    const fs::path file = folder / "a.xar";
    const auto identity = Practice::SigningIdentity::made();
    const std::string good = Practice::PackageWriter::component(editorComponent()).bytes(&identity);
    tryBroken("xar", good, {"xar!", "\xff\xff\xff\xff"}, 1000, [&](const std::string& bytes) {
        std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
        const auto archive = XarArchive::open(file);
        for (const auto& entry : archive.contents().entries) {
            SafeName::components(entry.path);
            archive.bytes(entry, 1'000'000);
        }
    });
}

TEST(PackageReaders, TakeOrRefuseBrokenTables) {
    const std::string good =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?><xar><toc><checksum style=\"sha1\"><offset>0</offset><size>20</size>"
        "</checksum><signature "
        "style=\"RSA\"><offset>20</offset><size>256</size><KeyInfo><X509Data><X509Certificate>QUJD"
        "</X509Certificate></X509Data></KeyInfo></signature><file id=\"1\"><name>a</name><type>directory</type>"
        "<file id=\"2\"><name enctype=\"base64\">Yg==</name><type>file</type><mode>0644</mode><uid>0</uid><data>"
        "<offset>1</offset><length>2</length><size>3</size><encoding style=\"application/x-gzip\"/>"
        "<archived-checksum style=\"sha1\">00</archived-checksum></data></file></file></toc></xar>";
    tryBroken("tables", good,
              {"<file>", "</file>", "<name>../x</name>", "99999999999999999999", "&amp;", "<![CDATA[", "\xc3"}, 20'000,
              [](const std::string& bytes) { XarContents::parsed(bytes); });
}

TEST(PackageReaders, TakeOrRefuseBrokenDescriptions) {
    const std::string product =
        "<installer-gui-script><title>Acme</title><choices-outline><line choice=\"a\"><line choice=\"b\"/></line>"
        "</choices-outline><choice id=\"a\" start_selected=\"true\"><pkg-ref id=\"x\"/></choice><choice id=\"b\">"
        "<pkg-ref id=\"y\">#y%20z.pkg</pkg-ref></choice><pkg-ref id=\"x\" version=\"1\">#x.pkg</pkg-ref>"
        "</installer-gui-script>";
    tryBroken("products", product,
              {"%2", "%zz", "<line choice=\"a\"/>", "<pkg-ref id=\"x\"/>", "start_selected=\"f()\" "}, 20'000,
              [](const std::string& bytes) { Distribution::parsed(bytes); });
    auto component = editorComponent();
    component.scripts = {{"preinstall", ""}, {"postinstall", ""}};
    tryBroken("package infos", Practice::PackageWriter::packageInfo(component), {"../", "/", "\"", "<scripts>"}, 20'000,
              [](const std::string& bytes) {
                  const auto read = componentOfPackageInfo(bytes);
                  for (const auto& step : read.place) ASSERT_NE(step, "..");
              });
}

TEST(PackageReaders, TakeOrRefuseBrokenPayloads) {
    for (const Compression compression : {Compression::none, Compression::gzip, Compression::bzip2, Compression::xz}) {
        const std::string good = Practice::packed(editorComponent().payload.bytes(), compression);
        tryBroken("payloads", good, {"070707", "TRAILER!!!", "../", "070701"}, 5000, [](const std::string& bytes) {
            for (const auto& path : Payload::measured(sourceOf(bytes), 100'000'000).paths)
                ASSERT_TRUE(SafeName::components(path));
        });
    }
}

TEST(PackageReaders, TakeOrRefuseBrokenPbzx) {
    std::string bytes;
    for (int line = 0; line < 3000; ++line) bytes += std::to_string(line);
    constexpr std::size_t chunk = 4096;
    const std::string good = Practice::packed(bytes, Compression::pbzx, chunk);
    EXPECT_EQ(allOf(recognizedSource(sourceOf(good)), 1'000'000), bytes);
    tryBroken("pbzx", good,
              {"pbzx",
               "\xfd"
               "7zXZ",
               std::string(8, '\0'), std::string(8, '\xff')},
              20'000, [](const std::string& broken) { allOf(recognizedSource(sourceOf(broken)), 1'000'000); });
}

TEST(PackageReaders, TellSafeNamesFromOthers) {
    EXPECT_EQ(SafeName::components("./a//b/."), (SafeName::Components{"a", "b"}));
    EXPECT_EQ(SafeName::components("."), SafeName::Components{});
    EXPECT_EQ(SafeName::components("..a/b.."), (SafeName::Components{"..a", "b.."}));
    for (const std::string& name : {std::string("/a"), std::string(".."), std::string("a/../b"), std::string("a/.."),
                                    std::string("a\0b", 3), std::string(256, 'x'), std::string(2000, '/')})
        EXPECT_FALSE(SafeName::components(name)) << name;
}

TEST(PackageReaders, RefuseABomb) {
    // 300 MB of nothing in 300 KB.
    const std::string bomb = Practice::packed(std::string(300'000'000, '\0'), Compression::gzip);
    EXPECT_THROW(allOf(recognizedSource(sourceOf(bomb)), 10'000'000), PackageFailure);
    Practice::CpioWriter payload;
    payload.addFile("./zeros", std::string(20'000'000, '\0'));
    const std::string packed = Practice::packed(payload.bytes(), Compression::xz);
    EXPECT_LT(packed.size(), 10'000U);
    EXPECT_THROW(Payload::measured(sourceOf(packed), 19'000'000), PackageFailure);
    EXPECT_NO_THROW(Payload::measured(sourceOf(packed), 21'000'000));
}

}  // namespace
}  // namespace tarvik::test
