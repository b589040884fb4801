#pragma once

#include "Health/HealthIssue.h"
#include "Platform/Machine/Host.h"

#include <vector>

/// Finds preference files that are links: the system's preference daemon replaces those by files of its own.
namespace tarvik::UnsafePrefsPlistDetector {

/// The preference folders that exist: the system's, the user's, and those of other homes.
std::vector<fs::path> scanRoots(const Host& host, const std::vector<fs::path>& extraHomes);

/// Looks at what stands directly in those folders, hidden or not. The target is the link's text as it stands, and
/// absent where that cannot be read. Blocks; any thread; never fails.
std::vector<HealthIssue> detect(const Host& host, const std::vector<fs::path>& extraHomes);

}  // namespace tarvik::UnsafePrefsPlistDetector
