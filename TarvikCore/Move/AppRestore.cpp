#include "Move/AppRestore.h"

#include "Discovery/AppBundleScanRoots.h"
#include "Discovery/AppScanner.h"
#include "Move/FolderMove.h"
#include "Move/MoverEngine.h"
#include "Platform/Files.h"
#include "Platform/SizeCalculator.h"
#include "Platform/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace tarvik::AppRestore {

namespace {

SymlinkEntry entryAt(const Host& host, const fs::path& place, const fs::path& target) {
    const bool isValid = Files::exists(target);
    return {.id = place.native(),
            .location = place,
            .target = target,
            .isValid = isValid,
            .targetSize = isValid ? SizeCalculator::size(host, target) : 0};
}

std::optional<SymlinkEntry> standingAt(const Host& host, const fs::path& place) {
    if (const auto text = Files::linkText(place))
        return entryAt(host, place, Files::standardized(place.parent_path() / *text));
    if (const auto target = AppScanner::launcherShimTarget(place)) return entryAt(host, place, *target);
    return std::nullopt;
}

}  // namespace

std::optional<SymlinkEntry> restoreEntry(const Host& host, const AppEntry& entry) {
    std::set<fs::path> roots;
    for (const auto& root : AppBundleScanRoots::standardApplicationRoots(host, false))
        roots.insert(Files::standardized(root));
    for (fs::path place = Files::standardized(entry.bundlePath);; place = place.parent_path()) {
        if (auto found = standingAt(host, place)) return found;
        if (roots.contains(place) || place.parent_path() == place) return std::nullopt;
    }
}

std::vector<SymlinkEntry> dedupedRestoreEntries(const Host& host, const std::vector<AppEntry>& entries) {
    std::set<fs::path> seen;
    std::vector<SymlinkEntry> links;
    for (const auto& entry : entries)
        if (auto link = restoreEntry(host, entry); link && seen.insert(link->location).second)
            links.push_back(std::move(*link));
    return links;
}

std::vector<std::string> namesOf(const std::vector<SymlinkEntry>& links) {
    std::vector<std::string> names;
    for (const auto& link : links) names.push_back(link.location.filename());
    return names;
}

Outcome restoreAll(const Host& host, const std::vector<SymlinkEntry>& links, const ItemCallback& begins,
                   const ItemProgressCallback& progress) {
    Outcome outcome{.total = std::ssize(links)};
    for (std::size_t index = 0; index < links.size(); ++index) {
        const fs::path& place = links[index].location;
        begins(index);
        try {
            FolderMove::planRestore(host, place);
            MoverEngine::restore(host, place, [&](std::int64_t copied, std::int64_t total) {
                progress(index, {copied, total});
            });
        } catch (const std::exception& failure) {
            outcome.failures.push_back(fmt::format("{}: {}", place.filename().native(), failure.what()));
        }
    }
    return outcome;
}

MoveRun::Summary summary(const Outcome& outcome) {
    if (!outcome.failures.empty())
        return {true,
                fmt::format("Move back completed with {}.", Text::counted(std::ssize(outcome.failures), "failure"))};
    return {false, fmt::format("Moved {} back.", Text::counted(outcome.total, "item"))};
}

}  // namespace tarvik::AppRestore
