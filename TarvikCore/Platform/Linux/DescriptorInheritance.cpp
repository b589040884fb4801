#include "Platform/Processes/DescriptorInheritance.h"

#include <unistd.h>

namespace tarvik {

int DescriptorInheritance::limitToStandardStreams(posix_spawn_file_actions_t& actions, short&) {
    return ::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
}

}  // namespace tarvik
