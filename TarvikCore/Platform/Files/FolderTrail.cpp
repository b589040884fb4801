#include "Platform/Files/FolderTrail.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace tarvik {

namespace {

constexpr std::size_t openLevels = 48;
constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

}  // namespace

FolderTrail::FolderTrail(const fs::path& root) {
    m_levels.reserve(openLevels);
    m_levels.push_back({FileDescriptor(::open(root.c_str(), folderFlags)), 0, 0});
}

int FolderTrail::enter(const char* name) {
    FileDescriptor folder(::openat(handle(), name, folderFlags));
    if (!folder) return errno;
    m_levels.push_back({std::move(folder), 0, 0});
    closeLevelTooMany();
    return 0;
}

void FolderTrail::closeLevelTooMany() {
    if (m_levels.size() <= openLevels) return;
    Level& level = m_levels[m_levels.size() - 1 - openLevels];
    struct stat status {};
    if (!level.folder || ::fstat(level.folder.get(), &status) != 0) return;
    level.device = status.st_dev;
    level.inode = status.st_ino;
    level.folder.close();
}

int FolderTrail::leave() {
    const FileDescriptor below = std::move(m_levels.back().folder);
    m_levels.pop_back();
    Level& level = m_levels.back();
    if (level.folder) return 0;
    if (!below) return ESTALE;
    FileDescriptor folder(::openat(below.get(), "..", folderFlags));
    if (!folder) return errno;
    struct stat status {};
    if (::fstat(folder.get(), &status) != 0) return errno;
    if (status.st_dev != level.device || status.st_ino != level.inode) return ESTALE;
    level.folder = std::move(folder);
    return 0;
}

}  // namespace tarvik
