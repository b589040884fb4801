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
    return path.parent_path() == host.home && name.starts_with('.') && name != ".TarvikTrash" &&
           !SystemFolders::isImmovable(host, path);  // Those that every program has its things in.
}

/// A place is none of the folders that places are in.
bool isFolderOfPlaces(const Host& host, const fs::path& path) {
    return std::any_of(std::begin(homeFolders), std::end(homeFolders),
                       [&](std::string_view folder) { return path == host.home / "Library" / folder; });
}

/// What is ours: of it goes only what an installer has recorded of an application.
bool isOwn(const Host& host, const fs::path& path) {
    const fs::path own = AppStorageNames::supportRoot(host);
    return Files::isAtOrBelow(path, own) || Files::isAtOrBelow(own, path);
}

}  // namespace

bool isOne(const Host& host, UninstallCategory category, const fs::path& path) {
    // Behind a NUL, a system call sees nothing any more.
    if (path.native().find('\0') != std::string::npos) return false;
    if (!path.is_absolute() || Files::standardized(path) != path || !path.has_filename()) return false;
    if (category != UninstallCategory::executable && path.parent_path() == AppStorageNames::sessionRoot(host))
        return true;
    if (isOwn(host, path)) return false;
    if (category == UninstallCategory::executable)
        return AppBundleEnumerator::isBundleName(path.filename().native()) &&
               !Files::isAtOrBelow(path, SystemFolders::system(host));
    if (isFolderOfPlaces(host, path)) return false;
    return isDirectlyIn(path, host.home / "Library", homeFolders) ||
           isDirectlyIn(path, SystemFolders::library(host), libraryFolders) || isHiddenInHome(host, path);
}

}  // namespace tarvik::UninstallPlaces
