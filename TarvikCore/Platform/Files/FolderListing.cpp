#include "Platform/Files/FolderListing.h"

#include <algorithm>
#include <cstring>
#include <dirent.h>

namespace tarvik {

namespace {

Files::ItemType typeOfListing(unsigned char type) {
    switch (type) {
        case DT_REG:
            return Files::ItemType::regular;
        case DT_DIR:
            return Files::ItemType::folder;
        case DT_LNK:
            return Files::ItemType::symbolicLink;
        case DT_SOCK:
            return Files::ItemType::socket;
        case DT_FIFO:
            return Files::ItemType::pipe;
        case DT_BLK:
            return Files::ItemType::blockDevice;
        case DT_CHR:
            return Files::ItemType::characterDevice;
        default:
            return Files::ItemType::unknown;
    }
}

}  // namespace

void FolderListing::add(const char* name, unsigned char type, std::uint64_t inode, bool skipsHidden) {
    if (name[0] == '.' && (skipsHidden || name[1] == '\0' || (name[1] == '.' && name[2] == '\0'))) return;
    m_entries.push_back({inode, static_cast<std::uint32_t>(m_names.size()), typeOfListing(type)});
    m_names.insert(m_names.end(), name, name + std::strlen(name) + 1);
}

void FolderListing::sortByName() {
    std::sort(m_entries.begin(), m_entries.end(), [this](const Entry& left, const Entry& right) {
        return std::strcmp(m_names.data() + left.nameOffset, m_names.data() + right.nameOffset) < 0;
    });
}

void FolderListing::sortByInode() {
    std::sort(m_entries.begin(), m_entries.end(),
              [](const Entry& left, const Entry& right) { return left.inode < right.inode; });
}

}  // namespace tarvik
