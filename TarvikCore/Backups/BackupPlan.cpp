#include "Backups/BackupPlan.h"

#include "Backups/BackupNames.h"
#include "MovePlan/DriveLimits.h"
#include "MovePlan/MoveRefusal.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/WrittenPath.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Storage/DriveGuard.h"
#include "Platform/Storage/DriveScanner.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <map>
#include <thread>

namespace tarvik::BackupPlan {

namespace {

using Refusal = std::optional<std::string>;

Failure failure(std::string sentence) {
    return {"BackupPlan", 0, std::move(sentence)};
}

fs::path withoutLinks(const fs::path& path) {
    return Files::resolved(path).value_or(path);
}

Refusal bySource(const fs::path& source, const fs::path& backups) {
    if (const auto target = Files::linkText(source))
        return fmt::format("{} is a symlink to {}. Name what it leads to.", source.native(), target->native());
    if (!Files::itemExists(source)) return fmt::format("Nothing stands at {}.", source.native());
    if (Files::isAtOrBelow(withoutLinks(backups.parent_path()) / backups.filename(), withoutLinks(source)))
        return fmt::format("{} holds the backups themselves and can't be backed up there.", source.native());
    return std::nullopt;
}

/// What tells names apart also on a drive that takes no notice of case and normal forms.
std::string keyOf(const fs::path& source) {
    return Text::nameKey(BackupNames::ofSource(source));
}

Refusal byNames(const std::vector<fs::path>& sources) {
    std::map<std::string, const fs::path*> taken;
    for (const auto& source : sources) {
        const auto key = keyOf(source);
        if (key == "backup.json")
            return fmt::format("A backup keeps the name {} for itself. Back up the folder that holds {}.",
                               BackupNames::ofSource(source), source.native());
        const auto [other, isFree] = taken.emplace(key, &source);
        if (!isFree)
            return fmt::format("{} and {} would both bear the name {}. Back them up one after the other.",
                               other->second->native(), source.native(), BackupNames::ofSource(source));
    }
    return std::nullopt;
}

void throwIf(const Refusal& refusal) {
    if (refusal) throw failure(*refusal);
}

/// @throws Failure when the folder does not stand on the drive; one that has just been made elsewhere is taken away
/// again.
void requireOn(const DriveGuard& drive, const fs::path& folder) {
    if (!drive.holds(folder)) ignoringFailure([&] { Files::removeEmptyFolder(folder); });
    drive.require(folder);
}

/// Makes the folder of this second or of one of the next. Two backups in one folder would set aside each other's
/// copies.
fs::path claimedFolder(const Host& host, const fs::path& mountPath, const DriveGuard& drive) {
    constexpr auto pause = std::chrono::milliseconds(20);
    constexpr int pausesInTwoSeconds = 100;
    const auto root = AppStorageNames::backupsRootOn(mountPath);
    Files::createFolder(root);
    for (int turn = 0; turn <= pausesInTwoSeconds; ++turn) {
        if (turn > 0) std::this_thread::sleep_for(pause);
        requireOn(drive, root);
        fs::path folder = BackupService::folderAt(mountPath, host.now());
        if (!Files::createNewFolder(folder)) continue;
        requireOn(drive, folder);
        return folder;
    }
    throw failure("Other backups are being made on this drive. Try again later.");
}

/// Fills the claimed folder. When that fails and nothing is in it, it is removed.
BackupRecord madeIn(const Host& host, const fs::path& folder, const DriveGuard& drive, const Plan& plan,
                    const BackupService::ProgressCallback& progress, const BackupService::StopRequest& isAskedToStop) {
    try {
        return BackupService::createIn(host, folder, plan.sources, drive, progress, isAskedToStop);
    } catch (...) {
        ignoringFailure([&] { Files::removeEmptyFolder(folder); });
        throw;
    }
}

}  // namespace

Plan plan(const Host& host, const std::vector<fs::path>& paths, const DriveInfo& drive) {
    Plan plan{.drive = drive, .driveMark = DriveScanner::markOf(host, drive.mountPath).value_or(std::string())};
    for (const auto& path : paths) {
        const auto source = WrittenPath::asStored(Files::standardized(path));
        if (std::find(plan.sources.begin(), plan.sources.end(), source) == plan.sources.end())
            plan.sources.push_back(source);
    }
    const auto root = withoutLinks(drive.mountPath);
    if (const auto elsewhere = MoveRefusal::placeOffDrive(root, AppStorageNames::backupsRootOn(root)))
        throw failure(fmt::format("What is backed up on {} would land in {}, which is not on that drive.", drive.name,
                                  elsewhere->native()));
    for (const auto& source : plan.sources) throwIf(bySource(source, AppStorageNames::backupsRootOn(drive.mountPath)));
    throwIf(byNames(plan.sources));
    for (const auto& source : plan.sources) throwIf(DriveLimits::refusal(source, drive));
    for (const auto& source : plan.sources) throwIf(MoveRefusal::ofBackup(host, source, plan.leftOut));
    for (const auto& source : plan.sources) plan.bytesTotal += SizeCalculator::size(host, source);
    throwIf(MoveRefusal::ofSpace(plan.bytesTotal, drive));
    return plan;
}

Dialog confirm(const Plan& plan) {
    return {fmt::format("Back up {} to {}?", Text::counted(std::ssize(plan.sources), "item"), plan.drive.name),
            fmt::format("Total {}. Copies go to {}. The originals stay as they are.",
                        SizeCalculator::format(plan.bytesTotal),
                        AppStorageNames::backupsRootOn(plan.drive.mountPath).native()),
            {"Back Up", "Cancel"},
            plan.leftOut};
}

BackupRecord run(const Host& host, const Plan& plan, const BackupService::ProgressCallback& progress,
                 const BackupService::StopRequest& isAskedToStop) {
    const auto drive = DriveGuard::ofMarked(host, plan.drive.mountPath, plan.driveMark);
    auto record = madeIn(host, claimedFolder(host, plan.drive.mountPath, drive), drive, plan, progress, isAskedToStop);
    for (const auto& source : plan.sources)
        if (!Files::itemExists(record.rootPath / BackupNames::ofSource(source)))
            throw failure(fmt::format("{} was gone when its turn came: the backup in {} does not hold it.",
                                      source.native(), record.rootPath.native()));
    return record;
}

std::string done(const Plan& plan, const BackupRecord& record) {
    return fmt::format("Backed up {} to {}", Text::counted(std::ssize(plan.sources), "item"), record.rootPath.native());
}

std::optional<std::string> remark(const BackupRecord& record) {
    if (record.backupFileCount == record.sourceFileCount) return std::nullopt;
    return fmt::format("The folders held {}, their copies hold {}.", Text::counted(record.sourceFileCount, "file"),
                       record.backupFileCount);
}

}  // namespace tarvik::BackupPlan
