#include "ditto/Folder.h"

#include "ditto/Attributes.h"
#include "ditto/ItemError.h"

#include <fmt/format.h>

#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <utility>
#include <vector>

namespace tarvik::ditto {

namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

fs::path joined(const Folder* folder, std::string Folder::*name, std::string_view last) {
    std::vector<std::string_view> names;
    if (!last.empty()) names.push_back(last);
    for (; folder; folder = folder->parent.get()) names.push_back(folder->*name);
    // A dot stands for the folder itself: it only leads on.
    std::erase_if(names, [&](const std::string_view& some) { return some == "." && names.size() > 1; });
    std::string path;
    for (auto next = names.rbegin(); next != names.rend(); ++next) {
        if (!path.empty() && !path.ends_with('/')) path += '/';
        path += *next;
    }
    return path;
}

bool isSame(const struct stat& status, dev_t device, ino_t inode) {
    return status.st_dev == device && status.st_ino == inode;
}

/// Merging into the folder that is being read, or into one above it, would change it while it is read.
void refuseToMergeIntoSource(const Folder& copy) {
    for (const Folder* source = &copy; source->parent; source = source->parent.get()) {
        if (isSame(source->status, copy.destinationDevice, copy.destinationInode))
            throw ItemError(destinationPath(copy), EINVAL,
                            fmt::format("It would be copied into itself as {}", sourcePath(*source).native()));
    }
}

/// True when the copy's folder was made now, false when it stood there: from before, or as the copy of another folder
/// whose name the destination takes for the same.
bool makeFolder(const Item& item) {
    if (::mkdirat(item.parent.destination.get(), item.destinationName, 0700) == 0) return true;
    if (errno != EEXIST) throw ItemError(destinationPath(item), errno);
    return false;
}

void openCopy(const Item& item, OpenFolder& open) {
    Folder& folder = *open.folder;
    folder.isNew = makeFolder(item);
    open.destination = FileDescriptor(::openat(item.parent.destination.get(), item.destinationName, folderFlags));
    if (!open.destination) {
        const bool isOther = errno == ENOTDIR || errno == ELOOP;
        throw ItemError(destinationPath(item), isOther ? EEXIST : errno);
    }
    struct stat status {};
    if (::fstat(open.destination.get(), &status) != 0) throw ItemError(destinationPath(item), errno);
    folder.destinationDevice = status.st_dev;
    folder.destinationInode = status.st_ino;
    if (folder.isNew) {
        if (item.parent.folder->handsDownAccessList) Attributes::removeAccessLists(open.destination.get());
        return;
    }
    refuseToMergeIntoSource(folder);
    folder.handsDownAccessList = Attributes::handsDownAccessList(open.destination.get());
}

/// `path` gives the path for a message: it is long where many folders lie above, so it is made only then.
FileDescriptor openAbove(const FileDescriptor& inside, dev_t device, ino_t inode,
                         const std::function<fs::path()>& path) {
    FileDescriptor opened(openForReading(inside.get(), "..", folderFlags));
    struct stat status {};
    if (!opened || ::fstat(opened.get(), &status) != 0) throw ItemError(path(), errno);
    if (!isSame(status, device, inode)) throw ItemError(path(), EAGAIN, "It was moved while it was being copied");
    return opened;
}

}  // namespace

// A long chain of parents is let go of one by one, since each would otherwise end inside the one before.
Folder::~Folder() {
    auto next = std::move(parent);
    while (next && next.use_count() == 1) next = std::exchange(next->parent, nullptr);
}

fs::path sourcePath(const Folder& folder) {
    return joined(&folder, &Folder::sourceName, {});
}
fs::path destinationPath(const Folder& folder) {
    return joined(&folder, &Folder::destinationName, {});
}
fs::path sourcePath(const Item& item) {
    return joined(item.parent.folder.get(), &Folder::sourceName, item.sourceName);
}
fs::path destinationPath(const Item& item) {
    return joined(item.parent.folder.get(), &Folder::destinationName, item.destinationName);
}

std::shared_ptr<OpenFolder> openFolder(const Item& item) {
    auto open = std::make_shared<OpenFolder>();
    open->folder = std::make_shared<Folder>();
    Folder& folder = *open->folder;
    folder.parent = item.parent.folder;
    folder.sourceName = item.sourceName;
    folder.destinationName = item.destinationName;

    open->source = FileDescriptor(openForReading(item.parent.source.get(), item.sourceName, folderFlags));
    if (!open->source || ::fstat(open->source.get(), &folder.status) != 0)
        failToRead([&] { return sourcePath(item); }, errno);
    openCopy(item, *open);
    return open;
}

std::shared_ptr<OpenFolder> openParent(const OpenFolder& inside, const std::shared_ptr<Folder>& folder) {
    auto open = std::make_shared<OpenFolder>();
    open->folder = folder;
    open->source =
        openAbove(inside.source, folder->status.st_dev, folder->status.st_ino, [&] { return sourcePath(*folder); });
    open->destination = openAbove(inside.destination, folder->destinationDevice, folder->destinationInode,
                                  [&] { return destinationPath(*folder); });
    return open;
}

int openForReading(int folder, const char* name, int flags) {
    const int descriptor = ::openat(folder, name, flags | O_NOATIME);
    // Only the owner may ask for no trace.
    return descriptor >= 0 || errno != EPERM ? descriptor : ::openat(folder, name, flags);
}

}  // namespace tarvik::ditto
