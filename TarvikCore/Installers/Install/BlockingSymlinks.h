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
/// which one is mounted, or one of this program's own folders as a whole; and never what cannot be reached, unless it,
/// or its whole drive, is certain to be missing. Blocks; any thread.
bool mayRemoveDestination(const Host& host, const fs::path& destination);

/// Removes each link that stands where the package will put an application and leads to a drive, and, for good, the
/// copy there: the package is about to bring that application afresh, and a stale copy would pass for the one that was
/// moved. Links that lead elsewhere stay, and so does all that is no link. A copy stays whose link could not be
/// removed, and link and copy stay where the package itself lies in the copy or is reached by the link. Logs
/// "pre-install-clear-symlink", or "pre-install-keep-symlink" for what the package needs, the link and "-> " with where
/// it leads for all of them before anything is removed.
///
/// Whether something was removed: then only the package brings the application back, and a cancellation stops the
/// removals no more. Before that, it is asked for at each link. Never fails. Blocks; any thread.
bool clear(const Host& host, const fs::path& package, bool useRootferry, const InstallerRunReporter& reporter,
           const Cancellation& cancellation = {});

}  // namespace tarvik::BlockingSymlinks
