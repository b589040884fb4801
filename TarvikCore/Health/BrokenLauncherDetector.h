#pragma once

#include "Health/HealthIssue.h"
#include "Platform/Machine/Host.h"

#include <vector>

/// Finds launchers whose application has gone.
namespace tarvik::BrokenLauncherDetector {

/// Looks at the bundles directly in `applicationRoot`. Blocks; any thread; never fails.
std::vector<HealthIssue> detect(const Host& host, const fs::path& applicationRoot);

}  // namespace tarvik::BrokenLauncherDetector
