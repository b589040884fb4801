#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

/// The absolute folders of the system, spelled once and always below the host's root.
namespace tarvik::SystemFolders {

/// `absolute` (such as "/Volumes") as it stands on this host.
fs::path below(const Host& host, const fs::path& absolute);
fs::path applications(const Host& host);
fs::path library(const Host& host);
fs::path system(const Host& host);
fs::path users(const Host& host);
fs::path volumes(const Host& host);

/// Whether a folder must stay where it is: the system or the user's session looks for it there, a drive is mounted on
/// it, or the home or the host's root lies in it. Folders inside may still be movable: nothing in /System is, all in
/// /Applications is. Pure: judged by the text of the path alone, by one table for all systems.
///
/// `resolvedFolder` is standardized and has no links in it. What lies below the home is the user's own, wherever the
/// home is, but for those folders of it that the system or every program looks for there. A folder outside a host's own
/// root is judged as a folder of the machine that the program runs on.
bool isImmovable(const Host& host, const fs::path& resolvedFolder);

}  // namespace tarvik::SystemFolders
