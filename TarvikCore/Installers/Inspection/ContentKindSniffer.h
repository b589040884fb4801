#pragma once

#include "Installers/Inspection/InstallerKind.h"
#include "Platform/Basics/Path.h"

#include <optional>

/// Tells what a file is by its first bytes.
namespace tarvik::ContentKindSniffer {

/// `script` for a regular file whose first 256 bytes are UTF-8 and begin with "#!", whatever interpreter is named
/// there; nothing for all else. A link is followed; pipes and devices are never opened, since that can change what they
/// do. Never fails. Blocks for one short read; any thread.
std::optional<InstallerKind> sniff(const fs::path& path);

}  // namespace tarvik::ContentKindSniffer
