#include "AppData/DataPathCategory.h"

#include <cstddef>

namespace tarvik {

namespace {

struct Description {
    std::string_view text;
    int displayOrder;
    std::string_view tooltip;
};

/// In declared order.
constexpr std::array<Description, allDataPathCategories.size()> descriptions = {{
    {"Application Support", 0, "User-specific application data \u2014 settings, projects, plugin data."},
    {"Caches", 3, "Disposable cached files. Safe to remove; will be regenerated."},
    {"Preferences", 7, "App preferences (.plist files). Removing resets settings."},
    {"Logs", 8, "App log files. Safe to remove."},
    {"HTTPStorages", 4, "Cookies and HTTP cache for embedded web views."},
    {"Saved State", 6, "Window state restoration data."},
    {"Containers", 1, "Sandbox container \u2014 must stay on internal disk."},
    {"Group Containers", 2, "Shared sandbox data between related apps \u2014 internal only."},
    {"Application Scripts", 10, "Sandbox-managed scripts \u2014 internal only."},
    {"Launch Agents", 11, "Background helpers that auto-launch."},
    {"Launch Daemons", 12, "System-wide background daemons."},
    {"WebKit", 5, "WebKit profile data."},
    {"Cookies", 9, "Browser cookie data."},
    {"Dock Icon", 13, "Application bundle."},
    {"Other", 99, "Miscellaneous app-related files."},
}};

struct Place {
    std::string_view folder;
    DataPathCategory category;
};

/// The first that a path contains decides.
constexpr Place places[] = {
    {"/Library/Application Support", DataPathCategory::applicationSupport},
    {"/Library/Group Containers", DataPathCategory::groupContainers},
    {"/Library/Containers", DataPathCategory::containers},
    {"/Library/Application Scripts", DataPathCategory::applicationScripts},
    {"/Library/HTTPStorages", DataPathCategory::httpStorages},
    {"/Library/WebKit", DataPathCategory::webKit},
    {"/Library/Saved Application State", DataPathCategory::savedState},
    {"/Library/Caches", DataPathCategory::caches},
    {"/Library/Logs", DataPathCategory::logs},
    {"/Library/Cookies", DataPathCategory::cookies},
    {"/Library/Preferences", DataPathCategory::preferences},
    {"/Library/LaunchAgents", DataPathCategory::launchAgents},
    {"/Library/LaunchDaemons", DataPathCategory::launchDaemons},
};

const Description& descriptionOf(DataPathCategory category) {
    return descriptions.at(static_cast<std::size_t>(category));
}

}  // namespace

std::string_view textOf(DataPathCategory category) {
    return descriptionOf(category).text;
}

std::string_view tooltipOf(DataPathCategory category) {
    return descriptionOf(category).tooltip;
}

int displayOrderOf(DataPathCategory category) {
    return descriptionOf(category).displayOrder;
}

DataPathCategory dataPathCategoryOf(const fs::path& path) {
    const std::string_view text = path.native();
    for (const Place& place : places)
        if (text.find(place.folder) != text.npos) return place.category;
    return text.ends_with(".app") ? DataPathCategory::dockIcon : DataPathCategory::other;
}

}  // namespace tarvik
