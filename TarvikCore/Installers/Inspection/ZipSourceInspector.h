#pragma once

#include "Installers/Inspection/InstallerInspection.h"
#include "Platform/Machine/Host.h"

/// Looks into a zip archive.
namespace tarvik::ZipSourceInspector {

/// As `InstallerInspector::inspect`, of a source that is known to be one. What was unpacked for it is set aside: the
/// paths of the items lead nowhere afterwards.
InstallerInspection inspect(const Host& host, const fs::path& archive);

}  // namespace tarvik::ZipSourceInspector
