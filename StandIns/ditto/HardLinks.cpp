#include "ditto/HardLinks.h"

#include "ditto/FreshItem.h"
#include "ditto/ItemError.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace tarvik::ditto {

namespace {

/// exFAT and its like have no hard links, and some volumes have few: a second copy holds the same bytes.
bool knowsNoLinks(int error) {
    return error == EPERM || error == EOPNOTSUPP || error == EMLINK;
}

/// Whether the item `name` of the open folder stands where the copy of `item` is to be made.
bool isCopy(int folder, const char* name, const Item& item) {
    struct stat copy {};
    struct stat present {};
    return ::fstatat(folder, name, &copy, AT_SYMLINK_NOFOLLOW) == 0 &&
           ::fstatat(item.parent.destination.get(), item.destinationName, &present, AT_SYMLINK_NOFOLLOW) == 0 &&
           copy.st_dev == present.st_dev && copy.st_ino == present.st_ino;
}

}  // namespace

bool HardLinks::linkOrMake(const Item& item, const struct stat& status, const std::function<void()>& make) {
    const std::lock_guard lock(m_mutex);
    const auto found = m_copies.find({status.st_dev, status.st_ino});
    if (found == m_copies.end()) {
        make();
        m_copies[{status.st_dev, status.st_ino}] = {item.parent.folder, item.destinationName, status.st_nlink - 1};
        return false;
    }
    Copy& copy = found->second;
    const int folder = handleOf(copy.folder);
    bool isLinked = true;
    try {
        makeFresh(item, [&] {
            const int made =
                ::linkat(folder, copy.name.c_str(), item.parent.destination.get(), item.destinationName, 0);
            const int error = errno;
            // Two names of the file may be one at the destination: to make way would remove the only one.
            if (made != 0 && error == EEXIST && isCopy(folder, copy.name.c_str(), item)) return 0;
            errno = error;
            return made;
        });
    } catch (const ItemError& error) {
        if (!knowsNoLinks(error.code())) throw;
        make();
        isLinked = false;
    }
    if (--copy.namesToCome == 0) m_copies.erase(found);
    return isLinked;
}

int HardLinks::handleOf(const std::shared_ptr<Folder>& folder) {
    if (folder == m_top->folder) return m_top->destination.get();
    if (folder == m_lastFolder) return m_lastHandle.get();

    // Name by name, since the whole path may be longer than the system takes at once.
    std::vector<const Folder*> way;
    for (const Folder* step = folder.get(); step != m_top->folder.get(); step = step->parent.get()) way.push_back(step);
    m_lastFolder = nullptr;
    FileDescriptor handle;
    for (auto step = way.rbegin(); step != way.rend(); ++step) {
        const int parent = handle ? handle.get() : m_top->destination.get();
        handle = FileDescriptor(
            ::openat(parent, (*step)->destinationName.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (!handle) throw ItemError(destinationPath(**step), errno);
    }
    m_lastHandle = std::move(handle);
    m_lastFolder = folder;
    return m_lastHandle.get();
}

}  // namespace tarvik::ditto
