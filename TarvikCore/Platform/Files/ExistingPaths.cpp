#include "Platform/Files/ExistingPaths.h"

#include "Platform/Files/Files.h"

namespace tarvik {

std::vector<fs::path> ExistingPaths::filter(std::vector<fs::path> paths) {
    std::erase_if(paths, [](const fs::path& path) { return !Files::exists(path); });
    return paths;
}

}  // namespace tarvik
