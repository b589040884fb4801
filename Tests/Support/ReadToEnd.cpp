#include "Support/ReadToEnd.h"

#include <array>
#include <cerrno>
#include <unistd.h>

namespace tarvik::test {

std::string readToEnd(int descriptor) {
    std::string bytes;
    std::array<char, 4096> buffer{};
    for (;;) {
        const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
        if (count > 0) {
            bytes.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return bytes;
        }
    }
}

}  // namespace tarvik::test
