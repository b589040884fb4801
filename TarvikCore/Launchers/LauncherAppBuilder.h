#pragma once

#include "Installers/Reporting/InstallerRunReporter.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

/// Makes launchers: small real bundles at a visible place that bear the name and the icon of an application on a drive
/// and open it. A link would do the same, but the system's search does not list what lies behind links.
namespace tarvik::LauncherAppBuilder {

/// Makes the bundle `launcher`, which opens `target`, described as `sourceApp` describes itself. A launcher that opens
/// it already is kept. The bundle is built under a hidden name beside its place, which it takes in one step; anything
/// else that stood there is set aside only then, and comes back to its place when nothing takes it. So what stands
/// there is whole at every moment. Signing it and telling the system never fail it. Blocks; any thread.
///
/// Logs "reuse-launcher", or "stash-existing-launcher", "launcher-app", "signed-launcher" or "sign-launcher-warning";
/// and "registered-launcher" where the system keeps a register.
/// @throws Failure, of the domain "launcher" when the program that goes into every launcher cannot be found. What stood
/// at `launcher` then stands there still.
void install(const Host& host, const fs::path& sourceApp, const fs::path& launcher, const fs::path& target,
             const InstallerRunReporter& reporter);

}  // namespace tarvik::LauncherAppBuilder
