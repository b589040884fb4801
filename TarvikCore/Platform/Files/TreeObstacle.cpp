#include "Platform/Files/TreeObstacle.h"

#include "Platform/Files/FileFlags.h"
#include "Platform/Files/SystemCalls.h"
#include "Platform/Files/TreeWalk.h"
#include "Platform/Files/UncopiedItems.h"

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

struct Found {
    Kind kind;
    int errorNumber;
};

Holder holderOf(int parentHandle, const char* name, const SystemCalls::ItemGuard& guard) {
    if (FileFlags::sealContents(guard.flags)) return {guard, EPERM};
    const bool isOpen = ::faccessat(parentHandle, name, W_OK | X_OK, AT_EACCESS) == 0;
    return {guard, isOpen ? 0 : errno};
}

/// What a user without special rights may not take out of a folder with the sticky bit.
bool isForeign(const SystemCalls::ItemGuard& item, const SystemCalls::ItemGuard& folder, uid_t user) {
    return (folder.mode & S_ISVTX) != 0 && item.owner != user && folder.owner != user;
}

enum class Act { removal, move, wayBack, backup };

/// Of the obstacles to a backup those that the copy tool passes over.
bool isLeftOut(Kind kind) {
    return kind == Kind::pipe || kind == Kind::socket || kind == Kind::serverFile;
}

/// Looks at items one by one, each after the folder that holds it.
class Search {
public:
    explicit Search(Act act) : m_act(act) {}

    /// The obstacle that an entry of the folder `holder` is, and its own guard.
    std::optional<Found> obstacleAt(int folderHandle, const char* name, const Holder& holder,
                                    SystemCalls::ItemGuard& guard) const {
        guard = {};
        if (takesAway() && holder.sealedBy) return Found{Kind::sealedFolder, holder.sealedBy};
        if (const int error = SystemCalls::readGuard(folderHandle, name, guard)) {
            if (error == ENOENT) return std::nullopt;  // It has gone by itself.
            return Found{Kind::unreadable, error};
        }
        if (takesAway())
            if (const auto found = unremovable(folderHandle, name, holder, guard)) return found;
        return m_act == Act::removal ? std::nullopt : uncopied(folderHandle, name, guard);
    }

private:
    bool takesAway() const { return m_act != Act::backup; }

    std::optional<Found> unremovable(int folderHandle, const char* name, const Holder& holder,
                                     const SystemCalls::ItemGuard& guard) const {
        if (guard.isMountPoint) return Found{Kind::mountedVolume, EBUSY};
        if (FileFlags::guardItem(guard.flags)) return Found{Kind::lockedItem, EPERM};
        if (!m_hasAllRights && isForeign(guard, holder.guard, m_user)) return Found{Kind::foreignItem, EPERM};
        if (const int error = SystemCalls::deletionDenied(folderHandle, name)) return Found{Kind::deniedItem, error};
        return std::nullopt;
    }

    /// What the copy tool would leave out, fail at, or only bring after a long time.
    std::optional<Found> uncopied(int folderHandle, const char* name, const SystemCalls::ItemGuard& guard) const {
        if (UncopiedItems::isByName(name)) return Found{Kind::serverFile, ENOTSUP};
        if ((guard.flags & FileFlags::dataless) != 0) return Found{Kind::cloudFile, ENOTSUP};
        switch (Files::typeOfMode(guard.mode)) {
            case Files::ItemType::regular:
                if (const int error = SystemCalls::readingDenied(folderHandle, name, guard))
                    return Found{Kind::unreadable, error};
                break;
            case Files::ItemType::pipe:
                return Found{Kind::pipe, ENOTSUP};
            case Files::ItemType::socket:
                if (m_act != Act::wayBack) return Found{Kind::socket, ENOTSUP};
                break;
            case Files::ItemType::blockDevice:
            case Files::ItemType::characterDevice:
                if (m_act != Act::wayBack && m_user != 0) return Found{Kind::device, ENOTSUP};
                break;
            default:
                break;
        }
        return std::nullopt;
    }

