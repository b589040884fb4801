#pragma once

#include "Platform/Basics/Path.h"

#include <string>
#include <string_view>
#include <vector>

/// The hidden files and folders that a command-line program keeps directly in the user's home. Pure.
namespace tarvik::DotfileEntries {

/// The five names, always in one order.
std::vector<std::string> relativeNames(std::string_view slug);
/// The same as paths; none when the slug cannot be part of a file name.
std::vector<fs::path> paths(const fs::path& home, std::string_view slug);

}  // namespace tarvik::DotfileEntries
