#pragma once

#include "Health/HealthIssue.h"
#include "Platform/Machine/Host.h"

#include <vector>

/// Finds links to drives in the folders that the system's sandbox manages: an application in it cannot read through
/// them.
namespace tarvik::SandboxExternalSymlinkDetector {

/// Looks at what stands directly in those folders. A link's text counts as it stands: one that is relative never
/// matches. Blocks; any thread; never fails.
std::vector<HealthIssue> detect(const Host& host);

}  // namespace tarvik::SandboxExternalSymlinkDetector
