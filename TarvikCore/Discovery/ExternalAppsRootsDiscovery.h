#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <vector>

/// Finds the folders on drives that applications were moved to.
namespace tarvik::ExternalAppsRootsDiscovery {

/// Our folder of applications on each volume that has one: those in the folder of volumes in byte order of their names,
/// then drives that are mounted elsewhere in byte order of their paths, and then those of `extra` that exist. A folder
/// that is named twice stands there twice. Blocks; any thread; never fails.
std::vector<fs::path> roots(const Host& host, const std::vector<fs::path>& extra);

}  // namespace tarvik::ExternalAppsRootsDiscovery
