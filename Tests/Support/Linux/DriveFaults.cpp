#include "Support/Linux/DriveFaults.h"

#include <cstdint>
#include <fcntl.h>
#include <linux/fs.h>
#include <stdexcept>
#include <sys/ioctl.h>

namespace tarvik::test {

namespace {

// The kernel's own header for programs does not declare it.
constexpr unsigned long ext4Shutdown = _IOR('X', 125, std::uint32_t);
constexpr std::uint32_t withoutFlushing = 2;

bool setsImmutable(const FileDescriptor& item, bool isImmutable) {
    int flags = 0;
    if (::ioctl(item.get(), FS_IOC_GETFLAGS, &flags) != 0) return false;
    flags = isImmutable ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
    return ::ioctl(item.get(), FS_IOC_SETFLAGS, &flags) == 0;
}

}  // namespace

void failDrive(const fs::path& volume) {
    const FileDescriptor root(::open(volume.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    std::uint32_t how = withoutFlushing;
    if (!root || ::ioctl(root.get(), ext4Shutdown, &how) != 0)
        throw std::runtime_error("cannot make fail " + volume.native());
}

Immutable::Immutable(const fs::path& file) : m_file(::open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC)) {
    if (!m_file || !setsImmutable(m_file, true)) throw std::runtime_error("cannot make immutable " + file.native());
}

Immutable::~Immutable() {
    setsImmutable(m_file, false);
}

}  // namespace tarvik::test
