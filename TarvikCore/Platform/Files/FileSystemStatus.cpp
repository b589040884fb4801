#include "Platform/Files/FileSystemStatus.h"

#include <cerrno>
#include <limits>
#include <sys/statvfs.h>

namespace tarvik {

namespace {

std::int64_t bytesOf(std::uint64_t blocks, std::uint64_t blockSize) noexcept {
    constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (blockSize != 0 && blocks > most / blockSize) return std::numeric_limits<std::int64_t>::max();
    return static_cast<std::int64_t>(blocks * blockSize);
}

}  // namespace

std::optional<FileSystemStatus> fileSystemStatus(const fs::path& path) noexcept {
    struct statvfs answer {};
    int result = 0;
    do result = ::statvfs(path.c_str(), &answer);
    while (result != 0 && errno == EINTR);
    if (result != 0) return std::nullopt;

    FileSystemStatus status;
    status.identifier = answer.f_fsid;
    status.isReadOnly = (answer.f_flag & ST_RDONLY) != 0;
    if (answer.f_blocks != 0) {
        status.totalBytes = bytesOf(answer.f_blocks, answer.f_frsize);
        status.availableBytes = bytesOf(answer.f_bavail, answer.f_frsize);
    }
    return status;
}

}  // namespace tarvik
