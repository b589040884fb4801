#include "Move/ItemMover.h"

#include "Copying/ChangeWatch.h"
#include "Copying/CopyPlace.h"
#include "Copying/CopyProof.h"
#include "Copying/Disposal.h"
#include "Copying/FileCopier.h"
#include "Copying/HiddenName.h"
#include "Copying/HiddenPlace.h"
#include "Copying/MoverError.h"
#include "Discovery/AppScanner.h"
#include "Move/OriginalRemoval.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/TreeObstacle.h"
#include "Platform/Storage/SizeCalculator.h"

#include <fmt/format.h>

#include <cerrno>
#include <optional>
#include <string>
#include <string_view>

namespace tarvik::ItemMover {

namespace {

/// What tells an item from others, under whatever name.
using Item = std::optional<Files::ItemInfo>;

// What stays when an item has come to its place and its move fails nevertheless.
constexpr std::string_view replacedItem = "what stood there";
constexpr std::string_view copiedItem = "what it was copied from";

bool isSameVolume(const fs::path& item, const fs::path& folder) {
    const auto own = Files::info(item);
    const auto other = Files::infoFollowingLinks(folder);
    return own && other && own->device == other->device;
}

/// Makes the item take the place of what stands at the goal, which then stands where the item stood.
void takePlace(const fs::path& item, const fs::path& to, Goal goal) {
    if (goal == Goal::free) return Files::rename(item, to);
    Files::exchange(item, to, HiddenName::forExchangeOf(to));
    const bool isExpected =
        goal == Goal::link ? Files::isSymbolicLink(item) : AppScanner::launcherShimTarget(item).has_value();
    if (isExpected) return;
    Files::exchange(item, to, HiddenName::forExchangeOf(to));
    throw FileError("replace", to, EEXIST);
}

/// The way back of `takePlace`.
void leavePlace(const fs::path& item, const fs::path& to, Goal goal) {
    goal == Goal::free ? Files::rename(to, item) : Files::exchange(item, to, HiddenName::forExchangeOf(to));
}

/// Disposes of what the item has replaced at `to`, and what stands at `replaced` now. A link holds nothing. A launcher
/// is known by one file alone, so that someone may keep more in it. @throws FileError when it stays where it is.
void discardReplaced(const Host& host, const fs::path& replaced, const fs::path& to, Goal goal) {
    if (goal == Goal::link) return Files::removeLink(replaced);
    if (goal == Goal::free) return;
    if (HiddenPlace::stash(host, replaced, to).end == Disposal::Outcome::End::stayed)
        throw FileError("remove", to, EPERM);
}

/// Passes on the failure that is being handled: as an Arrived when the item, which could not be taken out of its place
/// again, stands there.
[[noreturn]] void rethrow(const Item& item, const fs::path& to, std::string_view whatStays) {
    const bool hasArrived = Files::isSameItem(Files::info(to), item);
    try {
        throw;
    } catch (const Failure& failure) {
        if (!hasArrived) throw;
        throw Arrived("ItemMover", failure.code(),
                      fmt::format("{} is in its place again, but {} could not be removed. {}", to.filename().native(),
                                  whatStays, failure.description()));
    }
}

/// Renames, or tells that the goal is on another volume.
bool renamesWithinVolume(const Host& host, const fs::path& from, const fs::path& to, Goal goal) {
    const Item item = Files::info(from);
    try {
        takePlace(from, to, goal);
    } catch (const FileError& error) {
        if (error.code() == EXDEV) return false;
        rethrow(item, to, replacedItem);
    }
    try {
        discardReplaced(host, from, to, goal);
    } catch (...) {
        ignoringFailure([&] { leavePlace(from, to, goal); });
        rethrow(item, to, replacedItem);
    }
    return true;
}

/// Leaves a complete copy that has reached the drive, under a hidden name beside its goal, or nothing.
void copyAcross(const Host& host, const fs::path& from, const fs::path& to, CopyPlace& copy,
                const ChangeWatch::Mark& start, const ProgressCallback& progress) {
    try {
        FileCopier::runDitto(host, from, copy.path(), progress ? SizeCalculator::size(host, from) : 0, progress);
        if (auto reason = CopyProof::reasonAgainst(host, from, copy.path(), CopyProof::Count::no))
            throw MoverError::verifyFailed(*reason);
        // Once the copy stands in its place, programs write to it, and it could not be given up without that.
        OriginalRemoval::requireUnchanged(host, from, start);
        copy.leaveFolder();
    } catch (...) {
        ignoringFailure([&] { Files::removeItem(copy.path()); });  // Our own unfinished copy: the original is whole.
        copy.clearFolder();
        HiddenName::rethrowInOwnName(copy.path(), to);
    }
}

/// Takes the copy out of its place again. Someone may have written to it by now, so it goes to the Trash. @returns the
/// sentence that says where it is; empty when nothing can be said.
std::string giveUpArrival(const Host& host, const fs::path& temporary, const fs::path& to, Goal goal) {
    Disposal::Outcome copy;
    ignoringFailure([&] {
        leavePlace(temporary, to, goal);
        copy = HiddenPlace::stash(host, temporary, to);
    });
    if (copy.end == Disposal::Outcome::End::trashed)
        return " What was written in its new place meanwhile is in the Trash.";
    return copy.place.empty()
               ? std::string()
               : fmt::format(" What was written in its new place meanwhile is at {}.", copy.place.native());
}

/// Puts the complete copy at `temporary` in its place, for good, or leaves the place as it was.
void arrive(const Host& host, const Item& item, const fs::path& temporary, const fs::path& to, Goal goal) {
    try {
        takePlace(temporary, to, goal);
    } catch (...) {
        // Nobody has seen the copy yet. But if what stood at the goal could not be put back, it stands here.
        if (Files::isSameItem(Files::info(temporary), item)) ignoringFailure([&] { Files::removeItem(temporary); });
        rethrow(item, to, copiedItem);
    }
    try {
        Files::flushVolume(to.parent_path());
    } catch (...) {
        giveUpArrival(host, temporary, to, goal);
        rethrow(item, to, copiedItem);
    }
}

void moveAcross(const Host& host, const fs::path& from, const fs::path& to, Goal goal,
                const ProgressCallback& progress) {
    if (const auto obstacle = TreeObstacle::toRemoval(from)) throw obstacle->error();
    const auto start = ChangeWatch::mark(from);
    CopyPlace copy(to);
    copyAcross(host, from, to, copy, start, progress);
    const fs::path& temporary = copy.path();
    const Item item = Files::info(temporary);
    // What was replaced stands at `temporary` until nothing can go wrong any more. What stays there a later act clears.
    const auto discard = [&] { ignoringFailure([&] { discardReplaced(host, temporary, to, goal); }); };
    arrive(host, item, temporary, to, goal);
    try {
        OriginalRemoval::remove(host, from, start);
    } catch (const MoverError& error) {
        const std::string whereabouts = giveUpArrival(host, temporary, to, goal);
        if (Files::isSameItem(Files::info(to), item)) rethrow(item, to, copiedItem);
        throw MoverError::retold(error, error.description() + whereabouts);
    } catch (...) {
        discard();
        rethrow(item, to, copiedItem);
    }
    discard();
}

}  // namespace

void move(const Host& host, const fs::path& from, const fs::path& to, Goal goal, const ProgressCallback& progress) {
    if (goal == Goal::free && Files::itemExists(to))
        throw FileError("move", from.native() + " to " + to.native(), EEXIST);
    if (isSameVolume(from, to.parent_path()) && renamesWithinVolume(host, from, to, goal)) return;
    moveAcross(host, from, to, goal, progress);
}

}  // namespace tarvik::ItemMover
