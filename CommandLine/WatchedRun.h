#pragma once

#include "CommandLine/Output/Records.h"
#include "MovePlan/MoveJob.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <vector>

namespace tarvik::CommandLine {

/// Runs the jobs and shows how far the one is that is under way. A signal ends a copy as any failure does, and what has
/// not been started then stays. Blocks; a failure is the status of its job. @returns the jobs as they ended.
std::vector<MoveJob> runWatched(const Host& host, const std::vector<MoveJob>& jobs, const fs::path& drivePath,
                                bool quitRunning, Format format);

}  // namespace tarvik::CommandLine
