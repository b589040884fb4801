#include "Health/OrphanedBundleDetector.h"

#include "Discovery/AppBundleEnumerator.h"
#include "Platform/Files/Files.h"
#include "Platform/Storage/SizeCalculator.h"

#include <fmt/format.h>

namespace tarvik::OrphanedBundleDetector {

std::vector<HealthIssue> detect(const std::vector<fs::path>& appsRoots, const std::set<fs::path>& linkedTargets,
                                const std::set<std::string>& realAppNames, const HealthSizes& sizes) {
    std::vector<HealthIssue> issues;
    for (const fs::path& root : appsRoots)
        for (const fs::path& bundle : AppBundleEnumerator::bundles(root, 0))
            if (!linkedTargets.contains(Files::standardized(bundle)) && !realAppNames.contains(bundle.filename()))
                issues.push_back({.kind = HealthIssue::Kind::orphan, .location = bundle});
    sizes.fill(issues, [](const HealthIssue& issue) -> const fs::path& { return issue.location; });
    for (HealthIssue& issue : issues)
        issue.detail =
            fmt::format("Bundle on SSD with no inbound symlink. Wasting {}.", SizeCalculator::format(issue.sizeBytes));
    return issues;
}

}  // namespace tarvik::OrphanedBundleDetector
