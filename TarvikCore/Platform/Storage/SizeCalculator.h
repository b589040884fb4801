#pragma once

#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <cstdint>
#include <string>

/// The size of one path as the platform tells it: what regular files take on the disk, hidden ones left out. For the
/// sizes of many applications see `SizingService`, which counts a little differently.
namespace tarvik::SizeCalculator {

/// Allocated bytes. A link counts as itself and is not followed. What cannot be read counts as nothing. Any thread.
/// A cancelled measurement gives what it has counted so far.
std::int64_t size(const Host& host, const fs::path& path, const Cancellation& cancellation = {});

/// "1.2 MB": see `Text::byteCount`.
std::string format(std::int64_t bytes);

}  // namespace tarvik::SizeCalculator
