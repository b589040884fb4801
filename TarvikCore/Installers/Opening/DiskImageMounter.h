#pragma once

#include "Installers/Opening/DiskImageMount.h"
#include "Platform/Machine/Host.h"

/// Attaches disk images, to read what is in them, and detaches them.
namespace tarvik::DiskImageMounter {

/// Attaches it for reading only, out of the user's sight. An image without a volume gives no mount points, and that is
/// no failure. One that was attached already gives what is there, borrowed. Blocks as long as the tool takes; any
/// thread.
/// @throws Failure of the domain "hdiutil", with the tool's status and words; or when its answer is no property list.
DiskImageMount attach(const Host& host, const fs::path& image);

/// Asks for each mount point, then for each device, until one has gone. An image that somebody else had attached stays.
/// Never fails, and tells nothing: what could not be detached is tried again at the next start.
void detach(const Host& host, const DiskImageMount& mount);

}  // namespace tarvik::DiskImageMounter
