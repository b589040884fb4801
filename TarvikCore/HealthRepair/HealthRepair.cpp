#include "HealthRepair/HealthRepair.h"

#include "Copying/HiddenName.h"
#include "Copying/ItemLock.h"
#include "Copying/MoverError.h"
#include "Discovery/AppBundleEnumerator.h"
#include "HealthRepair/BrokenLauncherRepairService.h"
#include "HealthRepair/HealthRecheck.h"
#include "HealthRepair/SandboxRestore.h"
#include "Launchers/LauncherShimCleaner.h"
#include "Launchers/NestedAppLauncherService.h"
#include "Launchers/StaleRootRetarget.h"
#include "Move/MoverEngine.h"
#include "MovePlan/AppManagement.h"
#include "MovePlan/MoveRefusal.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Bundles/RunningAppsDetector.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/TreeObstacle.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/KeptAwake.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Machine/TrashCan.h"
#include "Platform/Machine/VolumeList.h"
#include "Platform/Storage/DriveGuard.h"
#include "Platform/Storage/DrivePath.h"
#include "Platform/Text/Text.h"
#include "Records/HealthManifest.h"
#include "Records/InstallsDB.h"
#include "Records/InstallsDBEntryResolver.h"
#include "Records/InstallsDBWriter.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>

namespace tarvik::HealthRepair {

namespace {

/// Where applications go when nothing tells where they were.
constexpr const char* defaultDrive = "Crucial X9";

[[noreturn]] void refuse(int code, std::string sentence) {
    throw Failure("HealthRepair", code, std::move(sentence));
}

std::string nameOf(const HealthIssue& issue) {
    return issue.location.filename();
}

std::string counted(std::int64_t count, std::string_view one, std::string_view many) {
    return fmt::format("{} {}", count, count == 1 ? one : many);
}

/// What a user would miss: a volume, the home, a folder of the system, the copy of a move that is under way.
void requireMovable(const Host& host, const fs::path& item) {
    if (ItemLock::isHeld(item))
        refuse(EBUSY, fmt::format("{} is being moved. Nothing was changed.", item.filename().native()));
    const fs::path place = Files::resolved(item).value_or(item);
    const auto volumes = host.volumes->mountPaths();
    const bool isVolume = std::any_of(volumes.begin(), volumes.end(),
                                      [&](const fs::path& volume) { return Files::isAtOrBelow(volume, place); });
    if (isVolume || SystemFolders::isImmovable(host, place) || Files::isAtOrBelow(host.home, place))
        refuse(EPERM, fmt::format("{} must stay where it is. Nothing was changed.", place.native()));
}

using Drive = std::optional<DriveGuard>;

/// To the Trash, from the drive that was checked: a torn one may have left a folder, or another drive, at its place.
fs::path trash(const Host& host, const fs::path& item, const Drive& drive) {
    if (drive) drive->require(Files::isSymbolicLink(item) ? item.parent_path() : item);
    return host.trash->moveToTrash(item);
}

std::string shimSentence(const Host& host, const fs::path& target) {
    const auto removed = LauncherShimCleaner::cleanupShims(host, target);
    if (removed.empty()) return {};
    return fmt::format(" Removed {}.", counted(std::ssize(removed), "stale launcher shim", "stale launcher shims"));
}

/// Whether the copy has gone while the folder that held it has not: a killed repair leaves it so.
bool hasGone(const fs::path& copy) {
    return Files::exists(copy.parent_path()) && !Files::itemExists(copy) && Files::isMissing(copy);
}

/// Of a copy that stands on its drive no more, no move is remembered: what bears the application's name later has
/// nothing to do with it.
void forgetMovesTo(const Host& host, const fs::path& copy) {
    if (!hasGone(copy)) return;
    for (const HealthManifestEntry& entry : HealthManifest::load(host)) {
        if (entry.destinationPath != copy) continue;
        HealthManifest::forget(host, entry.sourcePath);
        InstallsDBWriter::recordRestore(host, entry.sourcePath, InstallsDB::defaultPath(host));
    }
}

/// A bundle is not trashed while the link to it has to stay.
void requireRemovable(const fs::path& link) {
    if (const auto obstacle = TreeObstacle::toRemoval(link))
        refuse(obstacle->errorNumber, obstacle->error().description() + ". Nothing was changed.");
}

/// A link among applications may lead to anything.
void requireApplication(const HealthIssue& issue, const fs::path& target) {
    if (AppBundleEnumerator::isBundleName(target.filename().native())) return;
    refuse(EPERM, fmt::format("{} is no application, and stays: remove the link {} if nothing needs it. Nothing was "
                              "changed.",
                              target.native(), issue.location.native()));
}

std::string removeEmpty(const Host& host, const HealthIssue& issue, const Drive& drive) {
    if (issue.target) {
        requireMovable(host, *issue.target);
        requireApplication(issue, *issue.target);
    }
    requireRemovable(issue.location);
    ignoringFailure([&] { Files::removeLink(issue.location); });
    if (issue.target) {
        ignoringFailure([&] { trash(host, *issue.target, drive); });
        forgetMovesTo(host, *issue.target);
    }
    return fmt::format("Cleaned up {}. Reinstall the app.", nameOf(issue));
}

std::string reclaimReverted(const Host& host, const HealthIssue& issue, const Drive& drive) {
    std::string sentence = fmt::format("Reclaimed stale SSD copy of {}.", nameOf(issue));
    if (!issue.target) return sentence;
    requireMovable(host, *issue.target);
    if (!hasGone(*issue.target)) trash(host, *issue.target, drive);
    forgetMovesTo(host, *issue.target);
    return sentence + shimSentence(host, *issue.target);
}

/// The folder on the drive that a reverted application goes to again. The drive must be there: a folder that an absent
/// one has left behind is on the internal disk.
fs::path folderOnDrive(const Host& host, const HealthIssue& issue) {
    if (issue.target) return issue.target->parent_path();
    const fs::path drive = SystemFolders::volumes(host) / defaultDrive;
    const auto volumes = host.volumes->mountPaths();
    if (std::find(volumes.begin(), volumes.end(), drive) == volumes.end())
        refuse(ENODEV, fmt::format("The drive {} is not connected. Nothing was changed.", defaultDrive));
    return AppStorageNames::appsRootOn(drive);
}

/// Whether the removal of the original stopped half-way. Its sentence tells where the complete copy is.
bool hasLostParts(const Failure& failure) {
    const auto* const error = dynamic_cast<const MoverError*>(&failure);
    return error && error->kind() == MoverError::Case::sourceRemoveFailed;
}

std::string whereabouts(const HealthIssue& issue, const std::string& inTrash, bool hasLostParts) {
    const std::string old = fmt::format("old copy from the drive is in the Trash, at {}.", inTrash);
    return hasLostParts ? " The " + old
                        : fmt::format(" {} stays at {}; the {}", nameOf(issue), issue.location.native(), old);
}

std::string reSymlinkReverted(const Host& host, const HealthIssue& issue, const Drive& seen) {
    const fs::path folder = folderOnDrive(host, issue);
    // All that can be told before the copy goes.
    if (const auto reason = MoveRefusal::ofContents(host, issue.location)) refuse(EPERM, *reason);
    if (const auto reason = AppManagement::refusalOf(issue.location)) refuse(EPERM, *reason);
    if (RunningAppsDetector::isRunning(host, issue.location)) throw MoverError::appIsRunning(nameOf(issue));
    const Drive drive = seen ? seen : DriveGuard::ofFolder(folder);
    std::string inTrash;
    if (issue.target && !hasGone(*issue.target)) {
        requireMovable(host, *issue.target);
        inTrash = trash(host, *issue.target, drive);
    }
    try {
        MoverEngine::moveAndLink(host, issue.location, folder, false, {}, {}, drive);
    } catch (const Failure& failure) {
        if (inTrash.empty()) throw;
        throw Failure(failure.domain(), failure.code(),
                      failure.description() + whereabouts(issue, inTrash, hasLostParts(failure)));
    }
    return fmt::format("Re-symlinked {} to SSD.", nameOf(issue));
}

std::string removeOrphan(const Host& host, const HealthIssue& issue, const Drive& drive) {
    // What a link leads to stays.
    if (!Files::isSymbolicLink(issue.location)) requireMovable(host, issue.location);
    trash(host, issue.location, drive);
    forgetMovesTo(host, issue.location);
    return fmt::format("Trashed orphan {}.", nameOf(issue)) + shimSentence(host, issue.location);
}

std::string forgetMissingTrackedFiles(const Host& host, const HealthIssue& issue) {
    if (issue.target) {
        if (const auto entry = InstallsDBEntryResolver::resolve(host, issue.location, *issue.target)) {
            const int count =
                InstallsDBWriter::forgetMissingTrackedFiles(entry->installId, InstallsDB::defaultPath(host));
            return fmt::format("Forgot {} for {}.",
                               counted(count, "stale tracked file entry", "stale tracked file entries"),
                               entry->appName);
        }
    }
    return fmt::format("No setupbook entry found for {}; nothing to forget.", nameOf(issue));
}

std::string repairSpotlightLaunchers(const Host& host, const HealthIssue& issue) {
    const auto count = NestedAppLauncherService::installMissingLaunchers(
        host, issue.location, SystemFolders::applications(host), InstallerRunReporter::silent);
    return fmt::format("Installed/repaired {}.", counted(count, "Spotlight launcher", "Spotlight launchers"));
}

std::string restoreUnsafePrefs(const Host& host, const HealthIssue& issue) {
    const std::string& path = issue.location.native();
    if (path.starts_with(SystemFolders::library(host).native() + "/"))
        return fmt::format(
            "{} is root-owned. Run:\n  ~/.claude/skills/rootferry/rootferry \"$(which tarvik)\" move "
            "restore \"{}\"",
            path, path);
    MoverEngine::restore(host, issue.location);
    return fmt::format("Restored {} to internal disk.", nameOf(issue));
}

/// A launcher whose drive is only away needs that drive, and no other advice.
std::string repairBrokenLauncher(const Host& host, const HealthIssue& issue) {
    const auto drive = issue.target ? DrivePath::absent(host, *issue.target) : std::nullopt;
    if (drive && !BrokenLauncherRepairService::replacementTarget(host, issue.location))
        refuse(ENODEV, fmt::format("{} opens an app on the drive {}, which is not connected: connect it, and the "
                                   "launcher works again. Nothing was changed.",
                                   nameOf(issue), drive->filename().native()));
    return BrokenLauncherRepairService::repair(host, issue.location);
}

std::optional<fs::path> relocatedCopy(const Host& host, const HealthIssue& issue) {
    return issue.target ? StaleRootRetarget::candidate(host, *issue.target) : std::nullopt;
}

std::string repointDangling(const Host& host, const HealthIssue& issue) {
    const auto relocated = relocatedCopy(host, issue);
    if (!relocated) refuse(ENOENT, fmt::format("No relocated copy of {} was found.", nameOf(issue)));
    const fs::path link = HiddenName::forExchangeOf(issue.location);
    Files::createSymbolicLink(link, *relocated);
    try {
        Files::exchange(link, issue.location, HiddenName::forExchangeOf(issue.location));
    } catch (...) {
        ignoringFailure([&] { Files::removeLink(link); });
        throw;
    }
    ignoringFailure([&] { Files::removeLink(link); });
    return fmt::format("Repointed {} to {}.", nameOf(issue), relocated->native());
}

}  // namespace

std::string perform(const Host& host, const HealthIssue& issue, HealthRepairStrategy strategy) {
    using Strategy = HealthRepairStrategy;
    const Drive drive = HealthRecheck::require(host, issue, strategy);
    const KeptAwake awake(host, "What has drifted is being repaired");
    switch (strategy) {
        case Strategy::removeDangling:
            Files::removeLink(issue.location);
            return fmt::format("Removed dead symlink {}.", nameOf(issue));
        case Strategy::removeEmpty:
            return removeEmpty(host, issue, drive);
        case Strategy::reclaimReverted:
            return reclaimReverted(host, issue, drive);
        case Strategy::reSymlinkReverted:
            return reSymlinkReverted(host, issue, drive);
        case Strategy::removeOrphan:
            return removeOrphan(host, issue, drive);
        case Strategy::forgetMissingTrackedFiles:
            return forgetMissingTrackedFiles(host, issue);
        case Strategy::repairSpotlightLaunchers:
            return repairSpotlightLaunchers(host, issue);
        case Strategy::repairBrokenLauncher:
            return repairBrokenLauncher(host, issue);
        case Strategy::restoreUnsafePrefs:
            return restoreUnsafePrefs(host, issue);
        case Strategy::restoreSandboxExternal:
            if (!issue.target) return fmt::format("No target for {}; nothing to restore.", nameOf(issue));
            return SandboxRestore::run(host, issue.location, *issue.target);
        case Strategy::repointDangling:
            return repointDangling(host, issue);
    }
    return {};
}

std::vector<HealthRepairStrategy> choices(const Host& host, const HealthIssue& issue) {
    std::vector<HealthRepairStrategy> found;
    for (const auto& offer : HealthRepairStrategies::offers(issue.kind)) found.push_back(offer.strategy);
    const bool isRelocated = issue.kind == HealthIssue::Kind::dangling && relocatedCopy(host, issue);
    if (isRelocated) found.push_back(HealthRepairStrategy::repointDangling);
    return found;
}

std::optional<HealthRepairStrategy> safeRepair(const Host& host, const HealthIssue& issue) {
    const bool isRelocated = issue.kind == HealthIssue::Kind::dangling && relocatedCopy(host, issue);
    if (isRelocated) return HealthRepairStrategy::repointDangling;
    switch (issue.kind) {
        case HealthIssue::Kind::missingTrackedFiles:
            return HealthRepairStrategy::forgetMissingTrackedFiles;
        case HealthIssue::Kind::missingSpotlightLaunchers:
            return HealthRepairStrategy::repairSpotlightLaunchers;
        case HealthIssue::Kind::brokenLauncher:
            return HealthRepairStrategy::repairBrokenLauncher;
        default:
            return std::nullopt;
    }
}

std::optional<HealthRepairStrategy> onlyRepair(const Host& host, const HealthIssue& issue) {
    if (const auto safe = safeRepair(host, issue)) return safe;
    const auto& offers = HealthRepairStrategies::offers(issue.kind);
    return offers.size() == 1 ? std::optional(offers.front().strategy) : std::nullopt;
}

std::string intent(const Host& host, const HealthIssue& issue, HealthRepairStrategy strategy) {
    using enum HealthRepairStrategy;
    const std::string target = issue.target ? issue.target->native() : std::string();
    switch (strategy) {
        case removeDangling:
            return "remove the link";
        case removeEmpty:
            return issue.target ? fmt::format("remove the link and move {} to the Trash", target) : "remove the link";
        case reclaimReverted:
            return fmt::format("move {} to the Trash", target);
        case reSymlinkReverted:
            return "move it to the drive again, and the old copy there to the Trash";
        case removeOrphan:
            return "move it to the Trash";
        case forgetMissingTrackedFiles:
            return "forget the tracked files that are missing";
        case repairSpotlightLaunchers:
            return "install the launchers that are missing";
        case repairBrokenLauncher:
            return "let it open another copy of its app";
        case restoreUnsafePrefs:
            return fmt::format("bring {} back to its place", target);
        case restoreSandboxExternal:
            return fmt::format("copy {} back to its place", target);
        case repointDangling:
            if (const auto copy = relocatedCopy(host, issue)) return fmt::format("let it lead to {}", copy->native());
            return "let it lead to a copy, of which none is found";
    }
    return {};
}

}  // namespace tarvik::HealthRepair
