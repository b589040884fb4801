#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tarvik {

/// What kind of thing belongs to an application, in the order of the sections in which plans are shown.
enum class UninstallCategory {
    executable,
    applicationSupport,
    caches,
    preferences,
    logs,
    containers,
    groupContainers,
    httpStorages,
    webKit,
    savedAppState,
    launchAgents,
    launchDaemons,
    receipts,
    installerSession,
};

/// All of them, in declared order.
const std::array<UninstallCategory, 14>& allUninstallCategories();

/// The text that stands for a category in records: the enumerator's own name.
std::string_view textOf(UninstallCategory category);
std::optional<UninstallCategory> uninstallCategoryOf(std::string_view text);
/// The heading of its section.
std::string labelOf(UninstallCategory category);
/// Whether such things go unless something is known that speaks against it.
bool defaultSelected(UninstallCategory category);

}  // namespace tarvik
