#include "Platform/Processes/ThreadPriority.h"

#include <sys/resource.h>

namespace tarvik {

void ThreadPriority::lower() noexcept {
    // The kernel keeps this for each thread, whatever the name of the call says.
    ::setpriority(PRIO_PROCESS, 0, 10);
}

}  // namespace tarvik
