#pragma once

#include "Platform/Basics/Path.h"

#include <compare>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik::test {

/// One way in which a system call goes wrong, in the words of the tracer: "error=EIO", "signal=KILL".
struct Fault {
    std::string call;
    int ordinal = 0;
    /// Meant for the call of whichever thread comes to it, and not for the first thread's alone.
    bool isOfAnyThread = false;
    std::string effect;
    /// Met by every call from that one on.
    bool isForGood = false;

    std::string text() const { return call + " " + std::to_string(ordinal) + " " + effect; }
    auto operator<=>(const Fault&) const = default;
};

/// Where faults can strike: the calls that change a file system, and those that bring data to a drive.
namespace FaultPoints {

/// The names of such calls, as the tracer takes them.
extern const std::string_view calls;

/// The calls of a tracer's log that change something in `root`, each with its ordinal among its thread's calls, without
/// an effect.
std::vector<Fault> in(const fs::path& root, std::istream& log);

/// The first, the last and a few in between of each call.
std::vector<Fault> someOf(std::vector<Fault> points);

/// Whether the log tells of a fault that met a call on something in `folder`; on anything, when that is empty.
bool hasStruckIn(const fs::path& folder, std::istream& log);

}  // namespace FaultPoints

}  // namespace tarvik::test
