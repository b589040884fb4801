#pragma once

#include "Platform/Basics/Path.h"

#include <string>

namespace tarvik {

/// The last name in a path, also of one that ends with a slash; "/" for the root, which has none. Pure.
std::string lastComponent(const fs::path& path);

}  // namespace tarvik
