#include "Platform/Files/StoredSpelling.h"

#include "Platform/Files/Files.h"

#include <algorithm>
#include <strings.h>

namespace tarvik::StoredSpelling {

std::string nameIn(const fs::path& folder, const std::string& name) {
    const auto item = Files::info(folder / name);
    if (!item) return name;
    return amongNames(Files::names(folder), name,
                      [&](const std::string& other) { return Files::isSameItem(Files::info(folder / other), item); });
}

fs::path of(const fs::path& path) {
    fs::path result;
    for (const fs::path& component : path)
        result /= result.empty() ? component : fs::path(nameIn(result, component.native()));
    return result;
}

bool areOneName(const fs::path& one, const fs::path& other) {
    return Files::isSameItem(Files::info(one), Files::info(other)) &&
           Files::isSameItem(Files::infoFollowingLinks(one.parent_path()),
                             Files::infoFollowingLinks(other.parent_path())) &&
           nameIn(one.parent_path(), one.filename().native()) == nameIn(other.parent_path(), other.filename().native());
}

std::string amongNames(std::vector<std::string> names, const std::string& name,
                       const std::function<bool(const std::string&)>& isTheItem) {
    if (std::find(names.begin(), names.end(), name) != names.end()) return name;
    std::erase_if(names, [&](const std::string& other) { return !isTheItem(other); });
    // Of hard links beside each other, only one that differs in nothing but the case of its letters is sure.
    if (names.size() > 1)
        std::erase_if(names, [&](const std::string& other) { return ::strcasecmp(other.c_str(), name.c_str()) != 0; });
    return names.size() == 1 ? names.front() : name;
}

}  // namespace tarvik::StoredSpelling
