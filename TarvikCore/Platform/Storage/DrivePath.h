#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <optional>

/// Which drive a path lies on, told by its names alone: the drive may be away. Never fails.
namespace tarvik::DrivePath {

/// The mount path of the drive that `item` lies on: the folder in that of volumes, or the one above our folder on
/// drives. Nothing for a path on no drive, and for a relative one.
std::optional<fs::path> of(const Host& host, const fs::path& item);

/// The same when nothing is mounted there: a folder that a drive has left behind at its path is on the internal disk.
/// Asks no volume; nothing when the drive is there, or `item` is on none.
std::optional<fs::path> absent(const Host& host, const fs::path& item);

}  // namespace tarvik::DrivePath
