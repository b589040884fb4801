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
/// Waits until what was written to an open file, or to the list of an open folder, has reached the drive itself, and
/// not only its cache.
int flushFile(int handle);
/// Waits until everything written to the volume that holds `path` has reached the drive.
int flushVolume(const fs::path& path);
/// What stands between an item and its removal, beside the permissions of its folder.
struct ItemGuard {
    mode_t mode = 0;
    uid_t owner = 0;
    /// Something else is mounted there: a volume's top folder or, where the system has that, a file shown twice.
    bool isMountPoint = false;
    /// What the file system keeps beside the permissions: see `FileFlags`.
    std::uint32_t flags = 0;
};
/// The item itself, a link not followed.
int readGuard(int folderHandle, const char* name, ItemGuard& guard);
/// 0, or the errno value of removing or renaming the item, a link not followed, where the permissions of its folder
/// allow that: an access control list may deny it all the same. 0 too when the system has no way to ask.
int deletionDenied(int folderHandle, const char* name);
/// 0, or the errno value of reading the content of a regular file whose guard was read: its permissions or an access
/// control list deny it. 0 too when it has gone.
int readingDenied(int folderHandle, const char* name, const ItemGuard& guard);
/// Whether it is certain that no link is met on the way to `path`, which is standardized, nor at it, and that the text
/// of it is the one that resolving it would give. Far faster than that, where the system knows such a question.
bool leadsThroughNoLink(const fs::path& path);
/// Whether it is certain that the volume of `path` takes names that differ in case alone for one.
bool foldsNames(const fs::path& path);
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
