#pragma once

#include "Backups/BackupRecord.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tarvik {
class DriveGuard;
}

/// Makes dated copies of things on a drive, in `TarvikBackups` at its root, and reads what was made. The originals are
/// only read. Everything here blocks; any thread.
///
/// A backup's folder is one with a complete record in it. The record comes last, when all copies have reached the
/// drive: what an interrupted backup leaves has none and counts for nothing.
namespace tarvik::BackupService {

/// Both in bytes, over all sources. Called from a background thread while a copy runs, and from the calling thread
/// between two copies: never twice at the same time. May be empty.
using ProgressCallback = std::function<void(std::int64_t copied, std::int64_t total)>;

/// Asked before each source is measured and before each is copied: true when none shall be begun any more. On the
/// calling thread. May be empty: then nothing stops it.
using StopRequest = std::function<bool()>;

/// Copies the sources in their order; one at which nothing exists is passed over, and of a link the link is copied.
/// Each copy is proved by `MoveVerifier`: what has stood in the original unchanged since before it was copied must be
/// in it. A copy whose name is taken sets aside what bears it, with the reason "backup-conflict"; see `BackupNames` for
/// the names. Backups that begin in the same second share one folder, and the later record stays.
/// @throws Failure when a folder cannot be made, a copy, its proof or a rename fails, the drive goes away, the record
/// cannot be written, or, with ECANCELED, it was stopped. What has been copied stays; half a copy, or one that lacks
/// something, is disposed of.
BackupRecord create(const Host& host, const std::vector<fs::path>& sources, const fs::path& drive,
                    const ProgressCallback& progress = {}, const StopRequest& isAskedToStop = {});

/// The same in a `folder` that stands in `TarvikBackups` on the drive already, which the caller has to itself. Nothing
/// is written to another volume than `drive`.
BackupRecord createIn(const Host& host, const fs::path& folder, const std::vector<fs::path>& sources,
                      const DriveGuard& drive, const ProgressCallback& progress, const StopRequest& isAskedToStop);

/// The backups on the drive, the newest first. What has no readable record is passed over. Never fails.
std::vector<BackupRecord> list(const Host& host, const fs::path& drive);

/// The names of the folders in which a backup was begun and not ended, or whose record is damaged. One that is being
/// made now is among them. Never fails.
std::vector<std::string> unfinished(const Host& host, const fs::path& drive);

/// The folder of a backup on `drive` that begins at that instant.
fs::path folderAt(const fs::path& drive, std::chrono::system_clock::time_point instant);

/// The items below `folder` that are no folders; links count and are not followed. What is no folder has none.
std::int64_t countFiles(const fs::path& folder);

}  // namespace tarvik::BackupService
