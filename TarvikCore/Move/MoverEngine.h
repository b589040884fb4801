#pragma once

#include "Move/JobStatus.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"
#include "Platform/Storage/DriveGuard.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>

/// Takes one item off the internal disk and leaves a symbolic link; and brings it back. What was moved is remembered in
/// `HealthManifest`, and in the tracking database where there is one, until it is back; neither can fail an act.
///
/// All operations block; call them off the UI thread. They take no locks: one item is moved by one caller at a time.
namespace tarvik::MoverEngine {

/// Called on the calling thread with `verifying` and `linking`; the other states are the caller's. May be empty.
using StatusCallback = std::function<void(const JobStatus&)>;
/// Both in bytes. Called from a background thread while a copy runs, and once from the calling thread at its end. May
/// be empty.
using ProgressCallback = std::function<void(std::int64_t copied, std::int64_t total)>;

/// How long a running application may take to quit.
inline constexpr std::chrono::seconds quitTimeout{8};

/// Moves `source` into `destinationParent` under its own name and links the old path to it. The original is touched
/// only after a complete copy has been proved and flushed to the drive. An application that runs is refused; with
/// `quitRunning` it is asked to quit first, which may take `quitTimeout`.
/// `chosenDrive` is the one that the user has chosen, so that nothing goes to the disk below it when it has gone since;
/// without it, it is that of `destinationParent`.
/// @throws MoverError; FileError when `destinationParent` cannot be made; Failure when the drive has gone.
void moveAndLink(const Host& host, const fs::path& source, const fs::path& destinationParent, bool quitRunning,
                 const StatusCallback& status, const ProgressCallback& progress,
                 const std::optional<DriveGuard>& chosenDrive = std::nullopt);

/// Puts what the link, or the generated launcher, at `link` leads to back in its place. That one stands until the item
/// is there to take its place, and again when the move back fails.
/// @throws MoverError when the target is gone or the item is not what it should be afterwards; FileError otherwise.
void restore(const Host& host, const fs::path& link, const ProgressCallback& progress = {});

}  // namespace tarvik::MoverEngine
