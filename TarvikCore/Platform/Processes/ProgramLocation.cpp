#include "Platform/Processes/ProgramLocation.h"

#include "Platform/Files/Files.h"

namespace tarvik::ProgramLocation {

fs::path folder() {
    return executable().parent_path();
}

fs::path resource(const fs::path& name) {
    for (const fs::path& place : {folder(), resources()})
        if (const auto found = Files::resolved(place / name)) return *found;
    return {};
}

}  // namespace tarvik::ProgramLocation
