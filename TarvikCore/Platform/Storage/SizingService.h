#pragma once

#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <cstddef>
#include <cstdint>
#include <functional>

/// The size of a tree by a walk of our own: quick, with no state per file, safe against folder loops, and to be
/// cancelled. Counts blocks as `lstat` reports them, each hard link anew, and leaves hidden entries out at every depth.
namespace tarvik::SizingService {

/// Names one folder on one volume.
struct DirID {
    std::int32_t dev = 0;
    std::uint64_t ino = 0;

    bool operator==(const DirID&) const = default;
};

struct DirIDHash {
    std::size_t operator()(const DirID& id) const noexcept {
        return std::hash<std::uint64_t>()(id.ino * 1000003U + static_cast<std::uint32_t>(id.dev));
    }
};

/// Allocated bytes; a link is resolved first. What cannot be read counts as nothing. Blocks; any thread. A cancelled
/// measurement gives what it has counted so far.
std::int64_t size(const Host& host, const fs::path& path, const Cancellation& cancellation = {});

}  // namespace tarvik::SizingService
