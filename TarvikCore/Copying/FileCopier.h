#pragma once

#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <cstdint>
#include <functional>

/// Copies trees by running the system's copy tool as one child process. Everything here blocks; any thread.
namespace tarvik::FileCopier {

/// Both in bytes. Called from a background thread while the copy runs, and once from the calling thread at its end,
/// when the background thread has stopped: never twice at the same time. May be empty.
using ProgressCallback = std::function<void(std::int64_t copied, std::int64_t total)>;

/// Copies `from` to `to` with all that belongs to it, without a time limit. What stands at `to` is merged into.
/// A partial copy is the caller's to dispose of.
/// @throws Failure of the domain "FileCopier" with the tool's exit status as its code, and the first line in which the
/// tool told why, and how many came behind it; FileError when it cannot be run.
/// Once cancelled, the tool is killed, and that is a failure like any other.
void runDitto(const Host& host, const fs::path& from, const fs::path& to, const Cancellation& cancellation = {});
/// The same with reports every half second of what has arrived.
void runDitto(const Host& host, const fs::path& from, const fs::path& to, std::int64_t totalBytes,
              const ProgressCallback& progress);

/// The same for a copy that no move goes by. A partial one is disposed of as `MoverStasher` does; where nothing takes
/// it, it is removed, unless something stood at `to` before. @throws MoverError copyFailed.
void copy(const Host& host, const fs::path& from, const fs::path& to, std::int64_t totalBytes,
          const ProgressCallback& progress);

/// Disposes of such a copy, partial or not, as `copy` does of a partial one. Never fails.
void disposeOf(const Host& host, const fs::path& copy);

}  // namespace tarvik::FileCopier
