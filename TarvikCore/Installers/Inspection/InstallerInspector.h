#pragma once

#include "Installers/Inspection/InstallerInspection.h"
#include "Platform/Machine/Host.h"

/// Looks at a source of any kind, and changes neither it nor the machine.
namespace tarvik::InstallerInspector {

/// `source` is absolute and without a slash at its end. Never fails: what goes wrong becomes a warning and a status of
/// the verdict. Blocks, as long as an image is mounted or an archive expanded; any thread.
InstallerInspection inspect(const Host& host, const fs::path& source);

}  // namespace tarvik::InstallerInspector
