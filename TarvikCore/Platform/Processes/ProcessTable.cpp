#include "Platform/Processes/ProcessTable.h"

#include <algorithm>
#include <unistd.h>

namespace tarvik::ProcessTable {

namespace {

constexpr pid_t firstProcess = 1;

}  // namespace

bool mayBeTold(pid_t identifier) {
    return identifier > firstProcess && identifier != ::getpid();
}

std::vector<pid_t> lineage() {
    std::vector<pid_t> line;
    // An identifier that is given anew between two looks could lead round in a circle.
    for (pid_t process = ::getpid();
         process > firstProcess && std::find(line.begin(), line.end(), process) == line.end();
         process = parentOf(process))
        line.push_back(process);
    return line;
}

}  // namespace tarvik::ProcessTable
