#include "HealthRepair/HealthRecheck.h"

#include "Applications/AppClassifier.h"
#include "Applications/LauncherLayout.h"
#include "Discovery/AppScanner.h"
#include "Health/BundleState.h"
#include "Health/InboundLinks.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/SilentVolumes.h"
#include "Platform/Storage/DrivePath.h"
#include "Platform/Storage/DriveScanner.h"
#include "Platform/Storage/SeenDrives.h"

#include <fmt/format.h>

#include <cerrno>
#include <string>
#include <utility>
#include <vector>

namespace tarvik::HealthRecheck {

namespace {

/// Whether the item is a link that leads where it led: to the text of it as it stands, or as a path.
bool isSameLink(const HealthIssue& issue) {
    const auto text = Files::linkText(issue.location);
    if (!text || !issue.target) return text.has_value();
    const fs::path path = issue.location.parent_path() / *text;
    return *text == *issue.target || path == *issue.target || Files::standardized(path) == *issue.target;
}

bool isSameLauncher(const HealthIssue& issue) {
    const auto target = AppClassifier::readLauncherTarget(issue.location);
    return target && target == issue.target && Files::isMissing(*target);
}

bool holds(const HealthIssue& issue, HealthRepairStrategy strategy) {
    using enum HealthRepairStrategy;
    switch (strategy) {
        case removeDangling:
        case repointDangling:
            return isSameLink(issue) && Files::isMissing(issue.location);
        case removeEmpty:
            return isSameLink(issue) && Files::exists(issue.copy()) && bundleState(issue.copy()) != BundleState::whole;
        case reclaimReverted:
        case reSymlinkReverted:
            return Files::exists(issue.location) && !Files::isSymbolicLink(issue.location);
        case removeOrphan:
            return Files::itemExists(issue.location);
        case repairBrokenLauncher:
            return isSameLauncher(issue);
        case forgetMissingTrackedFiles:
            return true;  // It looks at the files again itself, and touches none.
        case repairSpotlightLaunchers:
        case restoreUnsafePrefs:
        case restoreSandboxExternal:
            return isSameLink(issue);
    }
    return false;
}

bool isOnSilentVolume(const Host& host, const HealthIssue& issue) {
    return SilentVolumes::hold(host, issue.location) || (issue.target && SilentVolumes::hold(host, *issue.target));
}

/// Repairs of links that lead nowhere need no drive, nor do launchers.
bool needsDrive(HealthRepairStrategy strategy) {
    using enum HealthRepairStrategy;
    switch (strategy) {
        case removeDangling:
        case repointDangling:
        case repairSpotlightLaunchers:
        case repairBrokenLauncher:
            return false;
        case removeEmpty:
        case reclaimReverted:
        case reSymlinkReverted:
        case removeOrphan:
        case forgetMissingTrackedFiles:
        case restoreUnsafePrefs:
        case restoreSandboxExternal:
            return true;
    }
    return true;
}

[[noreturn]] void refuse(int code, std::string sentence) {
    throw Failure("HealthRepair", code, std::move(sentence));
}

[[noreturn]] void refuseWithoutDrive(const fs::path& copy) {
    refuse(ENODEV, fmt::format("The drive of {} is not connected. Nothing was changed.", copy.filename().native()));
}

[[noreturn]] void refuseChanged(const HealthIssue& issue) {
    refuse(ESTALE, fmt::format("{} is not what it was when it was checked. Nothing was changed.",
                               issue.location.filename().native()));
}

/// The volume that the copy was on when it was checked, if it is there still. Where the system lists none, there is
/// nothing to hold.
std::optional<DriveGuard> heldDrive(const Host& host, const HealthIssue& issue) {
    if (!issue.drive) return std::nullopt;
    const fs::path copy = issue.copy();
    const SeenDrive now = SeenDrives(host).of(copy);
    if (now == *issue.drive) {
        if (now.mountPath.empty()) return std::nullopt;
        auto drive = DriveGuard::ofMarked(host, now.mountPath, now.mark);
        drive.require(Files::isSymbolicLink(copy) ? copy.parent_path() : copy);
        return drive;
    }
    if (now.mountPath == issue.drive->mountPath)
        refuse(ESTALE, fmt::format("Another drive is at {} than when {} was checked. Nothing was changed.",
                                   now.mountPath.native(), copy.filename().native()));
    const fs::path& before = issue.drive->mountPath;
    if (!before.empty() && !DriveScanner::isThere(host, before)) refuseWithoutDrive(copy);
    if (before.empty() || Files::isAtOrBelow(now.mountPath, before))
        refuse(ESTALE, fmt::format("The drive of {} was not connected when it was checked: check again. Nothing was "
                                   "changed.",
                                   copy.filename().native()));
    refuseChanged(issue);
}

/// Refuses what takes a launcher for an application that an updater has put there: the copy on the drive may be the
/// only one of what it stands for.
void requireNoLauncher(const HealthIssue& issue) {
    const std::string name = issue.location.filename();
    if (!Files::itemExists(issue.location / LauncherLayout::targetFile)) return;
    if (const auto opened = AppScanner::launcherShimTarget(issue.location))
        refuse(ESTALE, fmt::format("{} is a launcher, which opens {}. Nothing was changed.", name, opened->native()));
    refuse(EEXIST, fmt::format("{} is a launcher that opens nothing, and {} may be the only copy of its application: "
                               "move the launcher to the Trash and check again. Nothing was changed.",
                               name, issue.copy().native()));
}

/// Refuses to trash what may be whole.
void requireReadable(const HealthIssue& issue) {
    const BundleState state = bundleState(issue.copy());
    if (state == BundleState::unreadable || state == BundleState::unlistable)
        refuse(EACCES, fmt::format("{} can't be read and may be whole. Nothing was changed.", issue.copy().native()));
}

/// Refuses to write through a link.
void requireOwnPlace(const HealthIssue& issue) {
    if (const auto text = Files::linkText(issue.location))
        refuse(EEXIST, fmt::format("{} is only a link to a launcher, at {}: remove the link, or reinstall the app. "
                                   "Nothing was changed.",
                                   issue.location.filename().native(),
                                   Files::standardized(issue.location.parent_path() / *text).native()));
}

/// Refuses what would trash a copy that a link leads to, or could lead to.
void requireUnlinked(const Host& host, const HealthIssue& issue, HealthRepairStrategy strategy) {
    using enum HealthRepairStrategy;
    const fs::path copy = issue.copy();
    const bool isOrphan = strategy == removeOrphan;
    const bool isStale = (strategy == reclaimReverted || strategy == reSymlinkReverted) && issue.target;
    if ((!isOrphan && !isStale) || !Files::itemExists(copy)) return;
    const InboundLinks inbound(host);
    if (inbound.leadTo(copy))
        refuse(EBUSY, fmt::format("{} leads to {}. Nothing was changed.", isOrphan ? "A link" : "Another link",
                                  copy.native()));
    if (const auto& folder = inbound.unreadableFolder())
        refuse(EACCES, fmt::format("{} cannot be read, so a link in it may lead to {}. Nothing was changed.",
                                   folder->native(), copy.filename().native()));
}

}  // namespace

std::optional<DriveGuard> require(const Host& machine, const HealthIssue& issue, HealthRepairStrategy strategy) {
    const Host host = SilentVolumes::noted(machine);
    if (!HealthRepairStrategies::isFor(issue.kind, strategy))
        refuse(EINVAL, fmt::format("{} is no repair for {}.", HealthRepairStrategies::name(strategy),
                                   issue.location.filename().native()));
    if (isOnSilentVolume(host, issue))
        refuse(ETIMEDOUT, fmt::format("{} leads to a drive that does not answer. Nothing was changed.",
                                      issue.location.filename().native()));
    const fs::path copy = issue.copy();
    if (needsDrive(strategy) && DrivePath::absent(host, Files::standardized(copy))) refuseWithoutDrive(copy);
    auto drive = needsDrive(strategy) ? heldDrive(host, issue) : std::nullopt;
    if (!holds(issue, strategy)) refuseChanged(issue);
    if (strategy == HealthRepairStrategy::removeEmpty) requireReadable(issue);
    if (issue.kind == HealthIssue::Kind::reverted) requireNoLauncher(issue);
    if (issue.kind == HealthIssue::Kind::brokenLauncher) requireOwnPlace(issue);
    requireUnlinked(host, issue, strategy);
    return drive;
}

}  // namespace tarvik::HealthRecheck
