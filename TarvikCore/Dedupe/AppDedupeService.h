#pragma once

#include "Dedupe/AppDedupePlan.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <optional>
#include <vector>

/// Finds launchers that stand beside the real application that they open, and removes them: only a launcher ever goes,
/// and only when a real, local application with the same identifier stays.
namespace tarvik::AppDedupeService {

/// Where duplicates are looked for: the machine's and the user's folder of applications.
std::vector<fs::path> applicationRoots(const Host& host);

/// Blocks; any thread; never fails: what cannot be read is no duplicate.
AppDedupePlan plan(const Host& host, const std::vector<fs::path>& applicationRoots,
                   const Cancellation& cancellation = {});

/// Moves what the plan names to the Trash; without a plan, one is made now. A failure stops no other item. Blocks; any
/// thread.
AppDedupeRunResult run(const Host& host, const std::optional<AppDedupePlan>& plan, bool dryRun);

}  // namespace tarvik::AppDedupeService
