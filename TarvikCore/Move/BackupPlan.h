#pragma once

#include "Move/BackupRecord.h"
#include "Move/BackupService.h"
#include "Move/Dialog.h"
#include "Platform/DriveInfo.h"
#include "Platform/Host.h"
#include "Platform/Path.h"

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
};

/// The backup of `paths` on `drive`. Measures them, so it blocks; it changes nothing.
/// @throws Failure with the sentence for the user when it is refused: nothing there, a link, not enough space, a folder
/// that holds the backups, two things that would bear one name.
Plan plan(const Host& host, const std::vector<fs::path>& paths, const DriveInfo& drive);

/// Asks whether the backup shall be made. The first button is "Back Up".
Dialog confirm(const Plan& plan);

/// Makes the backup, in a folder of its own, whoever else makes one at the same time: where one of this second stands
/// already, the next second is waited for. A failed one that holds nothing leaves no folder. Blocks.
/// @throws Failure with the sentence for the user; see `BackupService::create`.
BackupRecord run(
    const Host& host, const Plan& plan, const BackupService::ProgressCallback& progress,
    const BackupService::StopRequest& isAskedToStop = [] { return false; });

/// What the user reads when it is done: "Backed up 2 items to /Volumes/T/TarvikBackups/20261115_174543".
std::string done(const Plan& plan, const BackupRecord& record);
/// What else the user must know: that not all files are in the copies.
std::optional<std::string> remark(const BackupRecord& record);

}  // namespace tarvik::BackupPlan
