#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/FolderListing.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace tarvik {

/// The visible entries of one open folder, names in byte order, and what the listing told about them: most questions
/// need no further look at the disk. The folder stays open, so that its entries are reached wherever it is moved.
class ListedFolder {
public:
    /// Opens and lists a folder, links followed. Nothing when it cannot be opened; of one that can be read only in part
    /// that part.
    static std::optional<ListedFolder> at(const fs::path& folder);
    /// The same for an entry of an open folder.
    static std::optional<ListedFolder> in(int folderHandle, const char* name);

    int handle() const { return m_handle.get(); }
    std::size_t size() const { return m_visible.size(); }
    const char* name(std::size_t index) const { return m_listing.name(m_visible[index]); }
    /// The type of the entry itself, a link not followed. A status call only where the listing does not tell.
    Files::ItemType type(std::size_t index) const;
    /// Whether this and `other` are one folder, by whatever paths they were opened.
    bool isSameAs(const ListedFolder& other) const;

private:
    explicit ListedFolder(FileDescriptor handle);

    FileDescriptor m_handle;
    FolderListing m_listing;
    std::vector<std::size_t> m_visible;
};

}  // namespace tarvik
