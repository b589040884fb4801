#include "Platform/Processes/ThreadPriority.h"

#include <sys/resource.h>
#include <unistd.h>

namespace tarvik {

void ThreadPriority::lower() noexcept {
    // The kernel keeps this for each thread, whatever the name of the calls says: the process's number is that of its
    // first thread. It may be a patient one itself; what is beyond the last step counts as that.
    constexpr int steps = 10;
    ::setpriority(PRIO_PROCESS, 0, ::getpriority(PRIO_PROCESS, static_cast<id_t>(::getpid())) + steps);
}

}  // namespace tarvik
