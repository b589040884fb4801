#include "Platform/Processes/ProgramLocation.h"

#include <system_error>

namespace tarvik::ProgramLocation {

fs::path executable() {
    std::error_code ignored;
    return fs::read_symlink("/proc/self/exe", ignored);
}

// The programs stand in PREFIX/libexec/tarvik.
fs::path resources() {
    return folder() / "../../share/tarvik";
}

}  // namespace tarvik::ProgramLocation
