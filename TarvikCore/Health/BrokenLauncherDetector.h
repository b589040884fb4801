#pragma once

#include "Health/HealthIssue.h"

#include <vector>

/// Finds launchers whose application has gone.
namespace tarvik::BrokenLauncherDetector {

/// Looks at the bundles directly in `applicationRoot`. Blocks; any thread; never fails.
std::vector<HealthIssue> detect(const fs::path& applicationRoot);

}  // namespace tarvik::BrokenLauncherDetector
