#pragma once

#include "Platform/Basics/Path.h"

#include <cstdint>
#include <string>

namespace tarvik {

/// One data path of an application and the bytes in it.
struct DataPathSize {
    fs::path path;
    std::int64_t size = 0;

    /// The path as a user reads it: `home` at its front is written "~".
    std::string displayPath(const fs::path& home) const;

    bool operator==(const DataPathSize&) const = default;
};

}  // namespace tarvik
