#include "Platform/Files/Pipe.h"

#include <fcntl.h>
#include <unistd.h>

namespace tarvik {

Pipe Pipe::make() noexcept {
    int ends[2];
    if (::pipe(ends) != 0) return {};
    for (const int end : ends) ::fcntl(end, F_SETFD, FD_CLOEXEC);
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

}  // namespace tarvik
