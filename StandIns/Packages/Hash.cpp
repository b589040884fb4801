#include "Packages/Hash.h"

#include "Packages/PackageFailure.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <openssl/evp.h>

namespace tarvik::packages {

namespace {

struct ContextEnd {
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};

const EVP_MD* algorithmNamed(std::string_view name) {
    std::string lower;
    for (const char letter : name) lower += static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    if (lower == "md5") return EVP_md5();
    if (lower == "sha1") return EVP_sha1();
    if (lower == "sha256") return EVP_sha256();
    if (lower == "sha512") return EVP_sha512();
    return nullptr;
}

}  // namespace

struct Hash::State {
    std::unique_ptr<EVP_MD_CTX, ContextEnd> context{EVP_MD_CTX_new()};
};

Hash::Hash(std::unique_ptr<State> state) : m_state(std::move(state)) {}
Hash::Hash(Hash&&) noexcept = default;
Hash& Hash::operator=(Hash&&) noexcept = default;
Hash::~Hash() = default;

std::optional<Hash> Hash::named(std::string_view algorithm) {
    const EVP_MD* kind = algorithmNamed(algorithm);
    if (!kind) return std::nullopt;
    auto state = std::make_unique<State>();
    if (EVP_DigestInit_ex(state->context.get(), kind, nullptr) != 1) return std::nullopt;
    return Hash(std::move(state));
}

void Hash::add(std::string_view bytes) {
    if (EVP_DigestUpdate(m_state->context.get(), bytes.data(), bytes.size()) != 1)
        failDamaged("A checksum cannot be computed.");
}

std::string Hash::digest() {
    std::array<unsigned char, EVP_MAX_MD_SIZE> bytes{};
    unsigned length = 0;
    if (EVP_DigestFinal_ex(m_state->context.get(), bytes.data(), &length) != 1)
        failDamaged("A checksum cannot be computed.");
    return {bytes.begin(), bytes.begin() + length};
}

std::string hexadecimal(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const char each : bytes) {
        const auto value = static_cast<unsigned char>(each);
        text += digits[value >> 4];
        text += digits[value & 15];
    }
    return text;
}

}  // namespace tarvik::packages
