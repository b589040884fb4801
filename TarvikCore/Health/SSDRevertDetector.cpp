#include "Health/SSDRevertDetector.h"

#include "Discovery/AppBundleEnumerator.h"
#include "Discovery/AppScanner.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/SystemFolders.h"

namespace tarvik::SSDRevertDetector {

Result detect(const Host& host, const std::vector<fs::path>& appsRoots, const std::set<std::string>& realAppNames,
              const HealthSizes& sizes) {
    Result result;
    for (const fs::path& root : appsRoots) {
        for (const fs::path& copy : AppBundleEnumerator::bundles(root, 0)) {
            if (!realAppNames.contains(copy.filename())) continue;
            const fs::path local = Files::standardized(SystemFolders::applications(host) / copy.filename());
            result.handledSources.insert(local);
            if (AppScanner::launcherShimTarget(local)) continue;  // It opens what was moved, and stands for it.
            result.issues.push_back(
                {.kind = HealthIssue::Kind::reverted,
                 .location = local,
                 .target = copy,
                 .detail = "An updater replaced the symlink with a real bundle on internal disk. SSD copy is now "
                           "orphaned."});
        }
    }
    sizes.fill(result.issues, [](const HealthIssue& issue) -> const fs::path& { return *issue.target; });
    return result;
}

}  // namespace tarvik::SSDRevertDetector
