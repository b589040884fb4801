#include "MovePlan/FolderMove.h"

#include "Copying/Leftovers.h"
#include "MovePlan/DriveLimits.h"
#include "MovePlan/MoveRefusal.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/WrittenPath.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Storage/DriveScanner.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Storage/SizingService.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <utility>

namespace tarvik::FolderMove {

namespace {

Failure refusal(std::string sentence) {
    return {"FolderMove", 0, std::move(sentence)};
}

/// Where the space may have gone: the next move would clear it away, but has no room to begin.
std::string leftoversOn(const Host& host, const DriveInfo& drive) {
    const fs::path folder = AppStorageNames::foldersRootOn(drive.mountPath);
    std::int64_t size = 0;
    for (const fs::path& copy : Leftovers::copiesIn(folder)) size += SizingService::size(host, copy);
    if (size == 0) return {};
    return fmt::format(" An interrupted move has left {} in {}, under a name that begins with .tarvik-moving-.",
                       SizeCalculator::format(size), folder.native());
}

}  // namespace

MoveJob plan(const Host& host, const fs::path& folder, const DriveInfo& drive, const Cancellation& cancellation) {
    const fs::path source = WrittenPath::meant(folder);
    if (!Files::exists(source)) throw refusal("Source folder doesn't exist.");
    if (auto sentence = MoveRefusal::ofFolder(host, source, drive)) throw refusal(*sentence);
    const std::int64_t size = SizingService::size(host, source, cancellation);
    if (cancellation.isCancelled()) throw cancelled();  // The size is only a part of it.
    if (auto sentence = MoveRefusal::ofSpace(size, drive)) throw refusal(*sentence + leftoversOn(host, drive));
    MoveJob job(source.filename(), source, AppStorageNames::foldersRootOn(drive.mountPath) / source.filename(),
                JobStatus::pending(), size, 0);
    job.driveMark = DriveScanner::markOf(host, drive.mountPath).value_or(std::string());
    job.drive = drive;
    return job;
}

Dialog confirmMove(const MoveJob& job, const DriveInfo& drive) {
    Dialog question{fmt::format("Move {} to {}?", job.label, drive.name),
                    fmt::format("Total {}. Original location will become a symlink to {}.",
                                SizeCalculator::format(job.bytesTotal), job.destination.native()),
                    {"Move", "Cancel"},
                    {fmt::format("From {}", job.source.native())}};
    for (auto& sentence : DriveLimits::warnings(drive)) question.details.push_back(std::move(sentence));
    return question;
}

std::string moved(const MoveJob& job) {
    return fmt::format("Moved {} to {}.", job.label, job.destination.native());
}

Failure cancelled() {
    return refusal("Cancelled. Nothing was changed.");
}

}  // namespace tarvik::FolderMove
