#pragma once

#include "MovePlan/MoveJob.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"
#include "Platform/Storage/DriveInfo.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Tells which moves, and which ways back, could only do harm. They are refused before anything is touched.
namespace tarvik::MoveRefusal {

/// Why `folder`, which must exist and be standardized, may not move to `drive`, as one sentence for the user; nothing
/// when it may. Looks at every item for what could not be copied or removed, so it blocks; any thread.
std::optional<std::string> ofFolder(const Host& host, const fs::path& folder, const DriveInfo& drive);

/// Why the item, with all that is in it, could not be moved to another volume and leave a link; nothing when that can't
/// be seen, or when it is not there. A status call for each entry; blocks; any thread.
std::optional<std::string> ofContents(const Host& host, const fs::path& item);

/// Why no copy of the item, which stays, would be whole: as `ofContents` without what concerns its removal. `leftOut`
/// gets a sentence for what the copy is made without all the same.
std::optional<std::string> ofBackup(const Host& host, const fs::path& item, std::vector<std::string>& leftOut);

/// Why what the link at `link` leads to, an existing `target`, may not come back in the link's place: a volume as a
/// whole, a folder of the system, a folder that holds the link, a place outside of the machine. Nothing when it may.
std::optional<std::string> ofRestore(const Host& host, const fs::path& link, const fs::path& target);

/// Why an item, whose path has its links resolved, is none of a rooted machine's: it stands neither on it nor on one of
/// its volumes.
std::optional<std::string> ofPlace(const Host& host, const fs::path& resolvedItem);

/// Why the jobs may not be run to the drive: it is read-only, or a folder on their way leads off it. Nothing for a
/// drive that is not there: the run itself finds that out. Blocks; any thread.
std::optional<std::string> ofDriveForJobs(const DriveInfo& drive, const std::vector<MoveJob>& jobs);

/// Nothing when `totalBytes` fit on the drive, also when they fill it; else the sentence for the user. Pure.
std::optional<std::string> ofSpace(std::int64_t totalBytes, const DriveInfo& drive);

/// Where a link, or a volume mounted on the way, leads what is written to `place`, which is below the drive's
/// `mountPath` and need not be there yet. Nothing when that stays on the drive. The mount path has its links resolved.
/// Blocks; any thread.
std::optional<fs::path> placeOffDrive(const fs::path& mountPath, const fs::path& place);

/// What is said of a link that was to be moved. Pure.
std::string alreadyALink(const fs::path& link, const fs::path& target);
/// What is said of an item that is no folder where only folders can be moved. Pure.
std::string notAFolder(const fs::path& item);

}  // namespace tarvik::MoveRefusal