    Act m_act;
    bool m_hasAllRights = SystemCalls::mayRemoveOthersItems();
    uid_t m_user = ::geteuid();
};

/// `guard` is the item's own, as far as that was read.
TreeObstacle obstacle(const Found& found, const fs::path& path, const Holder& holder,
                      const SystemCalls::ItemGuard& guard) {
    if (found.kind == Kind::sealedFolder)
        return {found.kind, path.parent_path(), found.errorNumber, holder.guard.flags, holder.guard.owner};
    if (found.kind == Kind::unreadable) return {found.kind, path, found.errorNumber};
    if (found.kind == Kind::deniedItem)
        return {found.kind, path, found.errorNumber, guard.flags, guard.owner, AccessList::culprit(path)};
    return {found.kind, path, found.errorNumber, guard.flags, guard.owner};
}

/// `leaveOut` is called for what is left out of a backup.
std::optional<TreeObstacle> find(const fs::path& item, Act act, const TreeObstacle::LeaveOut& leaveOut = {}) {
    const Search search(act);
    std::vector<Holder> holders;
    // The folder itself where the path of the parent ends with a link.
    const fs::path parent = item.parent_path() / ".";
    SystemCalls::ItemGuard guard;
    if (SystemCalls::readGuard(AT_FDCWD, parent.c_str(), guard) != 0) return std::nullopt;  // Nothing is there.
    holders.push_back(holderOf(AT_FDCWD, parent.c_str(), guard));

    if (const auto found = search.obstacleAt(AT_FDCWD, item.c_str(), holders.back(), guard))
        return obstacle(*found, item, holders.back(), guard);
    if (!S_ISDIR(guard.mode)) return std::nullopt;
    holders.push_back(holderOf(AT_FDCWD, item.c_str(), guard));
    TreeWalk walk(item, {.order = TreeWalk::Order::any});
    if (walk.rootError()) return TreeObstacle{Kind::unreadable, item, walk.rootError()};
    while (walk.next()) {
        if (walk.event() == TreeWalk::Event::unreadable)
            return TreeObstacle{Kind::unreadable, item / walk.relativePath(), walk.errorNumber()};
        holders.resize(static_cast<std::size_t>(walk.depth()) + 2);
        if (const auto found = search.obstacleAt(walk.folderHandle(), walk.name(), holders.back(), guard)) {
            const auto here = obstacle(*found, item / walk.relativePath(), holders.back(), guard);
            if (!leaveOut || !isLeftOut(found->kind)) return here;
            leaveOut(here);
            walk.skipContents();
            continue;
        }
        if (walk.type() == Files::ItemType::folder)
            holders.push_back(holderOf(walk.folderHandle(), walk.name(), guard));
    }
    return std::nullopt;
}

}  // namespace

std::optional<TreeObstacle> TreeObstacle::toRemoval(const fs::path& item) {
    return find(item, Act::removal);
}

std::optional<TreeObstacle> TreeObstacle::toMove(const fs::path& item) {
    return find(item, Act::move);
}

std::optional<TreeObstacle> TreeObstacle::toReturn(const fs::path& item) {
    return find(item, Act::wayBack);
}

std::optional<TreeObstacle> TreeObstacle::toBackup(const fs::path& item, const LeaveOut& leaveOut) {
    return find(item, Act::backup, leaveOut);
}

FileError TreeObstacle::error() const {
    switch (kind) {
        case Kind::mountedVolume:
            return FileError("remove the mounted volume", path, errorNumber);
        case Kind::sealedFolder:
            return FileError("remove what is in", path, errorNumber);
        case Kind::unreadable:
        case Kind::socket:
        case Kind::pipe:
        case Kind::device:
        case Kind::serverFile:
        case Kind::cloudFile:
            return FileError("read", path, errorNumber);
        case Kind::lockedItem:
        case Kind::foreignItem:
        case Kind::deniedItem:
            break;
    }
    return FileError("remove", path, errorNumber);
}

}  // namespace tarvik
