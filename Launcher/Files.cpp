#include "Files.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace launcher {

namespace {

constexpr std::size_t largestFile = std::size_t{1} << 20;

/// @returns 0 or an errno value.
int readAll(int file, std::string& bytes) {
    struct stat status {};
    if (::fstat(file, &status) != 0) return errno;
    if (S_ISDIR(status.st_mode)) return EISDIR;
    if (!S_ISREG(status.st_mode)) return ENOTSUP;
    char buffer[4096];
    for (;;) {
        const ssize_t length = ::read(file, buffer, sizeof buffer);
        if (length < 0 && errno == EINTR) continue;
        if (length < 0) return errno;
        if (length == 0) return 0;
        bytes.append(buffer, static_cast<std::size_t>(length));
        if (bytes.size() > largestFile) return EFBIG;
    }
}

}  // namespace

bool readFile(const std::string& path, std::string& bytes) {
    bytes.clear();
    // Opening never waits, as it would for a pipe that nobody writes to.
    const int file = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0) return false;
    const int error = readAll(file, bytes);
    ::close(file);
    errno = error;
    return error == 0;
}

std::string parentOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

std::string nameOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

std::string withoutExtension(const std::string& name, const std::string& extension) {
    return name.ends_with(extension) ? name.substr(0, name.size() - extension.size()) : name;
}

}  // namespace launcher
