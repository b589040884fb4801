#pragma once

#include "Platform/Basics/Path.h"

/// What in a bundle makes moving it risky. Each is a look at the disk; what cannot be read counts as absent.
namespace tarvik::AppFlags {

/// It has a receipt of the Mac App Store.
bool isMacAppStore(const fs::path& bundle);
/// Its folder of login items holds something, be it hidden.
bool hasLoginItems(const fs::path& bundle);
/// Its folder of system extensions, or the older one of kernel extensions, holds something.
bool hasSystemExtension(const fs::path& bundle);

}  // namespace tarvik::AppFlags
