#include "MovePlan/WayBack.h"

#include "Applications/AppClassifier.h"
#include "Discovery/AppScanner.h"
#include "Move/MoverEngine.h"
#include "MovePlan/AppManagement.h"
#include "MovePlan/DataTrash.h"
#include "MovePlan/MoveDialogs.h"
#include "MovePlan/MoveRefusal.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/WrittenPath.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/KeptAwake.h"
#include "Platform/Storage/DriveGuard.h"
#include "Platform/Storage/DrivePath.h"
#include "Platform/Storage/DriveScanner.h"
#include "Platform/Text/Text.h"
#include "Records/HealthManifest.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace tarvik::WayBack {

namespace {

Failure refusal(std::string sentence) {
    return {"WayBack", 0, std::move(sentence)};
}

bool leadsToOwnFolder(const Host& host, const fs::path& target) {
    const auto drive = DrivePath::of(host, target);
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
        if (name.starts_with('.')) continue;  // What a killed act has left stands for no folder.
        const fs::path link = launcher.parent_path() / name;
        const auto text = Files::linkText(link);
        const fs::path folder = text ? Files::standardized(launcher.parent_path() / *text) : fs::path();
        if (text && folder != target && Files::isAtOrBelow(target, folder)) return link;
    }
    return std::nullopt;
}

std::string missing(const Host& host, const fs::path& link, const fs::path& target) {
    const auto drive = DrivePath::of(host, target);
    if (drive && !DriveScanner::isThere(host, *drive))
        return fmt::format("{} is on a drive that is not connected: {}. Connect it and try again.",
                           link.filename().native(), target.native());
    return fmt::format("{} leads to {}, where nothing stands any more.", link.filename().native(), target.native());
}

/// The data of an application that is behind links to a drive: it does not come back with the bundle. Empty when
/// anything else stands there.
std::vector<fs::path> dataLinksOf(const Host& host, const fs::path& bundle) {
    const auto entry =
        bundle.extension() == ".app" ? AppScanner::metadataEntry(host, bundle) : std::optional<AppEntry>();
    if (!entry) return {};
    std::vector<fs::path> links;
    for (const fs::path& path : entry->dataPaths)
        if (DataTrash::isLinkToDrive(host, path)) links.push_back(path);
    return links;
}

/// From where to where something comes back.
struct Way {
    fs::path link;
    fs::path target;

    bool operator==(const Way&) const = default;
};

Way wayFrom(const Host& host, const fs::path& link) {
    if (!Files::itemExists(link)) throw refusal(fmt::format("Nothing stands at {}.", link.native()));
    auto target = Files::linkText(link);
    if (!target) target = AppScanner::launcherShimTarget(link);
    const auto launched = target ? std::nullopt : AppClassifier::readLauncherTarget(link);
    if (launched && !Files::exists(*launched)) throw refusal(missing(host, link, *launched));
    if (!target)
        throw refusal(fmt::format("{} is not a symlink, so there is nothing to move back.", link.filename().native()));
    if (target->is_relative())
        throw refusal(
            fmt::format("{} is a relative symlink, to {}: no move leaves one, so there is nothing to move back.",
                        link.filename().native(), target->native()));
    if (!Files::exists(*target)) throw refusal(missing(host, link, *target));
    if (const auto folder = movedFolderOf(link, *target)) return wayFrom(host, *folder);
    return {link, *target};
}

}  // namespace

Plan plan(const Host& host, const fs::path& path) {
    const auto [link, target] = wayFrom(host, WrittenPath::meant(path));
    if (auto sentence = MoveRefusal::ofRestore(host, link, target)) throw refusal(*sentence);
    const bool isOwn = leadsToOwnFolder(host, target) || isRemembered(host, link, target);
    Plan plan{link, target, isOwn, dataLinksOf(host, link)};
    if (const auto drive = DrivePath::of(host, target)) plan.driveMark = DriveScanner::markOf(host, *drive);
    if (plan.driveMark) plan.drive = DrivePath::of(host, target);
    return plan;
}

void run(const Host& host, const Plan& plan, const ProgressCallback& progress) {
    std::optional<DriveGuard> drive;  // Held, so that it cannot be ejected meanwhile.
    if (plan.drive) drive = DriveGuard::ofMarked(host, *plan.drive, plan.driveMark);
    const Way way = wayFrom(host, plan.link);
    if (way != Way{plan.link, plan.target})
        throw refusal(fmt::format("{} leads to {} by now. Look at it and try again.", plan.link.filename().native(),
                                  way.target.native()));
    if (auto sentence = AppManagement::refusalOf(plan.target)) throw refusal(*sentence);
    const KeptAwake awake(host, "An item is being moved back from a drive");
    MoverEngine::restore(host, plan.link, progress);
}

Dialog confirm(const Plan& plan) {
    Dialog dialog = MoveDialogs::confirmRestore(plan.link.filename(), plan.target);
    dialog.details.push_back(fmt::format("To {}", plan.link.native()));
    for (auto& sentence : doubtsAbout(plan)) dialog.details.push_back(std::move(sentence));
    return dialog;
}

std::vector<std::string> doubtsAbout(const Plan& plan) {
    std::vector<std::string> sentences;
    if (!plan.isOwn) sentences.push_back(foreign(plan.link));
    if (auto sentence = dataStays(plan); !sentence.empty()) sentences.push_back(std::move(sentence));
    return sentences;
}

std::string dataStays(const Plan& plan) {
    if (plan.data.empty()) return {};
    const auto count = std::ssize(plan.data);
    std::string places = plan.data.front().native();
    if (count == 2) places += " and " + plan.data.back().native();
    if (count > 2) places += " and " + Text::counted(count - 1, "other");
    return fmt::format("{} of the data of {} {} on a drive: {}.", Text::counted(count, "item"),
                       plan.link.filename().native(), count == 1 ? "stays" : "stay", places);
}

std::string movedBack(const Plan& plan) {
    return fmt::format("Moved {} back to {}.", plan.link.filename().native(), plan.link.native());
}

std::string foreign(const fs::path& link) {
    return fmt::format("{} is not a symlink that Tarvik has left.", link.filename().native());
}

std::string restored(const fs::path& link) {
    return "Restored " + link.filename().native();
}

}  // namespace tarvik::WayBack
