#pragma once

#include "Platform/Basics/Path.h"

#include <cstdint>
#include <optional>
#include <string_view>

/// The files in which a Mac keeps what a volume has no place for, extended attributes and resource forks: "._NAME"
/// beside NAME, on exFAT, FAT and some network volumes. The system makes, renames and removes them with their item, and
/// reads an item's attributes out of them, so that they are no items of their own. The format is that of RFC 1740.
namespace tarvik::AppleDouble {

/// The name of the item that a file of this name would belong to; nothing when it would belong to none. Pure.
std::optional<std::string_view> ownerName(std::string_view name);
/// Whether a file that begins with these bytes is in the format. Pure.
bool isHeader(std::string_view bytes);

/// Whether the entry of an open folder is such a file and the item it belongs to stands beside it. Whatever else bears
/// such a name is an item like any other. Opens files of such names only; what cannot be read is an item.
bool belongsToItem(int folderHandle, const char* name);
/// How many of them there are in a tree. Blocks for a walk.
std::int64_t countIn(const fs::path& folder);

/// Whether this system keeps attributes in such files on the volume that holds `path`. Elsewhere they are ordinary
/// files, which somebody has brought there.
bool areKeptAt(const fs::path& path);

}  // namespace tarvik::AppleDouble
