#include "Health/ManifestRevertDetector.h"

#include "Platform/Files/Files.h"
#include "Platform/Machine/SilentVolumes.h"
#include "Platform/Text/Text.h"
#include "Records/HealthManifest.h"

#include <fmt/format.h>

namespace tarvik::ManifestRevertDetector {

std::vector<HealthIssue> detect(const Host& host, const std::set<fs::path>& symlinkLocations,
                                const std::set<fs::path>& alreadyReverted, const HealthSizes& sizes) {
    std::vector<HealthIssue> issues;
    for (const HealthManifestEntry& entry : HealthManifest::load(host)) {
        const fs::path& source = entry.sourcePath;
        if (alreadyReverted.contains(source) || symlinkLocations.contains(source)) continue;
        // What the user has removed is no finding.
        if (SilentVolumes::hold(host, source) || !Files::exists(source) || Files::isSymbolicLink(source)) continue;
        issues.push_back({.kind = HealthIssue::Kind::reverted,
                          .location = source,
                          .target = entry.destinationPath,
                          .detail = fmt::format("Manifest says this was symlinked to SSD on {}. It's now a real bundle "
                                                "on internal disk and the SSD copy is gone.",
                                                Text::date(entry.movedAt))});
    }
    sizes.fill(issues, [](const HealthIssue& issue) -> const fs::path& { return issue.location; });
    return issues;
}

}  // namespace tarvik::ManifestRevertDetector
