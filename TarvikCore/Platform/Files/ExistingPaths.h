#pragma once

#include "Platform/Basics/Path.h"

#include <vector>

/// Leaves out what is not there.
namespace tarvik::ExistingPaths {

/// The paths at which something exists, in the order given. Links are followed, so a dangling one is left out.
/// Blocks for a status call a path; never fails.
std::vector<fs::path> filter(std::vector<fs::path> paths);

}  // namespace tarvik::ExistingPaths
