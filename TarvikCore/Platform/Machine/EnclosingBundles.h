#pragma once

#include "Platform/Basics/Path.h"

#include <vector>

/// The application bundles that a file belongs to, told by its path alone. Pure.
namespace tarvik::EnclosingBundles {

/// The bundles that the file lies inside of, the outermost first. A file that is only named like a bundle is in none.
std::vector<fs::path> of(const fs::path& file);

}  // namespace tarvik::EnclosingBundles
