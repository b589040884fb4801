#include "ProcessAge.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"

#include <cstdint>
#include <sstream>
#include <string>
#include <time.h>
#include <unistd.h>

namespace tarvik {

namespace {

/// The 22nd field of the status line: clock ticks from the boot of the machine to the start of the process.
std::int64_t startTicks() {
    const std::string line = Files::read("/proc/self/stat");
    // The second field is the program's name in brackets, which may hold anything.
    std::istringstream fields(line.substr(line.rfind(')') + 1));
    std::string skipped;
    for (int field = 3; field < 22; ++field) fields >> skipped;
    std::int64_t ticks = 0;
    fields >> ticks;
    return ticks;
}

}  // namespace

std::chrono::milliseconds processAge() {
    std::int64_t age = 0;
    ignoringFailure([&] {
        timespec now{};
        ::clock_gettime(CLOCK_BOOTTIME, &now);
        const std::int64_t started = startTicks() * 1000 / ::sysconf(_SC_CLK_TCK);
        age = std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000 - started;
    });
    return std::chrono::milliseconds(age);
}

}  // namespace tarvik
