#pragma once

#include "Installers/Inspection/InstallerInspection.h"
#include "Platform/Machine/Host.h"

/// Looks at an installer package.
namespace tarvik::PkgSourceInspector {

/// As `InstallerInspector::inspect`, of a source that is known to be one.
InstallerInspection inspect(const Host& host, const fs::path& package);

}  // namespace tarvik::PkgSourceInspector
