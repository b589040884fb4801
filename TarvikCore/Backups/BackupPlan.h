#pragma once

#include "Backups/BackupRecord.h"
#include "Backups/BackupService.h"
#include "Platform/Basics/Dialog.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"
#include "Platform/Storage/DriveInfo.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The decisions around one backup, for every front: what is refused, what is asked, what is told. Stricter than
/// `BackupService`, which sets aside what is in its way: here no copy ever takes another's place.
namespace tarvik::BackupPlan {

struct Plan {
    /// Standardized, each once.
    std::vector<fs::path> sources;
    DriveInfo drive;
    /// In bytes.
    std::int64_t bytesTotal = 0;
    /// A sentence for each source that the backup holds without something that no copy can hold.
    std::vector<std::string> leftOut = {};
    /// What `DriveScanner::markOf` told of the drive that is meant: empty when it was not there. Nothing for a backup
    /// on whatever drive stands at its place.
    std::optional<std::string> driveMark = std::nullopt;
};

/// The backup of `paths` on `drive`. Measures them, so it blocks; it changes nothing.
/// @throws Failure with the sentence for the user when it is refused: nothing there, a link, something in it that can't
/// be copied, not enough space, a folder that holds the backups, two things that would bear one name.
Plan plan(const Host& host, const std::vector<fs::path>& paths, const DriveInfo& drive);

/// Asks whether the backup shall be made. The first button is "Back Up".
Dialog confirm(const Plan& plan);

/// Makes the backup, in a folder of its own, whoever else makes one at the same time: where one of this second stands
/// already, the next second is waited for. A failed one that holds nothing leaves no folder. Nothing is written to a
/// drive that has taken the place of the one that is meant, nor to the disk below one that has gone. Blocks.
/// @throws Failure with the sentence for the user; see `BackupService::create`.
BackupRecord run(const Host& host, const Plan& plan, const BackupService::ProgressCallback& progress,
                 const BackupService::StopRequest& isAskedToStop = {});

/// What the user reads when it is done: "Backed up 2 items to /Volumes/T/TarvikBackups/20261115_174543".
std::string done(const Plan& plan, const BackupRecord& record);
/// What else the user must know: that not all files are in the copies.
std::optional<std::string> remark(const BackupRecord& record);

}  // namespace tarvik::BackupPlan
