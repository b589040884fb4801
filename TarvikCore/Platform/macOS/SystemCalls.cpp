#include "Platform/Files/SystemCalls.h"

#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/FileFlags.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <sys/attr.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik::SystemCalls {

namespace {

static_assert(FileFlags::userImmutable == UF_IMMUTABLE && FileFlags::userAppend == UF_APPEND);
static_assert(FileFlags::systemImmutable == SF_IMMUTABLE && FileFlags::systemAppend == SF_APPEND);
static_assert(FileFlags::restricted == SF_RESTRICTED && FileFlags::noUnlink == SF_NOUNLINK);
static_assert(FileFlags::dataless == SF_DATALESS);

int resultOf(int callResult) {
    return callResult == 0 ? 0 : errno;
}

bool isOnAnotherDevice(int folderHandle, const char* name) {
    const FileDescriptor item(::openat(folderHandle, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat own {};
    struct stat above {};
    if (!item || ::fstat(item.get(), &own) != 0 || ::fstatat(item.get(), "..", &above, 0) != 0) return false;
    return own.st_dev != above.st_dev;
}

}  // namespace

int renameExclusively(const fs::path& from, const fs::path& to) {
    const int result = resultOf(::renamex_np(from.c_str(), to.c_str(), RENAME_EXCL));
    if (result != ENOTSUP) return result;
    // FAT volumes know no such flag: the check and the rename are two steps then.
    struct stat status {};
    if (::lstat(to.c_str(), &status) == 0) return EEXIST;
    return resultOf(::rename(from.c_str(), to.c_str()));
}

int exchangeNames(const fs::path& first, const fs::path& second) {
    return resultOf(::renamex_np(first.c_str(), second.c_str(), RENAME_SWAP));
}

/// fsync(2) of macOS hands the data to the drive, which may keep it in its cache; F_FULLFSYNC of fcntl(2) empties that
/// too. Not every volume knows it: network volumes refuse.
int flushFile(int handle) {
    const int error = resultOf(::fcntl(handle, F_FULLFSYNC));
    // A volume that knows no such thing does what it knows; an error of the disk is told only once, so it is not asked
    // again.
    return error == ENOTSUP || error == ENOTTY || error == EINVAL ? resultOf(::fsync(handle)) : error;
}

int flushVolume(const fs::path& path) {
    struct statfs volume {};
    if (::statfs(path.c_str(), &volume) != 0) return errno;
    const int result = resultOf(::sync_volume_np(volume.f_mntonname, SYNC_VOLUME_FULLSYNC | SYNC_VOLUME_WAIT));
    if (result != ENOTSUP) return result;
    // The volume knows no emptying of the drive's cache: as for a single file, the most that it knows is done.
    return resultOf(::sync_volume_np(volume.f_mntonname, SYNC_VOLUME_WAIT));
}

int readGuard(int folderHandle, const char* name, ItemGuard& guard) {
    struct stat status {};
    if (::fstatat(folderHandle, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return errno;
    guard = {.mode = status.st_mode,
             .owner = status.st_uid,
             .isMountPoint = S_ISDIR(status.st_mode) && isOnAnotherDevice(folderHandle, name),
             .flags = status.st_flags};
    return 0;
}

int deletionDenied(int folderHandle, const char* name) {
    // _DELETE_OK is one of the extended questions of <sys/unistd.h>. It weighs the lists of the item and of its folder.
    if (::faccessat(folderHandle, name, _DELETE_OK, AT_EACCESS | AT_SYMLINK_NOFOLLOW) == 0) return 0;
    return errno == EACCES || errno == EPERM ? errno : 0;
}

int readingDenied(int folderHandle, const char* name, const ItemGuard&) {
    if (::faccessat(folderHandle, name, R_OK, AT_EACCESS | AT_SYMLINK_NOFOLLOW) == 0) return 0;
    return errno == EACCES || errno == EPERM ? errno : 0;
}

bool leadsThroughNoLink(const fs::path&) {
    return false;  // realpath(3) also gives the spelling that listings give.
}

bool foldsNames(const fs::path& path) {
    return ::pathconf(path.c_str(), _PC_CASE_SENSITIVE) == 0;
}

bool mayRemoveOthersItems() {
    return ::geteuid() == 0;
}

bool hasHiddenFlag(int folderHandle, const char* name) {
    struct stat status {};
    return ::fstatat(folderHandle, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && (status.st_flags & UF_HIDDEN) != 0;
}

timespec statusChangeTime(const struct stat& status) {
    return status.st_ctimespec;
}

timespec contentChangeTime(const struct stat& status) {
    return status.st_mtimespec;
}

std::int64_t allocatedSize(int folderHandle, const char* name, const struct stat& status) {
    struct attrlist wanted {};
    wanted.bitmapcount = ATTR_BIT_MAP_COUNT;
    wanted.fileattr = ATTR_FILE_ALLOCSIZE;  // all forks
    struct {
        std::uint32_t length;
        off_t allocated;
    } __attribute__((packed, aligned(4))) answer{};
    if (::getattrlistat(folderHandle, name, &wanted, &answer, sizeof answer, FSOPT_NOFOLLOW) == 0)
        return answer.allocated;
    return static_cast<std::int64_t>(status.st_blocks) * 512;
}

}  // namespace tarvik::SystemCalls
