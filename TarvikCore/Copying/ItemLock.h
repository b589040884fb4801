#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"

/// Marks items as in use by a running act, under whatever names they stand. The mark goes with the process that has
/// made it: what a killed act has left bears none. It keeps nobody from anything but other acts of this program, and
/// some file systems know none.
///
/// Nothing here fails; any thread.
namespace tarvik::ItemLock {

/// Marks an item for as long as the result lives; several acts may. Nothing happens when it cannot be opened.
FileDescriptor hold(const fs::path& item);
/// The same, for an act that wants to be the only one. The result is closed when another one holds the item, when it
/// cannot be opened, and where nothing can be marked.
FileDescriptor holdAlone(const fs::path& item);

/// Whether an act holds the item.
bool isHeld(const fs::path& item);
/// Whether what was held is what stands at the path: it may have been taken away before.
bool isHeldAt(const fs::path& path, const FileDescriptor& held);

}  // namespace tarvik::ItemLock
