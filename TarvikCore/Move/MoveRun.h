#pragma once

#include "Move/ByteProgress.h"
#include "Move/JobStatus.h"
#include "Move/MoveJob.h"
#include "Platform/Host.h"
#include "Platform/Path.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// Runs a list of move jobs one after the other, for every front.
namespace tarvik::MoveRun {

using JobStatusCallback = std::function<void(std::size_t job, const JobStatus&)>;
/// Called from a background thread too.
using JobProgressCallback = std::function<void(std::size_t job, const ByteProgress&)>;

/// Runs every job in list order; a failed one never stops the rest. Before each job the drive that was meant when
/// it was planned must still stand at `drivePath`. Every outcome is a status; nothing is thrown. Blocks until the last
/// job has ended.
void run(const Host& host, const std::vector<MoveJob>& jobs, const fs::path& drivePath, bool quitRunning,
         const JobStatusCallback& status, const JobProgressCallback& progress);

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
