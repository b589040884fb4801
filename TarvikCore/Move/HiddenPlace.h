#pragma once

#include "Move/Disposal.h"
#include "Platform/FileDescriptor.h"
#include "Platform/Files.h"
#include "Platform/Host.h"
#include "Platform/Path.h"

#include <string>
#include <vector>

/// The hidden names that items bear for the length of an act: a copy that is not complete yet, an original that is
/// about to be removed. What an act that was killed leaves under such a name is cleared away by a later one.
namespace tarvik::HiddenPlace {

/// Free hidden names beside an item, made of its own name, so that a user who finds one knows what it is: for a copy
/// that will stand at `goal`, for an original while it is removed, for an item that changes places with another.
fs::path forCopyTo(const fs::path& goal);
fs::path forRemovalOf(const fs::path& original);
fs::path forExchangeOf(const fs::path& item);

/// A hidden place that the caller alone writes to, marked as in use.
struct Claim {
    fs::path path;
    FileDescriptor held;
};
/// Takes a place for a copy, by an empty folder. @throws FileError, which tells of `goal`.
Claim claimForCopyTo(const fs::path& goal);
/// Whether a running act is making a copy that will stand at `goal`.
bool isCopyUnderWayTo(const fs::path& goal);
/// What tells of an item under its hidden name, or in a folder of that name, told of its own place.
std::string withOwnName(std::string text, const fs::path& hidden, const fs::path& item);
/// Passes on the MoverError or Failure that is being handled, told so.
[[noreturn]] void rethrowInOwnName(const fs::path& hidden, const fs::path& item);
/// Disposes of an item under a hidden name as `MoverStasher` does of one that stands at `place`. It is at no moment
/// where a killed act would leave it in the way.
Disposal::Outcome stash(const Host& host, const fs::path& hidden, const fs::path& place);

/// Marks an item as in use for as long as the result lives, under whatever name. Nothing happens when it cannot be
/// opened.
FileDescriptor hold(const fs::path& item);

/// Clears what killed acts have left directly in `folder`. What was changing places goes back where its own place is
/// free; everything else goes to the Trash, except empty folders and links, which hold nothing. What a running act
/// holds stays, and so does a link that `clearUnfinished` goes by. Never fails.
void sweep(const Host& host, const fs::path& folder) noexcept;

/// The copies that killed acts have left directly in `folder`; not those that a running act makes. Never fails.
std::vector<fs::path> copiesLeftIn(const fs::path& folder);

/// Frees `destination` from the complete copy that a killed move of `source` has left there, or from the rest of what a
/// killed restore has brought back: it goes to the Trash. A link under a hidden name beside `source`, which stands
/// there as long as both are whole, tells of such an act; and `source` must hold all that stands there. Nothing else is
/// ever touched. Links that lead there and have outlived their act are removed. Never fails.
void clearUnfinished(const Host& host, const fs::path& source, const fs::path& destination) noexcept;

}  // namespace tarvik::HiddenPlace
