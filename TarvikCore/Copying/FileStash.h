#pragma once

#include "Copying/Disposal.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <string_view>

/// Disposes of an item that is in the way, a dangling link too: to the Trash, else into a folder `.TarvikTrash` beside
/// it.
namespace tarvik::FileStash {

/// `reason` is a short word that becomes part of the fallback's name. Never fails: what can be moved nowhere stays
/// where it is. Any thread.
Disposal::Outcome moveAside(const Host& host, const fs::path& path, std::string_view reason);
/// The same of an item that stands at `path` for the moment and belongs at `place`, whose name it has.
Disposal::Outcome moveAside(const Host& host, const fs::path& path, const fs::path& place, std::string_view reason);

}  // namespace tarvik::FileStash
