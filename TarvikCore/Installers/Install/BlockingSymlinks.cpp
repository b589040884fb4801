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
#include <cerrno>
#include <chrono>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

namespace tarvik::BlockingSymlinks {

namespace {

using namespace std::chrono_literals;

struct BlockingLink {
    fs::path link;
    /// As it stands in the link.
    fs::path text;
    /// What is removed: a text that ends in "/" or "/." would empty what a link on the drive leads to.
    fs::path place;
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

/// `place` with the links above it resolved; what is missing, as of a drive that is away, is taken by its name. Nothing
/// when it is not certain where that is: on the way stands what cannot be looked at, or a link that leads nowhere.
std::optional<fs::path> realPlace(const fs::path& place) {
    fs::path standing = place;
    struct stat status {};
    while (::lstat(standing.c_str(), &status) != 0) {
        if (errno != ENOENT || standing == standing.parent_path()) return std::nullopt;
        standing = standing.parent_path();
    }
    if (standing == place) standing = place.parent_path();
    const auto resolved = Files::resolved(standing);
    if (!resolved) return std::nullopt;
    return *resolved / place.lexically_relative(standing);
}

/// Whether the package would be lost with the copy, or could not be found without the link.
bool isNeededBy(const fs::path& package, const BlockingLink& link) {
    const fs::path written = Files::standardized(package);
    const fs::path real = Files::resolved(written).value_or(written);
    const auto holdsPackage = [&](const fs::path& item) {
        return Files::isItemAtOrBelow(written, item) || Files::isItemAtOrBelow(real, item);
    };
    const fs::path place = realPlace(link.place).value_or(link.place);
    return holdsPackage(link.link) || holdsPackage(link.place) || holdsPackage(place) ||
           Files::isItemAtOrBelow(place, real);
}

std::vector<BlockingLink> linksIn(const Host& host, const std::set<fs::path>& targets) {
    std::vector<BlockingLink> links;
    for (const auto& target : targets) {
        auto text = Files::linkText(target);
        if (text && mayRemoveDestination(host, *text)) links.push_back({target, *text, Files::standardized(*text)});
    }
    return links;
}

/// The links that go. All are told of.
std::vector<BlockingLink> choose(const std::vector<BlockingLink>& links, const fs::path& package,
                                 const InstallerRunReporter& reporter) {
    std::vector<BlockingLink> chosen;
    for (const auto& link : links) {
        const bool stays = isNeededBy(package, link);
        reporter.log(fmt::format("{}\t{}\t-> {}", stays ? "pre-install-keep-symlink" : "pre-install-clear-symlink",
                                 link.link.native(), link.text.native()));
        if (!stays) chosen.push_back(link);
    }
    return chosen;
}

/// Removes a link, and the copy once the link has gone. Before each of both it is looked at again: by now the link, or
/// one on the way behind it, may lead elsewhere. Whether the link has gone.
bool remove(const Host& host, const BlockingLink& link, bool useRootferry) {
    if (Files::linkText(link.link) != link.text || !mayRemoveDestination(host, link.text)) return false;
    const fs::path tool = Rootferry::path(host);
    if (useRootferry)
        CommandRunner::run(tool, {"rm", "-f", link.link.native()}, 10s);
    else
        ignoringFailure([&] { Files::removeLink(link.link); });
    if (Files::itemExists(link.link)) return false;
    if (!mayRemoveDestination(host, link.text)) return true;
    if (useRootferry)
        CommandRunner::run(tool, {"rm", "-rf", link.place.native()}, 30s);
    else
        ignoringFailure([&] { Files::removeItem(link.place); });
    return true;
}

}  // namespace

bool mayRemoveDestination(const Host& host, const fs::path& destination) {
    const fs::path volumes = SystemFolders::volumes(host);
    if (!destination.native().starts_with(volumes.native() + "/")) return false;
    if (std::find(destination.begin(), destination.end(), "..") != destination.end()) return false;
    const fs::path place = Files::standardized(destination);
    if (!isOnlyAnItemOfADrive(host, place, volumes)) return false;
    // A link on the way may lead to the internal disk.
    const auto real = realPlace(place);
    return real && isOnlyAnItemOfADrive(host, *real, Files::resolved(volumes).value_or(volumes));
}

bool clear(const Host& host, const fs::path& package, bool useRootferry, const InstallerRunReporter& reporter,
           const Cancellation& cancellation) {
    const auto links = linksIn(host, PackageAppTargets::of(host, package, cancellation));
    bool hasRemoved = false;
    for (const auto& link : choose(links, package, reporter)) {
        if (!hasRemoved && cancellation.isCancelled()) break;
        if (remove(host, link, useRootferry)) hasRemoved = true;
    }
    return hasRemoved;
}

}  // namespace tarvik::BlockingSymlinks
