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

bool setsFlag(const FileDescriptor& item, int flag, bool isSet) {
    int flags = 0;
    if (::ioctl(item.get(), FS_IOC_GETFLAGS, &flags) != 0) return false;
    flags = isSet ? flags | flag : flags & ~flag;
    return ::ioctl(item.get(), FS_IOC_SETFLAGS, &flags) == 0;
}

}  // namespace

void failDrive(const fs::path& volume) {
    const FileDescriptor root(::open(volume.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    std::uint32_t how = withoutFlushing;
    if (!root || ::ioctl(root.get(), ext4Shutdown, &how) != 0)
        throw std::runtime_error("cannot make fail " + volume.native());
}

Flagged::Flagged(const fs::path& item, FileFlag flag)
    : m_item(::open(item.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC)),
      m_flag(flag == FileFlag::immutable ? FS_IMMUTABLE_FL : FS_APPEND_FL) {
    if (!m_item || !setsFlag(m_item, m_flag, true)) throw std::runtime_error("cannot set a flag of " + item.native());
}

Flagged::~Flagged() {
    setsFlag(m_item, m_flag, false);
}

}  // namespace tarvik::test
