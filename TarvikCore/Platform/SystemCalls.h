#pragma once

#include "Platform/Path.h"

#include <cstdint>
#include <ctime>
#include <sys/stat.h>

/// The few calls that POSIX leaves out and every system has in its own form. They give 0 or an errno value.
namespace tarvik::SystemCalls {

/// Renames within one volume; EEXIST when something stands at `to`, which is never replaced.
int renameExclusively(const fs::path& from, const fs::path& to);
/// Lets two items of one volume take each other's name in one step, so that neither name is ever free.
/// ENOTSUP when the file system cannot.
int exchangeNames(const fs::path& first, const fs::path& second);
/// Waits until everything written to the volume that holds `path` has reached the drive.
int flushVolume(const fs::path& path);
/// Whether `name` in the open folder is the top folder of a mounted volume.
bool isMountPoint(int folderHandle, const char* name);
/// Whether the item carries the system's hidden flag, whatever its name.
bool hasHiddenFlag(int folderHandle, const char* name);
/// When the item's content or its status last changed. POSIX.1-2008 names the field, but not every system does.
timespec statusChangeTime(const struct stat& status);
/// When its content last changed; for a folder, when an entry came or went.
timespec contentChangeTime(const struct stat& status);
/// What the item takes on the disk with all its forks, in bytes.
std::int64_t allocatedSize(int folderHandle, const char* name, const struct stat& status);

}  // namespace tarvik::SystemCalls
