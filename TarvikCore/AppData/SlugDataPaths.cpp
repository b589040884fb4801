#include "AppData/SlugDataPaths.h"

#include "AppData/DotfileEntries.h"
#include "AppData/NodeCliCacheEntries.h"

#include <utility>

namespace tarvik {

std::vector<fs::path> SlugDataPaths::all(const fs::path& home, std::string_view slug) {
    std::vector<fs::path> result = DotfileEntries::paths(home, slug);
    for (fs::path& path : NodeCliCacheEntries::paths(home, slug)) result.push_back(std::move(path));
    return result;
}

}  // namespace tarvik
