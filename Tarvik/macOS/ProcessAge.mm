#include "ProcessAge.h"

#include <array>
#include <cstdint>
#include <sys/sysctl.h>
#include <sys/time.h>
#include <unistd.h>

namespace tarvik {

std::chrono::milliseconds processAge() {
    std::array<int, 4> name = {CTL_KERN, KERN_PROC, KERN_PROC_PID, ::getpid()};
    kinfo_proc process{};
    std::size_t size = sizeof process;
    timeval now{};
    if (::sysctl(name.data(), name.size(), &process, &size, nullptr, 0) != 0 || ::gettimeofday(&now, nullptr) != 0)
        return std::chrono::milliseconds(0);
    const timeval& started = process.kp_proc.p_starttime;
    return std::chrono::milliseconds(std::int64_t{now.tv_sec - started.tv_sec} * 1000 +
                                     (now.tv_usec - started.tv_usec) / 1000);
}

}  // namespace tarvik
