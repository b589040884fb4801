#include "Support/IconFiles.h"

namespace tarvik::test {

std::string fourBytes(std::uint32_t number) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(number >> shift & 0xFFU);
    return bytes;
}

std::string iconFile(const std::vector<std::pair<std::string, std::string>>& entries) {
    std::string content;
    for (const auto& [type, bytes] : entries)
        content += type + fourBytes(static_cast<std::uint32_t>(bytes.size() + 8)) + bytes;
    return "icns" + fourBytes(static_cast<std::uint32_t>(content.size() + 8)) + content;
}

std::string pngBeginning(std::uint32_t width, std::uint32_t height) {
    return "\x89PNG\r\n\x1a\n" + fourBytes(13) + "IHDR" + fourBytes(width) + fourBytes(height);
}

}  // namespace tarvik::test
