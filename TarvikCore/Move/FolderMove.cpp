#include "Move/FolderMove.h"

#include "Discovery/AppScanner.h"
#include "Move/HealthManifest.h"
#include "Move/HiddenPlace.h"
#include "Move/MoveDialogs.h"
#include "Move/MoveRefusal.h"
#include "Platform/AppStorageNames.h"
#include "Platform/DriveScanner.h"
#include "Platform/Files.h"
#include "Platform/SizeCalculator.h"
#include "Platform/SizingService.h"
#include "Platform/SystemFolders.h"
#include "Platform/Text.h"
#include "Platform/WrittenPath.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace tarvik::FolderMove {

namespace {

Failure refusal(std::string sentence) {
    return {"FolderMove", 0, std::move(sentence)};
}

/// The mount path of the drive that a target lies on, by the names in its path: the drive may be gone.
std::optional<fs::path> driveOf(const Host& host, const fs::path& target) {
    fs::path before;
    for (const fs::path& component : target) {
        if (component == AppStorageNames::externalRoot) return before;
        before /= component;
    }
    const fs::path volumes = SystemFolders::volumes(host);
    if (!Files::isAtOrBelow(target, volumes) || target == volumes) return std::nullopt;
    return volumes / *target.lexically_relative(volumes).begin();
}

/// Where the space may have gone: the next move would clear it away, but has no room to begin.
std::string leftoversOn(const Host& host, const DriveInfo& drive) {
    const fs::path folder = AppStorageNames::foldersRootOn(drive.mountPath);
    std::int64_t size = 0;
    for (const fs::path& copy : HiddenPlace::copiesLeftIn(folder)) size += SizingService::size(host, copy);
    if (size == 0) return {};
    return fmt::format(" An interrupted move has left {} in {}, under a name that begins with .tarvik-moving-.",
                       SizeCalculator::format(size), folder.native());
}

bool leadsToOwnFolder(const Host& host, const fs::path& target) {
    const auto drive = driveOf(host, target);
    const auto holdsIt = [&](std::string_view root) { return Files::isAtOrBelow(target, *drive / root); };
    const auto& legacy = AppStorageNames::legacyExternalRoots;
    return drive && (holdsIt(AppStorageNames::externalRoot) || std::any_of(legacy.begin(), legacy.end(), holdsIt));
}

bool isRemembered(const Host& host, const fs::path& link, const fs::path& target) {
    const auto entries = HealthManifest::load(host);
    return std::any_of(entries.begin(), entries.end(), [&](const HealthManifestEntry& entry) {
        return entry.sourcePath == link && entry.destinationPath == target;
    });
}

/// The link of a moved folder beside the launcher, of which its application is a part.
std::optional<fs::path> movedFolderOf(const fs::path& launcher, const fs::path& target) {
    if (Files::isSymbolicLink(launcher)) return std::nullopt;
    for (const auto& name : Files::names(launcher.parent_path())) {
        const fs::path link = launcher.parent_path() / name;
        const auto text = Files::linkText(link);
        const fs::path folder = text ? Files::standardized(launcher.parent_path() / *text) : fs::path();
        if (text && folder != target && Files::isAtOrBelow(target, folder)) return link;
    }
    return std::nullopt;
}

std::string missing(const Host& host, const fs::path& link, const fs::path& target) {
    const auto drive = driveOf(host, target);
    if (drive && !DriveScanner::isThere(host, *drive))
        return fmt::format("{} is on a drive that is not connected: {}. Connect it and try again.",
                           link.filename().native(), target.native());
    return fmt::format("{} leads to {}, where nothing stands any more.", link.filename().native(), target.native());
}

}  // namespace

