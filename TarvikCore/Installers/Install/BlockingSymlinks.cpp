#include "Installers/Install/BlockingSymlinks.h"

#include "Installers/Install/PackageAppTargets.h"
#include "Installers/Install/Rootferry.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Machine/VolumeList.h"
#include "Platform/Processes/CommandRunner.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik::BlockingSymlinks {

namespace {

using namespace std::chrono_literals;

struct BlockingLink {
    fs::path link;
    fs::path destination;
};

/// Below the folder of volumes and below one of the names in it.
bool isInsideAVolume(const fs::path& path, const fs::path& volumes) {
    if (!Files::isAtOrBelow(path, volumes)) return false;
    const fs::path relative = path.lexically_relative(volumes);
    return std::distance(relative.begin(), relative.end()) >= 2;
}

/// What this program keeps on a drive for all applications together.
std::vector<fs::path> ownFoldersOn(const fs::path& drive) {
    std::vector<fs::path> folders = {drive / AppStorageNames::backupsRoot};
    std::vector<std::string_view> roots = {AppStorageNames::externalRoot};
    roots.insert(roots.end(), AppStorageNames::legacyExternalRoots.begin(), AppStorageNames::legacyExternalRoots.end());
    for (const std::string_view root : roots) {
        folders.push_back(drive / root);
        for (const std::string_view name :
             {AppStorageNames::apps, AppStorageNames::data, AppStorageNames::folders, AppStorageNames::plugins})
            folders.push_back(drive / root / name);
    }
    return folders;
}

/// The same item, or two spellings that volumes can take for one name.
bool isSamePlace(const fs::path& one, const fs::path& other) {
    return Text::nameKey(one.native()) == Text::nameKey(other.native()) ||
           Files::isSameItem(Files::infoFollowingLinks(one), Files::infoFollowingLinks(other));
}

bool isOwnFolderOn(const fs::path& drive, const fs::path& place) {
    const auto folders = ownFoldersOn(drive);
    return std::any_of(folders.begin(), folders.end(),
                       [&](const fs::path& folder) { return isSamePlace(folder, place); });
}

/// The first folder below that of volumes.
fs::path driveOf(const fs::path& place, const fs::path& volumes) {
    return volumes / *place.lexically_relative(volumes).begin();
}

/// What is asked of the item itself, by its real place.
bool isOnlyAnItemOfADrive(const Host& host, const fs::path& place, const fs::path& volumes) {
    if (!isInsideAVolume(place, volumes) || isOwnFolderOn(driveOf(place, volumes), place)) return false;
    const auto mounted = host.volumes->mountPaths();
    return std::none_of(mounted.begin(), mounted.end(), [&](const fs::path& mountPath) {
        const fs::path volume = Files::resolved(mountPath).value_or(mountPath);
        return Files::isItemAtOrBelow(volume, place) ||
               (Files::isAtOrBelow(place, volume) && isOwnFolderOn(volume, place));
    });
}

std::vector<BlockingLink> linksIn(const Host& host, const std::set<fs::path>& targets) {
    std::vector<BlockingLink> links;
    for (const auto& target : targets) {
        auto destination = Files::linkText(target);
        if (destination && mayRemoveDestination(host, *destination)) links.push_back({target, *destination});
    }
    return links;
}

void removeDirectly(const BlockingLink& link) {
    ignoringFailure([&] { Files::removeLink(link.link); });
    if (!Files::itemExists(link.link)) ignoringFailure([&] { Files::removeItem(link.destination); });
}

void removeAsRoot(const Host& host, const BlockingLink& link) {
    const fs::path tool = Rootferry::path(host);
    CommandRunner::run(tool, {"rm", "-f", link.link.native()}, 10s);
    if (!Files::itemExists(link.link)) CommandRunner::run(tool, {"rm", "-rf", link.destination.native()}, 30s);
}

}  // namespace

bool mayRemoveDestination(const Host& host, const fs::path& destination) {
    const fs::path volumes = SystemFolders::volumes(host);
    if (!destination.native().starts_with(volumes.native() + "/")) return false;
    if (std::find(destination.begin(), destination.end(), "..") != destination.end()) return false;
    const fs::path place = Files::standardized(destination);
    if (!isOnlyAnItemOfADrive(host, place, volumes)) return false;
    // A link on the way may lead to the internal disk. Of a drive that is away, only the name can be asked.
    const auto parent = Files::resolved(place.parent_path());
    return !parent ||
           isOnlyAnItemOfADrive(host, *parent / place.filename(), Files::resolved(volumes).value_or(volumes));
}

void clear(const Host& host, const fs::path& package, bool useRootferry, const InstallerRunReporter& reporter,
           const Cancellation& cancellation) {
    const auto links = linksIn(host, PackageAppTargets::of(host, package, cancellation));
    for (const auto& link : links)
        reporter.log(
            fmt::format("pre-install-clear-symlink\t{}\t-> {}", link.link.native(), link.destination.native()));
    for (const auto& link : links) {
        // It may lead elsewhere by now.
        if (Files::linkText(link.link) != link.destination) continue;
        useRootferry ? removeAsRoot(host, link) : removeDirectly(link);
    }
}

}  // namespace tarvik::BlockingSymlinks
