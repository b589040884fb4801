#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

/// Where on a drive an application's data lands. Pure.
namespace tarvik::MoveDestination {

/// The place of `source` below `dataParent`: what lies in the home folder keeps its path below it, what lies in the
/// system's Library comes under System/Library, anything else goes by its last component alone.
fs::path dataDestination(const Host& host, const fs::path& source, const fs::path& dataParent);
/// The same with another home folder.
fs::path dataDestination(const Host& host, const fs::path& source, const fs::path& dataParent, const fs::path& home);

}  // namespace tarvik::MoveDestination
