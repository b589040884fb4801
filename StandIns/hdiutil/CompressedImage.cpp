#include "hdiutil/CompressedImage.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Text/PropertyList.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <zlib.h>

namespace tarvik::hdiutil::CompressedImage {

namespace {

constexpr std::uint64_t trailerSize = 512;
constexpr std::uint64_t largestList = std::uint64_t{64} << 20;

std::string trailerOf(const ImageFile& image) {
    return image.size() < trailerSize ? std::string() : image.bytesAt(image.size() - trailerSize, trailerSize);
}

std::uint64_t numberAt(const std::string& trailer, std::size_t at, std::size_t length) {
    std::uint64_t number = 0;
    for (const char byte : trailer.substr(at, length)) number = number << 8 | static_cast<unsigned char>(byte);
    return number;
}

bool hasLicence(const ImageFile& image, const std::string& trailer) {
    const std::uint64_t length = numberAt(trailer, 224, 8);
    if (length == 0 || length > largestList) return false;
    const auto list = PropertyList::parsed(image.bytesAt(numberAt(trailer, 216, 8), static_cast<std::size_t>(length)));
    const PropertyList* resources = list ? list->find("resource-fork") : nullptr;
    return resources != nullptr && (resources->find("LPic") != nullptr || resources->find("SLA") != nullptr);
}

bool isWhole(const ImageFile& image, const std::string& trailer) {
    constexpr std::uint64_t crc32Kind = 2;
    if (numberAt(trailer, 80, 4) != crc32Kind) return true;
    std::uint64_t offset = numberAt(trailer, 24, 8);
    std::uint64_t missing = numberAt(trailer, 32, 8);
    if (offset > image.size() || missing > image.size() - offset) return false;
    uLong sum = 0;
    while (missing > 0) {
        const std::string bytes =
            image.bytesAt(offset, static_cast<std::size_t>(std::min<std::uint64_t>(missing, 1U << 20)));
        if (bytes.empty()) return false;
        sum = crc32_z(sum, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
        offset += bytes.size();
        missing -= bytes.size();
    }
    return sum == numberAt(trailer, 88, 4);
}

}  // namespace

bool isOne(const ImageFile& image) {
    return trailerOf(image).starts_with("koly");
}

bool isEncrypted(const ImageFile& image) {
    return image.bytesAt(0, 8) == "encrcdsa" || (image.size() >= 8 && image.bytesAt(image.size() - 8, 8) == "cdsaencr");
}

void check(const ImageFile& image) {
    const std::string trailer = trailerOf(image);
    if (hasLicence(image, trailer)) throw Failure("hdiutil", 1, "attach canceled");
    if (!isWhole(image, trailer)) throw Failure("hdiutil", 1, "corrupt image");
}

}  // namespace tarvik::hdiutil::CompressedImage
