#pragma once

#include "Platform/Basics/Path.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tarvik {

/// What the system tells of one mounted volume. An absent value means that the system does not know.
struct Volume {
    fs::path mountPath;
    std::optional<std::string> name;
    /// In bytes.
    std::optional<std::int64_t> totalBytes;
    /// What an ordinary user's file may still take, in bytes.
    std::optional<std::int64_t> availableBytes;
    std::optional<bool> isInternal;
    /// Whether a file manager would show it: false for pseudo file systems and the system's own mounts.
    std::optional<bool> isBrowsable;
    std::optional<bool> isReadOnly;
    /// The format in words: "ext4", "APFS", "exFAT".
    std::optional<std::string> formatDescription;
    /// What no other volume has: the UUID of its file system, or what that has for one.
    std::optional<std::string> identifier;
    /// Whether symbolic links can be made on it.
    std::optional<bool> keepsLinks;
    /// Whether it keeps permissions and owners of its items.
    std::optional<bool> keepsPermissions;
    /// Whether names that differ in case, or in normal form, are one name on it.
    std::optional<bool> foldsNames;
    /// The largest file that it can hold, in bytes, where that is a figure a file can come to.
    std::optional<std::int64_t> largestFile;

    bool operator==(const Volume&) const = default;
};

}  // namespace tarvik
