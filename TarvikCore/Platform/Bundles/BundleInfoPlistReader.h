#pragma once

#include "Platform/Machine/Host.h"

#include <optional>
#include <string>

/// What a bundle says about itself in its file Contents/Info.plist.
namespace tarvik::BundleInfoPlistReader {

struct Info {
    std::optional<std::string> bundleIdentifier;
    /// The version that users see, or else the number of the build.
    std::optional<std::string> version;

    bool operator==(const Info&) const = default;
};

/// Nothing when the file cannot be read or holds no dictionary. Blocks; never throws.
std::optional<Info> read(const Host& host, const fs::path& bundle);

}  // namespace tarvik::BundleInfoPlistReader
