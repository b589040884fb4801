#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/TreeObstacle.h"

#include <string>

/// What a user reads of something that an item cannot be moved for, and how to go on where there is a way. Pure.
namespace tarvik::ObstacleText {

/// One sentence, with a second one where a command lifts the obstacle. `item` is what was to be moved.
std::string of(const fs::path& item, const TreeObstacle& obstacle);

}  // namespace tarvik::ObstacleText
