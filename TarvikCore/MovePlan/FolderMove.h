#pragma once

#include "MovePlan/MoveJob.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Dialog.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"
#include "Platform/Storage/DriveInfo.h"

#include <string>

/// The decisions around the move of one folder, for every front: what is refused, what is asked, which job is run.
namespace tarvik::FolderMove {

/// The job that moves `folder` to `drive`. Measures the folder, so it blocks; it changes nothing.
/// @throws Failure with the sentence for the user when the move is refused: nothing there, no folder, not enough space,
/// or a move that could only do harm (the home folder, a folder of the system, a folder that holds the drive or lies on
/// it); when `folder` may mean two places; and when it was cancelled.
MoveJob plan(const Host& host, const fs::path& folder, const DriveInfo& drive, const Cancellation& cancellation = {});

/// Asks whether the planned job shall be run. The first button is "Move".
Dialog confirmMove(const MoveJob& job, const DriveInfo& drive);

/// What the user reads when the job is done: "Moved Music to /Volumes/Backup/ExternalTarvik/Folders/Music."
std::string moved(const MoveJob& job);

/// What the user reads when nothing was done at their own wish.
Failure cancelled();

}  // namespace tarvik::FolderMove
