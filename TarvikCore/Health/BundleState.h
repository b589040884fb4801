#pragma once

#include "Platform/Basics/Path.h"

namespace tarvik {

/// What there is of an application's bundle, as far as it takes one to be opened.
enum class BundleState {
    whole,
    withoutList,      ///< it has no Contents/Info.plist
    withoutPrograms,  ///< nothing stands in Contents/MacOS
    unreadable,       ///< it may be whole: permissions keep it from being looked at
    unlistable,       ///< the same of Contents/MacOS alone
};

/// Looks at the bundle; it must be there, and links to it and in it are followed. A hidden program counts. A few status
/// calls; blocks; any thread; never fails.
BundleState bundleState(const fs::path& bundle);

}  // namespace tarvik
