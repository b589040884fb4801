#pragma once

#include "Platform/Basics/Path.h"

/// Copies a tree with everything that belongs to it.
namespace tarvik::ditto::TreeCopier {

/// Copies the item `source`, which is not followed if it is a link, to the path `destination`, and makes the folders
/// above that. A folder is merged into one that is there; any other item replaces one of its kind or of another, but a
/// folder never replaces an item, nor an item a folder. Ends at the first thing that cannot be copied, and leaves what
/// is copied by then. Blocks; starts threads where there is much to copy.
/// @throws FileError; Failure
void copy(const fs::path& source, const fs::path& destination);

}  // namespace tarvik::ditto::TreeCopier
