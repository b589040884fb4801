#pragma once

#include "Installers/Inspection/InstallerInspection.h"
#include "Platform/Machine/Host.h"

/// Looks into a disk image.
namespace tarvik::DmgSourceInspector {

/// As `InstallerInspector::inspect`, of a source that is known to be one. What was attached for it is detached again.
InstallerInspection inspect(const Host& host, const fs::path& image);

}  // namespace tarvik::DmgSourceInspector
