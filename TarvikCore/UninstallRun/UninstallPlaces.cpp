#include "UninstallRun/UninstallPlaces.h"

#include "AppData/NodeCliCacheEntries.h"
#include "Discovery/AppBundleEnumerator.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Text/Text.h"
#include "Uninstall/RelatedPlaces.h"

#include <algorithm>
#include <string>

namespace tarvik::UninstallPlaces {

namespace {

using Category = UninstallCategory;

/// A volume may list a name in another spelling than the one that was looked for.
bool isNameFor(const RelatedPlaces::Place& place, const std::string& name) {
    const std::string wanted = Text::nameKey(place.name);
    const std::string found = Text::nameKey(name);
    return place.match == RelatedPlaces::Place::Match::wholeName ? found == wanted : found.starts_with(wanted);
}

bool isRelatedPlace(const Host& host, const AppUninstallSession& session, Category category, const fs::path& path) {
    AppRecord app;
    app.bundlePath = session.appPath;
    app.displayName = session.appName;
    app.bundleIdentifier = session.bundleIdentifier;
    const auto places = RelatedPlaces::of(host, app);
    return std::any_of(places.begin(), places.end(), [&](const RelatedPlaces::Place& place) {
        return place.category == category && place.folder == path.parent_path() &&
               isNameFor(place, path.filename().native());
    });
}

bool isHiddenInHome(const Host& host, const fs::path& path) {
    const std::string name = path.filename().native();
    return path.parent_path() == host.home && name.starts_with('.') && name != ".TarvikTrash" &&
           !SystemFolders::isImmovable(host, path);  // Those that every program has its things in.
}

bool isCacheOfTool(const Host& host, const fs::path& path) {
    if (path.parent_path() != host.home / "Library/Caches") return false;
    const auto endings = NodeCliCacheEntries::folderNames("");
    return std::any_of(endings.begin(), endings.end(), [&](const std::string& ending) {
        return path.filename().native().ends_with(ending) && path.filename() != ending;
    });
}

/// What this program keeps for itself.
bool isOwn(const Host& host, const fs::path& path) {
    const fs::path own = AppStorageNames::supportRoot(host);
    return Files::isAtOrBelow(path, own) || Files::isAtOrBelow(own, path);
}

}  // namespace

bool isOne(const Host& host, const AppUninstallSession& session, Category category, const fs::path& path) {
    // Behind a NUL, a system call sees nothing any more.
    if (path.native().find('\0') != std::string::npos) return false;
    if (!path.is_absolute() || Files::standardized(path) != path || !path.has_filename()) return false;
    if (category == Category::installerSession) return path.parent_path() == AppStorageNames::sessionRoot(host);
    if (isOwn(host, path)) return false;
    if (category == Category::executable)
        return AppBundleEnumerator::isBundleName(path.filename().native()) &&
               !Files::isAtOrBelow(path, SystemFolders::system(host));
    if (category == Category::applicationSupport && isHiddenInHome(host, path)) return true;
    if (category == Category::caches && isCacheOfTool(host, path)) return true;
    return isRelatedPlace(host, session, category, path);
}

}  // namespace tarvik::UninstallPlaces
