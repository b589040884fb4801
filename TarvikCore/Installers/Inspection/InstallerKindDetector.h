#pragma once

#include "Installers/Inspection/InstallerKind.h"
#include "Platform/Basics/Path.h"

/// Tells what a source is.
namespace tarvik::InstallerKindDetector {

/// By the extension, in any case of letters, where that is known: then nothing on disk is looked at, and the item need
/// not exist. Else by the first bytes of the file. Never fails. Blocks for one short read at most; any thread.
InstallerKind detect(const fs::path& path);

}  // namespace tarvik::InstallerKindDetector
