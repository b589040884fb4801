#include "MovePlan/MoveRun.h"

#include "Discovery/AppBundleEnumerator.h"
#include "Discovery/AppScanner.h"
#include "Move/MoverEngine.h"
#include "MovePlan/AppManagement.h"
#include "MovePlan/DriveLimits.h"
#include "MovePlan/MoveRefusal.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Basics/Notify.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/KeptAwake.h"
#include "Platform/Storage/DriveGuard.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace tarvik::MoveRun {

namespace {

/// A folder that it stands in may have been moved since the user was asked: the copy on the drive would move then.
bool standsOnDriveByNow(const Host& host, const fs::path& source, const fs::path& drivePath) {
    if (AppScanner::isSymbolicLinkOrInsideOne(host, source)) return true;
    const auto real = Files::resolved(source);
    return real && Files::isAtOrBelow(*real, Files::resolved(drivePath).value_or(drivePath));
}

JobStatus outcomeOf(const Host& host, const MoveJob& job, std::size_t index, const fs::path& drivePath,
                    bool quitRunning, const JobStatusCallback& status, const JobProgressCallback& progress,
                    std::optional<std::string>& kept) {
    try {
        const auto drive = DriveGuard::ofMarked(host, drivePath, job.driveMark);
        // Another Tarvik may have been faster; the link would only be moved itself.
        if (const auto target = Files::linkText(job.source))
            return JobStatus::failed(MoveRefusal::alreadyALink(job.source, *target));
        if (standsOnDriveByNow(host, job.source, drivePath))
            return JobStatus::failed(
                fmt::format("{} stays: it has been moved by now.", job.source.filename().native()));
        if (job.drive)
            if (auto refusal = DriveLimits::refusal(job.source, *job.drive))
                return JobStatus::failed(std::move(*refusal));
        if (auto refusal = MoveRefusal::ofContents(host, job.source)) return JobStatus::failed(std::move(*refusal));
        kept = AppManagement::refusalOf(job.source);
        if (kept) return JobStatus::failed(*kept);
        notify(status, index, JobStatus::copying(0));
        MoverEngine::moveAndLink(
            host, job.source, job.destination.parent_path(), quitRunning,
            [&](const JobStatus& reached) { notify(status, index, reached); },
            [&](std::int64_t copied, std::int64_t total) {
                notify(progress, index, ByteProgress{copied, total});
            },
            drive);
        return JobStatus::done();
    } catch (const std::exception& failure) {
        return JobStatus::failed(failure.what());
    }
}

}  // namespace

void run(const Host& host, const std::vector<MoveJob>& jobs, const fs::path& drivePath, bool quitRunning,
         const JobStatusCallback& status, const JobProgressCallback& progress, const Cancellation& stopAfterItem) {
    const KeptAwake awake(host, "Items are being moved to a drive");
    // Why the system keeps the application of the jobs that come now. Its data comes behind it, and stays with it.
    std::optional<std::string> kept;
    for (std::size_t index = 0; index < jobs.size() && !stopAfterItem.isCancelled(); ++index) {
        if (AppBundleEnumerator::isBundleName(jobs[index].source.filename().native())) kept.reset();
        notify(status, index,
               kept ? JobStatus::failed(*kept)
                    : outcomeOf(host, jobs[index], index, drivePath, quitRunning, status, progress, kept));
    }
}

bool applyProgress(MoveJob& job, const ByteProgress& progress) {
    if (!job.status.is<JobStatus::Pending>() && !job.status.is<JobStatus::Copying>()) return false;
    job.bytesCopied = progress.copied;
    job.bytesTotal = std::max(progress.total, job.bytesTotal);
    job.status = JobStatus::copying(progress.fraction());
    return true;
}

Summary summary(const std::vector<MoveJob>& jobs) {
    const auto failures =
        std::count_if(jobs.begin(), jobs.end(), [](const MoveJob& job) { return job.status.is<JobStatus::Failed>(); });
    if (failures > 0) return {true, fmt::format("Completed with {}.", Text::counted(failures, "failure"))};
    return {false, fmt::format("Moved {}.", Text::counted(static_cast<std::int64_t>(jobs.size()), "item"))};
}

}  // namespace tarvik::MoveRun
