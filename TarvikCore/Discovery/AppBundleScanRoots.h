#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <vector>

/// The folders in which applications are looked for.
namespace tarvik::AppBundleScanRoots {

/// /Applications, with `includeSystem` the system's own as well, and the user's Applications folder if there is one.
/// The others need not exist.
std::vector<fs::path> standardApplicationRoots(const Host& host, bool includeSystem);

/// The folders in the user's Application Support that hold a bundle at most `maxDepth` folders below them; hidden ones
/// and links are left out. In byte order. Blocks for a walk of each; empty when nothing can be read.
std::vector<fs::path> supplementalApplicationSupportRoots(const Host& host, int maxDepth);

}  // namespace tarvik::AppBundleScanRoots
