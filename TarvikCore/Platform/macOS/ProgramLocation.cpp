#include "Platform/Processes/ProgramLocation.h"

#include "Platform/Files/Files.h"

#include <cstdint>
#include <mach-o/dyld.h>
#include <string>

namespace tarvik::ProgramLocation {

fs::path executable() {
    std::uint32_t size = 0;
    _NSGetExecutablePath(nullptr, &size);  // Fails, and tells the size that it needs.
    std::string path(size, '\0');
    if (_NSGetExecutablePath(path.data(), &size) != 0) return {};
    path.resize(path.find('\0'));
    return Files::resolved(path).value_or(fs::path{});
}

// The programs stand in Contents/MacOS and Contents/Helpers.
fs::path resources() {
    return folder() / "../Resources";
}

}  // namespace tarvik::ProgramLocation
