#include "Move/DrivePresence.h"

#include "Platform/Files.h"
#include "Platform/VolumeList.h"

#include <algorithm>

namespace tarvik {

bool DrivePresence::isThere(const Host& host, const fs::path& drivePath) {
    if (!Files::exists(drivePath)) return false;
    const auto volumes = host.volumes->mounted();
    return std::any_of(volumes.begin(), volumes.end(),
                       [&](const Volume& volume) { return volume.mountPath == drivePath; });
}

}  // namespace tarvik
