#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <vector>

/// What killed acts have left under a `HiddenName`: a later act clears it. What a running act holds (`ItemLock`) stays.
/// Everything here blocks; nothing fails.
namespace tarvik::Leftovers {

/// Clears what killed acts have left directly in `folder`. What was changing places goes back where its own place is
/// free; everything else goes to the Trash, except empty folders and links, which hold nothing. A link or a launcher
/// that `clearUnfinished` goes by stays.
void sweep(const Host& host, const fs::path& folder) noexcept;

/// The copies that killed acts have left directly in `folder`; not those that a running act makes.
std::vector<fs::path> copiesIn(const fs::path& folder);

/// Frees `destination` from the complete copy that a killed move of `source` has left there, or from the rest of what a
/// killed restore has brought back: it goes to the Trash. A link under a hidden name beside `source`, or the launcher
/// that an application has replaced, stands there as long as both are whole, and tells of such an act; and `source`
/// must hold all that stands there. Nothing else is ever touched. Links that lead there and have outlived their act are
/// removed.
void clearUnfinished(const Host& host, const fs::path& source, const fs::path& destination) noexcept;

}  // namespace tarvik::Leftovers
