#include "Practice/Packages/SigningIdentity.h"

#include "Platform/Basics/Failure.h"
#include "Practice/Packages/SigningKeys.h"

#include <openssl/bio.h>
#include <openssl/cms.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

namespace tarvik::Practice {

namespace {

struct LibraryEnd {
    void operator()(BIO* each) const { BIO_free(each); }
    void operator()(CMS_ContentInfo* each) const { CMS_ContentInfo_free(each); }
    void operator()(EVP_PKEY* each) const { EVP_PKEY_free(each); }
    void operator()(EVP_PKEY_CTX* each) const { EVP_PKEY_CTX_free(each); }
    void operator()(X509* each) const { X509_free(each); }
    void operator()(X509_EXTENSION* each) const { X509_EXTENSION_free(each); }
    void operator()(STACK_OF(X509) * each) const { sk_X509_free(each); }
};
template <typename Thing>
using Owned = std::unique_ptr<Thing, LibraryEnd>;

void demandSigning(bool isWell) {
    if (!isWell) throw Failure("Practice", 1, "A made package could not be signed.");
}

Owned<EVP_PKEY> keyOf(const char* pem) {
    const Owned<BIO> text(BIO_new_mem_buf(pem, -1));
    Owned<EVP_PKEY> key(PEM_read_bio_PrivateKey(text.get(), nullptr, nullptr, nullptr));
    demandSigning(key != nullptr);
    return key;
}

std::string allBytes(BIO* memory) {
    char* bytes = nullptr;
    const long length = BIO_get_mem_data(memory, &bytes);
    return {bytes, static_cast<std::size_t>(length)};
}

void addExtension(X509* certificate, int kind, const char* value) {
    const Owned<X509_EXTENSION> extension(X509V3_EXT_conf_nid(nullptr, nullptr, kind, value));
    demandSigning(extension && X509_add_ext(certificate, extension.get(), -1) == 1);
}

struct Subject {
    const std::string& name;
    const std::string& issuer;
    EVP_PKEY* key;
    EVP_PKEY* issuerKey;
    long serial;
    bool isAuthority;
};

Owned<X509> certificateOf(const Subject& subject, std::int64_t from, std::int64_t to) {
    Owned<X509> certificate(X509_new());
    X509* x509 = certificate.get();
    const auto setName = [](X509_NAME* name, const std::string& text) {
        demandSigning(X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8,
                                                 reinterpret_cast<const unsigned char*>(text.data()),
                                                 static_cast<int>(text.size()), -1, 0) == 1);
    };
    X509_set_version(x509, 2);
    ASN1_INTEGER_set(X509_get_serialNumber(x509), subject.serial);
    ASN1_TIME_set(X509_getm_notBefore(x509), static_cast<time_t>(from));
    ASN1_TIME_set(X509_getm_notAfter(x509), static_cast<time_t>(to));
    setName(X509_get_subject_name(x509), subject.name);
    setName(X509_get_issuer_name(x509), subject.issuer);
    X509_set_pubkey(x509, subject.key);
    addExtension(x509, NID_basic_constraints, subject.isAuthority ? "critical,CA:TRUE" : "critical,CA:FALSE");
    addExtension(x509, NID_key_usage, subject.isAuthority ? "critical,keyCertSign" : "critical,digitalSignature");
    demandSigning(X509_sign(x509, subject.issuerKey, EVP_sha256()) > 0);
    return certificate;
}

std::string derOf(X509* certificate) {
    const Owned<BIO> memory(BIO_new(BIO_s_mem()));
    demandSigning(i2d_X509_bio(memory.get(), certificate) == 1);
    return allBytes(memory.get());
}

}  // namespace

struct SigningIdentity::State {
    Owned<EVP_PKEY> makerKey;
    Owned<X509> maker;
    Owned<X509> authority;
};

SigningIdentity::SigningIdentity(std::unique_ptr<State> state) : m_state(std::move(state)) {}
SigningIdentity::SigningIdentity(SigningIdentity&&) noexcept = default;
SigningIdentity& SigningIdentity::operator=(SigningIdentity&&) noexcept = default;
SigningIdentity::~SigningIdentity() = default;

SigningIdentity SigningIdentity::made(const Options& options) {
    auto state = std::make_unique<State>();
    state->makerKey = keyOf(SigningKeys::maker);
    const auto authorityKey = keyOf(SigningKeys::authority);
    const Options always;
    // The authority is the same whatever the maker's dates are.
    state->authority = certificateOf({.name = options.authority,
                                      .issuer = options.authority,
                                      .key = authorityKey.get(),
                                      .issuerKey = authorityKey.get(),
                                      .serial = 1,
                                      .isAuthority = true},
                                     always.from, always.to);
    state->maker = certificateOf({.name = options.maker,
                                  .issuer = options.authority,
                                  .key = state->makerKey.get(),
                                  .issuerKey = authorityKey.get(),
                                  .serial = 2,
                                  .isAuthority = false},
                                 options.from, options.to);
    return SigningIdentity(std::move(state));
}

std::vector<std::string> SigningIdentity::certificates() const {
    return {derOf(m_state->maker.get()), derOf(m_state->authority.get())};
}

std::string SigningIdentity::authorityAsPem() const {
    const Owned<BIO> memory(BIO_new(BIO_s_mem()));
    demandSigning(PEM_write_bio_X509(memory.get(), m_state->authority.get()) == 1);
    return allBytes(memory.get());
}

std::string SigningIdentity::rsaSignature(std::string_view digest) const {
    const Owned<EVP_PKEY_CTX> context(EVP_PKEY_CTX_new(m_state->makerKey.get(), nullptr));
    const auto* bytes = reinterpret_cast<const unsigned char*>(digest.data());
    std::size_t length = 0;
    demandSigning(EVP_PKEY_sign_init(context.get()) == 1 &&
                  EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PADDING) == 1 &&
                  EVP_PKEY_CTX_set_signature_md(context.get(), EVP_sha1()) == 1 &&
                  EVP_PKEY_sign(context.get(), nullptr, &length, bytes, digest.size()) == 1);
    std::basic_string<unsigned char> signature(length, 0);
    demandSigning(EVP_PKEY_sign(context.get(), signature.data(), &length, bytes, digest.size()) == 1);
    return {signature.begin(), signature.begin() + static_cast<std::ptrdiff_t>(length)};
}

std::string SigningIdentity::cmsSignature(std::string_view bytes) const {
    const Owned<BIO> content(BIO_new_mem_buf(bytes.data(), static_cast<int>(bytes.size())));
    const Owned<STACK_OF(X509)> others(sk_X509_new_null());
    sk_X509_push(others.get(), m_state->authority.get());
    const Owned<CMS_ContentInfo> message(CMS_sign(m_state->maker.get(), m_state->makerKey.get(), others.get(),
                                                  content.get(), CMS_BINARY | CMS_DETACHED | CMS_NOSMIMECAP));
    demandSigning(message != nullptr);
    const Owned<BIO> memory(BIO_new(BIO_s_mem()));
    demandSigning(i2d_CMS_bio(memory.get(), message.get()) == 1);
    return allBytes(memory.get());
}

}  // namespace tarvik::Practice
