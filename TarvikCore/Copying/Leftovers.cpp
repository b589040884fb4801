#include "Copying/Leftovers.h"

#include "Applications/AppClassifier.h"
#include "Copying/HiddenName.h"
#include "Copying/ItemLock.h"
#include "Copying/MoveVerifier.h"
#include "Copying/MoverStasher.h"
#include "Discovery/AppScanner.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/ClashNames.h"
#include "Platform/Files/Files.h"
#include "Records/HealthManifest.h"

#include <algorithm>
#include <chrono>
#include <climits>
#include <optional>
#include <string>

namespace tarvik::Leftovers {

namespace {

using HiddenName::Purpose;

constexpr std::chrono::hours longestAct{24};
constexpr int mostNames = 100;

bool isRealItem(const fs::path& path) {
    return Files::itemExists(path) && !Files::isSymbolicLink(path);
}

/// Where a link, or a launcher that stood in the place of its application, leads.
std::optional<fs::path> targetOf(const fs::path& mark) {
    auto target = Files::linkText(mark);
    return target ? target : AppScanner::launcherShimTarget(mark);
}

/// Whether a link or a launcher under a hidden name tells of an act that was killed between two whole items. A launcher
/// that was to take another one's place does not, whether that one still opens something or not.
bool isMark(const fs::path& mark, const fs::path& place) {
    const auto target = targetOf(mark);
    return target && Files::itemExists(*target) && isRealItem(place) && !AppClassifier::readLauncherTarget(place);
}

/// Whether a hidden name is one that a mark which leads to a copy of `source` can wait under.
bool isNameOfMark(const std::string& name, const fs::path& source) {
    return HiddenName::isFor(name, Purpose::copy, source) || HiddenName::isFor(name, Purpose::removal, source);
}

/// Whether nothing is lost with what stands where a mark leads. A mark can outlive its act, and the place be taken by
/// another item of that name since.
bool isNeedless(const Host& host, const fs::path& copy, const fs::path& original) {
    const auto entries = HealthManifest::load(host);
    const bool isAnothers = std::any_of(entries.begin(), entries.end(), [&](const HealthManifestEntry& entry) {
        return entry.destinationPath == copy && entry.sourcePath != original;
    });
    return !isAnothers && !MoveVerifier::failureReasonByItem(host, copy, original);
}

bool goesTo(const fs::path& leftover, const fs::path& place) {
    bool isThere = false;
    ignoringFailure([&] {
        Files::rename(leftover, place);
        isThere = true;
    });
    return isThere;
}

void clearLink(const Host& host, const fs::path& link, const fs::path& place, bool isExchange) {
    // A link cannot be held: only its age tells that no running act made it.
    const auto made = Files::modifiedAt(link);
    if (!made || host.now() - *made < longestAct || (!isExchange && isMark(link, place))) return;
    if (!isExchange || !goesTo(link, place)) Files::removeLink(link);
}

/// Under a name that tells where it comes from.
void trash(const Host& host, const fs::path& leftover, const std::string& ownName) {
    const std::string name = ClashNames::suffixed(ownName, " (left by an interrupted move)", NAME_MAX);
    for (int number = 1; number <= mostNames; ++number) {
        const fs::path visible = leftover.parent_path() / ClashNames::numbered(name, number, ' ', NAME_MAX);
        if (!goesTo(leftover, visible)) continue;
        MoverStasher::stash(host, visible);
        return;
    }
}

void clear(const Host& host, const fs::path& leftover, const HiddenName::Reading& name) {
    const fs::path place = leftover.parent_path() / name.ownName;
    const bool isExchange = name.purpose == Purpose::exchange;
    if (Files::isSymbolicLink(leftover)) return clearLink(host, leftover, place, isExchange);
    const FileDescriptor lock = ItemLock::holdAlone(leftover);
    if (!lock) return;
    if (isExchange && goesTo(leftover, place)) return;
    if (name.purpose == Purpose::copy && isMark(leftover, place)) return;
    if (Files::isFolder(leftover) && Files::names(leftover).empty()) return Files::removeEmptyFolder(leftover);
    trash(host, leftover, name.ownName);
}

}  // namespace

void sweep(const Host& host, const fs::path& folder) noexcept {
    ignoringFailure([&] {
        for (const auto& name : Files::names(folder))
            if (const auto hidden = HiddenName::read(name))
                ignoringFailure([&] { clear(host, folder / name, *hidden); });
    });
}

std::vector<fs::path> copiesIn(const fs::path& folder) {
    std::vector<fs::path> copies;
    for (const auto& name : Files::names(folder)) {
        const auto hidden = HiddenName::read(name);
        if (hidden && hidden->purpose == Purpose::copy && !ItemLock::isHeld(folder / name))
            copies.push_back(folder / name);
    }
    return copies;
}

void clearUnfinished(const Host& host, const fs::path& source, const fs::path& destination) noexcept {
    ignoringFailure([&] {
        if (!isRealItem(source)) return;
        std::vector<fs::path> marks;
        for (const auto& name : Files::names(source.parent_path())) {
            const fs::path link = source.parent_path() / name;
            if (isNameOfMark(name, source) && targetOf(link) == destination) marks.push_back(link);
        }
        if (marks.empty()) return;
        const FileDescriptor original = ItemLock::holdAlone(source);
        if (!original) return;
        if (Files::itemExists(destination)) {
            const FileDescriptor copy = ItemLock::holdAlone(destination);
            if (!copy || !isNeedless(host, destination, source)) return;
            if (MoverStasher::stash(host, destination).end == Disposal::Outcome::End::stayed) return;
        }
        // A launcher may hold more than its mark: a sweep takes it, now that it leads nowhere.
        for (const auto& link : marks)
            if (Files::isSymbolicLink(link)) Files::removeLink(link);
    });
}

}  // namespace tarvik::Leftovers
