#include "Platform/Processes/DescriptorInheritance.h"

#include <fcntl.h>
#include <unistd.h>

namespace tarvik {

int DescriptorInheritance::limitToStandardStreams(posix_spawn_file_actions_t& actions, short& flags) {
    flags = static_cast<short>(flags | POSIX_SPAWN_CLOEXEC_DEFAULT);
    const bool hasStandardInput = ::fcntl(STDIN_FILENO, F_GETFD) >= 0;
    return hasStandardInput ? ::posix_spawn_file_actions_addinherit_np(&actions, STDIN_FILENO) : 0;
}

}  // namespace tarvik
