#include "ditto/Attributes.h"

#include "ditto/ItemError.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace tarvik::ditto::Attributes {

namespace {

constexpr const char* accessList = "system.posix_acl_access";
constexpr const char* defaultAccessList = "system.posix_acl_default";

// The system's own limits: no list of names and no value is larger.
constexpr std::size_t listLimit = std::size_t{64} * 1024;
constexpr std::size_t valueLimit = std::size_t{64} * 1024;

bool isUnsupported(int error) {
    return error == ENOTSUP || error == ENOSYS;
}

/// EINVAL stands for an owner who does not exist in this user's namespace.
bool isForbidden(int error) {
    return error == EPERM || error == EINVAL;
}

/// Only "user" attributes are the user's, and none of them may be lost; the others are the system's to give.
bool mayBePassedOver(std::string_view name, int error) {
    return !name.starts_with("user.") && (isUnsupported(error) || isForbidden(error) || error == EACCES);
}

/// Copies each attribute that `list` names by `get` and `set`, which are the system's calls with the item filled in.
/// @returns 0, or the errno of what failed
template <typename List, typename Get, typename Set>
int copyExtendedAttributes(const List& list, const Get& get, const Set& set) {
    // Kept between calls: nearly every file has none, and then nothing is touched.
    thread_local std::vector<char> names(listLimit);
    thread_local std::vector<char> value(valueLimit);

    const ssize_t length = list(names.data(), names.size());
    if (length < 0) return isUnsupported(errno) ? 0 : errno;
    for (const char *name = names.data(), *end = name + length; name < end; name += std::string_view(name).size() + 1) {
        const ssize_t size = get(name, value.data(), value.size());
        if (size < 0) {
            if (errno == ENODATA || mayBePassedOver(name, errno)) continue;
            return errno;
        }
        if (set(name, value.data(), static_cast<std::size_t>(size)) != 0 && !mayBePassedOver(name, errno)) return errno;
    }
    return 0;
}

int copyExtendedAttributes(int source, int destination) {
    return copyExtendedAttributes(
        [&](char* names, std::size_t size) { return ::flistxattr(source, names, size); },
        [&](const char* name, char* value, std::size_t size) { return ::fgetxattr(source, name, value, size); },
        [&](const char* name, const char* value, std::size_t size) {
            return ::fsetxattr(destination, name, value, size, 0);
        });
}

int copyExtendedAttributesByName(const Item& item) {
    // There are no calls that take a handle and a name; a path through the handle is the same.
    const auto source = fmt::format("/proc/self/fd/{}/{}", item.parent.source.get(), item.sourceName);
    const auto destination = fmt::format("/proc/self/fd/{}/{}", item.parent.destination.get(), item.destinationName);
    if (item.parent.folder->handsDownAccessList) ::lremovexattr(destination.c_str(), accessList);
    return copyExtendedAttributes(
        [&](char* names, std::size_t size) { return ::llistxattr(source.c_str(), names, size); },
        [&](const char* name, char* value, std::size_t size) { return ::lgetxattr(source.c_str(), name, value, size); },
        [&](const char* name, const char* value, std::size_t size) {
            return ::lsetxattr(destination.c_str(), name, value, size, 0);
        });
}

/// Gives the owner by `change`, which is the system's call with the item filled in.
/// @returns the permissions that may be given: an item that runs as its owner must not run as someone else, and only
/// the superuser's copies run as their owners at all.
template <typename Change>
mode_t giveOwner(const Change& change, const struct stat& wanted, const struct stat& present, const auto& fail) {
    const bool isSuperuser = ::geteuid() == 0;
    mode_t mode = wanted.st_mode & (isSuperuser ? mode_t{07777} : mode_t{01777});
    const bool otherUser = wanted.st_uid != present.st_uid;
    const bool otherGroup = wanted.st_gid != present.st_gid;
    if (!otherUser && !otherGroup) return mode;
    if (change(wanted.st_uid, wanted.st_gid) == 0) return mode;
    if (!isForbidden(errno)) fail(errno);
    if (otherUser) mode &= ~static_cast<mode_t>(S_ISUID);
    if (otherGroup && change(static_cast<uid_t>(-1), wanted.st_gid) != 0) {
        if (!isForbidden(errno)) fail(errno);
        mode &= ~static_cast<mode_t>(S_ISGID);
    }
    return mode;
}

/// @returns 0, or the errno of a failure. A file system that knows no such permissions is none.
template <typename Change>
int givePermissions(const Change& change, mode_t mode) {
    if (change(mode) == 0 || isUnsupported(errno)) return 0;
    if (errno != EPERM) return errno;
    return change(mode & 0777) == 0 || errno == EPERM ? 0 : errno;
}

std::array<struct timespec, 2> timesOf(const struct stat& status) {
    return {status.st_atim, status.st_mtim};
}

/// Everything for an open item. `path` gives the copy's path for a message.
template <typename Path>
void copyOpen(int source, int destination, const struct stat& status, const Path& path) {
    const auto fail = [&](int error) { throw ItemError(path(), error); };
    struct stat present {};
    if (::fstat(destination, &present) != 0) fail(errno);
    // The owner comes first, because a change of owner takes away rights that the others give.
    const mode_t mode =
        giveOwner([&](uid_t user, gid_t group) { return ::fchown(destination, user, group); }, status, present, fail);
    if (const int error = copyExtendedAttributes(source, destination)) fail(error);
    // An access list has changed the permissions by now, so they are given whatever they were.
    if (const int error = givePermissions([&](mode_t some) { return ::fchmod(destination, some); }, mode)) fail(error);
    if (::futimens(destination, timesOf(status).data()) != 0) fail(errno);
}

}  // namespace

void copy(int source, int destination, const struct stat& status, const Item& item) {
    if (item.parent.folder->handsDownAccessList) removeAccessLists(destination);
    copyOpen(source, destination, status, [&] { return destinationPath(item); });
}

void copy(const OpenFolder& folder) {
    copyOpen(folder.source.get(), folder.destination.get(), folder.folder->status,
             [&] { return destinationPath(*folder.folder); });
}

void copyByName(const Item& item, const struct stat& status) {
    const int folder = item.parent.destination.get();
    const char* name = item.destinationName;
    const auto fail = [&](int error) { throw ItemError(destinationPath(item), error); };

    struct stat present {};
    if (::fstatat(folder, name, &present, AT_SYMLINK_NOFOLLOW) != 0) fail(errno);
    const mode_t mode =
        giveOwner([&](uid_t user, gid_t group) { return ::fchownat(folder, name, user, group, AT_SYMLINK_NOFOLLOW); },
                  status, present, fail);
    if (const int error = copyExtendedAttributesByName(item)) fail(error);
    if (!S_ISLNK(status.st_mode)) {
        const auto change = [&](mode_t some) { return ::fchmodat(folder, name, some, AT_SYMLINK_NOFOLLOW); };
        if (const int error = givePermissions(change, mode)) fail(error);
    }
    if (::utimensat(folder, name, timesOf(status).data(), AT_SYMLINK_NOFOLLOW) != 0 && !isUnsupported(errno))
        fail(errno);
}

bool handsDownAccessList(int folder) {
    return ::fgetxattr(folder, defaultAccessList, nullptr, 0) > 0;
}

void removeAccessLists(int item) {
    // Either may be absent, which is as good.
    ::fremovexattr(item, accessList);
    ::fremovexattr(item, defaultAccessList);
}

}  // namespace tarvik::ditto::Attributes
