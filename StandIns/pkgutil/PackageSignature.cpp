#include "pkgutil/PackageSignature.h"

#include "Packages/PackageFailure.h"
#include "Packages/XarArchive.h"
#include "Platform/Files/Files.h"
#include "pkgutil/Chain.h"

#include <algorithm>
#include <climits>
#include <memory>
#include <openssl/bio.h>
#include <openssl/cms.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <string_view>

namespace tarvik::pkgutil::PackageSignature {

namespace {

using packages::XarArchive;
using packages::XarSignature;

constexpr std::uint64_t largestSignature = 1'000'000;

struct SignatureEnd {
    void operator()(BIO* each) const { BIO_free(each); }
    void operator()(CMS_ContentInfo* each) const { CMS_ContentInfo_free(each); }
    void operator()(EVP_PKEY_CTX* each) const { EVP_PKEY_CTX_free(each); }
};
template <typename Thing>
using Handle = std::unique_ptr<Thing, SignatureEnd>;

const unsigned char* unsignedBytes(const std::string& bytes) {
    return reinterpret_cast<const unsigned char*>(bytes.data());
}

const EVP_MD* digestOf(const std::string& checksum) {
    constexpr std::size_t sha1Size = 20;
    constexpr std::size_t sha256Size = 32;
    if (checksum.size() == sha1Size) return EVP_sha1();
    return checksum.size() == sha256Size ? EVP_sha256() : nullptr;
}

/// What is signed is the digest itself, and not a digest of it.
bool isRsaRight(const std::string& checksum, const std::string& signature, X509* signer) {
    const EVP_MD* digest = digestOf(checksum);
    EVP_PKEY* key = X509_get0_pubkey(signer);
    if (!digest || !key || EVP_PKEY_get_base_id(key) != EVP_PKEY_RSA) return false;
    const Handle<EVP_PKEY_CTX> context(EVP_PKEY_CTX_new(key, nullptr));
    return context && EVP_PKEY_verify_init(context.get()) == 1 &&
           EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PADDING) == 1 &&
           EVP_PKEY_CTX_set_signature_md(context.get(), digest) == 1 &&
           EVP_PKEY_verify(context.get(), unsignedBytes(signature), signature.size(), unsignedBytes(checksum),
                           checksum.size()) == 1;
}

/// A message that signs the digest, by the same signer. Who vouches for that one is looked at elsewhere.
bool isCmsRight(const std::string& checksum, const std::string& signature, X509* signer) {
    const unsigned char* at = unsignedBytes(signature);
    const Handle<CMS_ContentInfo> message(d2i_CMS_ContentInfo(nullptr, &at, static_cast<long>(signature.size())));
    const Handle<BIO> content(BIO_new_mem_buf(checksum.data(), static_cast<int>(checksum.size())));
    if (!message || !content || OBJ_obj2nid(CMS_get0_type(message.get())) != NID_pkcs7_signed) return false;
    STACK_OF(X509)* signers = sk_X509_new_null();
    sk_X509_push(signers, signer);
    const bool isRight = CMS_verify(message.get(), signers, nullptr, content.get(), nullptr,
                                    CMS_BINARY | CMS_DETACHED | CMS_NOINTERN | CMS_NO_SIGNER_CERT_VERIFY) == 1;
    sk_X509_free(signers);
    return isRight;
}

bool isRight(const XarArchive& archive, const XarSignature& signature, X509* signer) {
    const std::string& checksum = archive.checksum();
    const std::string bytes = archive.bytes(signature.place, largestSignature);
    if (checksum.empty()) return false;
    if (signature.style == "RSA") return isRsaRight(checksum, bytes, signer);
    return signature.style == "CMS" && isCmsRight(checksum, bytes, signer);
}

Judgement judgedArchive(const XarArchive& archive, const std::optional<fs::path>& trusted) {
    const auto& signatures = archive.contents().signatures;
    if (signatures.empty()) return {};
    const Chain chain(signatures.front().certificates);
    if (!chain.signer()) return {Status::invalid, {}};
    // Both must be by one signer: else one could vouch for the other's bytes.
    const bool areRight = std::all_of(signatures.begin(), signatures.end(), [&](const XarSignature& each) {
        return each.certificates == signatures.front().certificates && isRight(archive, each, chain.signer());
    });
    if (!areRight) return {Status::invalid, {}};
    Judgement judgement{Status::untrusted, chain.described()};
    switch (chain.judged(trusted)) {
        case Chain::Verdict::trusted:
            judgement.status = chain.isDeveloper() ? Status::developer : Status::trusted;
            break;
        case Chain::Verdict::expired:
            judgement.status = Status::expired;
            break;
        case Chain::Verdict::untrusted:
            break;
    }
    return judgement;
}

std::string harmless(std::string text) {
    for (char& letter : text)
        if (static_cast<unsigned char>(letter) < ' ' || letter == '\x7f') letter = '?';
    return text;
}

std::string wordsOf(Status status) {
    switch (status) {
        case Status::none:
            return "no signature";
        case Status::invalid:
            return "package is invalid (checksum did not verify)";
        case Status::untrusted:
            return "signed by untrusted certificate";
        case Status::expired:
            return "signed by a certificate that has since expired";
        case Status::developer:
            return "signed by a developer certificate issued by Apple for distribution";
        case Status::trusted:
            break;
    }
    return "signed by a certificate trusted by macOS";
}

std::string fingerprintLines(std::string_view digest) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    constexpr std::size_t inOneLine = 22;
    std::string lines;
    for (std::size_t at = 0; at < digest.size(); ++at) {
        if (at % inOneLine == 0) lines += at == 0 ? "           " : "\n           ";
        const auto value = static_cast<unsigned char>(digest[at]);
        lines += digits[value >> 4];
        lines += digits[value & 15];
        lines += ' ';
    }
    return lines + '\n';
}

}  // namespace

Judgement judged(const fs::path& package, const std::optional<fs::path>& trusted) {
    if (Files::exists(package / ".")) return {};
    try {
        return judgedArchive(XarArchive::open(package), trusted);
    } catch (const packages::PackageFailure&) {
        constexpr std::size_t magicSize = 4;
        try {
            return {Files::read(package, INT_MAX).substr(0, magicSize) == "xar!" ? Status::invalid : Status::none, {}};
        } catch (const FileError&) {
            return {};
        }
    }
}

std::string described(const fs::path& package, const Judgement& judgement) {
    std::string text =
        "Package \"" + harmless(package.filename().native()) + "\":\n   Status: " + wordsOf(judgement.status) + "\n";
    if (judgement.chain.empty()) return text;
    text += "   Certificate Chain:\n";
    for (std::size_t index = 0; index < judgement.chain.size(); ++index) {
        const Certificate& certificate = judgement.chain[index];
        if (index > 0) text += "       " + std::string(72, '-') + "\n";
        text += "    " + std::to_string(index + 1) + ". " + harmless(certificate.name) + "\n";
        text += "       Expires: " + certificate.expires + "\n       SHA256 Fingerprint:\n";
        text += fingerprintLines(certificate.fingerprint);
    }
    return text + "\n";
}

}  // namespace tarvik::pkgutil::PackageSignature
