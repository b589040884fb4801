#pragma once

#include "Platform/Host.h"
#include "Platform/Path.h"

#include <string_view>

/// Disposes of an item that is in the way, a dangling link too: to the Trash, else into a folder `.TarvikTrash` beside
/// it.
namespace tarvik::FileStash {

/// `reason` is a short word that becomes part of the fallback's name. Never fails: what can be moved nowhere stays
/// where it is. Any thread.
void moveAside(const Host& host, const fs::path& path, std::string_view reason);

}  // namespace tarvik::FileStash
