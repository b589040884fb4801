#include "Platform/Files/Pipe.h"

#include <fcntl.h>
#include <unistd.h>

namespace tarvik {

Pipe Pipe::make() noexcept {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return {};
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

}  // namespace tarvik
