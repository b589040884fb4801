#include "Platform/Files/FolderListing.h"

#include <cerrno>
#include <dirent.h>

namespace tarvik {

// getdents64 lists through the walk's own handle: readdir would need a second one and three more calls a folder.
int FolderListing::read(int folderHandle, bool skipsHidden) {
    m_names.clear();
    m_entries.clear();
    alignas(dirent64) char buffer[64 * 1024];
    while (true) {
        const ssize_t length = ::getdents64(folderHandle, buffer, sizeof buffer);
        if (length < 0) return errno;
        if (length == 0) return 0;
        for (ssize_t offset = 0; offset < length;) {
            const auto* entry = reinterpret_cast<const dirent64*>(buffer + offset);
            add(entry->d_name, entry->d_type, entry->d_ino, skipsHidden);
            offset += entry->d_reclen;
        }
    }
}

}  // namespace tarvik
