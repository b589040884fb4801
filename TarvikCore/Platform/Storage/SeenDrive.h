#pragma once

#include "Platform/Basics/FieldHash.h"
#include "Platform/Basics/Path.h"

#include <cstddef>
#include <functional>
#include <string>

namespace tarvik {

/// The volume that an item stood on when it was looked at: what is done about the item later is done there or nowhere.
struct SeenDrive {
    /// Empty when the system lists no volume that holds the item, as for a drive that is away.
    fs::path mountPath;
    /// What `DriveScanner::markOf` told of it.
    std::string mark;

    bool operator==(const SeenDrive&) const = default;
};

}  // namespace tarvik

template <>
struct std::hash<tarvik::SeenDrive> {
    std::size_t operator()(const tarvik::SeenDrive& drive) const noexcept {
        return tarvik::FieldHash::of(drive.mountPath, drive.mark);
    }
};
