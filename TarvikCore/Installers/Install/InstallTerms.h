#pragma once

#include "Installers/Install/TargetDrive.h"
#include "Installers/Options/InstallerOption.h"
#include "Installers/Reporting/InstallerRunReporter.h"
#include "Platform/Basics/Cancellation.h"

namespace tarvik {

/// What all that one run installs has in common.
struct InstallTerms {
    InstallerOption option;
    TargetDrive drive;
    /// Packages and scripts run as root. Nothing falls back to the other way.
    bool useRootferry = false;
    InstallerRunReporter reporter;
    /// Once it is asked for, tools are ended, what is open is closed, and the run fails. What is installed by then
    /// stays, and a package for which a copy was removed is let arrive first (`PackageInstaller`).
    Cancellation cancellation{};
};

}  // namespace tarvik
