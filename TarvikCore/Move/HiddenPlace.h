#pragma once

#include "Platform/FileDescriptor.h"
#include "Platform/Host.h"
#include "Platform/Path.h"

#include <string_view>

/// The hidden names that items bear for the length of an act: a copy that is not complete yet, an original that is
/// about to be removed. What an act that was killed leaves under such a name is cleared away by a later one.
namespace tarvik::HiddenPlace {

/// Free hidden names beside an item, made of its own name, so that a user who finds one knows what it is: for a copy
/// that will stand at `goal`, for an original while it is removed, for an item that changes places with another.
fs::path forCopyTo(const fs::path& goal);
fs::path forRemovalOf(const fs::path& original);
fs::path forExchangeOf(const fs::path& item);

/// Marks an item as in use for as long as the result lives, under whatever name. Nothing happens when it cannot be
/// opened.
FileDescriptor hold(const fs::path& item);

/// Clears what killed acts have left directly in `folder`. What was changing places goes back where its own place is
/// free; everything else goes to the Trash, except links, which hold nothing. What a running act holds stays. Never
/// fails.
void sweep(const Host& host, const fs::path& folder) noexcept;

}  // namespace tarvik::HiddenPlace
