#include "Platform/Processes/ThreadPriority.h"

#include <sys/resource.h>

namespace tarvik {

void ThreadPriority::lower() noexcept {
    // The kernel keeps this for each thread, whatever the name of the calls says. A program that was started to stand
    // further back still stays there.
    constexpr int low = 10;
    if (::getpriority(PRIO_PROCESS, 0) < low) ::setpriority(PRIO_PROCESS, 0, low);
}

}  // namespace tarvik
