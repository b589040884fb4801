#pragma once

#include "Installers/Inspection/InstallerInspection.h"
#include "Platform/Machine/Host.h"

/// Looks at a shell script.
namespace tarvik::ScriptSourceInspector {

/// As `InstallerInspector::inspect`, of a source that is known to be one.
InstallerInspection inspect(const Host& host, const fs::path& script);

}  // namespace tarvik::ScriptSourceInspector
