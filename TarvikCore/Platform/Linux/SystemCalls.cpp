#include "Platform/Files/SystemCalls.h"

#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/FileFlags.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <linux/capability.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tarvik::SystemCalls {

namespace {

int resultOf(int callResult) {
    return callResult == 0 ? 0 : errno;
}

/// What can be told of a mount point where the kernel is too old to name it: bind mounts of one volume stay unseen.
bool isOnAnotherDevice(int folderHandle, const char* name) {
    const FileDescriptor item(::openat(folderHandle, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat own {};
    struct stat above {};
    if (!item || ::fstat(item.get(), &own) != 0 || ::fstatat(item.get(), "..", &above, 0) != 0) return false;
    return own.st_dev != above.st_dev;
}

/// The two attributes that keep an item where it is, see chattr(1). Only the administrator sets them.
std::uint32_t flagsOf(std::uint64_t attributes) {
    return ((attributes & STATX_ATTR_IMMUTABLE) != 0 ? FileFlags::systemImmutable : 0U) |
           ((attributes & STATX_ATTR_APPEND) != 0 ? FileFlags::systemAppend : 0U);
}

}  // namespace

int renameExclusively(const fs::path& from, const fs::path& to) {
    const int result = resultOf(::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE));
    if (result != EINVAL && result != ENOSYS) return result;
    // The file system knows no such flag (some FUSE drivers): the check and the rename are two steps then.
    struct stat status {};
    if (::lstat(to.c_str(), &status) == 0) return EEXIST;
    return resultOf(::rename(from.c_str(), to.c_str()));
}

int exchangeNames(const fs::path& first, const fs::path& second) {
    const int result = resultOf(::renameat2(AT_FDCWD, first.c_str(), AT_FDCWD, second.c_str(), RENAME_EXCHANGE));
    return result == EINVAL || result == ENOSYS ? ENOTSUP : result;
}

int flushFile(int handle) {
    return resultOf(::fsync(handle));
}

int flushVolume(const fs::path& path) {
    const FileDescriptor item(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!item) return errno;
    return resultOf(::syncfs(item.get()));
}

int readGuard(int folderHandle, const char* name, ItemGuard& guard) {
    struct statx status {};
    if (::statx(folderHandle, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, STATX_TYPE | STATX_MODE | STATX_UID,
                &status) != 0)
        return errno;
    const bool isMountKnown = (status.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT) != 0;
    guard = {.mode = status.stx_mode,
             .owner = status.stx_uid,
             .isMountPoint = isMountKnown ? (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0
                                          : S_ISDIR(status.stx_mode) && isOnAnotherDevice(folderHandle, name),
             .flags = flagsOf(status.stx_attributes)};
    return 0;
}

int deletionDenied(int, const char*) {
    return 0;  // Access control lists deny no removal here: the folder's permissions alone decide, see acl(5).
}

int readingDenied(int folderHandle, const char* name, const ItemGuard& guard) {
    // The owner's right stands in the mode, whatever list there is: acl(5). So most files need no call.
    if (guard.owner == ::geteuid() && (guard.mode & S_IRUSR) != 0) return 0;
    if (::faccessat(folderHandle, name, R_OK, AT_EACCESS) == 0) return 0;
    return errno == EACCES || errno == EPERM ? errno : 0;
}

bool leadsThroughNoLink(const fs::path& path) {
    open_how how{};
    how.flags = O_PATH | O_CLOEXEC;
    how.resolve = RESOLVE_NO_SYMLINKS;
    // openat2(2) has no wrapper in the C library.
    const FileDescriptor item(static_cast<int>(::syscall(SYS_openat2, AT_FDCWD, path.c_str(), &how, sizeof how)));
    return static_cast<bool>(item);
}

bool foldsNames(const fs::path&) {
    return false;  // It may differ from folder to folder, and no call tells of all file systems.
}

bool mayRemoveOthersItems() {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct rights[_LINUX_CAPABILITY_U32S_3]{};
    return ::syscall(SYS_capget, &header, rights) == 0 && (rights[0].effective & (1U << CAP_FOWNER)) != 0;
}

bool hasHiddenFlag(int, const char*) {
    return false;
}

timespec statusChangeTime(const struct stat& status) {
    return status.st_ctim;
}

timespec contentChangeTime(const struct stat& status) {
    return status.st_mtim;
}

std::int64_t allocatedSize(int, const char*, const struct stat& status) {
    return static_cast<std::int64_t>(status.st_blocks) *
           512;  // The unit of st_blocks on Linux, whatever the block size.
}

}  // namespace tarvik::SystemCalls
