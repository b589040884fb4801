#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <optional>

/// Finds what was moved by an earlier version, which used another name for its folder on a drive.
namespace tarvik::StaleRootRetarget {

/// The path with the folder's present name, if something exists there; nothing for a path without the earlier name.
std::optional<fs::path> candidate(const Host& host, const fs::path& path);

}  // namespace tarvik::StaleRootRetarget
