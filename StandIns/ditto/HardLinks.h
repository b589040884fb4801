#pragma once

#include "Platform/Files/FileDescriptor.h"
#include "ditto/Folder.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <sys/stat.h>
#include <utility>

namespace tarvik::ditto {

/// Remembers where the copies of files with several names are, so that their other names become links to the same copy.
/// A file is forgotten when all its names were seen. Safe on every thread.
class HardLinks {
public:
    /// `top` is the folder that everything starts from; it stays open as long as this lives.
    explicit HardLinks(std::shared_ptr<OpenFolder> top) : m_top(std::move(top)) {}

    /// Makes the copy of `item` as another name of the copy that is there already, or by `make` when this is the first
    /// name. `make` is called under the lock, and returns once the copy has its name; its content may come later.
    /// @returns true when the item is complete: it is a name of a copy that someone else makes, or has made.
    bool linkOrMake(const Item& item, const struct stat& status, const std::function<void()>& make);

private:
    struct Copy {
        std::shared_ptr<Folder> folder;
        std::string name;
        nlink_t namesToCome;
    };

    int handleOf(const std::shared_ptr<Folder>& folder);

    std::shared_ptr<OpenFolder> m_top;
    std::mutex m_mutex;
    std::map<std::pair<dev_t, ino_t>, Copy> m_copies;
    /// The folder of the copy that was linked to last: the next one is often in the same.
    std::shared_ptr<Folder> m_lastFolder;
    FileDescriptor m_lastHandle;
};

}  // namespace tarvik::ditto
