#pragma once

#include "Platform/Basics/FieldHash.h"
#include "Platform/Basics/Path.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace tarvik {

/// One mounted volume with its capacity figures.
struct DriveInfo {
    /// The mount path as text.
    std::string id;
    /// The volume's name, or the last component of the mount path when it has none.
    std::string name;
    fs::path mountPath;
    /// In bytes; 0 when the system does not tell.
    std::int64_t totalBytes = 0;
    std::int64_t freeBytes = 0;
    /// False when the system does not tell.
    bool isInternal = false;
    /// True when the system does not tell.
    bool isWritable = true;
    std::optional<std::string> filesystem;
    /// What its file system can hold, as far as the system tells: symbolic links, permissions, files of how many bytes.
    std::optional<bool> keepsLinks;
    std::optional<bool> keepsPermissions;
    /// Whether "Foo" and "foo" are one name there, as far as the system tells.
    std::optional<bool> foldsNames;
    std::optional<std::int64_t> largestFile;

    std::int64_t usedBytes() const { return totalBytes - freeBytes; }
    bool isBoot() const { return mountPath == "/"; }

    bool operator==(const DriveInfo&) const = default;
};

}  // namespace tarvik

template <>
struct std::hash<tarvik::DriveInfo> {
    std::size_t operator()(const tarvik::DriveInfo& drive) const noexcept {
        return tarvik::FieldHash::of(drive.id, drive.name, drive.mountPath, drive.totalBytes, drive.freeBytes,
                                     drive.isInternal, drive.isWritable, drive.filesystem, drive.keepsLinks,
                                     drive.keepsPermissions, drive.foldsNames, drive.largestFile);
    }
};
