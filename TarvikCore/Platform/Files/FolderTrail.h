#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"

#include <cstddef>
#include <sys/types.h>
#include <vector>

namespace tarvik {

/// The open handles of a folder and of the folders above it, on the way down into a tree and back up. Links are never
/// followed. Only the deepest levels are held open, so a tree may be deeper than a process may have open files: on the
/// way up, a level that was closed is opened again through ".." and must be the folder that it was.
class FolderTrail {
public:
    /// Opens the first folder, which must be one itself and no link. When that fails, `handle` gives -1 and errno
    /// tells.
    explicit FolderTrail(const fs::path& root);

    /// The deepest folder's handle.
    int handle() const { return m_levels.empty() ? -1 : m_levels.back().folder.get(); }
    /// 0 at the root.
    std::size_t depth() const { return m_levels.size() - 1; }

    /// Goes into a folder. @returns 0 or an errno value, and then nothing has changed.
    int enter(const char* name);
    /// Goes back up. @returns 0, or an errno value when the folder above is no longer where it was: the level stands
    /// then, with a handle of -1.
    int leave();

private:
    struct Level {
        FileDescriptor folder;
        dev_t device = 0;  // Known once the level was closed to save a handle.
        ino_t inode = 0;
    };
    void closeLevelTooMany();

    std::vector<Level> m_levels;
};

}  // namespace tarvik
