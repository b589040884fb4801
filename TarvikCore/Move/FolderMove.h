#pragma once

#include "Move/Dialog.h"
#include "Move/MoveJob.h"
#include "Platform/DriveInfo.h"
#include "Platform/Host.h"
#include "Platform/Path.h"

#include <vector>

/// The decisions around the move of one folder, for every front: what is refused, what is asked, which job is run.
namespace tarvik::FolderMove {

/// The job that moves `folder` to `drive`. Measures the folder, so it blocks; it changes nothing.
/// @throws Failure with the sentence for the user when the move is refused: nothing there, no folder, not enough space,
/// or a move that could only do harm (the home folder, a folder of the system, a folder that holds the drive or lies on
/// it).
MoveJob plan(const Host& host, const fs::path& folder, const DriveInfo& drive);

/// Asks whether the planned job shall be run. The first button is "Move".
Dialog confirmMove(const MoveJob& job, const DriveInfo& drive);

/// Asks whether what `link` leads to shall come back. The first button is "Move Back".
Dialog confirmRestore(const fs::path& link, const fs::path& target);

/// What the link at `path` leads to, for a restore. @throws Failure with the sentence for the user when nothing stands
/// at `path`, when it is no link, or when the drive with its target is not there.
fs::path restoreTarget(const Host& host, const fs::path& path);

}  // namespace tarvik::FolderMove
