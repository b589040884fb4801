#pragma once

#include "Platform/Basics/Path.h"

#include <string>
#include <string_view>
#include <vector>

/// The caches that command-line programs written for Node keep in the user's Library. Pure.
namespace tarvik::NodeCliCacheEntries {

/// The three names, always in one order.
std::vector<std::string> folderNames(std::string_view slug);
/// The same as paths in Library/Caches; none when the slug cannot be part of a file name.
std::vector<fs::path> paths(const fs::path& home, std::string_view slug);

}  // namespace tarvik::NodeCliCacheEntries
