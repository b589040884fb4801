#pragma once

#include "Platform/Basics/Path.h"

#include <array>
#include <string_view>

namespace tarvik {

/// What a data path of an application holds, told from where it stands.
enum class DataPathCategory {
    applicationSupport,
    caches,
    preferences,
    logs,
    httpStorages,
    savedState,
    containers,
    groupContainers,
    applicationScripts,
    launchAgents,
    launchDaemons,
    webKit,
    cookies,
    dockIcon,
    other,
};

/// Every category, in declared order.
inline constexpr std::array<DataPathCategory, 15> allDataPathCategories = {
    DataPathCategory::applicationSupport,
    DataPathCategory::caches,
    DataPathCategory::preferences,
    DataPathCategory::logs,
    DataPathCategory::httpStorages,
    DataPathCategory::savedState,
    DataPathCategory::containers,
    DataPathCategory::groupContainers,
    DataPathCategory::applicationScripts,
    DataPathCategory::launchAgents,
    DataPathCategory::launchDaemons,
    DataPathCategory::webKit,
    DataPathCategory::cookies,
    DataPathCategory::dockIcon,
    DataPathCategory::other,
};

/// The category's name, as it is stored and shown.
std::string_view textOf(DataPathCategory category);
/// What a user should know of such data, one or two sentences.
std::string_view tooltipOf(DataPathCategory category);
/// Where the category stands among others on the screen; lower comes first, and no two are equal.
int displayOrderOf(DataPathCategory category);

/// The category of a path, by its text alone: the Library folder that it names may stand anywhere, on a drive too.
DataPathCategory dataPathCategoryOf(const fs::path& path);

}  // namespace tarvik
