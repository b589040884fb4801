#pragma once

#include "Move/JobStatus.h"
#include "Platform/Basics/Path.h"
#include "Platform/Storage/DriveInfo.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tarvik {

/// One item that a run moves to a drive.
struct MoveJob {
    /// Makes the `id` itself.
    MoveJob(std::string jobLabel, fs::path from, fs::path to, JobStatus jobStatus, std::int64_t total,
            std::int64_t copied);

    /// A UUID, new for each job.
    std::string id;
    /// What the row shows.
    std::string label;
    /// The item to move.
    fs::path source;
    /// Where the item will stand, its own name included.
    fs::path destination;
    JobStatus status;
    /// The planned size in bytes; only grows during a run.
    std::int64_t bytesTotal = 0;
    std::int64_t bytesCopied = 0;
    /// What `DriveScanner::markOf` told of the drive that is meant: empty when it was not there. Nothing for a job that
    /// goes to whatever drive stands at its place.
    std::optional<std::string> driveMark;
    /// That drive as it was known then, by which it is told what it cannot hold.
    std::optional<DriveInfo> drive;
};

}  // namespace tarvik
