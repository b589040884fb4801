#pragma once

#include "Platform/Files/FileDescriptor.h"

#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

namespace tarvik::macvolume {

/// The folder in which the volume keeps its items. A place is a path below it as it is spelled there, "." for the
/// folder itself. The volume may be mounted on the folder: it is never looked for by its own path again.
class Backing {
public:
    explicit Backing(FileDescriptor folder) : m_folder(std::move(folder)) {}

    int handle() const { return m_folder.get(); }
    /// What leads to the place for calls that take no handle.
    std::string pathOf(const std::string& place) const;

    /// The item itself, a link not followed.
    std::optional<struct stat> status(const std::string& place) const;
    /// The name in the folder that is the same as `name` for a volume that folds names.
    std::optional<std::string> sameName(const std::string& folder, std::string_view name) const;
    struct Entry {
        std::string name;
        ino_t inode;
        /// As <dirent.h> numbers it.
        unsigned char type;
    };
    /// What is in a folder, without "." and ".."; nothing when it cannot be listed.
    std::vector<Entry> entries(const std::string& folder) const;
    /// The place of each folder below `folder`, at every depth.
    std::vector<std::string> foldersBelow(const std::string& folder) const;

    static std::string folderOf(const std::string& place);
    static std::string nameOf(const std::string& place);
    static std::string joined(const std::string& folder, std::string_view name);

private:
    FileDescriptor m_folder;
};

}  // namespace tarvik::macvolume
