#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/AccessList.h"
#include "Platform/Files/FileError.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <sys/types.h>

namespace tarvik {

/// What keeps an item, with all that is in it, from being removed or moved as a whole. Found out before anything is
/// touched: of what is found in the middle of a removal, half would be gone.
struct TreeObstacle {
    enum class Kind {
        mountedVolume,  ///< another volume, or another place of this one, is mounted at `path`
        sealedFolder,   ///< nothing may be taken out of the folder at `path`
        unreadable,     ///< what is at `path` cannot be looked at, listed or read
        lockedItem,     ///< a flag of the file system forbids to remove what is at `path`
        foreignItem,    ///< only the other user who owns what is at `path` may take it out of its folder
        deniedItem,     ///< an access control list forbids to remove what is at `path`
        socket,         ///< at `path` is a socket, which no copy can hold
        pipe,           ///< at `path` is a pipe, which no copy can hold
        device,         ///< at `path` is a device file, which only the administrator can copy
        serverFile,     ///< the name of what is at `path` is one that the copy tool leaves out
        cloudFile,      ///< the contents of the file at `path` are not on this disk
    };
    Kind kind;
    fs::path path;
    int errorNumber;
    /// What the file system keeps for what is at `path`, see `FileFlags`, and whose it is, as far as that is known.
    std::uint32_t flags = 0;
    std::optional<uid_t> owner = std::nullopt;
    /// For a denied item the entry that denies it, where that can be told.
    std::optional<AccessList::Culprit> denial = std::nullopt;

    /// Why the item could not be removed; nothing when no obstacle can be seen. Two calls an entry. Blocks; any thread.
    static std::optional<TreeObstacle> toRemoval(const fs::path& item);
    /// Why it could not be moved to another volume: the same, what no copy would hold (`UncopiedItems`), and what
    /// cannot be read.
    static std::optional<TreeObstacle> toMove(const fs::path& item);
    /// Why it could not be brought back from another volume: as `toMove`, but for sockets and device files, without
    /// which it comes back.
    static std::optional<TreeObstacle> toReturn(const fs::path& item);

    using LeaveOut = std::function<void(const TreeObstacle& item)>;
    /// Why no copy of an item that stays would be whole. Called for each pipe, socket and server file in it, `leaveOut`
    /// makes none of them an obstacle: the copy is made without them. The item itself is not left out.
    static std::optional<TreeObstacle> toBackup(const fs::path& item, const LeaveOut& leaveOut);

    /// The failure of a removal that meets it.
    FileError error() const;
};

}  // namespace tarvik
