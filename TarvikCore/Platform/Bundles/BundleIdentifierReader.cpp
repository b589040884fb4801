#include "Platform/Bundles/BundleIdentifierReader.h"

#include "Platform/Bundles/BundleInfoPlistReader.h"

namespace tarvik {

std::optional<std::string> BundleIdentifierReader::read(const Host& host, const fs::path& bundle) {
    const auto info = BundleInfoPlistReader::read(host, bundle);
    return info ? info->bundleIdentifier : std::nullopt;
}

}  // namespace tarvik
