#include "Platform/Processes/ProgramLocation.h"

#include <system_error>

namespace tarvik::ProgramLocation {

fs::path executable() {
    std::error_code ignored;
    return fs::read_symlink("/proc/self/exe", ignored);
}

}  // namespace tarvik::ProgramLocation
