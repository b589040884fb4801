#pragma once

#include "Health/HealthIssue.h"
#include "Health/HealthSizes.h"

#include <set>
#include <string>
#include <vector>

/// Finds bundles on drives that nothing leads to any more.
namespace tarvik::OrphanedBundleDetector {

/// `linkedTargets` are the standardized paths that links lead to, wherever those stand; a bundle whose name a real
/// application bears is not told of here. Blocks; any thread; never fails.
std::vector<HealthIssue> detect(const std::vector<fs::path>& appsRoots, const std::set<fs::path>& linkedTargets,
                                const std::set<std::string>& realAppNames, const HealthSizes& sizes);

}  // namespace tarvik::OrphanedBundleDetector
