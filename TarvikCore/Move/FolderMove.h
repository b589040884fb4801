#pragma once

#include "Move/Dialog.h"
#include "Move/MoveJob.h"
#include "Platform/Cancellation.h"
#include "Platform/DriveInfo.h"
#include "Platform/Failure.h"
#include "Platform/Host.h"
#include "Platform/Path.h"

#include <string>
#include <vector>

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

/// The way back of what a link leads to.
struct WayBack {
    fs::path link;
    fs::path target;
    /// Whether a move has left the link: it leads to a folder of this program on a drive, or is remembered.
    bool isOwn = true;
    /// The links to data of an application, which stays where it is.
    std::vector<fs::path> data;

    bool operator==(const WayBack&) const = default;
};

/// The way back of what the link, or the launcher, at `path` leads to; for the launcher of an application in a moved
/// folder, that of the folder. Changes nothing. @throws Failure with the sentence for the user when nothing stands at
/// `path`, when it is no link or a relative one, when its target or the drive with it is not there, and when the way
/// back could only do harm.
WayBack planRestore(const Host& host, const fs::path& path);

/// The data of an application that is behind links of its own: it does not come back with the bundle. Blocks; empty
/// when anything else stands there.
std::vector<fs::path> dataLinksOf(const Host& host, const fs::path& bundle);

/// Whether a move has left the link at `link` to `target`, which may be gone. Blocks for a look at the drives and the
/// manifest.
bool isOwn(const Host& host, const fs::path& link, const fs::path& target);

/// Asks whether the item shall come back. The first button is "Move Back".
Dialog confirmRestore(const WayBack& wayBack);

/// What the user reads when the item is back: "Moved Music back to /home/Music."
std::string movedBack(const WayBack& wayBack);

/// What is said of the data that an application leaves behind; empty when there is none.
std::string dataStays(const WayBack& wayBack);

/// What is said of a link that no move has left.
std::string foreign(const fs::path& link);

/// What the user reads when the item of `link` is back: "Restored Music".
std::string restored(const fs::path& link);

/// What the user reads when nothing was done at their own wish.
Failure cancelled();

}  // namespace tarvik::FolderMove
