#include "Move/AppMove.h"

#include "Discovery/AppScanner.h"
#include "Move/APFSSnapshotService.h"
#include "Move/MoveDialogs.h"
#include "Move/MovePlanner.h"
#include "Move/MoveRefusal.h"
#include "Platform/AppStorageNames.h"
#include "Platform/DriveScanner.h"
#include "Platform/Failure.h"
#include "Platform/Files.h"
#include "Platform/RunningAppsDetector.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <unordered_set>
#include <utility>

namespace tarvik::AppMove {

namespace {

using Jobs = std::vector<MoveJob>;

std::int64_t bytesOf(const Jobs& jobs) {
    std::int64_t bytes = 0;
    for (const auto& job : jobs) bytes += job.bytesTotal;
    return bytes;
}

std::vector<AppEntry> movableOf(const std::vector<AppEntry>& chosen) {
    std::vector<AppEntry> movable;
    for (const auto& entry : chosen)
        if (!entry.isAlreadySymlinked) movable.push_back(entry);
    return movable;
}

std::vector<std::string> namesOf(const std::vector<AppEntry>& entries) {
    std::vector<std::string> names;
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

/// A sentence for each application whose bundle stays, and why: as a whole, or all but its data.
std::optional<std::string> stayOf(const Host& host, const AppEntry& entry, const DriveInfo& drive, const Jobs& jobs,
                                  const Places& sources) {
    if (!entry.isAlreadySymlinked && sources.contains(entry.bundlePath.native())) return std::nullopt;
    const bool onlyDataMoves = !entry.isAlreadySymlinked && movesData(entry, sources);
    return (onlyDataMoves ? "Only data of " + entry.name + " would move: " : entry.name + " stays: ") +
           reasonToStay(host, entry, drive, jobs);
}

}  // namespace

std::int64_t Plan::totalBytes() const {
    return bytesOf(jobs);
}

std::int64_t Proposal::totalBytes() const {
    return bytesOf(jobs);
}

bool Plan::movesNothing() const {
    return obstructed.size() == jobs.size();
}

Plan plan(const Host& host, const std::vector<AppEntry>& chosen, const DriveInfo& drive, bool includeData) {
    Plan plan{.jobs = MovePlanner::buildAppJobs(host, movableOf(chosen), drive, includeData)};

    const Places sources = sourcesOf(plan.jobs);
    const auto running = RunningAppsDetector::bundlePaths(host);
    for (const auto& entry : chosen) {
        if (auto sentence = stayOf(host, entry, drive, plan.jobs, sources)) {
            plan.staying.push_back(std::move(*sentence));
            continue;
        }
        if (isRisky(entry)) plan.risky.push_back(entry);
        if (running.contains(Files::standardized(entry.bundlePath))) plan.running.push_back(entry);
    }
    for (const auto& job : plan.jobs)
        if (Files::itemExists(job.destination))
            plan.obstructed.push_back(
                fmt::format("{} would not move: {} is taken already.", job.label, job.destination.native()));
    return plan;
}

std::optional<std::string> refusalOf(const Plan& plan, const DriveInfo& drive) {
    if (plan.movesNothing()) return "Nothing would move.";
    if (auto sentence = MoveRefusal::ofDriveForJobs(drive, plan.jobs)) return sentence;
    return MoveRefusal::ofSpace(plan.totalBytes(), drive);
}

bool isRisky(const AppEntry& entry) {
    return entry.riskLevel() != RiskLevel::low;
}

Proposal propose(const Host& host, const std::vector<AppEntry>& chosen, const std::optional<DriveInfo>& drive,
                 bool includeData, const Cancellation& cancellation) {
    if (!drive) throw refusal("Select a target drive first.");
    if (chosen.empty()) throw refusal("Select at least one app.");
    Proposal proposal{.movable = movableOf(chosen)};
    if (proposal.movable.empty()) throw refusal("Selected apps are already moved. Use Move Back.");
    proposal.drive = refreshed(host, *drive);
    proposal.jobs = MovePlanner::buildAppJobs(host, proposal.movable, proposal.drive, includeData, cancellation);
    if (proposal.jobs.empty()) throw refusal("Everything selected is already symlinked.");
    if (auto sentence = MoveRefusal::ofDriveForJobs(proposal.drive, proposal.jobs)) throw refusal(std::move(*sentence));
    if (auto sentence = MoveRefusal::ofSpace(proposal.totalBytes(), proposal.drive))
        throw refusal(std::move(*sentence));
    const Places sources = sourcesOf(proposal.jobs);
    for (const auto& entry : proposal.movable)
        if (auto sentence = stayOf(host, entry, proposal.drive, proposal.jobs, sources))
            proposal.staying.push_back(std::move(*sentence));
    return proposal;
}

Dialog confirmMove(const Proposal& proposal) {
    std::vector<AppEntry> risky;
    std::copy_if(proposal.movable.begin(), proposal.movable.end(), std::back_inserter(risky), isRisky);
    Dialog question =
        MoveDialogs::confirmAppMove(std::ssize(proposal.movable), proposal.totalBytes(), proposal.drive.name,
                                    AppStorageNames::appsRootOn(proposal.drive.mountPath), namesOf(risky));
    question.details = proposal.staying;
    return question;
}

std::optional<std::string> takeSnapshot(const Host& host) {
    if (!APFSSnapshotService::isSupported(host)) return std::nullopt;
    const auto taken = APFSSnapshotService::create(host);
    if (!taken.succeeded || !taken.snapshot) return std::nullopt;
    return "APFS snapshot: " + taken.snapshot->name;
}

std::vector<std::string> runningApps(const Host& host, const std::vector<AppEntry>& movable) {
    const auto inUse = RunningAppsDetector::bundlePaths(host);
    std::vector<AppEntry> running;
    std::copy_if(movable.begin(), movable.end(), std::back_inserter(running),
                 [&](const AppEntry& entry) { return inUse.contains(Files::standardized(entry.bundlePath)); });
    return namesOf(running);
}

}  // namespace tarvik::AppMove
