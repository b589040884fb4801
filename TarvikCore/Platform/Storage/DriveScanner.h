#pragma once

#include "Platform/Machine/Host.h"
#include "Platform/Storage/DriveInfo.h"

#include <optional>
#include <string>
#include <vector>

/// Lists the drives that something can be moved to or from.
namespace tarvik::DriveScanner {

/// The browsable volumes, internal ones first, then by name in plain byte order. Blocks while the system answers.
/// Never fails: a volume that cannot be read is left out.
std::vector<DriveInfo> scan(const Host& host);

/// The volume that the entry of `item` stands on, a link not followed, browsable or not; nothing when the system does
/// not list it. Blocks and never fails, as `scan`.
std::optional<DriveInfo> holding(const Host& host, const fs::path& item);

/// Whether a volume is mounted at exactly this path: a mount path can outlive its drive as an empty folder of the
/// internal disk. Blocks and never fails, as `scan`.
bool isThere(const Host& host, const fs::path& mountPath);

/// Tells the volume at this path from another one that may take its place, of the same name or not: by the UUID of its
/// file system, else by what is known of the mounted file system. Nothing when none is there. Blocks as `isThere`.
std::optional<std::string> markOf(const Host& host, const fs::path& mountPath);

}  // namespace tarvik::DriveScanner
