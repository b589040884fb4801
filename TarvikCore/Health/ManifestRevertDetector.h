#pragma once

#include "Health/HealthIssue.h"
#include "Health/HealthSizes.h"
#include "Platform/Machine/Host.h"

#include <set>
#include <vector>

/// Finds, from the records of moves, what stands on the internal disk again where a link should be.
namespace tarvik::ManifestRevertDetector {

/// Passes over recorded paths that are among the links or were judged before; the paths are compared as they are
/// recorded. Blocks; any thread; never fails.
std::vector<HealthIssue> detect(const Host& host, const std::set<fs::path>& symlinkLocations,
                                const std::set<fs::path>& alreadyReverted, const HealthSizes& sizes);

}  // namespace tarvik::ManifestRevertDetector
