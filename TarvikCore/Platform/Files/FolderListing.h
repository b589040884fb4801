#pragma once

#include "Platform/Files/Files.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarvik {

/// The names in one folder, held in one block of memory that is used again for the next folder.
class FolderListing {
public:
    struct Entry {
        std::uint64_t inode;
        std::uint32_t nameOffset;
        /// `unknown` where the listing does not tell: a status call does.
        Files::ItemType type;
    };

    /// Reads all names of an open folder, "." and ".." left out, as the system lists them. With `skipsHidden`, names
    /// that begin with "." are left out too. @returns 0 or an errno value; what was read before a failure stays.
    int read(int folderHandle, bool skipsHidden);
    void sortByName();
    /// As the items were made, mostly, and as they lie on the disk.
    void sortByInode();

    std::size_t size() const { return m_entries.size(); }
    const char* name(std::size_t index) const { return m_names.data() + m_entries[index].nameOffset; }
    Files::ItemType type(std::size_t index) const { return m_entries[index].type; }

private:
    void add(const char* name, unsigned char type, std::uint64_t inode, bool skipsHidden);

    std::vector<char> m_names;  // each with its closing zero
    std::vector<Entry> m_entries;
};

}  // namespace tarvik
