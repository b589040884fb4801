#include "MovePlan/MoveRefusal.h"

#include "Platform/Files/Files.h"
#include "Platform/Files/TreeObstacle.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/FullDiskAccess.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Machine/VolumeList.h"
#include "Platform/Storage/SizeCalculator.h"

#include <fmt/format.h>

#include <set>

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
    if (Files::isAtOrBelow(folder, mountPath)) return fmt::format("{} is on {} already.", name, drive.name);
    if (Files::isAtOrBelow(mountPath, folder))
        return fmt::format("{} holds the target drive {} and can't be moved to it.", folder.native(), drive.name);
    return offDrive(drive, mountPath, AppStorageNames::foldersRootOn(mountPath));
}

Refusal bySystem(const Host& host, const fs::path& folder) {
    const fs::path home = Files::resolved(host.home).value_or(host.home);
    if (folder == home) return "The home folder can't be moved.";
    if (Files::isAtOrBelow(home, folder))
        return fmt::format("{} holds the home folder and can't be moved.", folder.native());
    if (SystemFolders::isImmovable(host, folder))
        return fmt::format("{} belongs to the system and can't be moved.", folder.native());
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

Refusal byContents(const fs::path& folder, const std::optional<TreeObstacle>& obstacle) {
    if (!obstacle) return std::nullopt;
    const std::string name = folder.filename();
    const std::string place = obstacle->path.native();
    switch (obstacle->kind) {
        case TreeObstacle::Kind::mountedVolume:
            return fmt::format("{} can't be moved: another volume is mounted at {}.", name, place);
        case TreeObstacle::Kind::sealedFolder:
            return fmt::format("{} can't be moved: nothing may be taken out of {} ({}).", name, place,
                               systemErrorText(obstacle->errorNumber));
        case TreeObstacle::Kind::lockedItem:
            return fmt::format("{} can't be moved: {} is locked ({}).", name, place,
                               systemErrorText(obstacle->errorNumber));
        case TreeObstacle::Kind::foreignItem:
            return fmt::format(
                "{} can't be moved: {} belongs to another user, and only its owner may take it away ({}).", name, place,
                systemErrorText(obstacle->errorNumber));
        case TreeObstacle::Kind::socket:
            return fmt::format("{} can't be moved: {} is a socket, which no copy can hold.", name, place);
        case TreeObstacle::Kind::unreadable:
            break;
    }
    return fmt::format("{} can't be moved as a whole: {} can't be read ({}).", name, place,
                       systemErrorText(obstacle->errorNumber));
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
    const auto obstacle = TreeObstacle::toMove(folder);
    if (obstacle && obstacle->kind == TreeObstacle::Kind::unreadable)
        if (auto refusal = FullDiskAccess::refusalOf(host, folder, obstacle->path, obstacle->errorNumber))
            return refusal;
    return byContents(folder, obstacle);
}

std::optional<std::string> ofContents(const fs::path& item) {
    return Files::exists(item) ? byContents(item, TreeObstacle::toMove(item)) : std::nullopt;
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
    return byContents(resolved, TreeObstacle::toRemoval(resolved));
}

}  // namespace tarvik::MoveRefusal
