#pragma once

#include "Installers/Opening/OpenedHold.h"
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
    /// Somebody else had attached it before, and keeps it: it is not for us to detach it.
    bool isBorrowed = false;
    /// Where it is remembered for a later start, should this process be killed; empty where it is not.
    fs::path note{};
    OpenedHold hold{};

    bool operator==(const DiskImageMount&) const = default;
};

}  // namespace tarvik
