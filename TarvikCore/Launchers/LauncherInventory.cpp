#include "Launchers/LauncherInventory.h"

#include "Applications/AppClassifier.h"
#include "Applications/LauncherLayout.h"
#include "Discovery/AppBundleEnumerator.h"
#include "Discovery/AppScanner.h"
#include "Launchers/LauncherAppBuilder.h"
#include "Launchers/NestedAppLauncherService.h"
#include "Launchers/StaleRootRetarget.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/ListedFolder.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Machine/TrashCan.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <cstddef>
#include <map>
#include <optional>

namespace tarvik::LauncherInventory {

namespace {

using Condition = LauncherEntry::Condition;

/// Nothing for a bundle that is no launcher.
std::optional<LauncherEntry> entryOf(const Host& host, const fs::path& bundle) {
    const auto text = AppClassifier::readLauncherTarget(bundle);
    if (!text) return std::nullopt;
    if (!text->is_absolute()) return LauncherEntry{bundle, *text, Condition::broken};
    const fs::path target = Files::standardized(*text);
    if (NestedAppLauncherService::hasComeBack(host, bundle.parent_path(), target))
        return LauncherEntry{bundle, target, Condition::needless};
    if (!Files::exists(target)) {
        const auto relocated = StaleRootRetarget::candidate(host, target);
        return relocated ? LauncherEntry{bundle, *relocated, Condition::relocated}
                         : LauncherEntry{bundle, target, Condition::broken};
    }
    const bool isComplete = Files::exists(bundle / LauncherLayout::executableFile);
    return LauncherEntry{bundle, target, isComplete ? Condition::ok : Condition::incomplete};
}

}  // namespace

std::vector<LauncherEntry> list(const Host& host) {
    std::map<fs::path, LauncherEntry> byPath;
    for (const fs::path& root : AppScanner::scanRoots(host)) {
        const auto folder = ListedFolder::at(root);
        for (std::size_t index = 0; folder && index < folder->size(); ++index) {
            const bool isBundle = AppBundleEnumerator::isBundleName(folder->name(index)) &&
                                  folder->type(index) == Files::ItemType::folder;
            if (!isBundle) continue;
            if (auto entry = entryOf(host, root / folder->name(index))) byPath.emplace(entry->launcher, *entry);
        }
    }
    const auto missing = NestedAppLauncherService::missingCandidates(host, SystemFolders::applications(host));
    for (const auto& candidate : missing) {
        const auto condition = Files::itemExists(candidate.launcher) ? Condition::outdated : Condition::missing;
        byPath.insert_or_assign(candidate.launcher, LauncherEntry{candidate.launcher, candidate.targetApp, condition});
    }
    std::vector<LauncherEntry> entries;
    entries.reserve(byPath.size());
    for (auto& [path, entry] : byPath) entries.push_back(std::move(entry));
    return entries;
}

void repair(const Host& host, const LauncherEntry& entry) {
    // The user has been asked meanwhile: what came to stand there is not ours to put away.
    if (Files::itemExists(entry.launcher) && !AppClassifier::readLauncherTarget(entry.launcher))
        throw Failure("LauncherInventory", 1, fmt::format("{} is no launcher, so it stays.", entry.launcher.native()));
    if (entry.condition == Condition::needless) {
        host.trash->moveToTrash(entry.launcher);
        return;
    }
    LauncherAppBuilder::install(host, entry.target, entry.launcher, entry.target, InstallerRunReporter::silent);
}

Dialog confirmRepair(const std::vector<LauncherEntry>& repairable) {
    constexpr std::size_t mostNames = 6;
    std::vector<std::string> names;
    names.reserve(repairable.size());
    for (const auto& entry : repairable) names.push_back(entry.launcher.filename());
    return {fmt::format("Install or repair {}?", Text::counted(std::ssize(repairable), "launcher")),
            Text::listed(names, mostNames) + ". What stands in their places goes to the Trash.",
            {"Repair", "Cancel"}};
}

std::string repaired(std::int64_t count) {
    return fmt::format("Installed/repaired {}.", Text::counted(count, "Spotlight launcher"));
}

}  // namespace tarvik::LauncherInventory
