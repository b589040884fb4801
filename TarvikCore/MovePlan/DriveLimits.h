#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Storage/DriveInfo.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// What a drive's file system cannot hold, told before anything is copied: the copy would fail after a long time, or
/// lose something. What the system does not tell of a drive counts as no limit.
namespace tarvik::DriveLimits {

/// What of an item a drive may not be able to hold.
struct Needs {
    /// The first symbolic link in it; the item itself for one that is a link.
    std::optional<fs::path> link;
    std::optional<fs::path> largestFile;
    /// In bytes.
    std::int64_t largestSize = 0;
    /// The first two entries of one folder whose names a volume that folds case and normal forms takes for one.
    std::optional<std::pair<fs::path, fs::path>> oneName = std::nullopt;

    /// Blocks for a walk; any thread. What cannot be read counts as nothing.
    static Needs of(const fs::path& item);
};

/// Why no copy of the item can stand on the drive, as a sentence for the user; nothing when it can. Walks through the
/// item only when the drive has a limit.
std::optional<std::string> refusal(const fs::path& item, const DriveInfo& drive);
/// The same for needs that are known. Pure.
std::optional<std::string> refusal(const fs::path& item, const Needs& needs, const DriveInfo& drive);

/// What the user should know before something is moved there, a sentence each. Pure.
std::vector<std::string> warnings(const DriveInfo& drive);

}  // namespace tarvik::DriveLimits
