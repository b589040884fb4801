#include "Uninstall/UninstallTarget.h"

#include "Applications/AppChoice.h"
#include "Applications/AppEntry.h"
#include "Discovery/AppBundleEnumerator.h"
#include "Discovery/AppScanner.h"
#include "Discovery/InstalledAppsScanner.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/LastComponent.h"
#include "Platform/Files/WrittenPath.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tarvik::UninstallTarget {

namespace {

/// What the scan for moves finds, where a link stands for its bundle, and what only the uninstaller's own scan finds:
/// launchers that open nothing any more, and what came with another application.
std::vector<AppEntry> namedApplications(const Host& host) {
    auto entries = AppScanner::discoverMetadata(host);
    const auto isKnown = [&](const AppRecord& record) {
        return std::any_of(entries.begin(), entries.end(), [&](const AppEntry& entry) {
            return entry.bundlePath == record.bundlePath ||
                   (record.bundleIdentifier && entry.bundleIdentifier == record.bundleIdentifier);
        });
    };
    std::vector<AppEntry> others;
    for (const AppRecord& record : InstalledAppsScanner::discover(host)) {
        if (isKnown(record)) continue;
        AppEntry entry;
        entry.id = record.id;
        entry.name = record.displayName;
        entry.bundlePath = record.bundlePath;
        entry.bundleIdentifier = record.bundleIdentifier;
        others.push_back(std::move(entry));
    }
    entries.insert(entries.end(), others.begin(), others.end());
    return entries;
}

bool isAmongApplications(const Host& host, const fs::path& path) {
    const auto roots = AppScanner::scanRoots(host);
    return std::any_of(roots.begin(), roots.end(),
                       [&](const fs::path& root) { return Files::isAtOrBelow(path, root); });
}

/// Whether the link or the launcher at the path leads to the bundle.
bool leadsTo(const fs::path& path, const std::optional<Files::ItemInfo>& bundle) {
    if (Files::isSymbolicLink(path)) return Files::isSameItem(Files::infoFollowingLinks(path), bundle);
    const auto target = AppScanner::launcherShimTarget(path);
    return target && Files::isSameItem(Files::infoFollowingLinks(*target), bundle);
}

}  // namespace

AppRecord entryFor(const Host& host, const AppRecord& record) {
    if (record.isSymlink || record.isTarvikLauncher || isAmongApplications(host, record.bundlePath)) return record;
    const auto bundle = Files::info(record.bundlePath);
    for (const fs::path& root : AppScanner::scanRoots(host))
        for (const fs::path& path : AppBundleEnumerator::bundles(root))
            if (leadsTo(path, bundle)) return InstalledAppsScanner::inspect(host, path).value_or(record);
    return record;
}

std::optional<AppRecord> atPath(const Host& host, const fs::path& path) {
    const fs::path place = Files::standardized(path);
    if (!AppBundleEnumerator::isBundleName(place.filename().native())) return std::nullopt;
    if (!Files::isFolder(place) && !Files::isSymbolicLink(place)) return std::nullopt;
    return InstalledAppsScanner::inspect(host, place);
}

AppRecord named(const Host& host, std::string_view wanted) {
    const bool isPath = wanted.find('/') != std::string_view::npos;
    if (isPath)
        if (auto record = atPath(host, WrittenPath::meant(wanted))) return *std::move(record);
    if (isPath)
        throw Failure("UninstallTarget", 1, fmt::format("Not an app bundle: {}", lastComponent(fs::path(wanted))));
    const auto entries = namedApplications(host);
    const AppEntry& entry = AppChoice::named(entries, wanted);
    if (auto record = InstalledAppsScanner::inspect(host, entry.bundlePath)) return *std::move(record);
    throw Failure("UninstallTarget", 1, fmt::format("{} is not there any more.", entry.name));
}

}  // namespace tarvik::UninstallTarget
