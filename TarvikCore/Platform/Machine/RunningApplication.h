#pragma once

#include "Platform/Basics/Path.h"

#include <cstdint>
#include <sys/types.h>

namespace tarvik {

/// One process of an application bundle.
struct RunningApplication {
    pid_t process = 0;
    /// When the process began, in the system's own count: a later process of the same number began at another time.
    std::uint64_t startTime = 0;
    /// The bundle that it belongs to, standardized.
    fs::path bundlePath;

    bool operator==(const RunningApplication&) const = default;
};

}  // namespace tarvik
