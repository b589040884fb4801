#pragma once

#include "Platform/Basics/Path.h"

#include <cstdint>
#include <ctime>
#include <sys/stat.h>
#include <sys/types.h>

/// The few calls that POSIX leaves out and every system has in its own form. They give 0 or an errno value.
namespace tarvik::SystemCalls {

/// Renames within one volume; EEXIST when something stands at `to`, which is never replaced.
int renameExclusively(const fs::path& from, const fs::path& to);
/// Lets two items of one volume take each other's name in one step, so that neither name is ever free.
/// ENOTSUP when the file system cannot.
int exchangeNames(const fs::path& first, const fs::path& second);
/// Waits until everything written to the volume that holds `path` has reached the drive.
int flushVolume(const fs::path& path);
/// What stands between an item and its removal, beside the permissions of its folder.
struct ItemGuard {
    mode_t mode = 0;
    uid_t owner = 0;
    /// Something else is mounted there: a volume's top folder or, where the system has that, a file shown twice.
    bool isMountPoint = false;
    /// The flags of the file system, as a Mac numbers them: see "Platform/Files/FileFlags.h".
    std::uint32_t flags = 0;
};
/// The item itself, a link not followed.
int readGuard(int folderHandle, const char* name, ItemGuard& guard);
/// What an access control list says against the removal of the item: 0, or the errno of trying.
int deletionDenied(int folderHandle, const char* name);
/// Whether the calling thread may remove what belongs to others even from a folder with the sticky bit.
bool mayRemoveOthersItems();
/// Whether the item carries the system's hidden flag, whatever its name.
bool hasHiddenFlag(int folderHandle, const char* name);
/// When the item's content or its status last changed. POSIX.1-2008 names the field, but not every system does.
timespec statusChangeTime(const struct stat& status);
/// When its content last changed; for a folder, when an entry came or went.
timespec contentChangeTime(const struct stat& status);
/// What the item takes on the disk with all its forks, in bytes.
std::int64_t allocatedSize(int folderHandle, const char* name, const struct stat& status);

}  // namespace tarvik::SystemCalls
