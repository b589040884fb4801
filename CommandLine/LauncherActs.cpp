#include "CommandLine/LauncherActs.h"

#include "Applications/DataPathSize.h"
#include "CommandLine/Outcome.h"
#include "CommandLine/Output/Columns.h"
#include "CommandLine/Output/Records.h"
#include "CommandLine/Output/Terminal.h"
#include "CommandLine/Signals.h"
#include "Launchers/LauncherInventory.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik::CommandLine::LauncherActs {

namespace {

std::string stateOf(const LauncherEntry& entry) {
    using Condition = LauncherEntry::Condition;
    switch (entry.condition) {
        case Condition::ok:
            return "ok";
        case Condition::missing:
            return "missing";
        case Condition::outdated:
            return "outdated";
        case Condition::relocated:
            return "relocated";
        case Condition::incomplete:
            return "incomplete";
        case Condition::needless:
            return "needless";
        case Condition::broken:
            return "broken";
    }
    return {};
}

Record recordOf(const LauncherEntry& entry) {
    return {{"launcher", entry.launcher.native()}, {"target", entry.target.native()}, {"state", stateOf(entry)}};
}

std::string tableOf(const std::vector<LauncherEntry>& entries, const fs::path& home) {
    const auto text = [&](const fs::path& path) { return Columns::oneLine(DataPathSize{path}.displayPath(home)); };
    std::vector<std::vector<std::string>> rows;
    rows.reserve(entries.size());
    for (const auto& entry : entries) rows.push_back({stateOf(entry), text(entry.launcher), text(entry.target)});
    return Columns::table({{"State"}, {"Launcher"}, {"Opens"}}, rows);
}

void printRecords(const std::vector<std::string>& names, const std::vector<Record>& records, Format format) {
    Terminal::writeResult(format == Format::toml ? toml("launchers", records) : tsv(names, records));
}

/// What became of one launcher that was not in order.
struct RepairOutcome {
    LauncherEntry entry;
    std::string state;
    /// Why it is not in order; empty when it is.
    std::string description;
};

RepairOutcome repaired(const Host& host, const LauncherEntry& entry) {
    if (!entry.isRepairable()) return {entry, "broken", "The application that it opens is not there."};
    try {
        LauncherInventory::repair(host, entry);
        return {entry, "repaired", {}};
    } catch (const Failure& failure) {
        return {entry, "failed", failure.description()};
    }
}

std::vector<RepairOutcome> repairAll(const Host& host, const std::vector<LauncherEntry>& entries) {
    const SignalGuard guard;
    std::vector<RepairOutcome> outcomes;
    outcomes.reserve(entries.size());
    for (const auto& entry : entries)
        outcomes.push_back(SignalGuard::isAskedToEnd() ? RepairOutcome{entry, "failed", notStarted}
                                                       : repaired(host, entry));
    return outcomes;
}

std::int64_t countOf(const std::vector<RepairOutcome>& outcomes, std::string_view state) {
    return std::count_if(outcomes.begin(), outcomes.end(),
                         [&](const RepairOutcome& outcome) { return outcome.state == state; });
}

void print(const std::vector<RepairOutcome>& outcomes, Format format) {
    if (format != Format::human) {
        std::vector<Record> records;
        records.reserve(outcomes.size());
        for (const auto& [entry, state, description] : outcomes)
            records.push_back({{"launcher", entry.launcher.native()},
                               {"target", entry.target.native()},
                               {"state", state},
                               {"description", description}});
        return printRecords({"launcher", "target", "state", "description"}, records, format);
    }
    for (const auto& outcome : outcomes)
        if (!outcome.description.empty())
            Terminal::say(fmt::format("{}: {}", outcome.entry.launcher.filename().native(), outcome.description));
    if (const auto count = countOf(outcomes, "repaired")) Terminal::writeLine(LauncherInventory::repaired(count));
}

}  // namespace

void list(const Host& host, Format format) {
    const auto entries = LauncherInventory::list(host);
    if (format == Format::human) {
        if (entries.empty()) return Terminal::say("There are no launchers, and none is needed.");
        return Terminal::writeResult(tableOf(entries, host.home));
    }
    std::vector<Record> records;
    records.reserve(entries.size());
    for (const auto& entry : entries) records.push_back(recordOf(entry));
    printRecords(namesOf(recordOf({})), records, format);
}

void repair(const Host& host, const Options& options) {
    auto entries = LauncherInventory::list(host);
    std::erase_if(entries, [](const LauncherEntry& entry) { return entry.condition == LauncherEntry::Condition::ok; });
    std::vector<LauncherEntry> repairable;
    std::copy_if(entries.begin(), entries.end(), std::back_inserter(repairable),
                 [](const LauncherEntry& entry) { return entry.isRepairable(); });
    if (repairable.empty()) {
        if (options.format == Format::human) Terminal::say("There is no launcher to repair.");
    } else {
        Terminal::confirm(LauncherInventory::confirmRepair(repairable), options.yes);
    }
    const auto outcomes = repairAll(host, entries);
    print(outcomes, options.format);
    if (const auto failed = countOf(outcomes, "failed"))
        throw Failure("CommandLine", 1, fmt::format("{} could not be repaired.", Text::counted(failed, "launcher")));
}

}  // namespace tarvik::CommandLine::LauncherActs
