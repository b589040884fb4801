#include "MovePlan/AppMove.h"

#include "Discovery/AppScanner.h"
#include "MovePlan/AppManagement.h"
#include "MovePlan/DriveLimits.h"
#include "MovePlan/MoveDialogs.h"
#include "MovePlan/MovePlanner.h"
#include "MovePlan/MoveRefusal.h"
#include "MovePlan/UpdateDoubts.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Bundles/RunningAppsDetector.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Storage/APFSSnapshotService.h"
#include "Platform/Storage/DriveScanner.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <unordered_set>
#include <utility>

namespace tarvik::AppMove {

namespace {

using Jobs = std::vector<MoveJob>;

std::vector<AppEntry> movableOf(const std::vector<AppEntry>& chosen) {
    std::vector<AppEntry> movable;
    for (const auto& entry : chosen)
        if (!entry.isAlreadySymlinked) movable.push_back(entry);
    return movable;
}

std::vector<std::string> namesOf(const std::vector<AppEntry>& entries) {
    std::vector<std::string> names;
    names.reserve(entries.size());
    for (const auto& entry : entries) names.push_back(entry.name);
    return names;
}

/// The drive as it is now, or as it was known when it has gone: the run itself finds out and says so.
DriveInfo refreshed(const Host& host, const DriveInfo& known) {
    const auto drives = DriveScanner::scan(host);
    const auto same =
        std::find_if(drives.begin(), drives.end(), [&](const DriveInfo& drive) { return drive.id == known.id; });
    return same == drives.end() ? known : *same;
}

Failure refusal(std::string sentence) {
    return {"AppMove", 0, std::move(sentence)};
}

/// As texts: paths are compared component by component, and there may be thousands.
using Places = std::unordered_set<std::string>;

Places sourcesOf(const Jobs& jobs) {
    Places sources;
    for (const auto& job : jobs) sources.insert(job.source.native());
    return sources;
}

bool movesData(const AppEntry& entry, const Places& sources) {
    return std::any_of(entry.dataPaths.begin(), entry.dataPaths.end(),
                       [&](const fs::path& path) { return sources.contains(path.native()); });
}

/// Where an application that has been moved stands now; nothing when its drive is not there.
std::optional<fs::path> placeOf(const AppEntry& entry) {
    if (auto target = AppScanner::launcherShimTarget(entry.bundlePath)) return target;
    return Files::resolved(entry.bundlePath);
}

/// Why the bundle has no job of its own.
std::string reasonToStay(const Host& host, const AppEntry& entry, const DriveInfo& drive, const Jobs& jobs) {
    const bool isThere = Files::itemExists(entry.bundlePath);
    if (entry.isAlreadySymlinked || (isThere && !MovePlanner::shouldMove(host, entry.bundlePath))) {
        const auto place = placeOf(entry);
        return place ? fmt::format("it has been moved already, to {}.", place->native())
                     : std::string("it has been moved already, to a place that is not there now.");
    }
    const auto goal = AppStorageNames::appsRootOn(drive.mountPath) / entry.bundlePath.filename();
    const auto rival =
        std::find_if(jobs.begin(), jobs.end(), [&](const MoveJob& job) { return job.destination == goal; });
    if (rival != jobs.end()) return fmt::format("{} would take its place on the drive.", rival->source.native());
    return fmt::format("{} is not there any more.", entry.bundlePath.native());
}

bool movesBundle(const AppEntry& entry, const Places& sources) {
    return !entry.isAlreadySymlinked && sources.contains(entry.bundlePath.native());
}

bool movesOnlyData(const AppEntry& entry, const Places& sources) {
    return !entry.isAlreadySymlinked && !movesBundle(entry, sources) && movesData(entry, sources);
}

/// What is said of an application whose bundle stays.
std::string stayOf(const Host& host, const AppEntry& entry, const DriveInfo& drive, const Jobs& jobs,
                   const Places& sources) {
    return (movesOnlyData(entry, sources) ? "Only data of " + entry.name + " would move: " : entry.name + " stays: ") +
           reasonToStay(host, entry, drive, jobs);
}

/// Whether a move of the item was killed when its copy was complete. The link that waits beside it tells of that, and
/// the copy gives way to the next move.
bool hasCopyOfKilledMove(const MoveJob& job) {
    const fs::path folder = job.source.parent_path();
    const auto names = Files::names(folder);
    return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        return name.starts_with('.') && Files::linkText(folder / name) == job.destination;
    });
}

/// Why the job would fail; nothing when that can't be seen.
std::optional<std::string> obstructionOf(const Host& host, const MoveJob& job, const DriveInfo& drive) {
    if (Files::itemExists(job.destination) && !hasCopyOfKilledMove(job))
        return fmt::format("{} would not move: {} is taken already.", job.label, job.destination.native());
    if (auto refusal = DriveLimits::refusal(job.source, drive)) return refusal;
    if (auto refusal = MoveRefusal::ofContents(host, job.source)) return refusal;
    return AppManagement::refusalOf(job.source);
}

