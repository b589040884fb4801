#include "MovePlan/MoveRefusal.h"

#include "MovePlan/DriveLimits.h"
#include "MovePlan/ObstacleText.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/TreeObstacle.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/FullDiskAccess.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Machine/VolumeList.h"
#include "Platform/Storage/DriveScanner.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <iterator>
#include <set>
#include <string_view>

namespace tarvik::MoveRefusal {

namespace {

using Refusal = std::optional<std::string>;

Refusal byKind(const fs::path& folder) {
    if (const auto target = Files::linkText(folder)) return alreadyALink(folder, *target);
    if (!Files::isFolder(folder)) return notAFolder(folder);
    return std::nullopt;
}

std::string readOnly(const DriveInfo& drive) {
    return fmt::format("{} is read-only. Choose a drive that can be written to.", drive.name);
}

/// `mountPath` with all links resolved.
Refusal offDrive(const DriveInfo& drive, const fs::path& mountPath, const fs::path& place) {
    const auto elsewhere = placeOffDrive(mountPath, place);
    if (!elsewhere) return std::nullopt;
    return fmt::format("What is moved to {} would land in {}, which is not on that drive.", drive.name,
                       elsewhere->native());
}

/// `folder` and `mountPath` with all links resolved.
Refusal byDrive(const fs::path& folder, const fs::path& mountPath, const DriveInfo& drive) {
    const std::string name = folder.filename();
    if (!drive.isWritable) return readOnly(drive);
    if (Files::isItemAtOrBelow(folder, mountPath)) return fmt::format("{} is on {} already.", name, drive.name);
    if (Files::isItemAtOrBelow(mountPath, folder))
        return fmt::format("{} holds the target drive {} and can't be moved to it.", folder.native(), drive.name);
    return offDrive(drive, mountPath, AppStorageNames::foldersRootOn(mountPath));
}

Refusal bySystem(const Host& host, const fs::path& folder) {
    const fs::path home = Files::resolved(host.home).value_or(host.home);
    if (folder == home || Files::isSameItem(Files::info(folder), Files::info(home)))
        return "The home folder can't be moved.";
    if (Files::isItemAtOrBelow(home, folder))
        return fmt::format("{} holds the home folder and can't be moved.", folder.native());
    if (SystemFolders::isImmovable(host, folder))
        return fmt::format("{} belongs to the system and can't be moved.", folder.native());
    return std::nullopt;
}

/// The name of the drive on which `folder` is the root of all that was moved there; nothing for any other folder.
std::optional<std::string> driveOfExternalRoot(const Host& host, const fs::path& folder) {
    if (Text::nameKey(folder.filename().native()) != Text::nameKey(AppStorageNames::externalRoot)) return std::nullopt;
    const auto parent = Files::info(folder.parent_path());
    for (const Volume& volume : host.volumes->mounted())
        if (Files::isSameItem(Files::infoFollowingLinks(volume.mountPath), parent))
            return volume.name.value_or(volume.mountPath.filename().native());
    return std::nullopt;
}

/// What was moved once has a link that leads to it: a second one in its place would make the first useless.
Refusal byEarlierMove(const Host& host, const fs::path& folder) {
    for (fs::path root = folder; root != root.parent_path(); root = root.parent_path()) {
        const auto drive = driveOfExternalRoot(host, root);
        if (!drive) continue;
        const auto levels = folder.lexically_relative(root);
        const bool holdsMany = folder == root || std::distance(levels.begin(), levels.end()) == 1;
        if (holdsMany)
            return fmt::format("{} holds what has been moved to {} and can't be moved itself.", folder.native(),
                               *drive);
        return fmt::format("{} has been moved to {} already. Move it back first.", folder.filename().native(), *drive);
    }
    return std::nullopt;
}

/// Neither what a rooted machine is nor what it has mounted.
Refusal byMachine(const Host& host, const fs::path& item) {
    const auto holdsIt = [&](const fs::path& folder) {
        return Files::isAtOrBelow(item, Files::resolved(folder).value_or(folder));
    };
    if (holdsIt(host.root) || holdsIt(host.home)) return std::nullopt;
    for (const Volume& volume : host.volumes->mounted())
        if (holdsIt(volume.mountPath)) return std::nullopt;
    return fmt::format("{} is not on the machine in {}.", item.native(), host.root.native());
}

Refusal byContents(const Host& host, const fs::path& item, const std::optional<TreeObstacle>& obstacle,
                   std::string_view done = "moved") {
    if (!obstacle) return std::nullopt;
    if (obstacle->kind == TreeObstacle::Kind::unreadable)
        if (auto refusal = FullDiskAccess::refusalOf(host, item, obstacle->path, obstacle->errorNumber, done))
            return refusal;
    return ObstacleText::of(item, *obstacle, done);
}

/// Where no link can be made, none can take the place of what has gone.
Refusal byOwnVolume(const Host& host, const fs::path& item) {
    // The list of volumes may take its time. Every home stands on one that holds links.
    const auto home = Files::infoFollowingLinks(host.home);
    const auto folder = Files::infoFollowingLinks(item.parent_path());
    if (home && folder && home->device == folder->device) return std::nullopt;
    const auto volume = DriveScanner::holding(host, item);
    if (!volume || volume->keepsLinks != false) return std::nullopt;
    return fmt::format("{} can't be moved: a symlink would have to take its place, and {} holds none{}.",
                       item.filename().native(), volume->name,
                       volume->filesystem ? fmt::format(" ({})", *volume->filesystem) : std::string());
}

}  // namespace

std::optional<std::string> ofDriveForJobs(const DriveInfo& drive, const std::vector<MoveJob>& jobs) {
    const auto mountPath = Files::resolved(drive.mountPath);
    if (!mountPath) return std::nullopt;
    if (!drive.isWritable) return readOnly(drive);
    std::set<fs::path> folders;
    for (const MoveJob& job : jobs) folders.insert(job.destination.parent_path());
    for (const fs::path& folder : folders)
        if (auto refusal = offDrive(drive, *mountPath, *mountPath / folder.lexically_relative(drive.mountPath)))
            return refusal;
    return std::nullopt;
}

std::optional<std::string> ofSpace(std::int64_t totalBytes, const DriveInfo& drive) {
    if (totalBytes <= drive.freeBytes) return std::nullopt;
    return fmt::format("Need {} but {} has {}.", SizeCalculator::format(totalBytes), drive.name,
                       SizeCalculator::format(drive.freeBytes));
}

std::optional<fs::path> placeOffDrive(const fs::path& mountPath, const fs::path& place) {
    fs::path deepest = place;
    while (!Files::itemExists(deepest) && deepest != mountPath) deepest = deepest.parent_path();
    const fs::path real = Files::resolved(deepest).value_or(deepest);
    const auto there = Files::info(real);
    const auto drive = Files::info(mountPath);
    const bool isOnDrive = Files::isAtOrBelow(real, mountPath) && there && drive && there->device == drive->device;
    return isOnDrive ? std::nullopt : std::optional(real);
}

std::string alreadyALink(const fs::path& link, const fs::path& target) {
    return fmt::format("{} is already a symlink to {}.", link.filename().native(), target.native());
}

std::string notAFolder(const fs::path& item) {
    return fmt::format("{} is not a folder. Choose a folder.", item.filename().native());
}

std::optional<std::string> ofFolder(const Host& host, const fs::path& folder, const DriveInfo& drive) {
    if (auto refusal = byKind(folder)) return refusal;
    const fs::path resolved = Files::resolved(folder).value_or(folder);
    const fs::path mountPath = Files::resolved(drive.mountPath).value_or(drive.mountPath);
    if (resolved == mountPath)
        return fmt::format("{} is the target drive itself and can't be moved to it.", drive.name);
    if (auto refusal = bySystem(host, resolved)) return refusal;
    if (auto refusal = byMachine(host, resolved)) return refusal;
    if (auto refusal = byDrive(resolved, mountPath, drive)) return refusal;
    if (auto refusal = byEarlierMove(host, resolved)) return refusal;
    if (auto refusal = byOwnVolume(host, folder)) return refusal;
    if (auto refusal = DriveLimits::refusal(folder, drive)) return refusal;
    return byContents(host, folder, TreeObstacle::toMove(folder));
}

std::optional<std::string> ofPlace(const Host& host, const fs::path& resolvedItem) {
    return byMachine(host, resolvedItem);
}

std::optional<std::string> ofContents(const Host& host, const fs::path& item) {
    if (!Files::exists(item)) return std::nullopt;
    if (auto refusal = byOwnVolume(host, item)) return refusal;
    return byContents(host, item, TreeObstacle::toMove(item));
}

std::optional<std::string> ofBackup(const Host& host, const fs::path& item, std::vector<std::string>& leftOut) {
    std::optional<TreeObstacle> first;
    std::int64_t count = 0;
    const auto obstacle = TreeObstacle::toBackup(item, [&](const TreeObstacle& found) {
        if (!first || found.path < first->path) first = found;
        ++count;
    });
    if (first) leftOut.push_back(ObstacleText::ofLeftOut(item, *first, count));
    return byContents(host, item, obstacle, "backed up");
}

std::optional<std::string> ofRestore(const Host& host, const fs::path& link, const fs::path& target) {
    const fs::path resolved = Files::resolved(target).value_or(target);
    const fs::path goal = Files::resolved(link.parent_path()).value_or(link.parent_path()) / link.filename();
    if (auto refusal = bySystem(host, resolved)) return refusal;
    for (const fs::path& item : {goal, resolved})
        if (auto refusal = byMachine(host, item)) return refusal;
    if (Files::isAtOrBelow(goal, resolved))
        return fmt::format("{} holds the symlink itself and can't be moved into its place.", target.native());
    if (Files::isFolder(resolved)) {
        const auto item = Files::info(resolved);
        const auto parent = Files::info(resolved.parent_path());
        if (item && parent && item->device != parent->device)
            return fmt::format("{} is a whole volume and can't be moved.", target.native());
    }
    // Within one volume it is renamed, and all that is in it comes along.
    const auto own = Files::info(resolved);
    const auto folder = Files::info(goal.parent_path());
    const bool isRenamed = own && folder && own->device == folder->device;
    return byContents(host, resolved, isRenamed ? TreeObstacle::toRemoval(resolved) : TreeObstacle::toReturn(resolved));
}

}  // namespace tarvik::MoveRefusal
