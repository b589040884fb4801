#include "Move/MoverEngine.h"

#include "Copying/ChangeWatch.h"
#include "Copying/CopyProof.h"
#include "Copying/FileCopier.h"
#include "Copying/HiddenPlace.h"
#include "Copying/Leftovers.h"
#include "Copying/MoverError.h"
#include "Discovery/AppScanner.h"
#include "Launchers/NestedAppLauncherService.h"
#include "Move/DriveCopy.h"
#include "Move/ItemMover.h"
#include "Move/OriginalRemoval.h"
#include "Platform/Basics/Notify.h"
#include "Platform/Bundles/BundleInfoPlistReader.h"
#include "Platform/Bundles/RunningAppsDetector.h"
#include "Platform/Files/Files.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Storage/VolumeCapacityProbe.h"
#include "Records/HealthManifest.h"
#include "Records/InstallsDB.h"
#include "Records/InstallsDBWriter.h"

#include <fmt/format.h>

#include <cerrno>
#include <chrono>

namespace tarvik::MoverEngine {

namespace {

void requireNotRunning(const Host& host, const fs::path& item, bool quitRunning) {
    if (!item.native().ends_with(".app") || !RunningAppsDetector::isRunning(host, item)) return;
    if (quitRunning && RunningAppsDetector::quit(host, item, false, quitTimeout)) return;
    throw MoverError::appIsRunning(item.filename());
}

void requireSpace(std::int64_t needed, std::int64_t free) {
    const bool isKnown = free >= 1;
    if (isKnown && free < needed) throw MoverError::insufficientSpace(needed, free);
}

ChangeWatch::Mark markOf(ChangeWatch::Beginning& beginning) {
    try {
        return beginning.mark();
    } catch (const FileError& error) {
        throw MoverError::copyFailed(error.description());
    }
}

/// The place must hold nothing, and nobody may be about to put something there.
void requireFree(const fs::path& destination) {
    if (Files::itemExists(destination) || HiddenPlace::isCopyUnderWayTo(destination))
        throw MoverError::destinationExists();
}

void fill(const Host& host, const DriveCopy& copy, const fs::path& source, std::int64_t size,
          const ProgressCallback& progress) {
    try {
        FileCopier::runDitto(host, source, copy.place(), size, progress);
    } catch (const Failure& failure) {
        throw MoverError::copyFailed(failure.description());
    }
}

std::optional<std::string> reasonAgainstCopy(const Host& host, const fs::path& source, const DriveCopy& copy,
                                             const DriveGuard& drive) {
    auto reason = CopyProof::reasonAgainst(host, source, copy.place(), CopyProof::Count::yes);
    if (!reason && !drive.holds(copy.goal().parent_path()))
        reason = "The target drive was disconnected while it was written to.";
    return reason;
}

/// What is done with the copy when a move ends in its middle.
Disposal::Outcome giveUp(DriveCopy& copy, const fs::path& source, bool isOriginalWhole) {
    // The original could not even be put back: its link leads to the copy, which is all that works.
    if (Files::linkText(source) == copy.goal()) return {Disposal::Outcome::End::stayed, copy.goal()};
    auto outcome = copy.stash();
    // A drive that is full takes no folder to set things aside in. The copy must neither fill it nor keep the next move
    // from the place. When part of the original is gone, it stays wherever it is.
    if (outcome.end == Disposal::Outcome::End::stayed && isOriginalWhole) copy.remove();
    return outcome;
}

/// The same for a move that failed in a way that the user is told.
void giveUpAfter(const MoverError& error, DriveCopy& copy, const fs::path& source) {
    switch (error.kind()) {
        case MoverError::Case::symlinkFailed:      // All is to be as it was before the move.
        case MoverError::Case::destinationExists:  // Another move was faster.
            return copy.remove();
        default:
            giveUp(copy, source, error.kind() != MoverError::Case::sourceRemoveFailed);
    }
}

/// Where the copy is, of which the original may have only a part by now.
std::string whereabouts(const Disposal::Outcome& copy) {
    if (copy.end == Disposal::Outcome::End::trashed) return "The complete copy is in the Trash.";
    return fmt::format("The complete copy is at {}.", copy.place.native());
}

/// Lets copy and link come to their places. `link` is the caller's, who keeps it until a copy that was in vain is gone.
void replaceByLink(const Host& host, const fs::path& source, DriveCopy& copy,
                   std::optional<OriginalRemoval::LinkInWaiting>& link, const ChangeWatch::Mark& start) {
    try {
        link.emplace(source, copy.goal());
        copy.arrive();
        OriginalRemoval::replaceByLink(host, *link, start);
    } catch (const MoverError&) {
        throw;
    } catch (const Files::IncompleteRemoval&) {
        throw;
    } catch (const Failure& failure) {
        throw MoverError::sourceRemoveFailed(failure.description());
    }
}

/// What the health check and the tracking database are to know. Never fails the move, which is done by now.
void recordMove(const Host& host, const fs::path& source, const fs::path& destination, std::int64_t size) {
    ignoringFailure([&] {
        auto bundle = BundleInfoPlistReader::read(host, destination).value_or(BundleInfoPlistReader::Info{});
        if (bundle.bundleIdentifier == "") bundle.bundleIdentifier.reset();  // It would be any other one's too.
        HealthManifest::record(host, {source, destination, bundle.bundleIdentifier, size, host.now()});
        InstallsDBWriter::recordMove(host, {source, destination, bundle.bundleIdentifier, bundle.version, size, {}},
                                     InstallsDB::defaultPath(host));
    });
}

void recordRestore(const Host& host, const fs::path& item) {
    ignoringFailure([&] {
        HealthManifest::forget(host, item);
        InstallsDBWriter::recordRestore(host, item, InstallsDB::defaultPath(host));
    });
}

MoverError stillALink(const fs::path& item) {
    return MoverError::verifyFailed(
        fmt::format("{} is still a symlink after restore — data was not internalized", item.filename().native()));
}

void verifyInternalized(const fs::path& item) {
    if (!Files::exists(item))
        throw MoverError::verifyFailed(fmt::format("{} missing after restore", item.filename().native()));
    if (Files::isSymbolicLink(item)) throw stillALink(item);
}

}  // namespace

void moveAndLink(const Host& host, const fs::path& item, const fs::path& destinationParent, bool quitRunning,
                 const StatusCallback& status, const ProgressCallback& progress,
                 const std::optional<DriveGuard>& chosenDrive) {
    const fs::path source = Files::standardized(item);
    if (!Files::exists(source)) throw MoverError::sourceMissing();
    requireNotRunning(host, source, quitRunning);
    const DriveGuard drive = chosenDrive.value_or(DriveGuard::ofFolder(destinationParent));
    drive.require(destinationParent);
    Files::createFolder(destinationParent);
    drive.require(destinationParent);
    const fs::path destination = Files::standardized(destinationParent / source.filename());
    Leftovers::clearUnfinished(host, source, destination);
    requireFree(destination);

    ChangeWatch::Beginning beginning(source);
    const std::int64_t size = SizeCalculator::size(host, source);
    requireSpace(size, VolumeCapacityProbe::freeBytes(host, destinationParent));
    const auto start = markOf(beginning);

    Leftovers::sweep(host, source.parent_path());
    Leftovers::sweep(host, destinationParent);
    requireFree(destination);
    DriveCopy copy(host, destination);
    std::optional<OriginalRemoval::LinkInWaiting> link;
    try {
        fill(host, copy, source, size, progress);
        notify(status, JobStatus::verifying());
        if (auto reason = reasonAgainstCopy(host, source, copy, drive)) throw MoverError::verifyFailed(*reason);
        requireNotRunning(host, source, quitRunning);  // It may have been started meanwhile.
        notify(status, JobStatus::linking());
        replaceByLink(host, source, copy, link, start);
    } catch (const Files::IncompleteRemoval& failure) {
        const auto outcome = giveUp(copy, source, false);
        throw MoverError::sourceRemoveFailed(fmt::format("{}. {}", failure.description(), whereabouts(outcome)));
    } catch (const MoverError& error) {
        giveUpAfter(error, copy, source);
        throw MoverError::retold(error, copy.inOwnName(error.description()));
    } catch (...) {
        giveUp(copy, source, false);
        throw;
    }
    recordMove(host, source, destination, size);
    NestedAppLauncherService::installLaunchers(host, source, destination);
}

void restore(const Host& host, const fs::path& link, const ProgressCallback& progress) {
    const fs::path goal = Files::standardized(link);
    const auto launched = Files::isSymbolicLink(goal) ? std::nullopt : AppScanner::launcherShimTarget(goal);
    const fs::path target = launched ? *launched : Files::readLink(goal);
    if (!Files::exists(target)) throw MoverError::sourceMissing();
    if (Files::isSymbolicLink(target)) throw stillALink(goal);  // One link would only take another's place.
    if (HiddenPlace::isCopyUnderWayTo(goal))
        throw Failure("MoverEngine", EBUSY, fmt::format("{} is being moved back already.", goal.filename().native()));
    Leftovers::sweep(host, goal.parent_path());
    Leftovers::sweep(host, target.parent_path());
    try {
        ItemMover::move(host, target, goal, launched ? ItemMover::Goal::launcher : ItemMover::Goal::link, progress);
    } catch (const ItemMover::Arrived&) {
        recordRestore(host, goal);
        NestedAppLauncherService::removeLaunchers(host, goal, target);
        throw;
    }
    verifyInternalized(goal);
    recordRestore(host, goal);
    NestedAppLauncherService::removeLaunchers(host, goal, target);
}

}  // namespace tarvik::MoverEngine
