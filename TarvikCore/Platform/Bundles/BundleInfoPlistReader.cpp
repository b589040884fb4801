#include "Platform/Bundles/BundleInfoPlistReader.h"

#include "Platform/Text/PropertyList.h"

namespace tarvik {

std::optional<BundleInfoPlistReader::Info> BundleInfoPlistReader::read(const Host&, const fs::path& bundle) {
    const auto list = PropertyList::at(bundle / "Contents/Info.plist");
    if (!list || !list->as<PropertyList::Dictionary>()) return std::nullopt;
    Info info{.bundleIdentifier = list->text("CFBundleIdentifier"),
              .version = list->text("CFBundleShortVersionString")};
    if (!info.version) info.version = list->text("CFBundleVersion");
    return info;
}

}  // namespace tarvik
