#include "pkgutil/Chain.h"

#include "Platform/Files/Files.h"

#include <array>
#include <ctime>
#include <openssl/asn1.h>
#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509_vfy.h>
#include <openssl/x509v3.h>

namespace tarvik::pkgutil {

namespace {

constexpr std::int64_t largestCertificate = 1'000'000;
constexpr const char* developerMark = "1.2.840.113635.100.6.1.14";

struct ChainEnd {
    void operator()(BIO* each) const { BIO_free(each); }
    void operator()(X509_STORE* each) const { X509_STORE_free(each); }
    void operator()(X509_STORE_CTX* each) const { X509_STORE_CTX_free(each); }
    void operator()(STACK_OF(X509) * each) const { sk_X509_free(each); }
    void operator()(ASN1_OBJECT* each) const { ASN1_OBJECT_free(each); }
};
template <typename Thing>
using Held = std::unique_ptr<Thing, ChainEnd>;

X509* certificateOf(const std::string& bytes) {
    const auto* at = reinterpret_cast<const unsigned char*>(bytes.data());
    return d2i_X509(nullptr, &at, static_cast<long>(bytes.size()));
}

/// Every certificate of a file, in either form.
void addTrusted(X509_STORE* store, const fs::path& file) {
    std::string bytes;
    try {
        bytes = Files::read(file, largestCertificate);
    } catch (const FileError&) {
        return;
    }
    if (X509* one = certificateOf(bytes)) {
        X509_STORE_add_cert(store, one);
        X509_free(one);
        return;
    }
    const Held<BIO> text(BIO_new_mem_buf(bytes.data(), static_cast<int>(bytes.size())));
    while (X509* one = PEM_read_bio_X509(text.get(), nullptr, nullptr, nullptr)) {
        X509_STORE_add_cert(store, one);
        X509_free(one);
    }
}

std::string dateOf(const ASN1_TIME* time) {
    std::tm parts{};
    std::array<char, 64> text{};
    if (ASN1_TIME_to_tm(time, &parts) != 1) return "unknown";
    std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S +0000", &parts);
    return text.data();
}

std::string nameOf(X509* certificate) {
    X509_NAME* subject = X509_get_subject_name(certificate);
    const int index = X509_NAME_get_index_by_NID(subject, NID_commonName, -1);
    if (index < 0) return "unknown";
    unsigned char* text = nullptr;
    const int length = ASN1_STRING_to_UTF8(&text, X509_NAME_ENTRY_get_data(X509_NAME_get_entry(subject, index)));
    if (length < 0) return "unknown";
    std::string name(text, text + length);
    OPENSSL_free(text);
    return name;
}

std::string fingerprintOf(X509* certificate) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned length = 0;
    X509_digest(certificate, EVP_sha256(), digest.data(), &length);
    return {digest.begin(), digest.begin() + length};
}

}  // namespace

Chain::Chain(const std::vector<std::string>& certificates) {
    for (const std::string& bytes : certificates) {
        std::unique_ptr<X509, End> certificate(certificateOf(bytes));
        if (m_certificates.empty() && !m_hasSigner) m_hasSigner = certificate != nullptr;
        if (!certificate && m_certificates.empty()) return;
        if (certificate) m_certificates.push_back(std::move(certificate));
    }
}

X509* Chain::signer() const {
    return m_hasSigner ? m_certificates.front().get() : nullptr;
}

std::vector<Certificate> Chain::described() const {
    std::vector<Certificate> all;
    for (const auto& each : m_certificates)
        all.push_back({nameOf(each.get()), dateOf(X509_get0_notAfter(each.get())), fingerprintOf(each.get())});
    return all;
}

bool Chain::isDeveloper() const {
    const Held<ASN1_OBJECT> mark(OBJ_txt2obj(developerMark, 1));
    return signer() && X509_get_ext_by_OBJ(signer(), mark.get(), -1) >= 0;
}

Chain::Verdict Chain::judged(const std::optional<fs::path>& trusted) const {
    if (!signer() || !trusted) return Verdict::untrusted;
    const Held<X509_STORE> store(X509_STORE_new());
    for (const std::string& name : Files::names(*trusted)) addTrusted(store.get(), *trusted / name);
    const Held<STACK_OF(X509)> others(sk_X509_new_null());
    for (std::size_t index = 1; index < m_certificates.size(); ++index)
        sk_X509_push(others.get(), m_certificates[index].get());
    const auto isVouchedFor = [&](unsigned long flags) {
        const Held<X509_STORE_CTX> context(X509_STORE_CTX_new());
        if (!context || X509_STORE_CTX_init(context.get(), store.get(), signer(), others.get()) != 1) return false;
        X509_VERIFY_PARAM* rules = X509_STORE_CTX_get0_param(context.get());
        X509_VERIFY_PARAM_set_flags(rules, flags);
        // No weak keys and digests.
        X509_VERIFY_PARAM_set_auth_level(rules, 1);
        return X509_verify_cert(context.get()) == 1;
    };
    if (isVouchedFor(0)) return Verdict::trusted;
    const bool wasGood = X509_cmp_current_time(X509_get0_notBefore(signer())) < 0;
    return wasGood && isVouchedFor(X509_V_FLAG_NO_CHECK_TIME) ? Verdict::expired : Verdict::untrusted;
}

}  // namespace tarvik::pkgutil
