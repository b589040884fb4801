#pragma once

#include "Applications/AppEntry.h"
#include "MovePlan/MoveJob.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Dialog.h"
#include "Platform/Machine/Host.h"
#include "Platform/Storage/DriveInfo.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The decisions around the move of applications, for every front: what would move, what stays and why, does it fit,
/// what is asked.
namespace tarvik::AppMove {

/// What the move of chosen applications to a drive would do.
struct Plan {
    /// As it is now: its free space was read anew.
    DriveInfo drive;
    /// How many applications were chosen.
    std::int64_t chosenCount = 0;
    /// Those of them that are not on a drive already, and their jobs.
    std::vector<AppEntry> movable;
    std::vector<MoveJob> jobs;
    /// A sentence for each application that stays, and why: as a whole, or all but its data.
    std::vector<std::string> staying;
    /// A sentence for each job that would fail: its goal is taken already, or something in it can't be moved.
    std::vector<std::string> obstructed;
    /// The applications whose bundles would move although that is risky.
    std::vector<AppEntry> risky;
    /// A sentence for each thing that some of those whose bundles would move are known to lose; see `UpdateDoubts`.
    std::vector<std::string> doubts;

    /// In bytes.
    std::int64_t totalBytes() const;
};

/// The jobs of those applications that are not on a drive already, and what is to be said of them. Changes nothing.
/// Measures the data and looks at every item, so it takes as long as there are many; a bundle counts with the size that
/// its entry knows. Once it is cancelled its sizes are too small: it must not be run. Any thread; never fails.
Plan plan(const Host& host, const std::vector<AppEntry>& chosen, const DriveInfo& drive, bool includeData,
          const Cancellation& cancellation = {});

/// Why the plan may not be run, in the sentence for the user; nothing when only the user could speak against it. Blocks
/// for a look at the drive.
std::optional<std::string> refusalOf(const Plan& plan);

/// Why a plan that may be run would move nothing all the same, for who only looks ahead: every job would fail. Pure.
std::optional<std::string> reasonToMoveNothing(const Plan& plan);

/// Whether a move is more likely to break the application than others; pure.
bool isRisky(const AppEntry& entry);

/// A plan that nothing speaks against but the user. Blocks like `plan`; changes nothing.
/// @throws Failure with the sentence for the user when no drive is chosen, or as `refusalOf` tells.
Plan propose(const Host& host, const std::vector<AppEntry>& chosen, const std::optional<DriveInfo>& drive,
             bool includeData, const Cancellation& cancellation = {});
/// Asks whether it shall be run, warns of the risky ones, and tells what stays all the same and what is known to lose
/// its updates. Pure.
Dialog confirmMove(const Plan& plan);
/// Takes a snapshot of the system's disk before a batch, where the system can do that. @returns the sentence for the
/// user when there is one now. Blocks for the system's tool; never fails.
std::optional<std::string> takeSnapshot(const Host& host);
/// The names of the applications of which something would move and that are in use now. Blocks for one look at the
/// processes.
std::vector<std::string> runningApps(const Host& host, const Plan& plan);

}  // namespace tarvik::AppMove
