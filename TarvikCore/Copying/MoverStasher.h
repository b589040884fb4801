#pragma once

#include "Copying/Disposal.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

/// Disposes of a copy that turned out bad: to the Trash, else into a folder `.TarvikTrash` beside it.
namespace tarvik::MoverStasher {

/// Never fails: what can be moved nowhere stays where it is. Nothing happens when nothing stands at `path`. Any thread.
Disposal::Outcome stash(const Host& host, const fs::path& path);
/// The same of an item that stands at `path` for the moment and belongs at `place`, whose name it has.
Disposal::Outcome stash(const Host& host, const fs::path& path, const fs::path& place);

}  // namespace tarvik::MoverStasher