MoveJob plan(const Host& host, const fs::path& folder, const DriveInfo& drive, const Cancellation& cancellation) {
    const fs::path source = WrittenPath::meant(folder);
    if (!Files::exists(source)) throw refusal("Source folder doesn't exist.");
    if (auto sentence = MoveRefusal::ofFolder(host, source, drive)) throw refusal(*sentence);
    const std::int64_t size = SizingService::size(host, source, cancellation);
    if (cancellation.isCancelled()) throw cancelled();  // The size is only a part of it.
    if (auto sentence = MoveRefusal::ofSpace(size, drive)) throw refusal(*sentence + leftoversOn(host, drive));
    MoveJob job(source.filename(), source, AppStorageNames::foldersRootOn(drive.mountPath) / source.filename(),
                JobStatus::pending(), size, 0);
    job.driveMark = DriveScanner::markOf(host, drive.mountPath).value_or(std::string());
    return job;
}

Dialog confirmMove(const MoveJob& job, const DriveInfo& drive) {
    return {fmt::format("Move {} to {}?", job.label, drive.name),
            fmt::format("Total {}. Original location will become a symlink to {}.",
                        SizeCalculator::format(job.bytesTotal), job.destination.native()),
            {"Move", "Cancel"},
            {fmt::format("From {}", job.source.native())}};
}

std::string moved(const MoveJob& job) {
    return fmt::format("Moved {} to {}.", job.label, job.destination.native());
}

WayBack planRestore(const Host& host, const fs::path& path) {
    const fs::path link = WrittenPath::meant(path);
    if (!Files::itemExists(link)) throw refusal(fmt::format("Nothing stands at {}.", link.native()));
    auto target = Files::linkText(link);
    if (!target) target = AppScanner::launcherShimTarget(link);
    if (!target)
        throw refusal(fmt::format("{} is not a symlink, so there is nothing to move back.", link.filename().native()));
    if (target->is_relative())
        throw refusal(
            fmt::format("{} is a relative symlink, to {}: no move leaves one, so there is nothing to move back.",
                        link.filename().native(), target->native()));
    if (!Files::exists(*target)) throw refusal(missing(host, link, *target));
    if (const auto folder = movedFolderOf(link, *target)) return planRestore(host, *folder);
    if (auto sentence = MoveRefusal::ofRestore(host, link, *target)) throw refusal(*sentence);
    return {link, *target, isOwn(host, link, *target), dataLinksOf(host, link)};
}

std::vector<fs::path> dataLinksOf(const Host& host, const fs::path& bundle) {
    const auto entry =
        bundle.extension() == ".app" ? AppScanner::metadataEntry(host, bundle) : std::optional<AppEntry>();
    if (!entry) return {};
    std::vector<fs::path> links;
    for (const fs::path& path : entry->dataPaths)
        if (Files::isSymbolicLink(path)) links.push_back(path);
    return links;
}

bool isOwn(const Host& host, const fs::path& link, const fs::path& target) {
    return leadsToOwnFolder(host, target) || isRemembered(host, link, target);
}

Dialog confirmRestore(const WayBack& wayBack) {
    Dialog dialog = MoveDialogs::confirmRestore(wayBack.link.filename(), wayBack.target);
    dialog.details.push_back(fmt::format("To {}", wayBack.link.native()));
    if (!wayBack.isOwn) dialog.details.push_back(foreign(wayBack.link));
    if (auto sentence = dataStays(wayBack); !sentence.empty()) dialog.details.push_back(std::move(sentence));
    return dialog;
}

std::string dataStays(const WayBack& wayBack) {
    if (wayBack.data.empty()) return {};
    const auto count = std::ssize(wayBack.data);
    return fmt::format("{} of the data of {} {} on a drive: {}{}.", Text::counted(count, "item"),
                       wayBack.link.filename().native(), count == 1 ? "stays" : "stay", wayBack.data.front().native(),
                       count == 1 ? "" : " and others");
}

std::string movedBack(const WayBack& wayBack) {
    return fmt::format("Moved {} back to {}.", wayBack.link.filename().native(), wayBack.link.native());
}

std::string foreign(const fs::path& link) {
    return fmt::format("{} is not a symlink that Tarvik has left.", link.filename().native());
}

std::string restored(const fs::path& link) {
    return "Restored " + link.filename().native();
}

Failure cancelled() {
    return refusal("Cancelled. Nothing was changed.");
}

}  // namespace tarvik::FolderMove
