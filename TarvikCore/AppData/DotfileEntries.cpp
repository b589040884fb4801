#include "AppData/DotfileEntries.h"

#include "AppData/DataName.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

namespace tarvik {

std::vector<std::string> DotfileEntries::relativeNames(std::string_view slug) {
    const std::string base = fmt::format(".{}", Text::lowerCased(slug));
    return {base, base + ".json", base + ".json.backup", base + "rc", base + ".log"};
}

std::vector<fs::path> DotfileEntries::paths(const fs::path& home, std::string_view slug) {
    std::vector<fs::path> result;
    if (!DataName::isUsable(slug)) return result;
    for (const std::string& name : relativeNames(slug)) result.push_back(home / name);
    return result;
}

}  // namespace tarvik
