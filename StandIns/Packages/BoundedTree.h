#pragma once

#include "Packages/ByteSource.h"
#include "Packages/SafeName.h"
#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tarvik::packages {

/// What an item that is written gets. The bits for another user's rights are left out, whatever `mode` says: outside of
/// the folder they would mean more than they do on the machine that they are made for.
struct ItemStatus {
    mode_t mode = 0644;
    uid_t user = 0;
    gid_t group = 0;
    std::optional<std::chrono::system_clock::time_point> modified{};
};

/// Writes items below one folder and nowhere else, whatever the names and links in it say: each path is walked by
/// directory handles from that folder on. Items get their owners where root writes them. Belongs to one thread.
class BoundedTree {
public:
    enum class Links {
        refused,   ///< a link on the way to an item is a failure
        followed,  ///< it is followed as on the machine whose "/" the folder is; a path below the folder's own is meant
                   ///< so
    };
    /// @throws FileError when `root` is no folder.
    BoundedTree(const fs::path& root, Links links);

    /// All of these make the folders above that are missing, and put the new item in the place of what stands there;
    /// only a folder stays what it is, and is no place for anything else.
    /// @throws PackageFailure for a way that leads elsewhere; FileError.
    void makeFolder(const SafeName::Components& path, const ItemStatus& status);
    void makeFile(const SafeName::Components& path, const ItemStatus& status, const ByteSource& bytes);
    void makeLink(const SafeName::Components& path, const ItemStatus& status, const std::string& target);
    /// Another name of a file that is there.
    void makeHardLink(const SafeName::Components& path, const SafeName::Components& file);
    /// Gives the folders that were made their permissions, which might have kept their contents from being made.
    void finish();

    /// Whether there is an item; a link at the end is not followed.
    bool exists(const SafeName::Components& path);
    /// In bytes, of the volume that an item of the path would come to.
    std::uint64_t availableSpace(const SafeName::Components& path);

private:
    enum class Missing { made, failure };

    const FileDescriptor& folder(const SafeName::Components& path, Missing missing);
    FileDescriptor opened(const SafeName::Components& path, Missing missing) const;
    SafeName::Components targetOfLink(const SafeName::Components& above, const std::string& text) const;
    fs::path shown(const SafeName::Components& path) const;
    const FileDescriptor& folderOf(const SafeName::Components& path);
    template <typename Make>
    void replace(const SafeName::Components& path, const Make& make);

    fs::path m_root;
    std::string m_rootText;
    Links m_links;
    FileDescriptor m_rootHandle;
    /// The folder that was used last: most items lie where the one before them lies.
    SafeName::Components m_lastPath;
    FileDescriptor m_lastFolder;
    std::vector<std::pair<SafeName::Components, ItemStatus>> m_made;
};

}  // namespace tarvik::packages
