#pragma once

#include "Health/HealthIssue.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Machine/Host.h"

#include <vector>

/// Finds links among the data of applications that lead nowhere.
namespace tarvik::DanglingDataLinkDetector {

/// Looks at three levels below each of the user's data folders and opens none below. Links that programs keep to tell
/// each other that they run are no findings. Blocks; any thread; never fails. Once it is cancelled, the rest is
/// missing.
std::vector<HealthIssue> detect(const Host& host, const Cancellation& cancellation = {});

}  // namespace tarvik::DanglingDataLinkDetector
