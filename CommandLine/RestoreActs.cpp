#include "CommandLine/RestoreActs.h"

#include "CommandLine/FoundApps.h"
#include "CommandLine/Outcome.h"
#include "CommandLine/ProgressDisplay.h"
#include "CommandLine/Signals.h"
#include "CommandLine/Terminal.h"
#include "Move/AppRestore.h"
#include "Move/FolderMove.h"
#include "Move/MoveDialogs.h"
#include "Move/MoverEngine.h"
#include "Platform/Files.h"
#include "Platform/SizeCalculator.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>
#include <iterator>
#include <optional>
#include <utility>

namespace tarvik::CommandLine::RestoreActs {

namespace {

using FolderMove::WayBack;

bool isPath(const std::string& name) {
    return name.find('/') != std::string::npos || Files::itemExists(name);
}

/// The applications are looked for once, and only when one is named.
class Finder {
public:
    Finder(const Host& host, const Options& options) : m_host(host), m_options(options) {}

    WayBack find(const std::string& name) {
        if (isPath(name)) return FolderMove::planRestore(m_host, name);
        if (!m_entries) m_entries = findApps(m_host);
        const AppEntry& entry = chosenApp(*m_entries, name, m_options.verb);
        const auto link = AppRestore::unmeasuredRestoreEntry(m_host, entry);
        if (!link) throw Failure("CommandLine", 1, fmt::format("No symlink found for {}.", entry.name));
        return FolderMove::planRestore(m_host, link->location);
    }

private:
    const Host& m_host;
    const Options& m_options;
    std::optional<std::vector<AppEntry>> m_entries;
};

/// Asks one question about all of them. @throws Failure when the answer is no.
void confirm(const std::vector<WayBack>& waysBack, bool yes) {
    const auto foreign =
        std::find_if(waysBack.begin(), waysBack.end(), [](const WayBack& wayBack) { return !wayBack.isOwn; });
    if (yes && foreign != waysBack.end())
        throw Failure("CommandLine", 1,
                      FolderMove::foreign(foreign->link) +
                          " Leave out --yes and answer the question to bring back what it leads to.");
    if (waysBack.size() == 1) return Terminal::confirm(FolderMove::confirmRestore(waysBack.front()), yes);
    std::vector<std::string> names;
    for (const auto& wayBack : waysBack) names.push_back(wayBack.link.filename());
    auto question = MoveDialogs::confirmRestore(std::ssize(names), names);
    for (const auto& wayBack : waysBack) {
        question.details.push_back(fmt::format("{} to {}", wayBack.target.native(), wayBack.link.native()));
        if (!wayBack.isOwn) question.details.push_back(FolderMove::foreign(wayBack.link));
    }
    Terminal::confirm(question, yes);
}

Outcome outcomeOf(const WayBack& wayBack) {
    return {wayBack.link.filename(), wayBack.target, wayBack.link, 0, {}, FolderMove::movedBack(wayBack)};
}

/// What is to come back, each once, when the user has agreed. What it throws is about the item of `refused`.
std::vector<WayBack> agreed(const Host& host, const Options& options, Outcome& refused) {
    std::vector<WayBack> waysBack;
    Finder finder(host, options);
    for (const auto& name : options.names) {
        const auto place = Files::standardized(name);
        refused = {.label = place.filename(), .destination = place};
        const auto wayBack = finder.find(name);
        refused = outcomeOf(wayBack);
        const auto goesWith = [](const WayBack& one, const WayBack& other) {
            return one == other || AppRestore::goesWith(one.link, one.target, other.target);
        };
        const auto bringsIt = [&](const WayBack& other) { return goesWith(wayBack, other); };
        if (std::any_of(waysBack.begin(), waysBack.end(), bringsIt)) continue;
        std::erase_if(waysBack, [&](const WayBack& other) { return goesWith(other, wayBack); });
        waysBack.push_back(wayBack);
    }
    confirm(waysBack, options.yes);
    return waysBack;
}

void bringBack(const Host& host, const WayBack& wayBack, Outcome& outcome, Format format) {
    const std::int64_t size = outcome.bytes = SizeCalculator::size(host, wayBack.target);
    ProgressDisplay display(ProgressDisplay::outputFor(format), outcome.label);
    // The first report comes late: until then the bar stands at its beginning.
    display.progress({0, size});
    display.step("moving back");
    MoverEngine::restore(host, wayBack.link, [&](std::int64_t copied, std::int64_t total) {
        display.progress({copied, total});
    });
}

void finishAll(const std::vector<Outcome>& outcomes, Format format) {
    if (outcomes.size() == 1) return finish(outcomes.front(), format);
    AppRestore::Outcome all{.total = std::ssize(outcomes)};
    for (const auto& outcome : outcomes)
        if (!outcome.failure.empty()) all.failures.push_back(outcome.failure);
    finish(outcomes, format, AppRestore::summary(all).text);
}

}  // namespace

void restore(const Host& host, const Options& options) {
    std::vector<WayBack> waysBack;
    Outcome refused;
    try {
        waysBack = agreed(host, options, refused);
    } catch (const WrongUse&) {
        throw;
    } catch (const Failure& failure) {
        refused.failure = failure.description();
        return finish(refused, options.format);
    }
    const SignalGuard guard;
    std::vector<Outcome> outcomes;
    for (const auto& wayBack : waysBack) {
        auto& outcome = outcomes.emplace_back(outcomeOf(wayBack));
        if (SignalGuard::isAskedToEnd()) {
            outcome.failure = notStarted;
            continue;
        }
        try {
            bringBack(host, wayBack, outcome, options.format);
        } catch (const std::exception& failure) {
            outcome.failure = failure.what();
        }
    }
    finishAll(outcomes, options.format);
}

}  // namespace tarvik::CommandLine::RestoreActs
