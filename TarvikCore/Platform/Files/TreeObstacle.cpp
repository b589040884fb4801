#include "Platform/Files/TreeObstacle.h"

#include "Platform/Files/FileFlags.h"
#include "Platform/Files/SystemCalls.h"
#include "Platform/Files/TreeWalk.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace tarvik {

namespace {

using Kind = TreeObstacle::Kind;

/// A folder on the way down, and what it means for its entries.
struct Holder {
    SystemCalls::ItemGuard guard;
    /// errno of taking something out of it, 0 when that is allowed.
    int sealedBy = 0;
};

bool isLocked(const SystemCalls::ItemGuard& item) {
    return (item.flags & FileFlags::locks) != 0;
}

struct Found {
    Kind kind;
    int errorNumber;
};

Holder holderOf(int parentHandle, const char* name, const SystemCalls::ItemGuard& guard) {
    const bool isOpen = ::faccessat(parentHandle, name, W_OK | X_OK, AT_EACCESS) == 0;
    return {guard, isOpen ? 0 : errno};
}

/// What a user without special rights may not take out of a folder with the sticky bit.
bool isForeign(const SystemCalls::ItemGuard& item, const SystemCalls::ItemGuard& folder, uid_t user) {
    return (folder.mode & S_ISVTX) != 0 && item.owner != user && folder.owner != user;
}

/// Looks at items one by one, each after the folder that holds it.
class Search {
public:
    explicit Search(bool countsSockets) : m_countsSockets(countsSockets) {}

    /// The obstacle that an entry of the folder `holder` is, and its own guard.
    std::optional<Found> obstacleAt(int folderHandle, const char* name, const Holder& holder,
                                    SystemCalls::ItemGuard& guard) const {
        guard = {};
        if (holder.sealedBy) return Found{Kind::sealedFolder, holder.sealedBy};
        if (const int error = SystemCalls::readGuard(folderHandle, name, guard)) {
            if (error == ENOENT) return std::nullopt;  // It has gone by itself.
            return Found{Kind::unreadable, error};
        }
        if (guard.isMountPoint) return Found{Kind::mountedVolume, EBUSY};
        if (isLocked(guard)) return Found{Kind::lockedItem, EPERM};
        if (!m_hasAllRights && isForeign(guard, holder.guard, m_user)) return Found{Kind::foreignItem, EPERM};
        if (m_countsSockets && S_ISSOCK(guard.mode)) return Found{Kind::socket, ENOTSUP};
        return std::nullopt;
    }

private:
    bool m_countsSockets;
    bool m_hasAllRights = SystemCalls::mayRemoveOthersItems();
    uid_t m_user = ::geteuid();
};

TreeObstacle obstacle(const Found& found, const fs::path& path) {
    return {found.kind, found.kind == Kind::sealedFolder ? path.parent_path() : path, found.errorNumber};
}

std::optional<TreeObstacle> find(const fs::path& item, bool countsSockets) {
    const Search search(countsSockets);
    std::vector<Holder> holders;
    // The folder itself where the path of the parent ends with a link.
    const fs::path parent = item.parent_path() / ".";
    SystemCalls::ItemGuard guard;
    if (SystemCalls::readGuard(AT_FDCWD, parent.c_str(), guard) != 0) return std::nullopt;  // Nothing is there.
    holders.push_back(holderOf(AT_FDCWD, parent.c_str(), guard));
    if (isLocked(guard)) holders.back().sealedBy = EPERM;

    if (const auto found = search.obstacleAt(AT_FDCWD, item.c_str(), holders.back(), guard))
        return obstacle(*found, item);
    if (!S_ISDIR(guard.mode)) return std::nullopt;
    holders.push_back(holderOf(AT_FDCWD, item.c_str(), guard));
    TreeWalk walk(item, {.order = TreeWalk::Order::any});
    if (walk.rootError()) return TreeObstacle{Kind::unreadable, item, walk.rootError()};
    while (walk.next()) {
        if (walk.event() == TreeWalk::Event::unreadable)
            return TreeObstacle{Kind::unreadable, item / walk.relativePath(), walk.errorNumber()};
        holders.resize(static_cast<std::size_t>(walk.depth()) + 2);
        if (const auto found = search.obstacleAt(walk.folderHandle(), walk.name(), holders.back(), guard))
            return obstacle(*found, item / walk.relativePath());
        if (walk.type() == Files::ItemType::folder)
            holders.push_back(holderOf(walk.folderHandle(), walk.name(), guard));
    }
    return std::nullopt;
}

}  // namespace

std::optional<TreeObstacle> TreeObstacle::toRemoval(const fs::path& item) {
    return find(item, false);
}

std::optional<TreeObstacle> TreeObstacle::toMove(const fs::path& item) {
    return find(item, true);
}

FileError TreeObstacle::error() const {
    switch (kind) {
        case Kind::mountedVolume:
            return FileError("remove the mounted volume", path, errorNumber);
        case Kind::sealedFolder:
            return FileError("remove what is in", path, errorNumber);
        case Kind::unreadable:
        case Kind::socket:
            return FileError("read", path, errorNumber);
        case Kind::lockedItem:
        case Kind::foreignItem:
            break;
    }
    return FileError("remove", path, errorNumber);
}

}  // namespace tarvik
