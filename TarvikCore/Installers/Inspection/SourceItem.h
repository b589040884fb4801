#pragma once

#include "Installers/Inspection/InstallableItem.h"
#include "Platform/Machine/Host.h"

/// Makes the record of something that can be installed.
namespace tarvik::SourceItem {

/// Measures it. Never fails. Blocks; any thread.
InstallableItem of(const Host& host, const fs::path& path, InstallerKind kind);

}  // namespace tarvik::SourceItem
