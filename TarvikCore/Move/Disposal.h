#pragma once

#include "Platform/Host.h"
#include "Platform/Path.h"

#include <string>

/// The way out that `MoverStasher` and `FileStash` share.
namespace tarvik::Disposal {

/// Moves the item to the Trash; when the Trash refuses, into `.TarvikTrash` beside it under its name with `suffix`
/// added. Nothing is ever replaced. Never fails: what can be moved nowhere stays where it is.
/// @returns whether it has gone.
bool dispose(const Host& host, const fs::path& item, const std::string& suffix) noexcept;

}  // namespace tarvik::Disposal
