#pragma once

#include "Platform/Basics/Path.h"

#include <ctime>
#include <string>
#include <string_view>

/// The record that the desktop's Trash keeps beside each item, so that a file manager can put the item back.
namespace tarvik::TrashInfo {

/// The record's file name ends so.
inline constexpr std::string_view extension = ".trashinfo";

/// The record's text. `originalPath` is absolute in the home's Trash and relative to the volume's top in a volume's;
/// `deletedAt` is written in local time.
std::string text(const fs::path& originalPath, std::time_t deletedAt);

}  // namespace tarvik::TrashInfo
