// What a volume tells of its room, asked of a `MacVolume` as a Mac's volume list asks a volume: there are two
// capacities. Taken before the core's own, as the functions in SystemCalls.cpp are.
#include "Platform/Files/FileSystemStatus.h"

#include "Platform/Machine/AvailableCapacity.h"
#include "Support/MacAttributes.h"

#include <charconv>
#include <sys/statvfs.h>
#include <sys/xattr.h>

namespace tarvik {

namespace {

/// Nothing on another kind of volume.
std::optional<std::int64_t> importantCapacityAt(const fs::path& path) {
    char text[32];
    const ssize_t length = ::getxattr(path.c_str(), test::MacAttribute::importantCapacity, text, sizeof text);
    std::int64_t bytes = 0;
    if (length < 0 || std::from_chars(text, text + length, bytes).ec != std::errc()) return std::nullopt;
    return bytes;
}

}  // namespace

std::optional<FileSystemStatus> fileSystemStatus(const fs::path& path) noexcept {
    struct statvfs answer {};
    if (::statvfs(path.c_str(), &answer) != 0) return std::nullopt;
    const auto blockSize = static_cast<std::int64_t>(answer.f_frsize);
    const auto plain = static_cast<std::int64_t>(answer.f_bavail) * blockSize;
    return FileSystemStatus{.totalBytes = static_cast<std::int64_t>(answer.f_blocks) * blockSize,
                            .availableBytes = AvailableCapacity::of(importantCapacityAt(path), plain),
                            .isReadOnly = (answer.f_flag & ST_RDONLY) != 0,
                            .identifier = answer.f_fsid};
}

}  // namespace tarvik
