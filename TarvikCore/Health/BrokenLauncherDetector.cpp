#include "Health/BrokenLauncherDetector.h"

#include "Applications/AppClassifier.h"
#include "Discovery/AppBundleEnumerator.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/SilentVolumes.h"
#include "Platform/Text/Text.h"

namespace tarvik::BrokenLauncherDetector {

std::vector<HealthIssue> detect(const Host& host, const fs::path& applicationRoot) {
    std::vector<HealthIssue> issues;
    for (const fs::path& bundle : AppBundleEnumerator::bundles(applicationRoot, 0)) {
        if (SilentVolumes::hold(host, bundle)) continue;
        const auto target = AppClassifier::readLauncherTarget(bundle);
        if (!target || target->empty() || !Text::isValidUtf8(target->native())) continue;
        if (!SilentVolumes::hold(host, *target) && !Files::isMissing(*target)) continue;
        issues.push_back({.kind = HealthIssue::Kind::brokenLauncher,
                          .location = bundle,
                          .target = target,
                          .detail = "Launcher points to a missing app target. The app will not open until the launcher "
                                    "is retargeted, removed, or the app is reinstalled."});
    }
    return issues;
}

}  // namespace tarvik::BrokenLauncherDetector
