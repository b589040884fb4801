#include "hdiutil/VolumeWriter.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/FileError.h"
#include "hdiutil/ItemAttribute.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik::hdiutil {

namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

[[noreturn]] void fail(int errorNumber) {
    // What no volume holds: two items of one name, names that are none, items in what is no folder.
    constexpr std::array impossible = {EEXIST, EINVAL, ELOOP, ENOTDIR};
    const bool isDamaged = std::find(impossible.begin(), impossible.end(), errorNumber) != impossible.end();
    throw Failure("hdiutil", 1, isDamaged ? std::string("corrupt image") : systemErrorText(errorNumber));
}

void check(int result) {
    if (result != 0) fail(errno);
}

std::array<timespec, 2> times(const timespec& modified) {
    return {modified, modified};
}

std::string_view lastOf(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

/// A name that a folder can hold and that stays in it.
std::string checkedName(std::string_view name) {
    if (name.empty() || name == "." || name == ".." || name.find('\0') != std::string_view::npos) fail(EINVAL);
    return std::string(name);
}

}  // namespace

VolumeWriter::VolumeWriter(const fs::path& folder) : m_top(::open(folder.c_str(), folderFlags)) {
    if (!m_top) fail(errno);
    ::umask(0);  // The image's permissions are meant.
}

FileDescriptor VolumeWriter::openFolder(std::string_view path, bool makes) {
    FileDescriptor folder(::fcntl(m_top.get(), F_DUPFD_CLOEXEC, 0));
    if (!folder) fail(errno);
    while (!path.empty()) {
        const std::size_t slash = path.find('/');
        const std::string name = checkedName(path.substr(0, slash));
        path.remove_prefix(slash == std::string_view::npos ? path.size() : slash + 1);
        FileDescriptor next(::openat(folder.get(), name.c_str(), folderFlags));
        if (!next && errno == ENOENT && makes) {  // A volume may tell of a folder behind its contents.
            check(::mkdirat(folder.get(), name.c_str(), 0700));
            next = FileDescriptor(::openat(folder.get(), name.c_str(), folderFlags));
        }
        if (!next) fail(errno);
        folder = std::move(next);
    }
    return folder;
}

int VolumeWriter::parentOf(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    const std::string_view parent = slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
    if (!m_parent || parent != m_parentPath) {
        m_parent = openFolder(parent, true);
        m_parentPath = parent;
    }
    return m_parent.get();
}

void VolumeWriter::add(const Entry& entry, std::string_view path) {
    if (entry.type != Entry::Type::folder) return;  // Devices and sockets stay on the image.
    if (!path.empty()) {
        const int parent = parentOf(path);
        const std::string name = checkedName(lastOf(path));
        if (::mkdirat(parent, name.c_str(), 0700) != 0) {
            const int why = errno;
            struct stat status {};
            if (::fstatat(parent, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISDIR(status.st_mode))
                fail(why);
        }
    }
    m_folders.push_back({std::string(path), entry.permissions, entry.modified});
}

void VolumeWriter::open(const Entry& entry, std::string_view path) {
    const int parent = parentOf(path);
    const std::string name = checkedName(lastOf(path));
    m_file = FileDescriptor(
        ::openat(parent, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, entry.permissions));
    if (!m_file) fail(errno);
    m_fileTime = entry.modified;
}

void VolumeWriter::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(m_file.get(), bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) fail(errno);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void VolumeWriter::close() {
    check(::futimens(m_file.get(), times(m_fileTime).data()));
    m_file.close();
}

void VolumeWriter::link(const Entry& entry, std::string_view path, const std::string& target) {
    if (target.empty() || target.find('\0') != std::string::npos) fail(EINVAL);
    const int parent = parentOf(path);
    const std::string name = checkedName(lastOf(path));
    check(::symlinkat(target.c_str(), parent, name.c_str()));
    check(::utimensat(parent, name.c_str(), times(entry.modified).data(), AT_SYMLINK_NOFOLLOW));
}

void VolumeWriter::attribute(std::string_view path, const std::string& name, const std::string& value) {
    if (path.empty()) return;
    const std::string item = checkedName(lastOf(path));
    const FileDescriptor handle(::openat(parentOf(path), item.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!handle) return;  // A link, which keeps none.
    ItemAttribute::set(handle.get(), name, value);
}

void VolumeWriter::finish() {
    m_parent.close();
    // What lies deeper goes first: a folder that nobody may enter is closed behind its contents.
    std::stable_sort(m_folders.begin(), m_folders.end(), [](const Folder& one, const Folder& other) {
        return std::count(one.path.begin(), one.path.end(), '/') >
               std::count(other.path.begin(), other.path.end(), '/');
    });
    for (const Folder& folder : m_folders) {
        const FileDescriptor handle = openFolder(folder.path, false);
        check(::futimens(handle.get(), times(folder.modified).data()));
        check(::fchmod(handle.get(), folder.permissions));
    }
}

}  // namespace tarvik::hdiutil
