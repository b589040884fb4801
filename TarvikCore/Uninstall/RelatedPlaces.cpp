#include "Uninstall/RelatedPlaces.h"

#include "AppData/DataName.h"
#include "AppData/DotfileEntries.h"
#include "AppData/NodeCliCacheEntries.h"
#include "AppData/Slug.h"
#include "AppData/SlugDataEligibility.h"
#include "AppData/SupplementalInstall.h"
#include "Platform/Machine/SystemFolders.h"

#include <optional>
#include <string_view>

namespace tarvik::RelatedPlaces {

namespace {

using Category = UninstallCategory;
using FileSize = Place::FileSize;
using Match = Place::Match;

constexpr const char* byIdentifier = "Matches bundle id";

/// The names that an application goes by, those that can be looked for.
struct Names {
    explicit Names(const AppRecord& app) {
        if (DataName::isOneComponent(app.displayName)) display = app.displayName;
        if (app.bundleIdentifier && DataName::isOneComponent(*app.bundleIdentifier)) identifier = app.bundleIdentifier;
    }

    std::optional<std::string> display;
    std::optional<std::string> identifier;
};

Place matching(const fs::path& folder, const std::string& name, Category category) {
    return {.folder = folder, .name = name, .category = category, .reason = byIdentifier};
}

void addNamed(std::vector<Place>& places, const Names& names, const fs::path& folder, Category category) {
    if (names.display) {
        Place place = matching(folder, *names.display, category);
        place.fileSize = FileSize::length;
        // Two names that are one text are the identifier.
        if (names.display != names.identifier) {
            place.confidence = UninstallConfidence::medium;
            place.reason = "Matches app name";
        }
        places.push_back(std::move(place));
    }
    if (names.identifier) {
        places.push_back(matching(folder, *names.identifier, category));
        places.back().fileSize = FileSize::length;
    }
}

void addPreferences(std::vector<Place>& places, const std::string& identifier, const fs::path& folder) {
    places.push_back({.folder = folder,
                      .name = identifier + ".plist",
                      .category = Category::preferences,
                      .reason = "Preferences plist"});
    // Behind the identifier the name tells the machine, and what wrote it.
    places.push_back({.folder = folder / "ByHost",
                      .name = identifier,
                      .category = Category::preferences,
                      .reason = "ByHost preferences",
                      .match = Match::beginningOfName,
                      .fileSize = FileSize::length});
}

void addContainers(std::vector<Place>& places, const std::string& identifier, const fs::path& library) {
    places.push_back(matching(library / "Containers", identifier, Category::containers));
    places.push_back(matching(library / "Group Containers", identifier, Category::groupContainers));
    places.push_back(matching(library / "HTTPStorages", identifier, Category::httpStorages));
    places.push_back(matching(library / "WebKit", identifier, Category::webKit));
}

void addBySlug(std::vector<Place>& places, const Host& host, const AppIdentity& identity) {
    const std::string slug = Slug::derive(identity);
    if (!DataName::isOneComponent(slug) || !SlugDataEligibility::includesDotfileAndNodeCaches(identity)) return;
    for (const fs::path& path : DotfileEntries::paths(host.home, slug))
        places.push_back({.folder = path.parent_path(),
                          .name = path.filename(),
                          .category = Category::applicationSupport,
                          .reason = "Dotfile install matching app name",
                          .defaultSelected = false,
                          .fileSize = FileSize::length});
    for (const fs::path& path : NodeCliCacheEntries::paths(host.home, slug))
        places.push_back({.folder = path.parent_path(),
                          .name = path.filename(),
                          .category = Category::caches,
                          .reason = "Node CLI cache"});
}

void addOfHome(std::vector<Place>& places, const Host& host, const AppRecord& app, const Names& names) {
    const fs::path library = host.home / "Library";
    if (!SupplementalInstall::matches(host, app.bundlePath))
        addNamed(places, names, library / "Application Support", Category::applicationSupport);
    addNamed(places, names, library / "Caches", Category::caches);
    addNamed(places, names, library / "Logs", Category::logs);
    if (names.identifier) {
        addPreferences(places, *names.identifier, library / "Preferences");
        addContainers(places, *names.identifier, library);
    }
    if (names.display)
        places.push_back({.folder = library / "Saved Application State",
                          .name = *names.display + ".savedState",
                          .category = Category::savedAppState,
                          .confidence = UninstallConfidence::medium,
                          .reason = "Saved application state"});
    if (names.identifier)
        places.push_back({.folder = library / "LaunchAgents",
                          .name = *names.identifier + ".plist",
                          .category = Category::launchAgents,
                          .reason = "User launch agent"});
    addBySlug(places, host, AppIdentity::of(app));
}

/// What a whole machine shares goes only where it is certain that nothing else depends on it: data.
void addOfMachine(std::vector<Place>& places, const Host& host, const std::string& identifier) {
    const auto add = [&](const char* folder, std::string_view ending, Category category) {
        places.push_back({.folder = SystemFolders::library(host) / folder,
                          .name = std::string(identifier).append(ending),
                          .category = category,
                          .confidence = UninstallConfidence::medium,
                          .reason = "System path matches bundle id",
                          .defaultSelected = category == Category::applicationSupport,
                          .isPrivileged = true});
    };
    add("LaunchDaemons", ".plist", Category::launchDaemons);
    add("LaunchAgents", ".plist", Category::launchAgents);
    add("Application Support", "", Category::applicationSupport);
    add("PrivilegedHelperTools", "", Category::launchDaemons);
}

}  // namespace

std::vector<Place> of(const Host& host, const AppRecord& app) {
    const Names names(app);
    std::vector<Place> places;
    addOfHome(places, host, app, names);
    if (names.identifier) addOfMachine(places, host, *names.identifier);
    return places;
}

}  // namespace tarvik::RelatedPlaces
