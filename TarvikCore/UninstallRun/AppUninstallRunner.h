#pragma once

#include "Platform/Machine/Host.h"
#include "Uninstall/AppUninstallPlan.h"
#include "Uninstall/UninstallSelection.h"
#include "UninstallRun/AppUninstallReporter.h"
#include "UninstallRun/AppUninstallSession.h"

#include <optional>
#include <set>
#include <string>

/// Carries a plan out. Everything goes to the Trash, or beside its place where the Trash refuses it; nothing is ever
/// deleted, and one item that fails stops no other.
namespace tarvik::AppUninstallRunner {

/// Handles the chosen candidates in the plan's order, the bundle first, and writes the record of it. With
/// `selectedPaths` they are those whose `path` is among them, whatever else is known of them; without, those that
/// `AppUninstallPlanner::effectiveSelected` takes. What is not any more what the plan saw stays, and its line says so.
/// A rehearsal (`dryRun`) touches and writes nothing. Blocks; any thread.
/// @throws AppUninstallError for an application of the system, and then nothing has been touched; FileError when the
/// record cannot be written, although the items have gone: the journal of the run then still tells of them.
AppUninstallSession run(const Host& host, const AppUninstallPlan& plan, const UninstallSelection& selection,
                        bool dryRun, const std::optional<std::set<std::string>>& selectedPaths,
                        const AppUninstallReporter& reporter);

}  // namespace tarvik::AppUninstallRunner
