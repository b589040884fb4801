#include "Move/MoverEngine.h"

#include "Move/ChangeWatch.h"
#include "Move/CopyProof.h"
#include "Move/FileCopier.h"
#include "Move/ItemMover.h"
#include "Move/MoverError.h"
#include "Move/MoverStasher.h"
#include "Move/OriginalRemoval.h"
#include "Move/SizeCalculator.h"
#include "Move/VolumeCapacityProbe.h"
#include "Platform/Files.h"

#include <fmt/format.h>

namespace tarvik::MoverEngine {

namespace {

void requireSpace(std::int64_t needed, std::int64_t free) {
    const bool isKnown = free >= 1;
    if (isKnown && free < needed) throw MoverError::insufficientSpace(needed, free);
}

/// A drive that goes away can leave its mount path behind, as a folder of another volume.
std::uint64_t deviceOf(const fs::path& folder) {
    return Files::infoFollowingLinks(folder).value_or(Files::ItemInfo{}).device;
}

/// Of two moves to one place at the same time, only one may ever write there or dispose of what stands there.
void claimDestination(const fs::path& source, const fs::path& destination) {
    try {
        const auto info = Files::info(source);
        if (!Files::claim(destination, info ? info->type : Files::ItemType::folder))
            throw MoverError::destinationExists();
    } catch (const FileError& error) {
        throw MoverError::copyFailed(error.description());
    }
}

std::optional<std::string> reasonAgainstCopy(const Host& host, const fs::path& source, const fs::path& destination,
                                             std::uint64_t driveDevice) {
    auto reason = CopyProof::reasonAgainst(host, source, destination, CopyProof::Count::yes);
    if (!reason && deviceOf(destination.parent_path()) != driveDevice)
        reason = "The target drive was disconnected while it was written to.";
    return reason;
}

[[noreturn]] void refuseCopy(const Host& host, const fs::path& destination, const std::string& reason) {
    MoverStasher::stash(host, destination);
    throw MoverError::verifyFailed(reason);
}

void removeOriginal(const Host& host, const fs::path& source, const fs::path& destination,
                    const ChangeWatch::Mark& start) {
    std::optional<std::string> reasonToKeep;
    try {
        reasonToKeep = OriginalRemoval::remove(host, source, start);
    } catch (const Failure& failure) {
        MoverStasher::stash(host, destination);
        throw MoverError::sourceRemoveFailed(failure.description());
    }
    if (reasonToKeep) refuseCopy(host, destination, *reasonToKeep);
}

void linkOrRollBack(const Host& host, const fs::path& source, const fs::path& destination) {
    try {
        Files::createSymbolicLink(source, destination);
    } catch (const Failure& failure) {
        ignoringFailure([&] { ItemMover::move(host, destination, source); });
        throw MoverError::symlinkFailed(failure.description());
    }
}

void verifyInternalized(const fs::path& item) {
    const std::string name = item.filename();
    if (!Files::exists(item)) throw MoverError::verifyFailed(fmt::format("{} missing after restore", name));
    if (Files::isSymbolicLink(item))
        throw MoverError::verifyFailed(
            fmt::format("{} is still a symlink after restore — data was not internalized", name));
}

}  // namespace

void moveAndLink(const Host& host, const fs::path& item, const fs::path& destinationParent, bool /*quitRunning*/,
                 const StatusCallback& status, const ProgressCallback& progress) {
    const fs::path source = Files::standardized(item);
    if (!Files::exists(source)) throw MoverError::sourceMissing();
    Files::createFolder(destinationParent);
    const fs::path destination = Files::standardized(destinationParent / source.filename());
    if (Files::itemExists(destination)) throw MoverError::destinationExists();
    const std::uint64_t driveDevice = deviceOf(destinationParent);

    const auto start = ChangeWatch::mark();
    const std::int64_t size = SizeCalculator::size(host, source);
    requireSpace(size, VolumeCapacityProbe::freeBytes(host, destinationParent));

    claimDestination(source, destination);
    FileCopier::copy(host, source, destination, size, progress);
    status(JobStatus::verifying());
    if (auto reason = reasonAgainstCopy(host, source, destination, driveDevice)) refuseCopy(host, destination, *reason);

    status(JobStatus::linking());
    removeOriginal(host, source, destination, start);
    linkOrRollBack(host, source, destination);
}

void restore(const Host& host, const fs::path& link, const ProgressCallback& progress) {
    const fs::path goal = Files::standardized(link);
    const fs::path target = Files::readLink(goal);
    if (!Files::exists(target)) throw MoverError::sourceMissing();
    bool isLinkGone = false;
    const auto makeWay = [&] {
        Files::removeLink(goal);
        isLinkGone = true;
    };
    try {
        ItemMover::move(host, target, goal, progress, makeWay);
    } catch (...) {
        // Unless the item has arrived, the target is whole: with its link back, everything works as before.
        if (isLinkGone) ignoringFailure([&] { Files::createSymbolicLink(goal, target); });
        throw;
    }
    verifyInternalized(goal);
}

}  // namespace tarvik::MoverEngine
