#include "Move/FolderMove.h"

#include "Discovery/AppScanner.h"
#include "Move/MoveRefusal.h"
#include "Move/MoverError.h"
#include "Platform/AppStorageNames.h"
#include "Platform/Files.h"
#include "Platform/SizeCalculator.h"
#include "Platform/SizingService.h"

#include <fmt/format.h>

#include <utility>

namespace tarvik::FolderMove {

namespace {

Failure refusal(std::string sentence) {
    return {"FolderMove", 0, std::move(sentence)};
}

}  // namespace

MoveJob plan(const Host& host, const fs::path& folder, const DriveInfo& drive, const Cancellation& cancellation) {
    const fs::path source = Files::standardized(folder);
    if (!Files::exists(source)) throw refusal("Source folder doesn't exist.");
    if (auto sentence = MoveRefusal::ofFolder(host, source, drive)) throw refusal(*sentence);
    const std::int64_t size = SizingService::size(host, source, cancellation);
    if (cancellation.isCancelled()) throw cancelled();  // The size is only a part of it.
    if (drive.freeBytes < size)
        throw refusal(fmt::format("Need {} but {} has {}.", SizeCalculator::format(size), drive.name,
                                  SizeCalculator::format(drive.freeBytes)));
    return MoveJob(source.filename(), source, AppStorageNames::foldersRootOn(drive.mountPath) / source.filename(),
                   JobStatus::pending(), size, 0);
}

Dialog confirmMove(const MoveJob& job, const DriveInfo& drive) {
    return {fmt::format("Move {} to {}?", job.label, drive.name),
            fmt::format("Total {}. Original location will become a symlink to {}.",
                        SizeCalculator::format(job.bytesTotal), job.destination.native()),
            {"Move", "Cancel"}};
}

fs::path restoreTarget(const Host& host, const fs::path& path) {
    const fs::path link = Files::standardized(path);
    if (!Files::itemExists(link)) throw refusal(fmt::format("Nothing stands at {}.", link.native()));
    auto target = Files::linkText(link);
    if (!target) target = AppScanner::launcherShimTarget(link);
    if (!target)
        throw refusal(fmt::format("{} is not a symlink, so there is nothing to move back.", link.filename().native()));
    if (!Files::exists(*target)) throw MoverError::sourceMissing();
    if (auto sentence = MoveRefusal::ofRestore(host, link, *target)) throw refusal(*sentence);
    return *target;
}

Dialog confirmRestore(const fs::path& link, const fs::path& target) {
    return {fmt::format("Move {} back?", link.filename().native()),
            fmt::format("Moves the contents back from {} and removes the symlink.", target.native()),
            {"Move Back", "Cancel"}};
}

std::string restored(const fs::path& link) {
    return "Restored " + link.filename().native();
}

Failure cancelled() {
    return refusal("Cancelled. Nothing was changed.");
}

}  // namespace tarvik::FolderMove
