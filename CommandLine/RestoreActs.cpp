#include "CommandLine/RestoreActs.h"

#include "CommandLine/Columns.h"
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

/// One of the things that were named: its way back, or why there is none.
struct Item {
    Outcome outcome;
    std::optional<WayBack> wayBack;
};

Dialog questionAbout(const std::vector<WayBack>& waysBack) {
    if (waysBack.size() == 1) return FolderMove::confirmRestore(waysBack.front());
    std::vector<std::string> names;
    for (const auto& wayBack : waysBack) names.push_back(wayBack.link.filename());
    auto question = MoveDialogs::confirmRestore(std::ssize(names), names);
    for (const auto& wayBack : waysBack) {
        question.details.push_back(fmt::format("{} to {}", wayBack.target.native(), wayBack.link.native()));
        if (!wayBack.isOwn) question.details.push_back(FolderMove::foreign(wayBack.link));
        if (auto sentence = FolderMove::dataStays(wayBack); !sentence.empty())
            question.details.push_back(std::move(sentence));
    }
    return question;
}

/// Asks one question about all that can come back, and tells what cannot. @throws Failure when the answer is no.
void confirm(const std::vector<Item>& items, bool yes) {
    std::vector<WayBack> waysBack;
    std::vector<std::string> refusals;
    for (const auto& item : items) {
        if (item.wayBack) waysBack.push_back(*item.wayBack);
        if (!item.wayBack) refusals.push_back(item.outcome.failure);
    }
    if (waysBack.empty()) return;
    const auto foreign =
        std::find_if(waysBack.begin(), waysBack.end(), [](const WayBack& wayBack) { return !wayBack.isOwn; });
    if (yes && foreign != waysBack.end())
        throw Failure("CommandLine", 1,
                      FolderMove::foreign(foreign->link) +
                          " Leave out --yes and answer the question to bring back what it leads to.");
    auto question = questionAbout(waysBack);
    question.details.insert(question.details.end(), refusals.begin(), refusals.end());
    Terminal::confirm(question, yes);
}

Outcome outcomeOf(const WayBack& wayBack) {
    return {wayBack.link.filename(), wayBack.target, wayBack.link, 0, {}, FolderMove::movedBack(wayBack)};
}

Item itemOf(Finder& finder, const std::string& name) {
    try {
        const auto wayBack = finder.find(name);
        return {outcomeOf(wayBack), wayBack};
    } catch (const WrongUse&) {
        throw;
    } catch (const Failure& failure) {
        const auto place = Files::standardized(name);
        return {{.label = place.filename(), .destination = place, .failure = failure.description()}, std::nullopt};
    }
}

/// Whether the one comes back, or is gone, when the other has come back.
bool goesWith(const Item& one, const Item& other) {
    if (!one.wayBack || !other.wayBack) return false;
    return one.wayBack == other.wayBack ||
           AppRestore::goesWith(one.wayBack->link, one.wayBack->target, other.wayBack->target);
}

/// Each once, however often it was named.
std::vector<Item> namedItems(const Host& host, const Options& options) {
    std::vector<Item> items;
    Finder finder(host, options);
    for (const auto& name : options.names) {
        auto item = itemOf(finder, name);
        const auto bringsIt = [&](const Item& other) { return goesWith(item, other); };
        if (std::any_of(items.begin(), items.end(), bringsIt)) continue;
        std::erase_if(items, [&](const Item& other) { return goesWith(other, item); });
        items.push_back(std::move(item));
    }
    return items;
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
    auto items = namedItems(host, options);
    std::vector<Outcome> outcomes;
    try {
        confirm(items, options.yes);
    } catch (const Failure& failure) {
        if (options.format == Format::human) throw;
        for (auto& item : items) {
            if (item.wayBack) item.outcome.failure = failure.description();
            outcomes.push_back(std::move(item.outcome));
        }
        return finishAll(outcomes, options.format);
    }
    const SignalGuard guard;
    for (auto& item : items) {
        auto& outcome = outcomes.emplace_back(std::move(item.outcome));
        if (!item.wayBack) continue;
        if (SignalGuard::isAskedToEnd()) {
            outcome.failure = notStarted;
            continue;
        }
        try {
            bringBack(host, *item.wayBack, outcome, options.format);
            // Without a question nobody has been told.
            const auto remark = FolderMove::dataStays(*item.wayBack);
            if (options.yes && !remark.empty()) Terminal::say(Columns::oneLine(remark));
        } catch (const std::exception& failure) {
            outcome.failure = failure.what();
        }
    }
    finishAll(outcomes, options.format);
}

}  // namespace tarvik::CommandLine::RestoreActs
