#pragma once

#include <vector>

#include "Platform/Host.h"
#include "Platform/Path.h"

/// The absolute folders of the system, spelled once and always below the host's root.
namespace tarvik::SystemFolders {

/// `absolute` (such as "/Volumes") as it stands on this host.
fs::path below(const Host& host, const fs::path& absolute);
fs::path applications(const Host& host);
fs::path library(const Host& host);
fs::path system(const Host& host);
fs::path users(const Host& host);
fs::path volumes(const Host& host);

/// The folders that the system needs at their place; they may hold what can be moved, but never move themselves.
std::vector<fs::path> immovable(const Host& host);
/// The folders of which neither they nor anything below them may move.
std::vector<fs::path> sealed(const Host& host);

}  // namespace tarvik::SystemFolders
