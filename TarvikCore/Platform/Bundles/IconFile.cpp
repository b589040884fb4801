#include "Platform/Bundles/IconFile.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace tarvik::IconFile {

namespace {

using namespace std::string_view_literals;

/// The entries that can hold a PNG picture; other ones of these types hold JPEG 2000 or raw points.
constexpr std::array pictureTypes = {"icp4"sv, "icp5"sv, "icp6"sv, "ic04"sv, "ic05"sv, "ic07"sv, "ic08"sv,
                                     "ic09"sv, "ic10"sv, "ic11"sv, "ic12"sv, "ic13"sv, "ic14"sv};
constexpr std::size_t entryHeader = 8;
constexpr std::string_view pngBeginning = "\x89PNG\r\n\x1a\n\0\0\0\rIHDR"sv;
constexpr std::uint32_t largestSide = 2048;

/// Four bytes at an offset that lies inside.
std::uint32_t numberAt(std::string_view bytes, std::size_t offset) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i) number = number << 8 | static_cast<unsigned char>(bytes[offset + i]);
    return number;
}

/// The longer side of a picture as it describes itself; 0 of what is none, or none that is fit for an icon.
std::uint32_t sideOf(std::string_view picture) {
    const std::size_t sizes = pngBeginning.size();
    if (picture.substr(0, sizes) != pngBeginning || picture.size() < sizes + 8) return 0;
    const std::uint32_t width = numberAt(picture, sizes);
    const std::uint32_t height = numberAt(picture, sizes + 4);
    if (width == 0 || height == 0 || width > largestSide || height > largestSide) return 0;
    return std::max(width, height);
}

bool suitsBetter(std::uint32_t side, std::uint32_t known, std::uint32_t wanted) {
    if (known < wanted) return side > known;
    return side >= wanted && side < known;
}

}  // namespace

std::optional<std::string> png(std::string_view bytes, int side) {
    if (bytes.size() < entryHeader || bytes.substr(0, 4) != "icns") return std::nullopt;
    const auto wanted = static_cast<std::uint32_t>(std::max(side, 1));
    std::string_view best;
    for (std::string_view rest = bytes.substr(entryHeader); rest.size() >= entryHeader;) {
        const std::string_view type = rest.substr(0, 4);
        const std::size_t length = numberAt(rest, 4);
        if (length < entryHeader || length > rest.size()) break;
        const std::string_view picture = rest.substr(entryHeader, length - entryHeader);
        rest.remove_prefix(length);
        if (std::find(pictureTypes.begin(), pictureTypes.end(), type) == pictureTypes.end()) continue;
        const std::uint32_t found = sideOf(picture);
        if (found > 0 && (best.empty() || suitsBetter(found, sideOf(best), wanted))) best = picture;
    }
    if (best.empty()) return std::nullopt;
    return std::string(best);
}

}  // namespace tarvik::IconFile
