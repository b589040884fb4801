#include "ditto/SelfCopy.h"

#include "Platform/Files/FileDescriptor.h"
#include "ditto/ItemError.h"

#include <fmt/format.h>

#include <cerrno>
#include <fcntl.h>
#include <utility>

namespace tarvik::ditto::SelfCopy {

namespace {

bool isSame(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

FileDescriptor openFolder(int from, const char* path) {
    return FileDescriptor(::openat(from, path, O_PATH | O_DIRECTORY | O_CLOEXEC));
}

/// The folder nearest to `path`, from the path itself upwards, that exists already.
FileDescriptor nearestFolder(fs::path path) {
    for (;;) {
        if (auto folder = openFolder(AT_FDCWD, path.c_str())) return folder;
        if (!path.has_relative_path()) return {};
        path = path.has_parent_path() ? path.parent_path() : ".";
        if (path == ".") return openFolder(AT_FDCWD, ".");
    }
}

bool liesInside(FileDescriptor folder, const struct stat& outer) {
    struct stat last {};
    for (struct stat status{}; folder && ::fstat(folder.get(), &status) == 0;) {
        if (isSame(status, outer)) return true;
        if (isSame(status, last)) return false;  // Above the root there is only the root again.
        last = status;
        folder = openFolder(folder.get(), "..");
    }
    return false;
}

}  // namespace

void refuse(const fs::path& source, const struct stat& status, const fs::path& destination) {
    struct stat present {};
    if (::lstat(destination.c_str(), &present) == 0 && isSame(present, status))
        throw ItemError(source, EINVAL, "It would be copied onto itself");
    if (S_ISDIR(status.st_mode) && liesInside(nearestFolder(destination), status))
        throw ItemError(destination, EINVAL, fmt::format("It would be copied into itself as {}", source.native()));
}

}  // namespace tarvik::ditto::SelfCopy
