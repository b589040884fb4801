#pragma once

#include <cstdint>
#include <cstdio>  // Some systems define the names of the standard streams as macros: every user must see the same.
#include <string>

namespace tarvik {

/// What a finished tool gives back.
struct CommandResult {
    /// The exit status; the signal's number for a tool that a signal ended; 127 when it could not be launched.
    std::int32_t status = 0;
    /// All that it wrote, or nothing when that is no valid UTF-8.
    std::string stdout;
    /// The same of standard error; on a failed launch the system's words for why.
    std::string stderr;
    /// The time limit ran out and the tool had to be stopped.
    bool timedOut = false;

    static constexpr std::int32_t notLaunched = 127;

    bool succeeded() const { return status == 0 && !timedOut; }
    bool operator==(const CommandResult&) const = default;
};

}  // namespace tarvik
