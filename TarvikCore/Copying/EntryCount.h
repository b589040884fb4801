#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <cstdint>
#include <optional>

/// Counts the entries of trees with the system's own tool: a second opinion beside our walk.
namespace tarvik::EntryCount {

/// Nothing where the tool could not be run or failed.
struct Counts {
    std::optional<std::int64_t> source;
    std::optional<std::int64_t> destination;
};

/// Counts both trees, the roots included, at the same time. Blocks; any thread.
Counts count(const Host& host, const fs::path& source, const fs::path& destination);

}  // namespace tarvik::EntryCount
