#include "MovePlan/AppRestore.h"

#include "Discovery/AppBundleScanRoots.h"
#include "Discovery/AppScanner.h"
#include "MovePlan/MoveDialogs.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Basics/Notify.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/KeptAwake.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <set>
#include <utility>

namespace tarvik::AppRestore {

namespace {

/// The link or the launcher that stands for the application; nothing when none does.
std::optional<fs::path> linkFor(const Host& host, const AppEntry& entry) {
    std::set<fs::path> roots;
    for (const auto& root : AppBundleScanRoots::standardApplicationRoots(host, false))
        roots.insert(Files::standardized(root));
    for (fs::path place = Files::standardized(entry.bundlePath);; place = place.parent_path()) {
        if (Files::isSymbolicLink(place) || AppScanner::launcherShimTarget(place)) return place;
        if (roots.contains(place) || place.parent_path() == place) return std::nullopt;
    }
}

/// What is told of something while its link is not known.
Refused nothingFor(const fs::path& path) {
    const fs::path place = Files::standardized(path);
    return {place.filename(), place, {}};
}

Refused nothingFor(const AppEntry& entry) {
    return {entry.name, entry.bundlePath, {}};
}

fs::path placeOf(const Host&, const fs::path& path) {
    return path;
}

fs::path placeOf(const Host& host, const AppEntry& entry) {
    return linkOf(host, entry);
}

/// Whether the one is a launcher whose application comes back when the other one does: the launcher goes then.
bool goesWith(const WayBack::Plan& one, const WayBack::Plan& other) {
    return Files::isAtOrBelow(one.target, other.target) && !Files::isSymbolicLink(one.link);
}

void take(Plan& plan, WayBack::Plan wayBack) {
    const auto bringsIt = [&](const WayBack::Plan& other) {
        return other.link == wayBack.link || goesWith(wayBack, other);
    };
    if (std::any_of(plan.waysBack.begin(), plan.waysBack.end(), bringsIt)) return;
    std::erase_if(plan.waysBack, [&](const WayBack::Plan& other) { return goesWith(other, wayBack); });
    // What a link leads to inside of another one's item is taken out of there first.
    const auto holdsIt = [&](const WayBack::Plan& other) { return Files::isAtOrBelow(wayBack.target, other.target); };
    const auto outer = std::find_if(plan.waysBack.begin(), plan.waysBack.end(), holdsIt);
    if (outer != plan.waysBack.end() && outer->target == wayBack.target)
        throw Failure("AppRestore", 0,
                      fmt::format("{} leads to the same item as {}, which takes it back.",
                                  wayBack.link.filename().native(), outer->link.native()));
    plan.waysBack.insert(outer, std::move(wayBack));
}

/// Of several applications in a folder that cannot come back, the folder is told once.
void refuse(Plan& plan, Refused refused) {
    if (std::find(plan.refused.begin(), plan.refused.end(), refused) == plan.refused.end())
        plan.refused.push_back(std::move(refused));
}

template <typename Named>
void add(const Host& host, const Named& named, Plan& plan) {
    Refused refused = nothingFor(named);
    try {
        const fs::path place = placeOf(host, named);
        refused = nothingFor(place);
        auto wayBack = WayBack::plan(host, place);
        plan.order.push_back(wayBack.link);
        take(plan, std::move(wayBack));
    } catch (const Failure& failure) {
        refused.reason = failure.description();
        if (plan.order.empty() || plan.order.back() != refused.place) plan.order.push_back(refused.place);
        refuse(plan, std::move(refused));
    }
}

std::vector<std::string> namesOf(const std::vector<WayBack::Plan>& waysBack) {
    std::vector<std::string> names;
    names.reserve(waysBack.size());
    for (const auto& wayBack : waysBack) names.push_back(wayBack.link.filename());
    return names;
}

}  // namespace

bool isPath(std::string_view name) {
    return name.find('/') != std::string_view::npos || Files::itemExists(name);
}

fs::path linkOf(const Host& host, const AppEntry& entry) {
    if (auto link = linkFor(host, entry)) return *link;
    throw Failure("AppRestore", 0, fmt::format("No symlink found for {}.", entry.name));
}

Plan planTicked(const Host& host, const std::vector<AppEntry>& ticked, const Cancellation& cancellation) {
    std::vector<Wanted> wanted;
    for (const auto& entry : ticked)
        if (auto link = linkFor(host, entry)) wanted.emplace_back(std::move(*link));
    return plan(host, wanted, cancellation);
}

Plan plan(const Host& host, const std::vector<Wanted>& wanted, const Cancellation& cancellation) {
    Plan plan;
    for (const auto& each : wanted) std::visit([&](const auto& named) { add(host, named, plan); }, each);
    for (auto& wayBack : plan.waysBack) wayBack.bytes = SizeCalculator::size(host, wayBack.target, cancellation);
    return plan;
}

std::optional<std::string> refusalOf(const Plan& plan) {
    if (!plan.waysBack.empty()) return std::nullopt;
    if (plan.refused.empty()) return "Select at least one previously moved app.";
    if (plan.refused.size() == 1) return plan.refused.front().reason;
    return fmt::format("None of the {} can be moved back. {}", Text::counted(std::ssize(plan.refused), "item"),
                       plan.refused.front().reason);
}

Dialog confirm(const Plan& plan) {
    Dialog question = MoveDialogs::confirmRestore(std::ssize(plan.waysBack), namesOf(plan.waysBack));
    for (const auto& wayBack : plan.waysBack)
        for (auto& sentence : WayBack::doubtsAbout(wayBack)) question.details.push_back(std::move(sentence));
    for (const auto& refused : plan.refused) question.details.push_back(refused.reason);
    return question;
}

std::vector<Result> restoreAll(const Host& host, const std::vector<WayBack::Plan>& waysBack, const ItemCallback& begins,
                               const ItemProgressCallback& progress, const Cancellation& stopAfterItem) {
    const KeptAwake awake(host, "Items are being moved back from a drive");  // Between two of them, too.
    std::vector<Result> results;
    for (std::size_t index = 0; index < waysBack.size() && !stopAfterItem.isCancelled(); ++index) {
        notify(begins, index);
        try {
            WayBack::run(host, waysBack[index], [&](std::int64_t copied, std::int64_t total) {
                notify(progress, index, ByteProgress{copied, total});
            });
            results.emplace_back();
        } catch (const std::exception& failure) {
            results.emplace_back(failure.what());
        }
    }
    return results;
}

MoveRun::Summary summary(const Plan& plan, const std::vector<Result>& results) {
    const auto failures =
        std::ssize(plan.refused) +
        std::count_if(results.begin(), results.end(), [](const Result& result) { return result.has_value(); });
    if (failures > 0) return {true, fmt::format("Move back completed with {}.", Text::counted(failures, "failure"))};
    return {false, fmt::format("Moved {} back.", Text::counted(std::ssize(results), "item"))};
}

}  // namespace tarvik::AppRestore
