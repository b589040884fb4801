#include "Packages/Base64.h"

#include <cctype>
#include <climits>
#include <openssl/evp.h>

namespace tarvik::packages {

std::optional<std::string> bytesOfBase64(std::string_view text) {
    std::string dense;
    for (const char letter : text)
        if (!std::isspace(static_cast<unsigned char>(letter))) dense += letter;
    if (dense.size() % 4 != 0 || dense.size() > INT_MAX) return std::nullopt;
    std::size_t padding = 0;
    while (padding < 2 && padding < dense.size() && dense[dense.size() - 1 - padding] == '=') ++padding;
    std::basic_string<unsigned char> bytes(dense.size() / 4 * 3 + 1, 0);
    const int length = EVP_DecodeBlock(bytes.data(), reinterpret_cast<const unsigned char*>(dense.data()),
                                       static_cast<int>(dense.size()));
    if (length < 0) return std::nullopt;
    return std::string(bytes.begin(), bytes.begin() + length - static_cast<std::ptrdiff_t>(padding));
}

}  // namespace tarvik::packages
