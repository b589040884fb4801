#pragma once

#include "Move/ChangeWatch.h"
#include "Platform/Host.h"
#include "Platform/Path.h"

/// Takes an original away whose copy has been proved. This is where data can be lost, so it is done in two steps: the
/// original first gets a hidden name beside its place, where no program finds it by its path any more; only when
/// nothing in it has changed since the copy began is it removed.
///
/// Both operations block; any thread. `start` was marked before the copy began. Both throw
/// - MoverError verifyFailed when the original was changed meanwhile: it stands in its place, whole;
/// - FileError when it could not be removed: what is left of it stands in its place. When that is not all of it, the
///   FileError is a Files::IncompleteRemoval;
/// - another Failure, which names the hidden place, when it could not even be put back.
namespace tarvik::OriginalRemoval {

/// Leaves nothing in the original's place.
void remove(const Host& host, const fs::path& original, const ChangeWatch::Mark& start);

/// Leaves a link to `target` in the original's place. The two change places in one step where the file system can do
/// that, so that whoever looks finds one of them.
/// @throws as above, and MoverError symlinkFailed when no link can be made: the original was not touched then.
void replaceByLink(const Host& host, const fs::path& original, const fs::path& target, const ChangeWatch::Mark& start);

}  // namespace tarvik::OriginalRemoval
