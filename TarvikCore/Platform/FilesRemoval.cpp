#include "Platform/Files.h"
#include "Platform/SystemCalls.h"
#include "Platform/TreeWalk.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace tarvik::Files {

namespace {

std::optional<FileError> mountObstacle(int folderHandle, const char* name, const fs::path& path) {
    if (!SystemCalls::isMountPoint(folderHandle, name)) return std::nullopt;
    return FileError("remove the mounted volume", path, EBUSY);
}

/// Counts only for a folder that holds something: an empty one is its parent's to remove.
std::optional<FileError> contentsObstacle(int folderHandle, const char* name, const fs::path& path) {
    if (::faccessat(folderHandle, name, W_OK | X_OK, AT_EACCESS) == 0) return std::nullopt;
    return FileError("remove what is in", path, errno);
}

}  // namespace

std::optional<FileError> removalObstacle(const fs::path& path) {
    const fs::path parent = path.parent_path();
    if (::faccessat(AT_FDCWD, parent.c_str(), W_OK | X_OK, AT_EACCESS) != 0)
        return FileError("remove what is in", parent, errno);
    if (!isFolder(path)) return std::nullopt;
    if (auto obstacle = mountObstacle(AT_FDCWD, path.c_str(), path)) return obstacle;
    TreeWalk walk(path, {.order = TreeWalk::Order::any});
    if (walk.rootError()) return FileError("read", path, walk.rootError());
    std::optional<FileError> unlessEmpty = contentsObstacle(AT_FDCWD, path.c_str(), path);
    int depthOfContents = 0;
    while (walk.next()) {
        const fs::path entry = path / walk.relativePath();
        if (walk.event() == TreeWalk::Event::unreadable) return FileError("read", entry, walk.errorNumber());
        if (unlessEmpty && walk.depth() == depthOfContents) return unlessEmpty;
        if (walk.type() != ItemType::folder) continue;
        if (auto obstacle = mountObstacle(walk.folderHandle(), walk.name(), entry)) return obstacle;
        unlessEmpty = contentsObstacle(walk.folderHandle(), walk.name(), entry);
        depthOfContents = walk.depth() + 1;
    }
    return std::nullopt;
}

void removeItem(const fs::path& path) {
    if (!isFolder(path)) {
        if (::unlink(path.c_str()) != 0) throw FileError("remove", path, errno);
        return;
    }
    if (auto obstacle = removalObstacle(path)) throw *std::move(obstacle);
    TreeWalk walk(path, {.order = TreeWalk::Order::any, .givesLeave = true});
    if (walk.rootError()) throw FileError("remove", path, walk.rootError());
    while (walk.next()) {
        if (walk.event() == TreeWalk::Event::unreadable)
            throw FileError("remove", path / walk.relativePath(), walk.errorNumber());
        const bool leavesFolder = walk.event() == TreeWalk::Event::leave;
        if (!leavesFolder && walk.type() == ItemType::folder) continue;
        if (::unlinkat(walk.folderHandle(), walk.name(), leavesFolder ? AT_REMOVEDIR : 0) != 0)
            throw FileError("remove", path / walk.relativePath(), errno);
    }
    if (::rmdir(path.c_str()) != 0) throw FileError("remove", path, errno);
}

}  // namespace tarvik::Files
