#pragma once

#include "Platform/Basics/Cancellation.h"
#include "Platform/Machine/Host.h"
#include "Uninstall/AppUninstallPlan.h"
#include "Uninstall/RelatedFileScanner.h"
#include "Uninstall/UninstallSelection.h"

/// Turns an application into a plan that a person can read before anything happens. Changes nothing.
namespace tarvik::AppUninstallPlanner {

/// Blocks for as long as it takes to measure all candidates; any thread; never fails. An application of the system gets
/// a plan too, whose first warning says that it will not be removed.
AppUninstallPlan plan(const Host& host, const AppRecord& app, const UninstallSelection& selection,
                      RelatedFileScanner::Sizes sizes = RelatedFileScanner::Sizes::measured,
                      const Cancellation& cancellation = {});

/// Whether a run that was told no paths takes the candidate: a selection narrows what goes by default and never widens
/// it. Pure.
bool effectiveSelected(const UninstallCandidate& candidate, const AppRecord& app, const UninstallSelection& selection);

}  // namespace tarvik::AppUninstallPlanner
