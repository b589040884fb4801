#pragma once

#include "Platform/Basics/Path.h"

#include <optional>
#include <string>
#include <vector>

/// What a Mac lets a program do to the applications of other makers.
///
/// Since macOS 13 a signed application is changed only by programs of its own maker, and by those that the user has
/// allowed under App Management ("What's new in privacy", WWDC 2022); for others it is EPERM. A move takes its original
/// away only when the whole copy is there: so that nobody waits for a copy in vain, a harmless change is tried first.
namespace tarvik::AppManagement {

/// What came of such a change of a bundle.
struct Trial {
    fs::path bundle;
    /// 0 when the system let it happen, else errno.
    int error = 0;
};

/// Opens the list of each bundle that carries a signature for writing, without writing, and puts an attribute on it,
/// which it takes away again: neither content nor time of modification changes. Where permissions or anything else
/// forbid that, the folder with the list gets the attribute. `item` is a bundle, or a folder with some in it. Blocks
/// for a look into the folder; any thread; never fails.
std::vector<Trial> tryToChange(const fs::path& item);

/// The sentence for the user when a trial shows that the system forbids it. Permissions (EACCES) and whatever else may
/// be in the way are no answer. Pure.
std::optional<std::string> refusalAfter(const std::vector<Trial>& trials);

/// The page of the system's settings where it is changed.
inline constexpr const char* settingsPage =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_AppBundles";

/// Both in one. What else stands in the way of a removal, a lock for instance, is to be ruled out before: it gives
/// EPERM too.
std::optional<std::string> refusalOf(const fs::path& item);

}  // namespace tarvik::AppManagement
