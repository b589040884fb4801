#pragma once

#include "Platform/Basics/Path.h"

#include <functional>
#include <string>
#include <vector>

namespace tarvik {

/// Installs one thing that was found in an image or an archive, whatever it is, and gives the lines that tell what was
/// done. It may throw.
using ItemInstaller = std::function<std::vector<std::string>(const fs::path& item)>;

}  // namespace tarvik
