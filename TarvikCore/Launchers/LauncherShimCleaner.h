#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <vector>

/// Disposes of launchers whose application has gone.
namespace tarvik::LauncherShimCleaner {

/// Moves to the Trash every launcher that opens `target`, be it there or not, out of /Applications and the user's own
/// Applications folder, whatever its name. What the Trash refuses stays. Blocks; never fails.
/// @returns the launchers that have gone.
std::vector<fs::path> cleanupShims(const Host& host, const fs::path& target);

}  // namespace tarvik::LauncherShimCleaner