std::vector<std::string> obstructionsOf(const Host& host, const Jobs& jobs, const DriveInfo& drive,
                                        const Cancellation& cancellation) {
    std::vector<std::string> sentences;
    for (const auto& job : jobs) {
        if (cancellation.isCancelled()) break;
        if (auto sentence = obstructionOf(host, job, drive)) sentences.push_back(std::move(*sentence));
    }
    return sentences;
}

}  // namespace

std::int64_t Plan::totalBytes() const {
    std::int64_t bytes = 0;
    for (const auto& job : jobs) bytes += job.bytesTotal;
    return bytes;
}

Plan plan(const Host& host, const std::vector<AppEntry>& chosen, const DriveInfo& drive, bool includeData,
          const Cancellation& cancellation) {
    Plan plan{.drive = refreshed(host, drive), .chosenCount = std::ssize(chosen), .movable = movableOf(chosen)};
    plan.jobs = MovePlanner::buildAppJobs(host, plan.movable, plan.drive, includeData, cancellation);
    plan.obstructed = obstructionsOf(host, plan.jobs, plan.drive, cancellation);
    const Places sources = sourcesOf(plan.jobs);
    std::vector<AppEntry> moving;
    for (const auto& entry : chosen) {
        if (movesBundle(entry, sources))
            moving.push_back(entry);
        else
            plan.staying.push_back(stayOf(host, entry, plan.drive, plan.jobs, sources));
    }
    std::copy_if(moving.begin(), moving.end(), std::back_inserter(plan.risky), isRisky);
    plan.doubts = UpdateDoubts::about(moving);
    return plan;
}

std::optional<std::string> refusalOf(const Plan& plan) {
    if (plan.chosenCount == 0) return "Select at least one app.";
    if (plan.movable.empty()) return "Selected apps are already moved. Use Move Back.";
    if (plan.jobs.empty()) return "Everything selected is already symlinked.";
    if (auto sentence = MoveRefusal::ofDriveForJobs(plan.drive, plan.jobs)) return sentence;
    return MoveRefusal::ofSpace(plan.totalBytes(), plan.drive);
}

std::optional<std::string> reasonToMoveNothing(const Plan& plan) {
    if (plan.obstructed.empty() || plan.obstructed.size() < plan.jobs.size()) return std::nullopt;
    return plan.jobs.size() == 1 ? plan.obstructed.front() : "Nothing would move. " + plan.obstructed.front();
}

bool isRisky(const AppEntry& entry) {
    return entry.riskLevel() != RiskLevel::low;
}

Plan propose(const Host& host, const std::vector<AppEntry>& chosen, const std::optional<DriveInfo>& drive,
             bool includeData, const Cancellation& cancellation) {
    if (!drive) throw refusal("Select a target drive first.");
    auto proposal = plan(host, chosen, *drive, includeData, cancellation);
    if (auto sentence = refusalOf(proposal)) throw refusal(std::move(*sentence));
    return proposal;
}

Dialog confirmMove(const Plan& plan) {
    std::vector<AppEntry> risky;
    std::copy_if(plan.movable.begin(), plan.movable.end(), std::back_inserter(risky), isRisky);
    Dialog question = MoveDialogs::confirmAppMove(std::ssize(plan.movable), plan.totalBytes(), plan.drive.name,
                                                  AppStorageNames::appsRootOn(plan.drive.mountPath), namesOf(risky));
    question.details = plan.staying;
    const auto add = [&](const std::vector<std::string>& sentences) {
        question.details.insert(question.details.end(), sentences.begin(), sentences.end());
    };
    add(plan.obstructed);
    add(plan.doubts);
    add(DriveLimits::warnings(plan.drive));
    return question;
}

std::optional<std::string> takeSnapshot(const Host& host) {
    if (!APFSSnapshotService::isSupported(host)) return std::nullopt;
    const auto taken = APFSSnapshotService::create(host);
    if (!taken.succeeded || !taken.snapshot) return std::nullopt;
    return "APFS snapshot: " + taken.snapshot->name;
}

std::vector<std::string> runningApps(const Host& host, const Plan& plan) {
    const auto inUse = RunningAppsDetector::bundlePaths(host);
    const Places sources = sourcesOf(plan.jobs);
    std::vector<AppEntry> running;
    std::copy_if(plan.movable.begin(), plan.movable.end(), std::back_inserter(running), [&](const AppEntry& entry) {
        return (movesBundle(entry, sources) || movesOnlyData(entry, sources)) &&
               RunningAppsDetector::isAmong(inUse, entry.bundlePath);
    });
    return namesOf(running);
}

}  // namespace tarvik::AppMove
