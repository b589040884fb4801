#include "Discovery/ExternalAppsRootsDiscovery.h"

#include "Platform/AppStorageNames.h"
#include "Platform/ExistingPaths.h"
#include "Platform/ListedFolder.h"
#include "Platform/SystemFolders.h"

#include <cstddef>
#include <utility>

namespace tarvik {

std::vector<fs::path> ExternalAppsRootsDiscovery::roots(const Host& host, const std::vector<fs::path>& extra) {
    std::vector<fs::path> candidates;
    const fs::path volumes = SystemFolders::volumes(host);
    if (const auto folder = ListedFolder::at(volumes))
        for (std::size_t index = 0; index < folder->size(); ++index)
            candidates.push_back(AppStorageNames::appsRootOn(volumes / folder->name(index)));
    candidates.insert(candidates.end(), extra.begin(), extra.end());
    return ExistingPaths::filter(std::move(candidates));
}

}  // namespace tarvik
