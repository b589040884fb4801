#include "xattr/Removal.h"

#include "Platform/Files/FileError.h"
#include "Platform/Files/TreeWalk.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <string_view>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <vector>

namespace tarvik::xattr::Removal {

namespace {

/// A Mac's attributes are those of this namespace; the others belong to the system.
constexpr std::string_view ofUsers = "user.";

bool fails(const fs::path& item, const std::string& reason) {
    std::fprintf(stderr, "xattr: %s: %s\n", item.c_str(), reason.c_str());
    return false;
}

std::vector<std::string> namesOf(const fs::path& item, bool isOfLink) {
    const auto list = isOfLink ? ::llistxattr : ::listxattr;
    std::string bytes;
    ssize_t length = 0;
    do {
        const ssize_t needed = list(item.c_str(), nullptr, 0);
        if (needed <= 0) return {};
        bytes.resize(static_cast<std::size_t>(needed));
        length = list(item.c_str(), bytes.data(), bytes.size());
    } while (length < 0 && errno == ERANGE);
    std::vector<std::string> names;
    for (std::size_t at = 0; length > 0 && at < static_cast<std::size_t>(length); at += names.back().size() + 1)
        names.emplace_back(bytes.c_str() + at);
    return names;
}

int removeOne(const fs::path& item, const std::string& name, bool isOfLink) {
    const int result =
        isOfLink ? ::lremovexattr(item.c_str(), name.c_str()) : ::removexattr(item.c_str(), name.c_str());
    return result == 0 ? 0 : errno;
}

bool clear(const fs::path& item, bool isOfLink) {
    bool isDone = true;
    for (const std::string& name : namesOf(item, isOfLink)) {
        if (!name.starts_with(ofUsers)) continue;
        // One that has gone meanwhile is gone.
        const int error = removeOne(item, name, isOfLink);
        if (error != 0 && error != ENODATA) isDone = fails(item, systemErrorText(error));
    }
    return isDone;
}

bool removeNamed(const fs::path& item, const std::string& name, const What& what) {
    const int error = removeOne(item, std::string(ofUsers) + name, what.isOfLinks);
    if (error == 0) return true;
    // Of a tree, most items do not have it.
    if (error == ENODATA && what.isRecursive) return true;
    return fails(item, error == ENODATA || error == EOPNOTSUPP ? "No such xattr: " + name : systemErrorText(error));
}

bool removeOf(const fs::path& item, const What& what) {
    struct stat status {};
    const int result = what.isOfLinks ? ::lstat(item.c_str(), &status) : ::stat(item.c_str(), &status);
    if (result != 0) {
        return fails(item, errno == ENOENT ? "No such file" : systemErrorText(errno));
    }
    return what.name ? removeNamed(item, *what.name, what) : clear(item, what.isOfLinks);
}

}  // namespace

bool remove(const fs::path& item, const What& what) {
    bool isDone = removeOf(item, what);
    struct stat status {};
    if (!what.isRecursive || ::stat(item.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return isDone;
    // A folder that is named by a link is gone through too, but no link below it.
    TreeWalk walk(fs::is_symlink(item) ? fs::canonical(item) : item, {});
    while (walk.next()) {
        const fs::path entry = item / walk.relativePath();
        if (walk.event() == TreeWalk::Event::unreadable) {
            isDone = fails(entry, systemErrorText(walk.errorNumber()));
        } else if (walk.type() != Files::ItemType::symbolicLink) {
            isDone = removeOf(entry, what) && isDone;
        } else {
            What ofLink = what;
            ofLink.isOfLinks = true;
            isDone = removeOf(entry, ofLink) && isDone;
        }
    }
    return isDone;
}

}  // namespace tarvik::xattr::Removal
