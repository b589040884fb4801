#include "Discovery/ExternalAppsRootsDiscovery.h"

#include "Platform/Files/ExistingPaths.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/ListedFolder.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/SilentVolumes.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Machine/VolumeList.h"
#include "Platform/Storage/DriveInfo.h"
#include "Platform/Storage/DriveScanner.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>

namespace tarvik {

namespace {

/// The same as a scan gives, but that each volume is asked alone, and one that is silent not at all.
std::vector<fs::path> answeringDrives(const Host& host) {
    std::vector<fs::path> found;
    for (fs::path& mountPath : host.volumes->mountPaths()) {
        if (SilentVolumes::hold(host, mountPath)) continue;
        const auto volume = host.volumes->at(mountPath);
        if (volume && volume->isBrowsable.value_or(false)) found.push_back(std::move(mountPath));
    }
    return found;
}

/// Where drives are mounted that a user sees.
std::vector<fs::path> drives(const Host& host) {
    if (!host.silentVolumes.empty()) return answeringDrives(host);
    std::vector<fs::path> found;
    for (DriveInfo& drive : DriveScanner::scan(host)) found.push_back(std::move(drive.mountPath));
    return found;
}

/// To look for the flag that hides an item is to ask it, and one that is silent never answers.
std::vector<std::string> visibleNames(const Host& host, const fs::path& folder) {
    std::vector<std::string> names;
    if (!host.silentVolumes.empty()) {
        names = Files::names(folder);
        std::erase_if(names, [](const std::string& name) { return name.starts_with('.'); });
    } else if (const auto listed = ListedFolder::at(folder)) {
        for (std::size_t index = 0; index < listed->size(); ++index) names.push_back(listed->name(index));
    }
    return names;
}

/// What stands in the folder of volumes, and after that the drives that a system mounts elsewhere.
std::vector<fs::path> places(const Host& host) {
    std::vector<fs::path> found;
    const fs::path volumes = SystemFolders::volumes(host);
    for (const std::string& name : visibleNames(host, volumes)) found.push_back(volumes / name);
    const auto listed = std::ssize(found);
    for (fs::path& mountPath : drives(host))
        if (mountPath.parent_path() != volumes) found.push_back(std::move(mountPath));
    std::sort(found.begin() + listed, found.end());
    return found;
}

}  // namespace

std::vector<fs::path> ExternalAppsRootsDiscovery::roots(const Host& host, const std::vector<fs::path>& extra) {
    std::vector<fs::path> candidates;
    for (const fs::path& place : places(host)) candidates.push_back(AppStorageNames::appsRootOn(place));
    candidates.insert(candidates.end(), extra.begin(), extra.end());
    std::erase_if(candidates, [&](const fs::path& root) { return SilentVolumes::hold(host, root); });
    return ExistingPaths::filter(std::move(candidates));
}

}  // namespace tarvik
