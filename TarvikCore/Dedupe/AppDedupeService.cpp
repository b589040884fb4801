#include "Dedupe/AppDedupeService.h"

#include "Applications/AppClassifier.h"
#include "Applications/LauncherLayout.h"
#include "Discovery/AppBundleEnumerator.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/SilentVolumes.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Machine/TrashCan.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Text/PropertyList.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

namespace tarvik::AppDedupeService {

namespace {

constexpr std::string_view reasonOfAll =
    "Top-level launcher duplicates a real local app with the same bundle identifier.";

using Items = std::vector<AppDedupeItem>;

std::optional<std::string> nonEmptyText(const PropertyList& list, std::string_view key) {
    auto text = list.text(key);
    return text && !text->empty() ? std::move(text) : std::nullopt;
}

/// Bytes that are no text name a path only where something bears that name.
std::optional<fs::path> targetOf(const Host& host, const fs::path& bundle) {
    auto target = AppClassifier::readLauncherTarget(bundle);
    if (!target || target->empty()) return std::nullopt;
    const bool isText = Text::isValidUtf8(target->native());
    return isText || SilentVolumes::hold(host, *target) || Files::exists(*target) ? std::move(target) : std::nullopt;
}

/// Whether a folder above the bundle is a link, up to the folder of applications that it is in.
bool isInsideSymlinkedFolder(const Host& host, const fs::path& bundle) {
    const auto stops = applicationRoots(host);
    fs::path folder = Files::standardized(bundle).parent_path();
    while (!Files::isSymbolicLink(folder)) {
        if (std::find(stops.begin(), stops.end(), folder) != stops.end() || folder == folder.parent_path())
            return false;
        folder = folder.parent_path();
    }
    return true;
}

AppDedupeItemKind kindOf(const fs::path& bundle, bool isLauncher) {
    if (isLauncher) return AppDedupeItemKind::tarvikLauncher;
    return Files::isSymbolicLink(bundle) ? AppDedupeItemKind::symlink : AppDedupeItemKind::realApp;
}

/// The bundle without its size; nothing when it has no identifier.
std::optional<AppDedupeItem> itemAt(const Host& host, const fs::path& bundle) {
    const PropertyList info = PropertyList::dictionaryAt(bundle / "Contents/Info.plist");
    const auto identifier = nonEmptyText(info, "CFBundleIdentifier");
    if (!identifier) return std::nullopt;

    AppDedupeItem item{.path = bundle, .bundleIdentifier = *identifier};
    item.targetPath = targetOf(host, bundle);
    const bool isLauncher = item.targetPath || info.text("CFBundleExecutable") == LauncherLayout::executable ||
                            identifier->ends_with(LauncherLayout::identifierSuffix);
    item.effectiveBundleIdentifier = Text::replacing(*identifier, LauncherLayout::identifierSuffix, "");
    auto name = nonEmptyText(info, "CFBundleDisplayName");
    if (!name) name = nonEmptyText(info, "CFBundleName");
    item.displayName = name.value_or(bundle.stem().native());
    item.kind = kindOf(bundle, isLauncher);
    item.insideSymlinkedFolder = isInsideSymlinkedFolder(host, bundle);
    return item;
}

/// By path, so that results are the same on every run.
Items discoverItems(const Host& host, const std::vector<fs::path>& roots, const Cancellation& cancellation) {
    std::map<std::string, AppDedupeItem> byPath;
    for (const fs::path& root : roots) {
        for (const fs::path& bundle : AppBundleEnumerator::bundles(root)) {
            if (cancellation.isCancelled()) break;
            if (SilentVolumes::hold(host, bundle)) continue;
            if (auto item = itemAt(host, bundle)) byPath.insert_or_assign(bundle.native(), std::move(*item));
        }
    }
    Items items;
    items.reserve(byPath.size());
    for (auto& [path, item] : byPath) items.push_back(std::move(item));
    return items;
}

bool isRealLocalApp(const AppDedupeItem& item) {
    return item.kind == AppDedupeItemKind::realApp && !item.insideSymlinkedFolder;
}

/// Whether the launcher opens something that is there and is not what stays. A text that is no whole path opens
/// nothing; what may not be looked at may be there, and so may what is on a volume that does not answer.
bool opensAnother(const Host& host, const AppDedupeItem& launcher, const AppDedupeItem& keep) {
    if (!launcher.targetPath || !launcher.targetPath->is_absolute()) return false;
    const fs::path target = Files::standardized(*launcher.targetPath);
    if (SilentVolumes::hold(host, target)) return true;
    if (target == Files::standardized(keep.path) || Files::isMissing(target)) return false;
    // A volume that folds names has more than one spelling for it.
    return !Files::isSameItem(Files::info(target), Files::info(keep.path));
}

bool canGo(const Host& host, const AppDedupeItem& item, const AppDedupeItem& keep) {
    return item.path != keep.path && item.kind == AppDedupeItemKind::tarvikLauncher && isRealLocalApp(keep) &&
           !opensAnother(host, item, keep);
}

/// What a walk reaches by two paths can only go once.
bool holdsSameItem(const Items& items, const fs::path& path) {
    const auto info = Files::info(path);
    return std::any_of(items.begin(), items.end(),
                       [&](const AppDedupeItem& item) { return Files::isSameItem(Files::info(item.path), info); });
}

/// The items, in the order of their paths, and which of them can go.
AppDedupeGroup groupOf(const Host& host, Items items) {
    AppDedupeGroup group;
    group.keep = preferredKeepItem(host, items);
    for (const AppDedupeItem& item : items)
        if (canGo(host, item, group.keep) && !holdsSameItem(group.remove, item.path)) group.remove.push_back(item);
    group.bundleIdentifier = group.keep.effectiveBundleIdentifier;
    group.displayName = group.keep.displayName;
    group.items = std::move(items);
    group.reason = reasonOfAll;
    return group;
}

void measure(const Host& host, AppDedupeGroup& group, const Cancellation& cancellation) {
    const auto sized = [&](const AppDedupeItem& item) { return SizeCalculator::size(host, item.path, cancellation); };
    std::map<std::string, std::int64_t> sizes;
    for (AppDedupeItem& item : group.items) item.sizeBytes = sizes[item.path] = sized(item);
    for (AppDedupeItem& item : group.remove) item.sizeBytes = sizes[item.path];
    group.keep.sizeBytes = sizes[group.keep.path];
}

[[noreturn]] void refuse(std::string sentence) {
    throw Failure("AppDedupeService", 1, std::move(sentence));
}

/// An updater may have put an application into a launcher's place meanwhile, and the user may have removed or moved the
/// application that was to stay. @throws Failure
void refuseWhenChanged(const Host& host, const AppDedupeItem& planned, const AppDedupeItem& keep) {
    const auto launcher = itemAt(host, planned.path);
    if (!launcher || launcher->kind != AppDedupeItemKind::tarvikLauncher)
        refuse(fmt::format("{} is not a launcher any more.", planned.path.native()));
    const auto kept = itemAt(host, keep.path);
    if (!kept || !isRealLocalApp(*kept) || kept->effectiveBundleIdentifier != keep.effectiveBundleIdentifier)
        refuse(fmt::format("{} stays: the application that it duplicates is not at {} any more.", planned.path.native(),
                           keep.path.native()));
    if (launcher->effectiveBundleIdentifier != kept->effectiveBundleIdentifier || opensAnother(host, *launcher, *kept))
        refuse(fmt::format("{} opens another application now.", planned.path.native()));
}

AppUninstallSession::MovedItem trash(const Host& host, const AppDedupeItem& item, const AppDedupeItem& keep,
                                     const Cancellation& cancellation) {
    AppUninstallSession::MovedItem moved{.originalPath = item.path, .sizeBytes = item.sizeBytes};
    try {
        if (cancellation.isCancelled())
            refuse(fmt::format("{} stays: the run was stopped before.", item.path.native()));
        // Of one that is not there at all, the Trash says so.
        if (Files::itemExists(item.path)) refuseWhenChanged(host, item, keep);
        // A Mac may not tell where it has put the item.
        if (fs::path place = host.trash->moveToTrash(item.path); !place.empty()) moved.trashedTo = std::move(place);
        moved.succeeded = true;
    } catch (const Failure& failure) {
        moved.error = failure.description();
    }
    return moved;
}

}  // namespace

std::vector<fs::path> applicationRoots(const Host& host) {
    return {SystemFolders::applications(host), Files::standardized(host.home / "Applications")};
}

AppDedupePlan plan(const Host& machine, const std::vector<fs::path>& applicationRoots,
                   const Cancellation& cancellation) {
    const Host host = SilentVolumes::noted(machine);
    std::map<std::string, Items> byIdentifier;
    for (AppDedupeItem& item : discoverItems(host, applicationRoots, cancellation))
        byIdentifier[item.effectiveBundleIdentifier].push_back(std::move(item));

    AppDedupePlan plan;
    for (auto& [identifier, items] : byIdentifier) {
        AppDedupeGroup group = groupOf(host, std::move(items));
        if (group.remove.empty()) continue;
        measure(host, group, cancellation);
        plan.groups.push_back(std::move(group));
    }
    std::stable_sort(
        plan.groups.begin(), plan.groups.end(),
        [](const AppDedupeGroup& left, const AppDedupeGroup& right) { return left.displayName < right.displayName; });
    plan.scannedAt = host.now();
    return plan;
}

AppDedupeRunResult run(const Host& machine, const std::optional<AppDedupePlan>& plan, bool dryRun,
                       const Cancellation& cancellation) {
    const Host host = SilentVolumes::noted(machine);
    AppDedupeRunResult result{.plan = plan ? *plan : AppDedupeService::plan(host, applicationRoots(host), cancellation),
                              .dryRun = dryRun};
    for (const AppDedupeGroup& group : result.plan.groups) {
        for (const AppDedupeItem& item : group.remove) {
            result.movedItems.push_back(dryRun ? AppUninstallSession::MovedItem{.originalPath = item.path,
                                                                                .sizeBytes = item.sizeBytes,
                                                                                .succeeded = true}
                                               : trash(host, item, group.keep, cancellation));
        }
    }
    return result;
}

int score(const Host& host, const AppDedupeItem& item) {
    const auto isBelow = [&](const fs::path& folder) { return item.path.native().starts_with(folder.native() + "/"); };
    int score = 0;
    if (isRealLocalApp(item)) score += 100;
    if (item.kind == AppDedupeItemKind::tarvikLauncher) score += 50;
    if (isBelow(SystemFolders::applications(host))) score += 10;
    if (item.insideSymlinkedFolder) score -= 40;
    if (isBelow(SystemFolders::volumes(host))) score -= 30;
    return score;
}

const AppDedupeItem& preferredKeepItem(const Host& host, const std::vector<AppDedupeItem>& items) {
    return *std::max_element(items.begin(), items.end(), [&](const AppDedupeItem& left, const AppDedupeItem& right) {
        return score(host, left) < score(host, right);
    });
}

}  // namespace tarvik::AppDedupeService
