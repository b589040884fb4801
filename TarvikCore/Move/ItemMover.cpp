#include "Move/ItemMover.h"

#include "Move/ChangeWatch.h"
#include "Move/CopyProof.h"
#include "Move/FileCopier.h"
#include "Move/MoverError.h"
#include "Move/OriginalRemoval.h"
#include "Move/ProgressTimer.h"
#include "Move/SizeCalculator.h"
#include "Platform/Files.h"
#include "Platform/Identifier.h"

#include <cerrno>
#include <optional>
#include <utility>

namespace tarvik::ItemMover {

namespace {

bool isSameVolume(const fs::path& item, const fs::path& folder) {
    const auto own = Files::info(item);
    const auto other = Files::infoFollowingLinks(folder);
    return own && other && own->device == other->device;
}

/// Renames, or tells that the goal is on another volume.
bool renamesWithinVolume(const fs::path& from, const fs::path& to) {
    try {
        Files::rename(from, to);
        return true;
    } catch (const FileError& error) {
        if (error.code() == EXDEV) return false;
        throw;
    }
}

void copyWithProgress(const Host& host, const fs::path& from, const fs::path& to, const ProgressCallback& progress) {
    std::optional<ProgressTimer> timer;
    if (progress) {
        const std::int64_t total = SizeCalculator::size(host, from);
        timer.emplace([&host, &to, &progress, total](const Cancellation& cancellation) {
            progress(SizeCalculator::size(host, to, cancellation), total);
        });
    }
    FileCopier::runDitto(host, from, to);
}

/// Leaves at `to` a complete copy that has reached the drive, or nothing.
void copyAcross(const Host& host, const fs::path& from, const fs::path& to, const ProgressCallback& progress,
                const std::function<void()>& makeWay) {
    const fs::path temporary = to.parent_path() / (".tarvik-moving-" + newIdentifier());
    try {
        copyWithProgress(host, from, temporary, progress);
        if (auto reason = CopyProof::reasonAgainst(host, from, temporary, CopyProof::Count::no))
            throw MoverError::verifyFailed(*reason);
        makeWay();
        Files::rename(temporary, to);
    } catch (...) {
        ignoringFailure([&] { Files::removeItem(temporary); });  // Our own unfinished copy: the original is whole.
        throw;
    }
    Files::flushVolume(to.parent_path());
}

}  // namespace

void move(const Host& host, const fs::path& from, const fs::path& to, const ProgressCallback& progress,
          const std::function<void()>& makeWay) {
    if (!makeWay && Files::itemExists(to)) throw FileError("move", from.native() + " to " + to.native(), EEXIST);
    bool hasMadeWay = !makeWay;
    const auto makeWayOnce = [&] {
        if (!std::exchange(hasMadeWay, true)) makeWay();
    };
    if (isSameVolume(from, to.parent_path())) {
        makeWayOnce();
        if (renamesWithinVolume(from, to)) return;
    }
    if (auto obstacle = Files::removalObstacle(from)) throw *std::move(obstacle);
    const auto start = ChangeWatch::mark();
    copyAcross(host, from, to, progress, makeWayOnce);
    if (auto reason = OriginalRemoval::remove(host, from, start)) {
        ignoringFailure([&] { Files::removeItem(to); });  // The original is whole, and newer than this copy.
        throw MoverError::verifyFailed(*reason);
    }
}

}  // namespace tarvik::ItemMover
