#pragma once

#include "Dedupe/AppDedupePlan.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <optional>
#include <string>
#include <vector>

/// Finds launchers that stand beside the real application that they open, and removes them: only a launcher ever goes,
/// and only when a real, local application with the same identifier stays.
namespace tarvik::AppDedupeService {

/// Where duplicates are looked for: the machine's and the user's folder of applications.
std::vector<fs::path> applicationRoots(const Host& host);

/// What could go. Only what belongs to a group of the plan is measured. Blocks; any thread; never fails: what cannot be
/// read is no duplicate. A cancelled search ends soon, with less than there is.
AppDedupePlan plan(const Host& host, const std::vector<fs::path>& applicationRoots,
                   const Cancellation& cancellation = {});

/// Moves what the plan names to the Trash; without a plan, one is made now. A failure stops no other item; what has not
/// begun when it is cancelled fails too. Blocks; any thread; never fails.
///
/// Nothing is searched again, but a plan may be old: right before a launcher goes it must still be one, and the
/// application that it duplicates must still be there. A rehearsal touches nothing and looks at nothing.
AppDedupeRunResult run(const Host& host, const std::optional<AppDedupePlan>& plan, bool dryRun,
                       const Cancellation& cancellation = {});

/// How much speaks for keeping an item. Pure.
int score(const Host& host, const AppDedupeItem& item);
/// The one with the highest score, of several the first. There must be one. Pure.
const AppDedupeItem& preferredKeepItem(const Host& host, const std::vector<AppDedupeItem>& items);

}  // namespace tarvik::AppDedupeService
