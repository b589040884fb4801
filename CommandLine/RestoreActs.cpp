#include "CommandLine/RestoreActs.h"

#include "CommandLine/FoundApps.h"
#include "CommandLine/Outcome.h"
#include "CommandLine/Output/ProgressDisplay.h"
#include "CommandLine/Output/Terminal.h"
#include "CommandLine/Signals.h"
#include "MovePlan/AppRestore.h"
#include "MovePlan/WayBack.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <mutex>
#include <optional>
#include <utility>

namespace tarvik::CommandLine::RestoreActs {

namespace {

using WaysBack = std::vector<WayBack::Plan>;

/// The application that stands at the path and has been moved, be it with the folder that it stands in.
std::optional<AppEntry> movedAppAt(const fs::path& place, const std::vector<AppEntry>& entries) {
    for (const auto& entry : entries)
        if (entry.isAlreadySymlinked && entry.bundlePath == place) return entry;
    return std::nullopt;
}

/// Whether only a list of applications tells what is meant by the path: a bundle in a folder that was moved.
bool mayBeInMovedFolder(const fs::path& place) {
    return place.extension() == ".app" && !Files::isSymbolicLink(place) && Files::isFolder(place);
}

/// The applications are looked for once, and only when one is named.
std::vector<AppRestore::Wanted> wantedOf(const Host& host, const Options& options) {
    std::optional<std::vector<AppEntry>> entries;
    const auto found = [&]() -> const std::vector<AppEntry>& {
        if (!entries) entries = findApps(host);
        return *entries;
    };
    std::vector<AppRestore::Wanted> wanted;
    for (const auto& name : options.names) {
        if (!AppRestore::isPath(name)) {
            wanted.emplace_back(chosenApp(found(), name, options.verb));
            continue;
        }
        const auto place = Files::standardized(name);
        const auto app = mayBeInMovedFolder(place) ? movedAppAt(place, found()) : std::nullopt;
        if (app)
            wanted.emplace_back(*app);
        else
            wanted.emplace_back(fs::path(name));
    }
    return wanted;
}

Dialog questionAbout(const AppRestore::Plan& plan) {
    if (plan.waysBack.size() > 1) {
        auto question = AppRestore::confirm(plan);
        std::vector<std::string> ways;
        for (const auto& wayBack : plan.waysBack)
            ways.push_back(fmt::format("{} to {}", wayBack.target.native(), wayBack.link.native()));
        question.details.insert(question.details.begin(), ways.begin(), ways.end());
        return question;
    }
    auto question = WayBack::confirm(plan.waysBack.front());
    for (const auto& refused : plan.refused) question.details.push_back(refused.reason);
    return question;
}

/// @throws Failure when the answer is no.
void confirm(const AppRestore::Plan& plan, bool yes) {
    if (plan.waysBack.empty()) return;
    const auto foreign = std::find_if(plan.waysBack.begin(), plan.waysBack.end(),
                                      [](const WayBack::Plan& wayBack) { return !wayBack.isOwn; });
    if (yes && foreign != plan.waysBack.end())
        throw Failure("CommandLine", 1,
                      WayBack::foreign(foreign->link) +
                          " Leave out --yes and answer the question to bring back what it leads to.");
    Terminal::confirm(questionAbout(plan), yes);
}

/// Shows how far the item is that is under way.
class Watch {
public:
    Watch(const WaysBack& waysBack, Format format) : m_waysBack(waysBack), m_format(format) {}

    void begin(std::size_t index) {
        const std::lock_guard lock(m_mutex);
        m_display.emplace(ProgressDisplay::outputFor(m_format), m_waysBack[index].link.filename().native());
        // The first report comes late: until then the bar stands at its beginning.
        m_display->progress({0, m_waysBack[index].bytes});
        m_display->step("moving back");
    }
    void report(const ByteProgress& progress) {
        const std::lock_guard lock(m_mutex);
        if (m_display) m_display->progress(progress);
    }

private:
    std::mutex m_mutex;
    const WaysBack& m_waysBack;
    const Format m_format;
    std::optional<ProgressDisplay> m_display;
};

/// The result of every way back: one that was not begun has failed.
std::vector<AppRestore::Result> run(const Host& host, const WaysBack& waysBack, Format format) {
    Watch watch(waysBack, format);
    const SignalGuard guard;
    auto results = AppRestore::restoreAll(
        host, waysBack, [&](std::size_t index) { watch.begin(index); },
        [&](std::size_t, const ByteProgress& progress) { watch.report(progress); }, SignalGuard::request());
    results.resize(waysBack.size(), notStarted);
    return results;
}

Outcome outcomeOf(const WayBack::Plan& wayBack, const AppRestore::Result& result) {
    return {wayBack.link.filename(),    wayBack.target, wayBack.link, wayBack.bytes, result.value_or(std::string()),
            WayBack::movedBack(wayBack)};
}

void finishAll(const AppRestore::Plan& plan, const std::vector<AppRestore::Result>& results, Format format) {
    std::vector<Outcome> outcomes;
    for (const auto& refused : plan.refused)
        outcomes.push_back({.label = refused.name, .destination = refused.place, .failure = refused.reason});
    for (std::size_t index = 0; index < results.size(); ++index)
        outcomes.push_back(outcomeOf(plan.waysBack[index], results[index]));
    const auto placeIn = [&](const Outcome& outcome) {
        return std::find(plan.order.begin(), plan.order.end(), outcome.destination);
    };
    std::stable_sort(outcomes.begin(), outcomes.end(),
                     [&](const Outcome& one, const Outcome& other) { return placeIn(one) < placeIn(other); });
    if (outcomes.size() == 1) return finish(outcomes.front(), format);
    finish(outcomes, format, AppRestore::summary(plan, results).text);
}

}  // namespace

void restore(const Host& host, const Options& options) {
    const auto plan = AppRestore::plan(host, wantedOf(host, options));
    try {
        confirm(plan, options.yes);
    } catch (const Failure& failure) {
        if (options.format == Format::human) throw;
        return finishAll(plan, {plan.waysBack.size(), failure.description()}, options.format);
    }
    const auto results = run(host, plan.waysBack, options.format);
    // Without a question nobody has been told.
    for (std::size_t index = 0; options.yes && index < results.size(); ++index) {
        const auto remark = WayBack::dataStays(plan.waysBack[index]);
        if (!results[index] && !remark.empty()) Terminal::say(remark);
    }
    finishAll(plan, results, options.format);
}

}  // namespace tarvik::CommandLine::RestoreActs
