#include "AppData/NodeCliCacheEntries.h"

#include "AppData/DataName.h"
#include "Platform/Text/Text.h"

namespace tarvik {

std::vector<std::string> NodeCliCacheEntries::folderNames(std::string_view slug) {
    const std::string base = Text::lowerCased(slug);
    return {base + "-cli-nodejs", base + "-cli", base + "-nodejs"};
}

std::vector<fs::path> NodeCliCacheEntries::paths(const fs::path& home, std::string_view slug) {
    std::vector<fs::path> result;
    if (!DataName::isUsable(slug)) return result;
    for (const std::string& name : folderNames(slug)) result.push_back(home / "Library/Caches" / name);
    return result;
}

}  // namespace tarvik
