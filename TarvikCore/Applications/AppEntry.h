#pragma once

#include "Applications/DataPathSize.h"
#include "Applications/RiskLevel.h"
#include "Platform/Basics/Path.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarvik {

/// An application as the move flows see it: one row of the Apps tab.
struct AppEntry {
    /// The bundle identifier, or the bundle's path without one. Two bundles with one identifier share it.
    std::string id;
    std::string name;
    fs::path bundlePath;
    /// Never empty.
    std::optional<std::string> bundleIdentifier;
    std::optional<std::string> version;
    /// Bytes in the bundle; 0 until measured.
    std::int64_t appSize = 0;
    /// What the application keeps outside its bundle, and how much that is in all.
    std::vector<fs::path> dataPaths;
    std::int64_t dataSize = 0;
    /// One for each measured data path.
    std::vector<DataPathSize> dataPathSizes;
    bool isMacAppStore = false;
    bool hasLoginItems = false;
    bool hasSystemExtension = false;
    /// The bundle is a link, stands inside one, or is a launcher of a bundle on a drive.
    bool isAlreadySymlinked = false;

    std::int64_t totalSize() const;
    /// The largest measured data path; of equals the first.
    std::optional<DataPathSize> dominantDataPath() const;
    RiskLevel riskLevel() const;
    /// What a user should know before a move, one sentence a line.
    std::vector<std::string> warnings() const;
    AppEntry withDisplayName(std::string newName) const;
    /// A copy with the sizes of the bundle and of its data.
    AppEntry withSizes(std::int64_t bundleBytes, std::vector<DataPathSize> paths) const;

    bool operator==(const AppEntry&) const = default;
};

}  // namespace tarvik
