#include "Discovery/AppBundleScanRoots.h"

#include "Discovery/AppBundleEnumerator.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/ListedFolder.h"
#include "Platform/Machine/SystemFolders.h"

#include <cstddef>
#include <utility>

namespace tarvik::AppBundleScanRoots {

std::vector<fs::path> standardApplicationRoots(const Host& host, bool includeSystem) {
    const fs::path applications = SystemFolders::applications(host);
    std::vector<fs::path> roots = {applications};
    if (includeSystem) {
        roots.push_back(applications / "Utilities");
        roots.push_back(SystemFolders::system(host) / "Applications");
    }
    const fs::path own = host.home / "Applications";
    const auto item = Files::infoFollowingLinks(own);
    if (item && item->type == Files::ItemType::folder) roots.push_back(own);
    return roots;
}

std::vector<fs::path> supplementalApplicationSupportRoots(const Host& host, int maxDepth) {
    std::vector<fs::path> roots;
    const fs::path support = host.home / "Library/Application Support";
    const auto folder = ListedFolder::at(support);
    if (!folder) return roots;
    for (std::size_t index = 0; index < folder->size(); ++index) {
        if (folder->type(index) != Files::ItemType::folder) continue;
        fs::path root = support / folder->name(index);
        if (AppBundleEnumerator::holdsBundle(root, maxDepth)) roots.push_back(std::move(root));
    }
    return roots;
}

}  // namespace tarvik::AppBundleScanRoots
