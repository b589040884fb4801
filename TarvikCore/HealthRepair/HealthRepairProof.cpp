#include "HealthRepair/HealthRepairProof.h"

#include "Applications/AppClassifier.h"
#include "Health/TrackedFilesChecker.h"
#include "Launchers/NestedAppLauncherService.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/SystemFolders.h"
#include "Records/InstallsDBEntryResolver.h"

#include <algorithm>

namespace tarvik::HealthRepairProof {

namespace {

/// Not with its drive: the folder that held it is there.
bool hasTargetGone(const HealthIssue& issue) {
    return issue.target && !Files::itemExists(issue.copy()) && Files::exists(issue.copy().parent_path());
}

bool isBack(const HealthIssue& issue) {
    return Files::itemExists(issue.location) && !Files::isSymbolicLink(issue.location);
}

bool leadsSomewhere(const HealthIssue& issue) {
    return Files::isSymbolicLink(issue.location) && Files::exists(issue.location);
}

/// Without a known copy the application has gone to the usual place.
bool leadsToCopy(const HealthIssue& issue) {
    const auto copy = Files::infoFollowingLinks(issue.copy());
    return leadsSomewhere(issue) && Files::isSameItem(Files::infoFollowingLinks(issue.location), copy);
}

/// What a link leads to is another launcher.
bool opensSomething(const fs::path& launcher) {
    if (Files::isSymbolicLink(launcher)) return false;
    const auto target = AppClassifier::readLauncherTarget(launcher);
    return target && Files::exists(*target);
}

/// Whether the database can be asked: one that cannot be read tells of no missing file.
bool isKnownToSetupbook(const Host& host, const HealthIssue& issue) {
    return InstallsDBEntryResolver::resolve(host, issue.location, *issue.target).has_value();
}

bool hasAllLaunchers(const Host& host, const fs::path& folderLink) {
    const auto missing = NestedAppLauncherService::missingCandidates(host, SystemFolders::applications(host));
    return std::none_of(missing.begin(), missing.end(),
                        [&](const NestedAppLauncherCandidate& each) { return each.folderLink == folderLink; });
}

}  // namespace

bool isMended(const Host& host, const HealthIssue& issue, HealthRepairStrategy strategy) {
    using enum HealthRepairStrategy;
    switch (strategy) {
        case removeDangling:
        case removeOrphan:
            return !Files::itemExists(issue.location);
        case removeEmpty:
            return !Files::itemExists(issue.location) && (!issue.target || hasTargetGone(issue));
        case reclaimReverted:
            return hasTargetGone(issue);
        case reSymlinkReverted:
            return leadsToCopy(issue);
        case repointDangling:
            return leadsSomewhere(issue);
        case forgetMissingTrackedFiles:
            return issue.target && isKnownToSetupbook(host, issue) &&
                   !TrackedFilesChecker::check(host, issue.location, *issue.target);
        case repairSpotlightLaunchers:
            return hasAllLaunchers(host, issue.location);
        case repairBrokenLauncher:
            return opensSomething(issue.location);
        case restoreUnsafePrefs:
        case restoreSandboxExternal:
            return isBack(issue);
    }
    return false;
}

}  // namespace tarvik::HealthRepairProof
