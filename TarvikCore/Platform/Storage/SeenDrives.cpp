#include "Platform/Storage/SeenDrives.h"

#include "Platform/Files/Files.h"
#include "Platform/Machine/SilentVolumes.h"
#include "Platform/Machine/VolumeList.h"
#include "Platform/Storage/DriveScanner.h"

#include <algorithm>
#include <optional>

namespace tarvik {

SeenDrives::SeenDrives(const Host& host) : m_host(host) {
    for (const fs::path& mountPath : host.volumes->mountPaths()) {
        if (std::find(host.silentVolumes.begin(), host.silentVolumes.end(), mountPath) != host.silentVolumes.end())
            continue;
        const auto mark = DriveScanner::markOf(host, mountPath);
        const auto top = Files::resolved(mountPath);
        const auto info = top ? Files::info(*top) : std::nullopt;
        if (mark && info) m_volumes.push_back({{mountPath, *mark}, *top, info->device});
    }
    std::stable_sort(m_volumes.begin(), m_volumes.end(), [](const Mounted& left, const Mounted& right) {
        return left.top.native().size() > right.top.native().size();
    });
}

SeenDrive SeenDrives::of(const fs::path& place) const {
    if (SilentVolumes::hold(m_host, place)) return {};
    fs::path present = Files::isSymbolicLink(place) ? place.parent_path() : place;
    while (!Files::exists(present) && present != present.parent_path()) present = present.parent_path();
    const auto folder = Files::resolved(present);
    const auto info = Files::infoFollowingLinks(present);
    if (!folder || !info) return {};
    // A Mac shows folders of another volume below the root: what is below a mount path by its text need not be there.
    const auto holder = std::find_if(m_volumes.begin(), m_volumes.end(), [&](const Mounted& volume) {
        return volume.device == info->device && Files::isAtOrBelow(*folder, volume.top);
    });
    return holder == m_volumes.end() ? SeenDrive{} : holder->drive;
}

}  // namespace tarvik
