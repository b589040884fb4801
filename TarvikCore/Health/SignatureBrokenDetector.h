#pragma once

#include "Discovery/ApplicationsRootScan.h"
#include "Health/HealthIssue.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Bundles/CodesignVerifier.h"
#include "Platform/Machine/Host.h"

#include <chrono>
#include <vector>

/// Finds moved applications whose signature does not hold any more.
namespace tarvik::SignatureBrokenDetector {

/// Three runs of the system's tools for each bundle that a link leads to, several bundles at a time and each tool for
/// no longer than `limit`; the findings come in the order of the links. Tools that hang are given up after a few
/// bundles. Once it is cancelled, the tools that run are ended at once and no further bundle is looked at. Blocks; any
/// thread; never fails.
std::vector<HealthIssue> detect(const Host& host, const std::vector<ApplicationsRootScan::Link>& symlinks,
                                const Cancellation& cancellation = {},
                                std::chrono::duration<double> limit = CodesignVerifier::toolTimeout);

}  // namespace tarvik::SignatureBrokenDetector
