#pragma once

#include "ditto/Folder.h"

#include <sys/stat.h>

/// What an item has besides its content: owner, permissions, times, extended attributes, access lists.
///
/// What the destination cannot hold, or this user may not give, is passed over: foreign owners, extended attributes on
/// a file system without them, security labels. Everything else that fails is a failure.
namespace tarvik::ditto::Attributes {

/// Gives the open file `destination` everything that the open file `source` has. `status` is the source's from before
/// its content was read.
/// @throws ItemError
void copy(int source, int destination, const struct stat& status, const Item& item);

/// The same for a finished folder.
void copy(const OpenFolder& folder);

/// The same for what cannot be opened: links, pipes, devices.
void copyByName(const Item& item, const struct stat& status);

/// Whether what is made in the open folder gets an access list from it.
bool handsDownAccessList(int folder);

/// Takes away the access lists that an item got from the folder in which it was made.
void removeAccessLists(int item);

}  // namespace tarvik::ditto::Attributes
