#include "Signatures/Digest.h"

#include <array>
#include <cerrno>
#include <memory>
#include <new>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <unistd.h>
#include <vector>

namespace tarvik::signatures::Digest {

namespace {

struct FreeAlgorithm {
    void operator()(EVP_MD* algorithm) const { ::EVP_MD_free(algorithm); }
};
using Algorithm = std::unique_ptr<EVP_MD, FreeAlgorithm>;

struct FreeContext {
    void operator()(EVP_MD_CTX* context) const { ::EVP_MD_CTX_free(context); }
};

const EVP_MD* algorithmOf(Kind kind) {
    // What the machine's settings say of the library must not change a digest; not reading them saves time too.
    static const bool isReady [[maybe_unused]] = ::OPENSSL_init_crypto(OPENSSL_INIT_NO_LOAD_CONFIG, nullptr) == 1;
    static const Algorithm sha1(::EVP_MD_fetch(nullptr, "SHA1", nullptr));
    static const Algorithm sha256(::EVP_MD_fetch(nullptr, "SHA256", nullptr));
    return kind == Kind::sha1 ? sha1.get() : sha256.get();
}

/// A digest that is still being made.
class Running {
public:
    explicit Running(Kind kind) : m_context(::EVP_MD_CTX_new()) {
        require(m_context && ::EVP_DigestInit_ex(m_context.get(), algorithmOf(kind), nullptr) == 1);
    }
    void add(const char* bytes, std::size_t length) {
        require(::EVP_DigestUpdate(m_context.get(), bytes, length) == 1);
    }
    std::string result() {
        std::array<unsigned char, EVP_MAX_MD_SIZE> bytes{};
        unsigned length = 0;
        require(::EVP_DigestFinal_ex(m_context.get(), bytes.data(), &length) == 1);
        return {bytes.begin(), bytes.begin() + length};
    }

private:
    /// What fails of it fails for want of memory.
    static void require(bool isDone) {
        if (!isDone) throw std::bad_alloc();
    }

    std::unique_ptr<EVP_MD_CTX, FreeContext> m_context;
};

}  // namespace

std::string of(std::string_view bytes, Kind kind) {
    Running digest(kind);
    digest.add(bytes.data(), bytes.size());
    return digest.result();
}

std::optional<std::string> ofOpenFile(int file, Kind kind) {
    Running digest(kind);
    static std::vector<char> buffer(std::size_t{256} << 10);
    while (true) {
        const ssize_t length = ::read(file, buffer.data(), buffer.size());
        if (length < 0 && errno == EINTR) continue;
        if (length < 0) return std::nullopt;
        if (length == 0) return digest.result();
        digest.add(buffer.data(), static_cast<std::size_t>(length));
    }
}

std::string hexadecimal(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string result;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        result += digits[value >> 4];
        result += digits[value & 15];
    }
    return result;
}

}  // namespace tarvik::signatures::Digest
