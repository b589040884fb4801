#include "Program/Operations.h"

#include "Program/AppleDouble.h"
#include "Program/Attributes.h"
#include "Program/Names.h"
#include "Program/Refusal.h"
#include "Program/Volume.h"

#include <algorithm>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <new>
#include <stdio.h>
#include <sys/file.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace tarvik::macvolume::Operations {

namespace {

Volume& volume() {
    return *static_cast<Volume*>(fuse_get_context()->private_data);
}

int folder() {
    return volume().backing().handle();
}

/// Runs a call, once the volume does not hang, and turns its outcome into what the kernel is told: its own number, or a
/// negative errno value.
template <typename Act>
int answered(const Act& act) noexcept {
    try {
        volume().habits().waitWhileHanging();
        if constexpr (std::is_void_v<decltype(act())>) {
            act();
            return 0;
        } else {
            return static_cast<int>(act());
        }
    } catch (const std::system_error& refusal) {
        return -refusal.code().value();
    } catch (const std::bad_alloc&) {
        return -ENOMEM;
    }
}

int handleOf(const fuse_file_info* file) {
    return static_cast<int>(file->fh);
}

/// What is made belongs to who makes it, not to this program.
void giveToCaller(const std::string& place) {
    const fuse_context* caller = fuse_get_context();
    if (::geteuid() == 0)
        requireCall(::fchownat(folder(), place.c_str(), caller->uid, caller->gid, AT_SYMLINK_NOFOLLOW));
}

void requireLinks() {
    if (volume().has(Habit::isExFat)) refuse(ENOTSUP);
}

struct stat statusOf(const std::string& place) {
    struct stat status {};
    requireCall(::fstatat(folder(), place.c_str(), &status, AT_SYMLINK_NOFOLLOW));
    return status;
}

/// Before an item goes: gives what has to be forgotten when it has gone.
struct Leaving {
    explicit Leaving(const std::string& place) : m_status(statusOf(place)) {}
    void hasGone() const {
        if (S_ISDIR(m_status.st_mode) || m_status.st_nlink <= 1) volume().forget(m_status);
    }

private:
    struct stat m_status;
};

int getattr(const char* path, struct stat* status, fuse_file_info* file) {
    return answered([&] {
        if (file)
            requireCall(::fstat(handleOf(file), status));
        else
            *status = statusOf(volume().found(path));
        *status = volume().shown(*status);
    });
}

int readlink(const char* path, char* text, std::size_t size) {
    return answered([&] {
        const ssize_t length = requireCall(::readlinkat(folder(), volume().found(path).c_str(), text, size - 1));
        text[length] = '\0';
    });
}

int mknod(const char* path, mode_t mode, dev_t device) {
    return answered([&] {
        if (!S_ISREG(mode)) requireLinks();  // It knows nothing but files and folders.
        const std::string place = volume().placeFor(path);
        volume().requireAddition(place);
        requireCall(::mknodat(folder(), place.c_str(), mode, device));
        giveToCaller(place);
    });
}

int mkdir(const char* path, mode_t mode) {
    return answered([&] {
        const std::string place = volume().placeFor(path);
        volume().requireAddition(place);
        requireCall(::mkdirat(folder(), place.c_str(), mode));
        giveToCaller(place);
    });
}

int unlink(const char* path) {
    return answered([&] {
        const std::string place = volume().found(path);
        volume().requireRemoval(place);
        const Leaving item(place);
        requireCall(::unlinkat(folder(), place.c_str(), 0));
        volume().journal().note("remove " + place);
        item.hasGone();
        if (volume().has(Habit::isExFat)) AppleDouble::removeFor(volume().backing(), place);
    });
}

int rmdir(const char* path) {
    return answered([&] {
        const std::string place = volume().found(path);
        volume().requireRemoval(place);
        const Leaving item(place);
        if (volume().has(Habit::isExFat)) AppleDouble::removeOrphans(volume().backing(), place);
        requireCall(::unlinkat(folder(), place.c_str(), AT_REMOVEDIR));
        item.hasGone();
        if (volume().has(Habit::isExFat)) AppleDouble::removeFor(volume().backing(), place);
    });
}

int symlink(const char* target, const char* path) {
    return answered([&] {
        requireLinks();
        const std::string place = volume().placeFor(path);
        volume().requireAddition(place);
        requireCall(::symlinkat(target, folder(), place.c_str()));
        giveToCaller(place);
    });
}

int link(const char* existing, const char* path) {
    return answered([&] {
        requireLinks();
        const std::string from = volume().found(existing);
        const std::string place = volume().placeFor(path);
        volume().requireChange(from);
        volume().requireAddition(place);
        requireCall(::linkat(folder(), from.c_str(), folder(), place.c_str(), 0));
    });
}

/// `path` is null for what has been removed.
void noteOf(const std::string& act, const char* path) {
    if (path) volume().journal().note(act + volume().found(path));
}

void exchangeNames(const std::string& one, const std::string& other) {
    for (const std::string& place : {one, other}) {
        volume().requireRemoval(place);
        volume().requireAddition(place);
    }
    requireCall(::renameat2(folder(), one.c_str(), folder(), other.c_str(), RENAME_EXCHANGE));
    for (const std::string& place : {one, other}) volume().journal().note("rename " + place);
}

int rename(const char* path, const char* goal, unsigned flags) {
    return answered([&] {
        if (flags != 0 && volume().has(Habit::isExFat)) refuse(EINVAL);
        const std::string from = volume().found(path);
        if ((flags & RENAME_EXCHANGE) != 0 && volume().has(Habit::exchangesNoNames)) refuse(EINVAL);
        if ((flags & RENAME_EXCHANGE) != 0) return exchangeNames(from, volume().found(goal));
        volume().requireRemoval(from);
        std::string to = volume().placeFor(goal);
        volume().requireAddition(to);
        std::optional<Leaving> replaced;
        if (to == from)
            to = volume().placeAsWritten(goal);  // Another way to write the same name.
        else if (volume().backing().status(to)) {
            volume().requireRemoval(to);
            replaced.emplace(to);
        }
        requireCall(::renameat2(folder(), from.c_str(), folder(), to.c_str(), flags));
        volume().journal().note("rename " + to);
        if (replaced) replaced->hasGone();
        if (volume().has(Habit::isExFat)) AppleDouble::renameFor(volume().backing(), from, to);
    });
}

int chmod(const char* path, mode_t mode, fuse_file_info* file) {
    return answered([&] {
        if (path) volume().requireChange(volume().found(path));
        if (volume().has(Habit::isExFat)) return;
        requireCall(file ? ::fchmod(handleOf(file), mode)
                         : ::fchmodat(folder(), volume().found(path).c_str(), mode, 0));
    });
}

int chown(const char* path, uid_t user, gid_t group, fuse_file_info* file) {
    return answered([&] {
        if (path) volume().requireChange(volume().found(path));
        if (volume().has(Habit::isExFat)) return;
        requireCall(file ? ::fchown(handleOf(file), user, group)
                         : ::fchownat(folder(), volume().found(path).c_str(), user, group, AT_SYMLINK_NOFOLLOW));
    });
}

int utimens(const char* path, const timespec times[2], fuse_file_info* file) {
    return answered([&] {
        if (path) volume().requireChange(volume().found(path));
        requireCall(file ? ::futimens(handleOf(file), times)
                         : ::utimensat(folder(), volume().found(path).c_str(), times, AT_SYMLINK_NOFOLLOW));
    });
}

int open(const char* path, fuse_file_info* file) {
    return answered([&] {
        const std::string place = volume().found(path);
        volume().requireReadable(place);
        if ((file->flags & O_ACCMODE) != O_RDONLY || (file->flags & O_TRUNC) != 0)
            volume().requireWriting(place, (file->flags & (O_APPEND | O_TRUNC)) == O_APPEND);
        file->fh = static_cast<std::uint64_t>(
            requireCall(::openat(folder(), place.c_str(), (file->flags & ~O_DIRECT) | O_NOFOLLOW | O_CLOEXEC)));
    });
}

int create(const char* path, mode_t mode, fuse_file_info* file) {
    return answered([&] {
        const std::string place = volume().placeFor(path);
        volume().requireAddition(place);
        const int handle = requireCall(
            ::openat(folder(), place.c_str(), (file->flags & ~O_DIRECT) | O_CREAT | O_NOFOLLOW | O_CLOEXEC, mode));
        file->fh = static_cast<std::uint64_t>(handle);
        giveToCaller(place);
    });
}

int truncate(const char* path, off_t size, fuse_file_info* file) {
    return answered([&] {
        if (file) {
            requireCall(::ftruncate(handleOf(file), size));
            return;
        }
        const std::string place = volume().found(path);
        volume().requireWriting(place, false);
        const FileDescriptor opened(::openat(folder(), place.c_str(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC));
        requireCall(opened.get());
        requireCall(::ftruncate(opened.get(), size));
    });
}

int read(const char*, char* buffer, std::size_t size, off_t offset, fuse_file_info* file) {
    return answered([&] { return requireCall(::pread(handleOf(file), buffer, size, offset)); });
}

int write(const char* path, const char* bytes, std::size_t size, off_t offset, fuse_file_info* file) {
    return answered([&] {
        noteOf("write ", path);
        return requireCall(::pwrite(handleOf(file), bytes, size, offset));
    });
}

/// Closing tells what went wrong with the bytes, so each one is passed on.
int flush(const char*, fuse_file_info* file) {
    return answered([&] { requireCall(::close(requireCall(::dup(handleOf(file))))); });
}

int release(const char*, fuse_file_info* file) {
    ::close(handleOf(file));
    return 0;
}

int fsync(const char* path, int onlyData, fuse_file_info* file) {
    return answered([&] {
        noteOf("sync ", path);
        requireCall(onlyData ? ::fdatasync(handleOf(file)) : ::fsync(handleOf(file)));
    });
}

/// Two names of one file are two files for the kernel, which would keep their locks apart.
int flock(const char*, fuse_file_info* file, int operation) {
    return answered([&] { requireCall(::flock(handleOf(file), operation)); });
}

int statfs(const char*, struct statvfs* status) {
    return answered([&] { *status = volume().capacity(); });
}

int opendir(const char* path, fuse_file_info*) {
    return answered([&] { volume().requireReadable(volume().found(path)); });
}

/// Everything at once: libfuse keeps it for as long as the folder is open. A listing that breaks off is given in two
/// parts, and the kernel asks for the second by a place in the list, which is none of the others.
int readdir(const char* path, void* listing, fuse_fill_dir_t fill, off_t offset, fuse_file_info*, fuse_readdir_flags) {
    return answered([&] {
        if (!path) return;  // It has been removed.
        const std::string place = volume().found(path);
        volume().requireReadable(place);
        if (offset != 0) refuse(EIO);
        auto entries = volume().backing().entries(place);
        const off_t next = volume().marksAt(place).breaksListing ? 1 : 0;
        if (next != 0) entries.resize(entries.size() / 2);
        for (const char* name : {".", ".."}) fill(listing, name, nullptr, next, {});
        for (const auto& entry : entries) {
            struct stat status {};
            status.st_ino = entry.inode;
            status.st_mode = static_cast<mode_t>(DTTOIF(entry.type));
            const std::string name = volume().has(Habit::decomposesNames) ? Names::decomposed(entry.name) : entry.name;
            fill(listing, name.c_str(), &status, next, {});
        }
    });
}

int fsyncdir(const char* path, int, fuse_file_info*) {
    return answered([&] {
        if (!path) return;
        noteOf("sync ", path);
        const FileDescriptor opened(
            ::openat(folder(), volume().found(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        requireCall(opened.get());
        requireCall(::fsync(opened.get()));
    });
}

/// Gives a value into a buffer as getxattr(2) does: only its size where the buffer has none.
int given(const std::string& value, char* buffer, std::size_t size) {
    if (size > 0 && value.size() > size) refuse(ERANGE);
    if (size > 0) std::memcpy(buffer, value.data(), value.size());
    return static_cast<int>(value.size());
}

int setxattr(const char* path, const char* name, const char* value, std::size_t size, int flags) {
    return answered([&] { Attributes::write(volume(), volume().found(path), name, {value, size}, flags); });
}

int getxattr(const char* path, const char* name, char* value, std::size_t size) {
    return answered([&] { return given(Attributes::read(volume(), volume().found(path), name), value, size); });
}

int listxattr(const char* path, char* names, std::size_t size) {
    return answered([&] { return given(Attributes::names(volume(), volume().found(path)), names, size); });
}

int removexattr(const char* path, const char* name) {
    return answered([&] { Attributes::remove(volume(), volume().found(path), name); });
}

/// Nothing is remembered between two calls: what the volume does may change at any moment.
void* init(fuse_conn_info* connection, fuse_config* settings) {
    connection->want &= ~static_cast<unsigned>(FUSE_CAP_READDIRPLUS);
    settings->use_ino = 1;
    settings->hard_remove = 1;
    settings->entry_timeout = settings->attr_timeout = settings->negative_timeout = 0;
    return fuse_get_context()->private_data;
}

}  // namespace

fuse_operations all() {
    fuse_operations operations{};
    operations.init = init;
    operations.getattr = getattr;
    operations.readlink = readlink;
    operations.mknod = mknod;
    operations.mkdir = mkdir;
    operations.unlink = unlink;
    operations.rmdir = rmdir;
    operations.symlink = symlink;
    operations.link = link;
    operations.rename = rename;
    operations.chmod = chmod;
    operations.chown = chown;
    operations.utimens = utimens;
    operations.open = open;
    operations.create = create;
    operations.truncate = truncate;
    operations.read = read;
    operations.write = write;
    operations.flush = flush;
    operations.release = release;
    operations.fsync = fsync;
    operations.flock = flock;
    operations.statfs = statfs;
    operations.opendir = opendir;
    operations.readdir = readdir;
    operations.fsyncdir = fsyncdir;
    operations.setxattr = setxattr;
    operations.getxattr = getxattr;
    operations.listxattr = listxattr;
    operations.removexattr = removexattr;
    return operations;
}

}  // namespace tarvik::macvolume::Operations
