#include "Platform/Bundles/BundleIcon.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Bundles/IconFile.h"
#include "Platform/Files/Files.h"
#include "Platform/Text/PropertyList.h"

#include <cstdint>

namespace tarvik::BundleIcon {

namespace {

constexpr std::int64_t largestFile = 32'000'000;

}  // namespace

std::optional<std::string> png(const fs::path& bundle, int side) {
    const PropertyList info = PropertyList::dictionaryAt(bundle / "Contents/Info.plist");
    // Only the name counts: no bundle leads elsewhere by it.
    fs::path name = fs::path(info.text("CFBundleIconFile").value_or("")).filename();
    if (name.empty()) return std::nullopt;
    if (name.extension() != ".icns") name += ".icns";
    try {
        return IconFile::png(Files::read(bundle / "Contents/Resources" / name, largestFile), side);
    } catch (const Failure&) {
        return std::nullopt;
    }
}

}  // namespace tarvik::BundleIcon
