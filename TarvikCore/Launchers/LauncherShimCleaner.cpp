#include "Launchers/LauncherShimCleaner.h"

#include "Applications/AppClassifier.h"
#include "Discovery/AppBundleEnumerator.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Machine/TrashCan.h"

#include <string>

namespace tarvik::LauncherShimCleaner {

std::vector<fs::path> cleanupShims(const Host& host, const fs::path& target) {
    const fs::path gone = Files::standardized(target);
    std::vector<fs::path> removed;
    for (const fs::path& folder : {SystemFolders::applications(host), host.home / "Applications"}) {
        for (const std::string& name : Files::names(folder)) {
            if (!AppBundleEnumerator::isBundleName(name)) continue;
            const fs::path item = folder / name;
            const auto opened = AppClassifier::readLauncherTarget(item);
            if (!opened || !opened->is_absolute() || Files::standardized(*opened) != gone) continue;
            ignoringFailure([&] {
                host.trash->moveToTrash(item);
                removed.push_back(item);
            });
        }
    }
    return removed;
}

}  // namespace tarvik::LauncherShimCleaner
