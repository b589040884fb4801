#include "Move/AppRestore.h"

#include "Discovery/AppBundleScanRoots.h"
#include "Discovery/AppScanner.h"
#include "Move/FolderMove.h"
#include "Move/MoveDialogs.h"
#include "Move/MoverEngine.h"
#include "Platform/Files.h"
#include "Platform/SizeCalculator.h"
#include "Platform/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace tarvik::AppRestore {

namespace {

SymlinkEntry entryAt(const fs::path& place, const fs::path& target) {
    return {.id = place.native(), .location = place, .target = target, .isValid = Files::exists(target)};
}

std::optional<SymlinkEntry> standingAt(const fs::path& place) {
    if (const auto text = Files::linkText(place))
        return entryAt(place, Files::standardized(place.parent_path() / *text));
    if (const auto target = AppScanner::launcherShimTarget(place)) return entryAt(place, *target);
    return std::nullopt;
}

/// Of two launchers for one application, the first stays.
bool goesWithAnother(const SymlinkEntry& link, const std::vector<SymlinkEntry>& all) {
    return std::any_of(all.begin(), all.end(), [&](const SymlinkEntry& other) {
        if (&other == &link || !goesWith(link.location, link.target, other.target)) return false;
        return &other < &link || !goesWith(other.location, other.target, link.target);
    });
}

}  // namespace

bool goesWith(const fs::path& place, const fs::path& target, const fs::path& other) {
    return Files::isAtOrBelow(target, other) && !Files::isSymbolicLink(place);
}

std::optional<SymlinkEntry> unmeasuredRestoreEntry(const Host& host, const AppEntry& entry) {
    std::set<fs::path> roots;
    for (const auto& root : AppBundleScanRoots::standardApplicationRoots(host, false))
        roots.insert(Files::standardized(root));
    for (fs::path place = Files::standardized(entry.bundlePath);; place = place.parent_path()) {
        if (auto found = standingAt(place)) return found;
        if (roots.contains(place) || place.parent_path() == place) return std::nullopt;
    }
}

std::optional<SymlinkEntry> restoreEntry(const Host& host, const AppEntry& entry, const Cancellation& cancellation) {
    auto found = unmeasuredRestoreEntry(host, entry);
    if (found && found->isValid) found->targetSize = SizeCalculator::size(host, found->target, cancellation);
    return found;
}

std::vector<SymlinkEntry> dedupedRestoreEntries(const Host& host, const std::vector<AppEntry>& entries,
                                                const Cancellation& cancellation) {
    std::set<fs::path> seen;
    std::vector<SymlinkEntry> found;
    for (const auto& entry : entries)
        if (auto link = unmeasuredRestoreEntry(host, entry); link && seen.insert(link->location).second)
            found.push_back(std::move(*link));
    std::vector<SymlinkEntry> links;
    for (const auto& link : found)
        if (!goesWithAnother(link, found)) links.push_back(link);
    for (auto& link : links)
        if (link.isValid) link.targetSize = SizeCalculator::size(host, link.target, cancellation);
    return links;
}

Dialog confirmRestore(const Host& host, const std::vector<SymlinkEntry>& links) {
    std::vector<std::string> names;
    std::vector<std::string> doubts;
    for (const auto& link : links) {
        names.push_back(link.location.filename());
        if (!FolderMove::isOwn(host, link.location, link.target)) doubts.push_back(FolderMove::foreign(link.location));
        const auto data = FolderMove::dataLinksOf(host, link.location);
        if (auto sentence = FolderMove::dataStays({link.location, link.target, true, data}); !sentence.empty())
            doubts.push_back(std::move(sentence));
    }
    Dialog question = MoveDialogs::confirmRestore(std::ssize(links), names);
    question.details = std::move(doubts);
    return question;
}

Outcome restoreAll(const Host& host, const std::vector<SymlinkEntry>& links, const ItemCallback& begins,
                   const ItemProgressCallback& progress, const Cancellation& stopAfterItem) {
    Outcome outcome;
    for (std::size_t index = 0; index < links.size() && !stopAfterItem.isCancelled(); ++index) {
        ++outcome.total;
        const fs::path& place = links[index].location;
        begins(index);
        try {
            const auto wayBack = FolderMove::planRestore(host, place);
            MoverEngine::restore(host, wayBack.link, [&](std::int64_t copied, std::int64_t total) {
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
