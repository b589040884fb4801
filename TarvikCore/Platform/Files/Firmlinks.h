#pragma once

#include "Platform/Basics/Path.h"

/// The folders of a Mac's system volume that are folders of its data volume: "/System/Volumes/Data/Users" is "/Users".
/// They are no links that a program could read; a Mac lists them in /usr/share/firmlinks.
namespace tarvik::Firmlinks {

/// The short form of a path that goes by the data volume's own mount point; any other path as it is. `path` is
/// standardized. Pure: by a table, which is the Mac's.
fs::path shortForm(const fs::path& path);

/// The same where the two forms lead to one folder on this machine. Looks at the disk only for a path that has a short
/// form.
fs::path shortFormHere(const fs::path& path);

}  // namespace tarvik::Firmlinks
