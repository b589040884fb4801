#include "Discovery/AppScanner.h"

#include "AppData/DataLocator.h"
#include "Applications/AppClassifier.h"
#include "Applications/AppFlags.h"
#include "Applications/AppIdentity.h"
#include "Discovery/AppBundleEnumerator.h"
#include "Discovery/AppBundleScanRoots.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Storage/SizingService.h"
#include "Platform/Text/PropertyList.h"
#include "Platform/Text/Text.h"
#include "Records/InstallsDB.h"

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace tarvik::AppScanner {

namespace {

PropertyList infoOf(const fs::path& bundle) {
    return PropertyList::dictionaryAt(bundle / "Contents/Info.plist");
}

/// The name in a bundle's list, or else the one of its file.
std::string nameOf(const PropertyList& info, const fs::path& bundle) {
    for (const std::string_view key : {"CFBundleDisplayName", "CFBundleName"})
        if (auto name = info.text(key); name && !name->empty()) return std::move(*name);
    return bundle.stem();
}

/// An empty identifier identifies nothing: the bundle counts as one that has none.
std::optional<std::string> identifierIn(const PropertyList& info) {
    auto identifier = info.text("CFBundleIdentifier");
    return identifier && !identifier->empty() ? std::move(identifier) : std::nullopt;
}

std::optional<AppEntry> entryOf(const Host& host, const fs::path& bundle, InstallsDB::Reader& installs) {
    PropertyList info = infoOf(bundle);
    const bool isLauncher = AppClassifier::detectTarvikLauncher(bundle, info);
    const auto target = isLauncher ? launcherShimTarget(bundle) : std::nullopt;
    if (isLauncher && !target) return std::nullopt;
    if (target) info = infoOf(*target);

    AppEntry entry{.name = nameOf(info, bundle),
                   .bundlePath = bundle,
                   .bundleIdentifier = identifierIn(info),
                   .version = info.text("CFBundleShortVersionString"),
                   .isMacAppStore = AppFlags::isMacAppStore(bundle),
                   .hasLoginItems = AppFlags::hasLoginItems(bundle),
                   .hasSystemExtension = AppFlags::hasSystemExtension(bundle),
                   .isAlreadySymlinked = target || isSymbolicLinkOrInsideOne(host, bundle)};
    entry.id = entry.bundleIdentifier.value_or(bundle.native());
    entry.dataPaths = DataLocator::locate(host,
                                          {.bundlePath = bundle,
                                           .displayName = entry.name,
                                           .bundleIdentifier = entry.bundleIdentifier,
                                           .executableName = info.text("CFBundleExecutable")},
                                          installs);
    return entry;
}

}  // namespace

std::vector<fs::path> scanRoots(const Host& host) {
    return AppBundleScanRoots::standardApplicationRoots(host, false);
}

std::vector<AppEntry> discoverMetadata(const Host& host) {
    InstallsDB::Reader installs(InstallsDB::defaultPath(host));
    std::map<std::string, AppEntry> byPath;
    for (const fs::path& root : scanRoots(host)) {
        for (const fs::path& bundle : AppBundleEnumerator::bundles(root)) {
            if (auto entry = entryOf(host, bundle, installs)) {
                byPath.insert_or_assign(bundle.native(), std::move(*entry));
            } else {
                byPath.erase(bundle.native());
            }
        }
    }
    std::vector<AppEntry> entries;
    entries.reserve(byPath.size());
    for (auto& [path, entry] : byPath) entries.push_back(std::move(entry));
    std::stable_sort(entries.begin(), entries.end(), [](const AppEntry& left, const AppEntry& right) {
        return Text::localizedCompare(left.name, right.name) < 0;
    });
    return entries;
}

std::optional<AppEntry> metadataEntry(const Host& host, const fs::path& bundle) {
    InstallsDB::Reader installs(InstallsDB::defaultPath(host));
    return entryOf(host, Files::standardized(bundle), installs);
}

AppEntry computeSizes(const Host& host, const AppEntry& entry, const Cancellation& cancellation) {
    std::vector<DataPathSize> sizes;
    sizes.reserve(entry.dataPaths.size());
    for (const fs::path& path : entry.dataPaths) sizes.push_back({path, SizingService::size(host, path, cancellation)});
    return entry.withSizes(SizingService::size(host, entry.bundlePath, cancellation), std::move(sizes));
}

std::optional<fs::path> launcherShimTarget(const fs::path& bundle) {
    const auto text = AppClassifier::readLauncherTarget(bundle);
    if (!text || !text->is_absolute()) return std::nullopt;
    fs::path target = Files::standardized(*text);
    return Files::exists(target) ? std::optional(std::move(target)) : std::nullopt;
}

bool isSymbolicLinkOrInsideOne(const Host& host, const fs::path& bundle) {
    const std::string root = Files::standardized(SystemFolders::applications(host));
    for (fs::path current = Files::standardized(bundle); current.native().starts_with(root);
         current = current.parent_path())
        if (Files::isSymbolicLink(current)) return true;
    return false;
}

}  // namespace tarvik::AppScanner
