#pragma once

#include "Platform/Basics/Path.h"

/// Paths in the lines that tell what an install has done. They stand between tabs, a line each, and are read again for
/// the record of the run: a name with a tab or a line break in it could tell there of what was never done.
namespace tarvik::InstallLinePath {

/// Pure. @throws Failure of the domain "install" with the code EINVAL when a name in the path holds a control character
/// or a line break.
void require(const fs::path& path);

}  // namespace tarvik::InstallLinePath
