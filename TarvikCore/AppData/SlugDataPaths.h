#pragma once

#include "Platform/Basics/Path.h"

#include <string_view>
#include <vector>

/// Everything that may be found under a program's slug. Pure.
namespace tarvik::SlugDataPaths {

/// The dotfiles, then the Node caches.
std::vector<fs::path> all(const fs::path& home, std::string_view slug);

}  // namespace tarvik::SlugDataPaths
