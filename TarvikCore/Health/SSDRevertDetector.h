#pragma once

#include "Health/HealthIssue.h"
#include "Health/HealthSizes.h"
#include "Platform/Machine/Host.h"

#include <set>
#include <string>
#include <vector>

/// Finds, from the drives, what an updater has put back onto the internal disk: a bundle on a drive whose name a real
/// application bears too.
namespace tarvik::SSDRevertDetector {

struct Result {
    std::vector<HealthIssue> issues;
    /// The standardized paths among the applications that this detector has judged, launchers included.
    std::set<fs::path> handledSources;
};

/// `appsRoots` are folders on drives, `realAppNames` the names of the real bundles in application folders. Blocks; any
/// thread; never fails.
Result detect(const Host& host, const std::vector<fs::path>& appsRoots, const std::set<std::string>& realAppNames,
              const HealthSizes& sizes);

}  // namespace tarvik::SSDRevertDetector
