#include "UninstallRun/UninstallPlaces.h"

#include "Discovery/AppBundleEnumerator.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/SystemFolders.h"

#include <algorithm>
#include <string_view>

namespace tarvik::UninstallPlaces {

namespace {

constexpr std::string_view homeFolders[] = {
    "Application Support", "Caches",           "Logs",         "Preferences", "Preferences/ByHost",
    "Containers",          "Group Containers", "HTTPStorages", "WebKit",      "Saved Application State",
    "LaunchAgents",
};
constexpr std::string_view libraryFolders[] = {
    "LaunchDaemons",
    "LaunchAgents",
    "Application Support",
    "PrivilegedHelperTools",
};

bool isDirectlyIn(const fs::path& path, const fs::path& library, const auto& folders) {
    return std::any_of(std::begin(folders), std::end(folders),
                       [&](std::string_view folder) { return path.parent_path() == library / folder; });
}

bool isHiddenInHome(const Host& host, const fs::path& path) {
    const std::string name = path.filename().native();
    return path.parent_path() == host.home && name.starts_with('.') && name != ".Trash" && name != ".TarvikTrash";
}

}  // namespace

bool isOne(const Host& host, UninstallCategory category, const fs::path& path) {
    if (!path.is_absolute() || Files::standardized(path) != path || !path.has_filename()) return false;
    if (category == UninstallCategory::executable)
        return AppBundleEnumerator::isBundleName(path.filename().native()) &&
               !Files::isAtOrBelow(path, SystemFolders::system(host));
    return isDirectlyIn(path, host.home / "Library", homeFolders) ||
           isDirectlyIn(path, SystemFolders::library(host), libraryFolders) || isHiddenInHome(host, path) ||
           path.parent_path() == AppStorageNames::sessionRoot(host);
}

}  // namespace tarvik::UninstallPlaces
