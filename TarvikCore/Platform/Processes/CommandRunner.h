#pragma once

#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Processes/CommandResult.h"
#include "Platform/Processes/EnvironmentChange.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// Starts an external tool, waits for it, and gathers all that it prints.
namespace tarvik::CommandRunner {

/// Runs the tool at the absolute `path`; blocks until it has ended and its output is read to the end. Never throws: a
/// tool that cannot be launched gives status 127. After `timeout` it is asked to end, and killed 2 seconds later. The
/// limit covers the tool, not processes that it leaves behind with its pipes open. The tool has the environment of this
/// process with the `change`. Any number of calls may run at once.
CommandResult run(const fs::path& path, const std::vector<std::string>& arguments,
                  std::optional<std::chrono::duration<double>> timeout = std::nullopt,
                  const EnvironmentChange& change = {});

/// The same without a limit, and with `output` as the tool's standard output, so that nothing is gathered of that. The
/// tool has it open for as long as it runs, also when this process ends before it: a lock on it lasts as long.
CommandResult runWritingTo(const FileDescriptor& output, const fs::path& path,
                           const std::vector<std::string>& arguments);

/// As `run`, for a tool that may take as long as it likes, until it is cancelled: then the tool, and all that it has
/// started, is asked to end, and killed 2 seconds later, which counts as timed out. What runs for another user cannot
/// be told to end, and is waited for. Of each stream no more than `mostOutput` bytes are kept.
CommandResult runUntil(const fs::path& path, const std::vector<std::string>& arguments,
                       const Cancellation& cancellation, std::size_t mostOutput = 1'000'000);

/// What an answer may cost.
struct Bounds {
    std::chrono::duration<double> limit;
    /// Once it is cancelled, the tool is killed at once; that counts as timed out.
    Cancellation cancellation{};
    /// In bytes, for each stream. What a tool prints beyond that is read and dropped.
    std::size_t mostOutput = 1'000'000;
};

/// Asks a tool something whose answer can be done without. As `run`, but everything is bounded: the output, and the
/// time too, which covers processes that the tool leaves behind with its pipes open.
CommandResult ask(const fs::path& path, const std::vector<std::string>& arguments, const Bounds& bounds);

}  // namespace tarvik::CommandRunner
