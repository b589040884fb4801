#pragma once

#include "Installers/Install/TargetDrive.h"
#include "Installers/Options/InstallerOption.h"
#include "Installers/Reporting/InstallerRunReporter.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <string>

/// Installs an application on a drive, and a launcher for it where the option says. Applications are never copied to
/// the internal disk.
namespace tarvik::AppInstallEngine {

/// Copies the bundle `source` into the folder of applications on the drive and makes its launcher. The source stays,
/// unless it stands where the launcher is to: the launcher takes its place, and it goes to the Trash.
///
/// The copy grows under a hidden name and gets its own one only when it is proved and flushed, so that half of one
/// never passes for an application. What stands in its place already is used when it is the same; otherwise it is set
/// aside before the copy begins, and every failure after that tells where it is. Space is asked for before anything is
/// touched. What a killed install has left is cleared by the next one.
///
/// Logs "stash-existing-app", "copy-app" and "verify-app", or "reuse-app", then the launcher's lines, then the line
/// that it returns: "installed-app", the launcher and the bundle on the drive, with tabs between them. Once the copy
/// has its place, a cancellation stops nothing any more. Blocks; any thread.
///
/// @throws Failure of the domain "install-app": 2 with the reason when the copy is not what the source is, 1 for a
/// source that is no application but leads to one, or a launcher that would take the application's own place; "Target
/// drive disconnected"; MoverError insufficientSpace; what `InstallLinePath`, copying and making the launcher throw.
/// After a failure of the launcher the copy stays.
std::string install(const Host& host, const fs::path& source, const InstallerOption& option, const TargetDrive& drive,
                    const InstallerRunReporter& reporter, const Cancellation& cancellation = {});

}  // namespace tarvik::AppInstallEngine
