#include "Copying/ItemLock.h"

#include "Platform/Files/Files.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace tarvik::ItemLock {

namespace {

FileDescriptor opened(const fs::path& item) {
    return FileDescriptor(::open(item.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
}

FileDescriptor locked(const fs::path& item, int operation) {
    FileDescriptor handle = opened(item);
    if (handle && ::flock(handle.get(), operation | LOCK_NB) != 0) handle.close();
    return handle;
}

}  // namespace

FileDescriptor hold(const fs::path& item) {
    return locked(item, LOCK_SH);
}

FileDescriptor holdAlone(const fs::path& item) {
    return locked(item, LOCK_EX);
}

bool isHeld(const fs::path& item) {
    const FileDescriptor handle = opened(item);
    return handle && ::flock(handle.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

bool isHeldAt(const fs::path& path, const FileDescriptor& held) {
    struct stat status {};
    return held && ::fstat(held.get(), &status) == 0 &&
           Files::isSameItem(Files::info(path), Files::infoOfStatus(status));
}

}  // namespace tarvik::ItemLock
