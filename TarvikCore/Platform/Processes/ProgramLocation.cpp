#include "Platform/Processes/ProgramLocation.h"

namespace tarvik::ProgramLocation {

fs::path folder() {
    return executable().parent_path();
}

}  // namespace tarvik::ProgramLocation
