#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"
#include "hdiutil/Entry.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarvik::hdiutil {

/// Puts what a volume holds into one new folder, and nowhere else: each name on the way is opened as a folder and never
/// followed, what is there is never replaced, and a name that leads up or away is refused. Belongs to one thread. Every
/// operation throws Failure; what was made until then stays for the caller to remove.
class VolumeWriter {
public:
    /// Takes a folder that is empty.
    explicit VolumeWriter(const fs::path& folder);

    /// A folder, or an item without content. `path` is below the volume; an empty one is the volume's own folder.
    void add(const Entry& entry, std::string_view path);
    /// A file, whose bytes `write` gives and `close` ends.
    void open(const Entry& entry, std::string_view path);
    void write(std::string_view bytes);
    void close();
    void link(const Entry& entry, std::string_view path, const std::string& target);
    /// Where the file system keeps no such attributes it is dropped.
    void attribute(std::string_view path, const std::string& name, const std::string& value);
    /// Gives folders their permissions and times. Called once, behind everything else.
    void finish();

private:
    struct Folder {
        std::string path;
        mode_t permissions;
        timespec modified;
    };

    int parentOf(std::string_view path);
    FileDescriptor openFolder(std::string_view path, bool makes);

    FileDescriptor m_top;
    std::string m_parentPath;
    FileDescriptor m_parent;
    FileDescriptor m_file;
    timespec m_fileTime{};
    std::vector<Folder> m_folders;
};

}  // namespace tarvik::hdiutil
