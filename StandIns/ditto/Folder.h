#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"

#include <atomic>
#include <memory>
#include <string>
#include <sys/stat.h>

namespace tarvik::ditto {

/// A folder of the source together with its copy. It names itself through its parents, so a tree may be deeper than any
/// path can say. Shared between threads; all but `unfinished` is written before others see it.
struct Folder {
    Folder() = default;
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder();

    /// Null for the folder that everything starts from.
    std::shared_ptr<Folder> parent;
    /// The names in the parent, the same but for the root of the tree; the whole path where there is no parent.
    std::string sourceName;
    std::string destinationName;
    /// The source as it was before anything in it was read.
    struct stat status {};
    /// The copy's place on its file system.
    dev_t destinationDevice = 0;
    ino_t destinationInode = 0;
    /// The copy was made for this folder. What stands in it can only be another of its items.
    bool isNew = false;
    /// What is made in the copy gets an access list from it, unasked.
    bool handsDownAccessList = false;
    /// How many still work in it: the walk, and each batch of its items. Whoever is last finishes it.
    std::atomic<int> unfinished{1};
};

/// The handles of a folder. Closed when the last user lets go of them.
struct OpenFolder {
    std::shared_ptr<Folder> folder;
    FileDescriptor source;
    FileDescriptor destination;
};

/// One entry of a folder, by name. Valid as long as what it refers to.
struct Item {
    const OpenFolder& parent;
    const char* sourceName;
    const char* destinationName;
};

fs::path sourcePath(const Folder& folder);
fs::path destinationPath(const Folder& folder);
fs::path sourcePath(const Item& item);
fs::path destinationPath(const Item& item);

/// Opens the folder `item`, and makes its copy where there is none yet. An existing copy is merged into, and left as it
/// is.
/// @throws ItemError; Vanished
std::shared_ptr<OpenFolder> openFolder(const Item& item);

/// Opens `folder` again by going up from one that is directly inside it.
/// @throws ItemError, also when the one inside was moved elsewhere meanwhile.
std::shared_ptr<OpenFolder> openParent(const OpenFolder& inside, const std::shared_ptr<Folder>& folder);

/// Opens something of the source for reading, without a trace in its access time where that is allowed.
/// @returns -1 with errno set on failure
int openForReading(int folder, const char* name, int flags);

}  // namespace tarvik::ditto
