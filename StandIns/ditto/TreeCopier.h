#pragma once

#include "Platform/Basics/Path.h"
#include "ditto/Diagnostics.h"

#include <vector>

/// Copies trees with everything that belongs to them.
namespace tarvik::ditto::TreeCopier {

/// Copies each of the sources, and what is in folders among them, to `destination`: as its contents when that is a
/// folder, or has to become one; one file alone else as an item of that name. Links among the paths are followed, links
/// below them are copied.
///
/// A folder is merged into one that is there, and that stays what it is: its permissions, owner, attributes and access
/// lists are left alone. Any other item replaces one of its kind or of another, but a folder never replaces an item,
/// nor an item a folder. Pipes, sockets, and what is named like the leftovers of file servers (".nfs", ".afpDeleted")
/// are passed over in silence, and so is what has gone by the time when it is its turn.
///
/// Two items whose names the destination takes for one are no exception, and not a word is said of them: what comes
/// second replaces what came first, or is merged into it.
///
/// Says in `diagnostics` what could not be copied, and goes on with the rest. Blocks; starts threads where there is
/// much to copy.
/// @throws what keeps it from going on at all
void copy(const std::vector<fs::path>& sources, const fs::path& destination, Diagnostics& diagnostics);

}  // namespace tarvik::ditto::TreeCopier
