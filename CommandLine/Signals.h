#pragma once

#include "Platform/Basics/Cancellation.h"

#include <array>
#include <signal.h>

namespace tarvik::CommandLine {

/// Keeps a signal from ending this program between two steps that belong together.
///
/// While one lives, SIGINT, SIGTERM and SIGHUP do not end the program. A tool that it runs has the usual behaviour:
/// Ctrl-C, or a terminal that closes, reaches the tool too, so that a copy stops, and the act fails and cleans up like
/// after any failed copy. Where no tool runs - the original is being removed, the link made - the act goes on to its
/// end. A signal that was sent to this program alone is passed on to its process group if the program leads one, as a
/// shell's job does.
///
/// One at a time, made and destroyed on one thread.
class SignalGuard {
public:
    SignalGuard();
    ~SignalGuard();
    SignalGuard(const SignalGuard&) = delete;
    SignalGuard& operator=(const SignalGuard&) = delete;

    /// Whether one of them has come since the guard was made: what has not been started shall not be any more.
    static bool isAskedToEnd();
    /// The same wish, for work that looks at one.
    static Cancellation request();

private:
    static constexpr std::array<int, 3> guarded = {SIGINT, SIGTERM, SIGHUP};
    std::array<struct sigaction, guarded.size()> m_before{};
};

/// Makes a write into a closed pipe fail instead of ending the program in the middle of an act. Tools that it starts
/// are not affected.
void surviveClosedPipes();

}  // namespace tarvik::CommandLine
