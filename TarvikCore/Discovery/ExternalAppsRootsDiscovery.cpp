#include "Discovery/ExternalAppsRootsDiscovery.h"

#include "Platform/Files/ExistingPaths.h"
#include "Platform/Files/ListedFolder.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Storage/DriveInfo.h"
#include "Platform/Storage/DriveScanner.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace tarvik {

namespace {

/// What stands in the folder of volumes, and after that the drives that a system mounts elsewhere.
std::vector<fs::path> places(const Host& host) {
    std::vector<fs::path> found;
    const fs::path volumes = SystemFolders::volumes(host);
    if (const auto folder = ListedFolder::at(volumes))
        for (std::size_t index = 0; index < folder->size(); ++index) found.push_back(volumes / folder->name(index));
    const auto listed = std::ssize(found);
    for (DriveInfo& drive : DriveScanner::scan(host))
        if (drive.mountPath.parent_path() != volumes) found.push_back(std::move(drive.mountPath));
    std::sort(found.begin() + listed, found.end());
    return found;
}

}  // namespace

std::vector<fs::path> ExternalAppsRootsDiscovery::roots(const Host& host, const std::vector<fs::path>& extra) {
    std::vector<fs::path> candidates;
    for (const fs::path& place : places(host)) candidates.push_back(AppStorageNames::appsRootOn(place));
    candidates.insert(candidates.end(), extra.begin(), extra.end());
    return ExistingPaths::filter(std::move(candidates));
}

}  // namespace tarvik
