#include "Platform/Processes/StandardStreams.h"

#include <cerrno>
#include <fcntl.h>
#include <initializer_list>
#include <unistd.h>

namespace tarvik::StandardStreams {

void occupyClosed() noexcept {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) >= 0 || errno != EBADF) continue;
        // The lowest free number is the stream's. Open for the wrong direction, it still fails as a closed one does.
        ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

}  // namespace tarvik::StandardStreams
