#pragma once

#include "Platform/Basics/Path.h"

/// Whether something on a volume is in use, which keeps a Mac from unmounting it.
namespace tarvik::hdiutil::OpenItems {

/// Whether a process that this one may look at has a file or a folder below `volume` open, works there or runs from
/// there. Nothing on systems that tell it of real volumes only.
bool areBelow(const fs::path& volume);

}  // namespace tarvik::hdiutil::OpenItems
