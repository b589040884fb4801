#pragma once

#include "Platform/Basics/Path.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace tarvik {

/// One link that stands where moved things used to be.
struct SymlinkEntry {
    /// The path of the link as text.
    std::string id;
    /// The link itself.
    fs::path location;
    /// Where it points: absolute and standardized, not resolved further.
    fs::path target;
    /// Something exists at the target.
    bool isValid = false;
    /// In bytes; 0 when there is no target, or before it is measured.
    std::int64_t targetSize = 0;

    bool operator==(const SymlinkEntry&) const = default;
};

}  // namespace tarvik

template <>
struct std::hash<tarvik::SymlinkEntry> {
    std::size_t operator()(const tarvik::SymlinkEntry& entry) const noexcept;
};
