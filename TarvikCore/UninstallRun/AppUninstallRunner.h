#pragma once

#include "Platform/Basics/Cancellation.h"
#include "Platform/Machine/Host.h"
#include "Uninstall/AppUninstallPlan.h"
#include "Uninstall/UninstallSelection.h"
#include "UninstallRun/AppUninstallReporter.h"
#include "UninstallRun/AppUninstallSession.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

/// Carries a plan out. Everything goes to the Trash, or beside its place where the Trash refuses it; nothing is ever
/// deleted, and one item that fails stops no other.
namespace tarvik::AppUninstallRunner {

/// Handles the chosen candidates in the plan's order, the bundle first, and writes the record of it. With
/// `selectedPaths` they are those whose `path` is among them, whatever else is known of them; without, those that
/// `AppUninstallPlanner::effectiveSelected` takes. What is not any more what the plan saw stays, and its line says so.
/// A rehearsal (`dryRun`) touches and writes nothing. A run that is stopped ends before its next item, with a record of
/// those that it has handled. Each uninstall gets a record of its own: where one of this second
/// stands already, the next second is waited for. Blocks; any thread.
/// @throws AppUninstallError for an application of the system, and while another run uninstalls the same one or puts it
/// back; FileError when no journal can be written: in all these cases nothing has been touched. Failure when the record
/// cannot be written, although the items have gone: the journal of the run then still tells of them.
AppUninstallSession run(const Host& host, const AppUninstallPlan& plan, const UninstallSelection& selection,
                        bool dryRun, const std::optional<std::set<std::string>>& selectedPaths,
                        const AppUninstallReporter& reporter, const Cancellation& stop = {});

/// The step for one thing that is no receipt: to the Trash, or into the folder `.TarvikTrash` beside it. A link goes
/// itself, never what it leads to. Does not look whether it is still what the plan saw.
AppUninstallSession::MovedItem handleFile(const Host& host, const UninstallCandidate& candidate, bool dryRun,
                                          const AppUninstallReporter& reporter);
/// The step for one package: forgets it by `pkgutil`, however long that takes, and adds it to `forgotten` when that
/// worked.
void handleReceipt(const Host& host, const std::string& identifier, bool dryRun, const AppUninstallReporter& reporter,
                   std::vector<std::string>& forgotten);

}  // namespace tarvik::AppUninstallRunner
