#pragma once

#include "Platform/Basics/Path.h"

#include <string>
#include <vector>

namespace tarvik {

/// An attached disk image.
struct DiskImageMount {
    fs::path imagePath;
    /// Both in the order in which the tool names them.
    std::vector<fs::path> mountPoints;
    std::vector<std::string> devicePaths;

    bool operator==(const DiskImageMount&) const = default;
};

}  // namespace tarvik
