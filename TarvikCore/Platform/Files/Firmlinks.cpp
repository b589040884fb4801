#include "Platform/Files/Firmlinks.h"

#include "Platform/Files/Files.h"

#include <optional>
#include <string_view>

namespace tarvik::Firmlinks {

namespace {

constexpr std::string_view dataVolume = "/System/Volumes/Data";

// Below the data volume and below the root.
constexpr std::string_view folders[] = {
    "AppleInternal",
    "Applications",
    "Library",
    "System/Library/Assets",
    "System/Library/AssetsV2",
    "System/Library/Caches",
    "System/Library/CoreServices/CoreTypes.bundle/Contents/Library",
    "System/Library/PreinstalledAssets",
    "System/Library/PreinstalledAssetsV2",
    "System/Library/Speech",
    "Users",
    "Volumes",
    "cores",
    "opt",
    "private",
    "usr/libexec/cups",
    "usr/local",
    "usr/share/snmp",
};

/// The folder of the table that holds the path.
std::optional<fs::path> firmlinkOf(const fs::path& path) {
    if (!Files::isAtOrBelow(path, dataVolume)) return std::nullopt;
    for (const std::string_view folder : folders)
        if (Files::isAtOrBelow(path, fs::path(dataVolume) / folder)) return fs::path(folder);
    return std::nullopt;
}

}  // namespace

fs::path shortForm(const fs::path& path) {
    return firmlinkOf(path) ? "/" / path.lexically_relative(dataVolume) : path;
}

fs::path shortFormHere(const fs::path& path) {
    const auto folder = firmlinkOf(path);
    if (!folder || !Files::isSameItem(Files::info(dataVolume / *folder), Files::info("/" / *folder))) return path;
    return shortForm(path);
}

}  // namespace tarvik::Firmlinks
