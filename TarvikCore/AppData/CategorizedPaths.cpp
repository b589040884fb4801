#include "AppData/CategorizedPaths.h"

#include "Applications/AppEntry.h"
#include "Platform/Text/Text.h"

#include <algorithm>
#include <map>
#include <utility>

namespace tarvik {

std::int64_t CategorizedPaths::total() const {
    std::int64_t bytes = 0;
    for (const DataPathSize& item : items) bytes += item.size;
    return bytes;
}

std::string CategorizedPaths::fileFolderSummary() const {
    return Text::counted(static_cast<std::int64_t>(items.size()), "item");
}

std::vector<CategorizedPaths> categorizedPaths(const AppEntry& entry) {
    std::map<int, CategorizedPaths> byDisplayOrder;
    for (const DataPathSize& path : entry.dataPathSizes) {
        const DataPathCategory category = dataPathCategoryOf(path.path);
        CategorizedPaths& group = byDisplayOrder[displayOrderOf(category)];
        group.category = category;
        group.items.push_back(path);
    }

    std::vector<CategorizedPaths> groups;
    for (auto& [order, group] : byDisplayOrder) {
        std::stable_sort(group.items.begin(), group.items.end(),
                         [](const DataPathSize& left, const DataPathSize& right) { return left.size > right.size; });
        groups.push_back(std::move(group));
    }
    return groups;
}

}  // namespace tarvik
