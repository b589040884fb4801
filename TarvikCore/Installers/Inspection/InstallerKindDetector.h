#pragma once

#include "Installers/Inspection/InstallerKind.h"
#include "Platform/Basics/Path.h"

#include <optional>

/// Tells what a source is.
namespace tarvik::InstallerKindDetector {

/// What the extension tells, in any case of letters; nothing for one that is not known. Pure.
std::optional<InstallerKind> byName(const fs::path& path);

/// By the extension, where that is known: then nothing on disk is looked at, and the item need not exist. Else by the
/// first bytes of the file (`ContentKindSniffer`). Never fails. Blocks for one short read at most; any thread.
InstallerKind detect(const fs::path& path);

}  // namespace tarvik::InstallerKindDetector
