#pragma once

#include "Platform/Basics/Path.h"

#include <cstdint>
#include <optional>

namespace tarvik {

/// What a file system tells of itself. Sizes in bytes.
struct FileSystemStatus {
    /// Absent when the file system keeps no count, as some network and memory file systems do.
    std::optional<std::int64_t> totalBytes;
    /// What an ordinary user's file may still take.
    std::optional<std::int64_t> availableBytes;
    bool isReadOnly = false;
    /// What tells it from the others that are mounted now. Not every file system has a number that lasts.
    std::uint64_t identifier = 0;

    bool operator==(const FileSystemStatus&) const = default;
};

/// Asks the file system that holds `path`, links followed; nothing when the path leads nowhere or cannot be read.
/// Blocks for as long as the file system takes to answer: for ever, when its server has gone.
std::optional<FileSystemStatus> fileSystemStatus(const fs::path& path) noexcept;

}  // namespace tarvik
