#include "Platform/Files/AppleDouble.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/SystemCalls.h"
#include "Platform/Files/TreeObstacle.h"
#include "Platform/Files/TreeWalk.h"

#include <cerrno>
#include <fcntl.h>
#include <new>
#include <string>
#include <unistd.h>
#include <utility>

namespace tarvik::Files {

namespace {

bool isMountPoint(const TreeWalk& walk) {
    SystemCalls::ItemGuard guard;
    return SystemCalls::readGuard(walk.folderHandle(), walk.name(), guard) == 0 && guard.isMountPoint;
}

/// Some volumes keep attributes in files beside their items, which the system removes with them.
bool hasGoneWithItem(const TreeWalk& walk, int error) {
    return error == ENOENT && AppleDouble::ownerName(walk.name());
}

void removeEntries(const fs::path& path, bool& hasBegun) {
    const auto requireNoError = [&](const char* verb, const fs::path& place, int error) {
        if (error && hasBegun) throw IncompleteRemoval(verb, place, error);
        if (error) throw FileError(verb, place, error);
    };
    TreeWalk walk(path, {.order = TreeWalk::Order::disk, .givesLeave = true});
    requireNoError("remove", path, walk.rootError());
    while (walk.next()) {
        const bool leavesFolder = walk.event() == TreeWalk::Event::leave;
        if (walk.event() == TreeWalk::Event::unreadable)
            requireNoError("remove", path / walk.relativePath(), walk.errorNumber());
        if (!leavesFolder && walk.type() == ItemType::folder) {
            // It may have been mounted a moment ago.
            if (isMountPoint(walk)) requireNoError("remove the mounted volume", path / walk.relativePath(), EBUSY);
            continue;
        }
        if (::unlinkat(walk.folderHandle(), walk.name(), leavesFolder ? AT_REMOVEDIR : 0) != 0 &&
            !hasGoneWithItem(walk, errno))
            requireNoError("remove", path / walk.relativePath(), errno);
        hasBegun = true;
    }
    if (::rmdir(path.c_str()) != 0) requireNoError("remove", path, errno);
}

void removeTree(const fs::path& path) {
    bool hasBegun = false;
    try {
        removeEntries(path, hasBegun);
    } catch (const std::bad_alloc&) {
        if (hasBegun) throw IncompleteRemoval("remove", path, ENOMEM);
        throw;
    }
}

/// With a slash at its end, the system would follow a link; and "." may stand for what one leads to.
fs::path itemItself(const fs::path& path) {
    std::string text = path.native();
    while (text.size() > 1 && text.back() == '/') text.pop_back();
    fs::path item(std::move(text));
    const fs::path name = item.filename();
    if (name.empty() || name == "." || name == "..") throw FileError("remove", path, EINVAL);
    return item;
}

}  // namespace

void removeItem(const fs::path& path, Obstacles obstacles) {
    const fs::path item = itemItself(path);
    if (!isFolder(item)) {
        if (::unlink(item.c_str()) != 0) throw FileError("remove", item, errno);
        return;
    }
    if (obstacles == Obstacles::lookedFor)
        if (const auto obstacle = TreeObstacle::toRemoval(item)) throw obstacle->error();
    removeTree(item);
}

void removeEmptyFolder(const fs::path& folder) {
    if (::rmdir(folder.c_str()) != 0) throw FileError("remove the folder", folder, errno);
}

}  // namespace tarvik::Files
