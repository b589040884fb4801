#pragma once

#include "Platform/Basics/Path.h"

#include <memory>
#include <vector>

namespace tarvik {

/// Where removed things go so that the user can have them back. Safe to call from any thread.
class TrashCan {
public:
    virtual ~TrashCan() = default;

    /// Moves an item (a link itself, not what it leads to) to the Trash, without copying it to another volume.
    /// @returns where it stands now. @throws FileError, and then the item stands where it was.
    virtual fs::path moveToTrash(const fs::path& item) const = 0;

    /// The folders of which one holds the item that stood at the absolute path `place`, if it was moved to the Trash.
    /// `place` and the folders need not be there. Empty for a Trash that cannot tell.
    virtual std::vector<fs::path> foldersFor(const fs::path& /*place*/) const { return {}; }
    /// Lets the Trash forget an item that has been taken out of it. `trashed` is where it stood. Never throws.
    virtual void forget(const fs::path& /*trashed*/) const noexcept {}
};

/// The Trash of this system's user.
std::shared_ptr<const TrashCan> makeSystemTrashCan(const fs::path& home);

/// The folder `home`/.Trash. An item on another volume is refused.
std::shared_ptr<const TrashCan> makeRootedTrashCan(const fs::path& home);

}  // namespace tarvik
