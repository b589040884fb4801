#pragma once

#include "Copying/ByteProgress.h"
#include "Move/JobStatus.h"
#include "MovePlan/MoveJob.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// Runs a list of move jobs one after the other, for every front.
namespace tarvik::MoveRun {

/// Called on the calling thread. May be empty.
using JobStatusCallback = std::function<void(std::size_t job, const JobStatus&)>;
/// Called from a background thread too. May be empty.
using JobProgressCallback = std::function<void(std::size_t job, const ByteProgress&)>;

/// Runs every job in list order; a failed one never stops the rest. Before each job the drive that was meant when
/// it was planned must still stand at `drivePath`. Once it is cancelled, the job that is under way goes on to its end,
/// and no other one is begun: it stays pending. Every outcome is a status; nothing is thrown. Blocks until the last job
/// has ended.
void run(const Host& host, const std::vector<MoveJob>& jobs, const fs::path& drivePath, bool quitRunning,
         const JobStatusCallback& status, const JobProgressCallback& progress, const Cancellation& stopAfterItem = {});

/// Takes a progress report into a job: the total never shrinks, the fraction never exceeds 1. A report that comes late,
/// when the copy is over, must not bring it back: it changes nothing. @returns whether the report was taken.
bool applyProgress(MoveJob& job, const ByteProgress& progress);

struct Summary {
    bool hasFailures = false;
    /// "Moved 2 items." or "Completed with 1 failure."
    std::string text;
};
Summary summary(const std::vector<MoveJob>& jobs);

}  // namespace tarvik::MoveRun
