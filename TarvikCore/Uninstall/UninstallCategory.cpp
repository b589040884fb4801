#include "Uninstall/UninstallCategory.h"

#include <algorithm>

namespace tarvik {

namespace {

struct CategoryRow {
    UninstallCategory category;
    std::string_view text;
    std::string_view label;
};

/// In declared order.
constexpr std::array<CategoryRow, 14> categoryRows = {{
    {UninstallCategory::executable, "executable", "Executables"},
    {UninstallCategory::applicationSupport, "applicationSupport", "Application Support"},
    {UninstallCategory::caches, "caches", "Caches"},
    {UninstallCategory::preferences, "preferences", "Preferences"},
    {UninstallCategory::logs, "logs", "Logs"},
    {UninstallCategory::containers, "containers", "Containers"},
    {UninstallCategory::groupContainers, "groupContainers", "Group Containers"},
    {UninstallCategory::httpStorages, "httpStorages", "HTTP Storages"},
    {UninstallCategory::webKit, "webKit", "WebKit"},
    {UninstallCategory::savedAppState, "savedAppState", "Saved App State"},
    {UninstallCategory::launchAgents, "launchAgents", "Launch Agents"},
    {UninstallCategory::launchDaemons, "launchDaemons", "Launch Daemons"},
    {UninstallCategory::receipts, "receipts", "Receipts"},
    {UninstallCategory::installerSession, "installerSession", "Installer Session"},
}};

const CategoryRow& categoryRow(UninstallCategory category) {
    return categoryRows.at(static_cast<std::size_t>(category));
}

}  // namespace

const std::array<UninstallCategory, 14>& allUninstallCategories() {
    static const auto all = [] {
        std::array<UninstallCategory, categoryRows.size()> categories{};
        std::transform(categoryRows.begin(), categoryRows.end(), categories.begin(),
                       [](const CategoryRow& row) { return row.category; });
        return categories;
    }();
    return all;
}

std::string_view textOf(UninstallCategory category) {
    return categoryRow(category).text;
}

std::optional<UninstallCategory> uninstallCategoryOf(std::string_view text) {
    const auto* const found = std::find_if(categoryRows.begin(), categoryRows.end(),
                                           [&](const CategoryRow& row) { return row.text == text; });
    if (found == categoryRows.end()) return std::nullopt;
    return found->category;
}

std::string labelOf(UninstallCategory category) {
    return std::string(categoryRow(category).label);
}

bool defaultSelected(UninstallCategory category) {
    return category != UninstallCategory::launchDaemons && category != UninstallCategory::receipts;
}

}  // namespace tarvik
