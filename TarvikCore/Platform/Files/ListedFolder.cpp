#include "Platform/Files/ListedFolder.h"

#include "Platform/Files/SystemCalls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <utility>

namespace tarvik {

ListedFolder::ListedFolder(FileDescriptor handle) : m_handle(std::move(handle)) {
    m_listing.read(m_handle.get(), true);
    m_listing.sortByName();
    m_visible.reserve(m_listing.size());
    for (std::size_t index = 0; index < m_listing.size(); ++index)
        if (!SystemCalls::hasHiddenFlag(m_handle.get(), m_listing.name(index))) m_visible.push_back(index);
}

std::optional<ListedFolder> ListedFolder::at(const fs::path& folder) {
    return in(AT_FDCWD, folder.c_str());
}

std::optional<ListedFolder> ListedFolder::in(int folderHandle, const char* name) {
    FileDescriptor handle(::openat(folderHandle, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!handle) return std::nullopt;
    return ListedFolder(std::move(handle));
}

Files::ItemType ListedFolder::type(std::size_t index) const {
    const Files::ItemType listed = m_listing.type(m_visible[index]);
    if (listed != Files::ItemType::unknown) return listed;
    struct stat status {};
    if (::fstatat(m_handle.get(), name(index), &status, AT_SYMLINK_NOFOLLOW) != 0) return listed;
    return Files::typeOfMode(status.st_mode);
}

bool ListedFolder::isSameAs(const ListedFolder& other) const {
    struct stat own {};
    struct stat others {};
    return ::fstat(m_handle.get(), &own) == 0 && ::fstat(other.m_handle.get(), &others) == 0 &&
           own.st_dev == others.st_dev && own.st_ino == others.st_ino;
}

}  // namespace tarvik
