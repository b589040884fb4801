#pragma once

#include "Platform/Basics/Path.h"

/// What every kind of Trash asks of an item before it takes it.
namespace tarvik::TrashItem {

/// The item's absolute path, the links above it resolved and the item itself not.
/// @throws FileError when nothing stands there.
fs::path place(const fs::path& item);

/// @throws FileError when `place` lies in the Trash already, or is or holds the Trash folder itself.
void refuseTrashItself(const fs::path& place, const fs::path& trashFolder);

/// Makes a folder that only its owner may enter; one that is there is fine.
/// @throws FileError also when what stands there is no folder, or only a link to one.
void makePrivateFolder(const fs::path& folder);

}  // namespace tarvik::TrashItem
