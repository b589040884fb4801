#pragma once

#include "Health/HealthIssue.h"
#include "Health/HealthSizes.h"
#include "Platform/Machine/Host.h"

#include <set>
#include <string>
#include <vector>

/// Finds bundles on drives that nothing leads to any more.
namespace tarvik::OrphanedBundleDetector {

/// `linkedTargets` are the standardized paths that links among the applications lead to; a bundle whose name a real
/// application bears is not told of here. Blocks; any thread; never fails.
std::vector<HealthIssue> detect(const std::vector<fs::path>& appsRoots, const std::set<fs::path>& linkedTargets,
                                const std::set<std::string>& realAppNames, const HealthSizes& sizes);

/// What moves have left on drives and links lead to, wherever those links stand: applications are moved from the user's
/// own folder and from folders among the applications, too.
std::set<fs::path> rememberedTargets(const Host& host);

}  // namespace tarvik::OrphanedBundleDetector
