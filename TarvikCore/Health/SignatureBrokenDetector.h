#pragma once

#include "Discovery/ApplicationsRootScan.h"
#include "Health/HealthIssue.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Machine/Host.h"

#include <vector>

/// Finds moved applications whose signature does not hold any more.
namespace tarvik::SignatureBrokenDetector {

/// Three runs of the system's tools for each bundle that a link leads to, several bundles at a time; the findings come
/// in the order of the links. Once it is cancelled, no further bundle is looked at. Blocks; any thread; never fails.
std::vector<HealthIssue> detect(const Host& host, const std::vector<ApplicationsRootScan::Link>& symlinks,
                                const Cancellation& cancellation = {});

}  // namespace tarvik::SignatureBrokenDetector
