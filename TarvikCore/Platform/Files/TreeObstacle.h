#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileError.h"

#include <optional>

namespace tarvik {

/// What keeps an item, with all that is in it, from being removed or moved as a whole. Found out before anything is
/// touched: of what is found in the middle of a removal, half would be gone.
struct TreeObstacle {
    enum class Kind {
        mountedVolume,  ///< another volume, or another place of this one, is mounted at `path`
        sealedFolder,   ///< nothing may be taken out of the folder at `path`
        unreadable,     ///< the item at `path` cannot be looked at, or the folder there not be listed
        lockedItem,     ///< a flag of the file system forbids to remove what is at `path`
        foreignItem,    ///< only the other user who owns what is at `path` may take it out of its folder
        socket,         ///< at `path` is a socket, which no copy can hold
    };
    Kind kind;
    fs::path path;
    int errorNumber;

    /// Why the item could not be removed; nothing when no obstacle can be seen. One status call an entry. Blocks; any
    /// thread.
    static std::optional<TreeObstacle> toRemoval(const fs::path& item);
    /// Why it could not be moved to another volume: the same, and sockets.
    static std::optional<TreeObstacle> toMove(const fs::path& item);

    /// The failure of a removal that meets it.
    FileError error() const;
};

}  // namespace tarvik
