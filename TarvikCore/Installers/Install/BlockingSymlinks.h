#pragma once

#include "Installers/Reporting/InstallerRunReporter.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

/// Clears the way for a package: over a link to an application on a drive, the system's installer would write through
/// the link.
namespace tarvik::BlockingSymlinks {

/// Whether what a link leads to may be removed as the copy of an application on a drive: something on a volume below
/// the folder of volumes, by its text and in fact, without ".." on the way; never a volume as a whole, a folder in
/// which one is mounted, or one of this program's own folders as a whole. Blocks; any thread.
bool mayRemoveDestination(const Host& host, const fs::path& destination);

/// Removes each link that stands where the package will put an application and leads to a drive, and, for good, the
/// copy there: the package is about to bring that application afresh, and a stale copy would pass for the one that was
/// moved. Links that lead elsewhere stay, and so does all that is no link. A copy stays whose link could not be
/// removed. Logs "pre-install-clear-symlink", the link and "-> " with where it leads for all of them before anything is
/// removed. Never fails. Blocks; any thread.
void clear(const Host& host, const fs::path& package, bool useRootferry, const InstallerRunReporter& reporter,
           const Cancellation& cancellation = {});

}  // namespace tarvik::BlockingSymlinks
