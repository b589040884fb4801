#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/TreeObstacle.h"

#include <cstdint>
#include <string>
#include <string_view>

/// What a user reads of something that an item cannot be moved or backed up for, and how to go on where there is a way.
/// Pure.
namespace tarvik::ObstacleText {

/// One sentence, with a second one where a command lifts the obstacle. `item` is what was to be `done`.
std::string of(const fs::path& item, const TreeObstacle& obstacle, std::string_view done = "moved");

/// What is said of the `count` things that the backup of an item is made without, of which `first` is one.
std::string ofLeftOut(const fs::path& item, const TreeObstacle& first, std::int64_t count);

}  // namespace tarvik::ObstacleText
