#pragma once

#include "Platform/Host.h"
#include "Platform/Path.h"

/// Whether a drive that was chosen is still there.
namespace tarvik::DrivePresence {

/// A drive's mount path can outlive the drive as an empty folder on the internal disk: a volume must stand there.
/// Blocks while the system lists the volumes; any thread; never fails.
bool isThere(const Host& host, const fs::path& drivePath);

}  // namespace tarvik::DrivePresence
