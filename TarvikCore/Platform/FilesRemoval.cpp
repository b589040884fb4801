#include "Platform/Files.h"
#include "Platform/SystemCalls.h"
#include "Platform/TreeWalk.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace tarvik::Files {

namespace {

using Kind = RemovalObstacle::Kind;

/// The obstacle that a folder itself is, before one looks at what is in it.
struct FolderObstacles {
    bool isMountPoint = false;
    /// Counts only for a folder that holds something: an empty one is its parent's to remove.
    int sealedBy = 0;
};

FolderObstacles obstaclesOf(int parentHandle, const char* name) {
    const bool isOpen = ::faccessat(parentHandle, name, W_OK | X_OK, AT_EACCESS) == 0;
    const int sealedBy = isOpen ? 0 : errno;
    return {SystemCalls::isMountPoint(parentHandle, name), sealedBy};
}

}  // namespace

FileError RemovalObstacle::error() const {
    switch (kind) {
        case Kind::mountedVolume:
            return FileError("remove the mounted volume", path, errorNumber);
        case Kind::sealedFolder:
            return FileError("remove what is in", path, errorNumber);
        case Kind::unreadable:
            break;
    }
    return FileError("read", path, errorNumber);
}

std::optional<RemovalObstacle> removalObstacle(const fs::path& path) {
    const fs::path parent = path.parent_path();
    if (::faccessat(AT_FDCWD, parent.c_str(), W_OK | X_OK, AT_EACCESS) != 0)
        return RemovalObstacle{Kind::sealedFolder, parent, errno};
    if (!isFolder(path)) return std::nullopt;
    FolderObstacles folder = obstaclesOf(AT_FDCWD, path.c_str());
    if (folder.isMountPoint) return RemovalObstacle{Kind::mountedVolume, path, EBUSY};
    TreeWalk walk(path, {.order = TreeWalk::Order::any});
    if (walk.rootError()) return RemovalObstacle{Kind::unreadable, path, walk.rootError()};
    int depthOfContents = 0;
    while (walk.next()) {
        if (walk.event() == TreeWalk::Event::unreadable)
            return RemovalObstacle{Kind::unreadable, path / walk.relativePath(), walk.errorNumber()};
        if (folder.sealedBy && walk.depth() == depthOfContents)
            return RemovalObstacle{Kind::sealedFolder, (path / walk.relativePath()).parent_path(), folder.sealedBy};
        if (walk.type() != ItemType::folder) continue;
        folder = obstaclesOf(walk.folderHandle(), walk.name());
        if (folder.isMountPoint) return RemovalObstacle{Kind::mountedVolume, path / walk.relativePath(), EBUSY};
        depthOfContents = walk.depth() + 1;
    }
    return std::nullopt;
}

void removeItem(const fs::path& path) {
    if (!isFolder(path)) {
        if (::unlink(path.c_str()) != 0) throw FileError("remove", path, errno);
        return;
    }
    if (const auto obstacle = removalObstacle(path)) throw obstacle->error();
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
