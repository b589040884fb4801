#pragma once

#include "Applications/AppRecordKind.h"
#include "Platform/Basics/Path.h"

#include <nlohmann/json_fwd.hpp>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace tarvik {

/// An installed application as the uninstaller sees it.
struct AppRecord {
    /// The bundle path as text.
    std::string id;
    /// Where the bundle was found; links in it are not resolved.
    fs::path bundlePath;
    std::string displayName;
    std::optional<std::string> bundleIdentifier;
    std::optional<std::string> version;
    std::optional<std::string> executableName;
    /// The vendor, from the bundle's copyright notice.
    std::optional<std::string> developer;
    AppRecordKind kind = AppRecordKind::normal;
    /// The bundle path itself is a symbolic link; `symlinkTarget` is its text, not resolved.
    bool isSymlink = false;
    std::optional<fs::path> symlinkTarget;
    bool isMacAppStore = false;
    bool hasLoginItems = false;
    bool hasSystemExtension = false;
    bool isTarvikLauncher = false;
    /// For a link its target, for a launcher the path stored in it.
    std::optional<fs::path> externalTargetPath;
    /// When the bundle item itself was last modified, links not followed.
    std::optional<std::chrono::system_clock::time_point> modifiedAt;
    /// In bytes; 0 until they are measured in the background.
    std::int64_t bundleSizeBytes = 0;
    std::int64_t footprintBytes = 0;

    /// The footprint once it is known, the bundle's size before that.
    std::int64_t displaySizeBytes() const;
    /// How many of the store receipt, login items and system extension it has: 0 to 3.
    int permissionCount() const;
    /// A copy with one field changed.
    AppRecord withDisplayName(std::string name) const;
    AppRecord withBundleSize(std::int64_t bytes) const;
    AppRecord withFootprint(std::int64_t bytes) const;

    bool operator==(const AppRecord&) const = default;
};

/// One key a field, of the field's name; what is absent has no key. @throws Failure on reading a record without a key
/// that it needs, or with a value of the wrong type.
void to_json(nlohmann::json& json, const AppRecord& record);
void from_json(const nlohmann::json& json, AppRecord& record);

}  // namespace tarvik

template <>
struct std::hash<tarvik::AppRecord> {
    std::size_t operator()(const tarvik::AppRecord& record) const noexcept;
};
