#pragma once

#include "Move/Dialog.h"
#include "Move/MoveJob.h"
#include "Platform/Cancellation.h"
#include "Platform/DriveInfo.h"
#include "Platform/Failure.h"
#include "Platform/Host.h"
#include "Platform/Path.h"

#include <string>

/// The decisions around the move of one folder, for every front: what is refused, what is asked, which job is run.
namespace tarvik::FolderMove {

/// The job that moves `folder` to `drive`. Measures the folder, so it blocks; it changes nothing.
/// @throws Failure with the sentence for the user when the move is refused: nothing there, no folder, not enough space,
/// or a move that could only do harm (the home folder, a folder of the system, a folder that holds the drive or lies on
/// it); and when it was cancelled.
MoveJob plan(const Host& host, const fs::path& folder, const DriveInfo& drive, const Cancellation& cancellation = {});

/// Asks whether the planned job shall be run. The first button is "Move".
Dialog confirmMove(const MoveJob& job, const DriveInfo& drive);

/// Asks whether what `link` leads to shall come back. The first button is "Move Back".
Dialog confirmRestore(const fs::path& link, const fs::path& target);

/// What the link at `path` leads to, for a restore. @throws Failure with the sentence for the user when nothing stands
/// at `path`, when it is no link, or when the drive with its target is not there.
fs::path restoreTarget(const Host& host, const fs::path& path);

/// What the user reads when the item of `link` is back: "Restored Music".
std::string restored(const fs::path& link);

/// What the user reads when nothing was done at their own wish.
Failure cancelled();

}  // namespace tarvik::FolderMove
