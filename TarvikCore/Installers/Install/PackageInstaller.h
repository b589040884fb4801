#pragma once

#include "Installers/Reporting/InstallerRunReporter.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <string>

/// Hands packages to the system's installer.
namespace tarvik::PackageInstaller {

/// Clears links out of the package's way (`BlockingSymlinks`) and runs the installer on this machine's own disk, as
/// this user or as root, for as long as it takes. Once a link has been removed, a cancellation stops nothing any more:
/// the package alone brings its application back. Logs "run-pkg", the tool and the package, then the line that it
/// returns: "installed-pkg" and the package, with tabs between them. Blocks; any thread.
/// @throws Failure of the domain "pkg-install" with the tool's status, 127 when it cannot be started, and its words.
std::string install(const Host& host, const fs::path& package, bool useRootferry, const InstallerRunReporter& reporter,
                    const Cancellation& cancellation = {});

}  // namespace tarvik::PackageInstaller
