#include "AppData/DataLocator.h"

#include "AppData/AssociatedDataPaths.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/SystemFolders.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

namespace tarvik::DataLocator {

namespace {

/// The folders that every user has for all that they make themselves.
constexpr std::array<std::string_view, 7> userFolders = {"Desktop", "Documents", "Downloads", "Movies",
                                                         "Music",   "Pictures",  "Public"};

std::optional<InstallsDB::Entry> installOf(InstallsDB::Reader& installs, const AppIdentity& identity) {
    const bool hasIdentifier = !identity.bundleIdentifier.value_or("").empty();
    if (hasIdentifier) return installs.entryForBundleId(*identity.bundleIdentifier);
    return installs.entryForAppName(identity.displayName);
}

/// What the system keeps for an application in its sandbox: it does not follow a link there.
bool isSandboxed(const Host& host, const fs::path& path) {
    const fs::path library = host.home / "Library";
    return Files::isAtOrBelow(path, library / "Containers") || Files::isAtOrBelow(path, library / "Group Containers");
}

/// Whether the system or the user keeps this folder for all applications.
bool isFolderOfEverybody(const Host& host, const fs::path& folder) {
    if (SystemFolders::isImmovable(host, folder)) return true;
    const fs::path parent = folder.parent_path();
    if (parent == host.home / "Library" || parent == SystemFolders::library(host)) return true;
    return parent == host.home &&
           std::find(userFolders.begin(), userFolders.end(), folder.filename().native()) != userFolders.end();
}

/// Whether a tracked file is data of the application: it exists, lies outside the bundle and the sandboxes, and is no
/// folder of everybody, which installers name too.
bool isOwnData(const Host& host, const fs::path& path, const fs::path& bundle) {
    const auto item = Files::infoFollowingLinks(path);
    const auto parent = Files::resolved(path.parent_path());
    if (!item || !parent) return false;
    // Installers name a home behind a link by the link.
    for (const fs::path& place : {path, *parent / path.filename()}) {
        if (Files::isAtOrBelow(place, bundle) || isSandboxed(host, place)) return false;
        if (item->type == Files::ItemType::folder && isFolderOfEverybody(host, place)) return false;
    }
    return true;
}

std::vector<fs::path> trackedPaths(const Host& host, const AppIdentity& identity, InstallsDB::Reader& installs) {
    const auto install = installOf(installs, identity);
    if (!install) return {};
    std::vector<fs::path> paths;
    const fs::path bundle = Files::standardized(identity.bundlePath);
    for (const fs::path& tracked : installs.trackedFiles(install->installId)) {
        if (!tracked.is_absolute()) continue;
        fs::path path = Files::standardized(tracked);
        if (isOwnData(host, path, bundle)) paths.push_back(std::move(path));
    }
    return paths;
}

}  // namespace

std::vector<fs::path> locate(const Host& host, const AppIdentity& identity) {
    InstallsDB::Reader installs(InstallsDB::defaultPath(host));
    return locate(host, identity, installs);
}

std::vector<fs::path> locate(const Host& host, const AppIdentity& identity, InstallsDB::Reader& installs) {
    std::vector<fs::path> associated = AssociatedDataPaths::locate(host, identity);
    std::vector<fs::path> paths = trackedPaths(host, identity, installs);
    if (paths.empty()) return associated;
    for (fs::path& path : associated) paths.push_back(std::move(path));
    std::set<fs::path> seen;
    std::erase_if(paths, [&](const fs::path& path) { return !seen.insert(Files::standardized(path)).second; });
    return paths;
}

}  // namespace tarvik::DataLocator
