#include "Platform/Files/FolderListing.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace tarvik {

int FolderListing::read(int folderHandle, bool skipsHidden) {
    m_names.clear();
    m_entries.clear();
    const int own = ::fcntl(folderHandle, F_DUPFD_CLOEXEC, 0);  // closedir closes it
    if (own < 0) return errno;
    DIR* folder = ::fdopendir(own);
    if (!folder) {
        const int error = errno;
        ::close(own);
        return error;
    }
    // The end of the list and a failure look alike but for errno, which anything between may have set.
    const auto next = [folder] {
        errno = 0;
        return ::readdir(folder);
    };
    while (const dirent* entry = next()) add(entry->d_name, entry->d_type, entry->d_ino, skipsHidden);
    const int error = errno;
    ::closedir(folder);
    return error;
}

}  // namespace tarvik
