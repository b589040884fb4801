#pragma once

#include "Discovery/AppEntry.h"
#include "Move/Dialog.h"
#include "Move/MoveJob.h"
#include "Platform/Cancellation.h"
#include "Platform/DriveInfo.h"
#include "Platform/Host.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The decisions around the move of applications, for every front: what would move, what stays and why, does it fit,
/// what is asked.
namespace tarvik::AppMove {

/// What the move of chosen applications to a drive would do.
struct Plan {
    std::vector<MoveJob> jobs;
    /// A sentence for each application that stays, and why: as a whole, or all but its data.
    std::vector<std::string> staying;
    /// A sentence for each job whose goal is taken already: it would fail.
    std::vector<std::string> obstructed;
    /// The applications that would move although that is risky, and those that are in use and have to be quit first.
    std::vector<AppEntry> risky;
    std::vector<AppEntry> running;

    /// In bytes.
    std::int64_t totalBytes() const;
    /// Whether there is no job, or each would fail.
    bool movesNothing() const;
};

/// The jobs of those applications that are not on a drive already, and what is to be said of them. Changes nothing.
/// Measures the data, so it takes as long as that is large; a bundle counts with the size that its entry knows. Any
/// thread; never fails.
Plan plan(const Host& host, const std::vector<AppEntry>& chosen, const DriveInfo& drive, bool includeData);

/// Why the move could not be run, or would move nothing, in the sentence for the user; nothing when it could. Blocks
/// for a look at the drive.
std::optional<std::string> refusalOf(const Plan& plan, const DriveInfo& drive);

/// Whether a move is more likely to break the application than others; pure.
bool isRisky(const AppEntry& entry);

/// A move that nothing speaks against but the user.
struct Proposal {
    /// As it is now: its free space was read anew.
    DriveInfo drive;
    /// Those of the chosen applications that are not on a drive already, and their jobs.
    std::vector<AppEntry> movable;
    std::vector<MoveJob> jobs;
    /// A sentence for each of them whose bundle stays all the same.
    std::vector<std::string> staying;

    /// In bytes.
    std::int64_t totalBytes() const;
};

/// Makes the move of chosen applications to a drive ready. Blocks like `plan`; changes nothing.
/// @throws Failure with the sentence for the user when it is refused: no drive, nothing chosen, nothing to move, a
/// drive that cannot take it, not enough space. Once it is cancelled its sizes are too small: it must not be run.
Proposal propose(const Host& host, const std::vector<AppEntry>& chosen, const std::optional<DriveInfo>& drive,
                 bool includeData, const Cancellation& cancellation = {});
/// Asks whether it shall be run, and warns of the risky ones. Pure.
Dialog confirmMove(const Proposal& proposal);
/// Takes a snapshot of the system's disk before a batch, where the system can do that. @returns the sentence for the
/// user when there is one now. Blocks for the system's tool; never fails.
std::optional<std::string> takeSnapshot(const Host& host);
/// The names of the movable applications that are in use now. Blocks for one look at the processes.
std::vector<std::string> runningApps(const Host& host, const std::vector<AppEntry>& movable);

}  // namespace tarvik::AppMove
