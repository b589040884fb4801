#pragma once

#include "Move/ChangeWatch.h"
#include "Platform/Host.h"
#include "Platform/Path.h"

#include <optional>
#include <string>

/// Takes an original away whose copy has been proved. This is where data can be lost, so it is done in two steps: the
/// original is first renamed to a hidden name beside it, where no program finds it by its path any more; only when
/// nothing in it has changed since the copy began is it removed.
namespace tarvik::OriginalRemoval {

/// Blocks; any thread. `start` was marked before the copy began.
/// @returns why the original was kept, whole and in its place, as a text for the user, when it was changed meanwhile;
/// nothing when it is gone.
/// @throws FileError when it could not be removed: what is left of it stands in its place again.
std::optional<std::string> remove(const Host& host, const fs::path& original, const ChangeWatch::Mark& start);

}  // namespace tarvik::OriginalRemoval
