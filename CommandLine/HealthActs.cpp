#include "CommandLine/HealthActs.h"

#include "CommandLine/HealthTexts.h"
#include "CommandLine/Outcome.h"
#include "CommandLine/Output/Columns.h"
#include "CommandLine/Output/Terminal.h"
#include "CommandLine/Signals.h"
#include "Health/HealthCheck.h"
#include "HealthRepair/HealthRepair.h"
#include "HealthRepair/HealthRepairProof.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/LastComponent.h"
#include "Platform/Files/WrittenPath.h"
#include "Platform/Storage/DrivePath.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik::CommandLine::HealthActs {

namespace {

/// A finding and what is to be done about it.
struct Repair {
    HealthIssue issue;
    HealthRepairStrategy strategy;

    bool operator==(const Repair&) const = default;
};
/// What became of it: a sentence that the core says, or why it was not done.
struct RepairEnd {
    Repair repair;
    std::string sentence;
    bool hasFailed = false;
};

/// A signal ends it at once, whatever a tool is still at: nothing has been changed.
HealthReport checked(const Host& host) {
    return HealthCheck::run(host, HealthCheck::applicationRoots(host));
}

std::optional<HealthRepairStrategy> strategyOf(const Options& options) {
    if (options.strategy.empty()) return std::nullopt;
    const auto strategy = HealthRepairStrategies::named(options.strategy);
    if (strategy) return strategy;
    throw WrongUse(fmt::format("There is no strategy \"{}\". There is: {}.", options.strategy,
                               fmt::join(HealthRepairStrategies::names(), ", ")),
                   std::string(usageOf(options.verb)));
}

/// What can be done about a finding by this strategy, or without one by what a user means who names it or does not.
std::optional<HealthRepairStrategy> repairOf(const Host& host, const HealthIssue& issue,
                                             std::optional<HealthRepairStrategy> strategy, bool isNamed) {
    if (!strategy) return isNamed ? HealthRepair::onlyRepair(host, issue) : HealthRepair::safeRepair(host, issue);
    return HealthRepairStrategies::isFor(issue.kind, *strategy) ? strategy : std::nullopt;
}

bool isAt(const HealthIssue& issue, const fs::path& path) {
    return issue.location == path || Files::isSameItem(Files::info(issue.location), Files::info(path));
}

[[noreturn]] void refuse(std::string sentence) {
    throw Failure("CommandLine", 1, std::move(sentence));
}

/// What can be done about the findings at a path. There must be one that can be repaired.
std::vector<Repair> repairsAt(const Host& host, const std::vector<HealthIssue>& problems, const fs::path& path,
                              std::optional<HealthRepairStrategy> strategy) {
    if (!Files::itemExists(path)) refuse(fmt::format("Nothing stands at {}.", path.native()));
    std::vector<Repair> repairs;
    std::vector<std::string_view> choices;
    for (const HealthIssue& issue : problems) {
        if (!isAt(issue, path)) continue;
        for (const HealthRepairStrategy each : HealthRepair::choices(host, issue))
            choices.push_back(HealthRepairStrategies::name(each));
        if (const auto repair = repairOf(host, issue, strategy, true)) repairs.push_back({issue, *repair});
    }
    if (repairs.empty() && strategy)
        refuse(fmt::format("What was found at {} has no repair {}.", path.native(),
                           HealthRepairStrategies::name(*strategy)));
    if (repairs.empty() && choices.empty()) refuse(fmt::format("What was found at {} has no repair.", path.native()));
    if (repairs.empty())
        refuse(fmt::format("What was found at {} has several repairs: name {} with --strategy.", path.native(),
                           fmt::join(choices, " or ")));
    return repairs;
}

/// What is to be done, and a sentence for each thing that was asked for and is not.
struct Wanted {
    std::vector<Repair> repairs;
    std::vector<std::string> passedOver;
};

bool isHealthy(const std::vector<HealthIssue>& problems, const fs::path& path) {
    return Files::itemExists(path) &&
           std::none_of(problems.begin(), problems.end(), [&](const HealthIssue& issue) { return isAt(issue, path); });
}

/// What can be done at the paths that were named, each finding once. What is healthy among them stops no other.
Wanted named(const Host& host, const HealthReport& report, const Options& options) {
    const auto problems = report.problems();
    const auto strategy = strategyOf(options);
    Wanted wanted;
    auto& repairs = wanted.repairs;
    for (const fs::path& written : options.paths) {
        const fs::path path = WrittenPath::meant(written);
        if (isHealthy(problems, path)) {
            wanted.passedOver.push_back(fmt::format("Nothing was found wrong with {}.", path.native()));
            continue;
        }
        for (Repair& repair : repairsAt(host, problems, path, strategy))
            if (std::find(repairs.begin(), repairs.end(), repair) == repairs.end())
                repairs.push_back(std::move(repair));
    }
    if (!repairs.empty()) return wanted;
    std::for_each(wanted.passedOver.begin(), std::prev(wanted.passedOver.end()), Terminal::say);
    refuse(wanted.passedOver.back());
}

/// The drive without which a link leads nowhere, and with which it would be right again.
std::optional<fs::path> missedDrive(const Host& host, const Repair& repair) {
    if (repair.strategy != HealthRepairStrategy::removeDangling) return std::nullopt;
    return DrivePath::absent(host, Files::standardized(repair.issue.copy()));
}

/// All that a strategy fits, or all that does no harm. Without a question, what only misses its drive stays.
Wanted all(const Host& host, const HealthReport& report, const Options& options) {
    const auto strategy = strategyOf(options);
    Wanted wanted;
    std::int64_t unrepaired = 0;
    for (const HealthIssue& issue : report.problems()) {
        const auto fitting = repairOf(host, issue, strategy, false);
        if (!fitting && !strategy) ++unrepaired;
        if (!fitting) continue;
        Repair repair{issue, *fitting};
        const auto drive = options.yes ? missedDrive(host, repair) : std::nullopt;
        if (drive)
            wanted.passedOver.push_back(
                fmt::format("{} stays: it is right again once the drive {} is connected. Name it to remove it.",
                            issue.location.native(), lastComponent(*drive)));
        else
            wanted.repairs.push_back(std::move(repair));
    }
    if (unrepaired > 0 && !wanted.repairs.empty())
        wanted.passedOver.push_back(fmt::format("{} {} untouched: name each by its path to repair it.",
                                                Text::counted(unrepaired, "finding"),
                                                unrepaired == 1 ? "stays" : "stay"));
    return wanted;
}

/// What is to be thought of before links are removed that only miss their drives; empty where none does.
std::string doubtOf(const Host& host, const std::vector<Repair>& repairs) {
    std::set<std::string> drives;
    for (const Repair& repair : repairs)
        if (const auto drive = missedDrive(host, repair)) drives.insert(lastComponent(*drive));
    if (drives.empty()) return {};
    return drives.size() == 1
               ? fmt::format("The drive {} is not connected: links to it would be right again once it is.\n",
                             *drives.begin())
               : fmt::format("The drives {} are not connected: links to them would be right again once they are.\n",
                             fmt::join(drives, ", "));
}

Dialog question(const Host& host, const std::vector<Repair>& repairs) {
    std::vector<std::string> lines;
    lines.reserve(repairs.size());
    for (const auto& [issue, strategy] : repairs)
        lines.push_back(fmt::format("{}: {}.", issue.location.native(), HealthRepair::intent(host, issue, strategy)));
    return {fmt::format("Repair {}?", Text::counted(std::ssize(repairs), "finding")),
            fmt::format("{}{}", doubtOf(host, repairs), fmt::join(lines, "\n")),
            {"Repair", "Cancel"}};
}

std::vector<RepairEnd> perform(const Host& host, const std::vector<Repair>& repairs) {
    const SignalGuard guard;
    std::vector<RepairEnd> ends;
    ends.reserve(repairs.size());
    for (const Repair& repair : repairs) {
        if (SignalGuard::isAskedToEnd()) {
            ends.push_back({repair, notStarted, true});
            continue;
        }
        try {
            const std::string sentence = HealthRepair::perform(host, repair.issue, repair.strategy);
            ends.push_back({repair, sentence, !HealthRepairProof::isMended(host, repair.issue, repair.strategy)});
        } catch (const Failure& failure) {
            ends.push_back({repair, failure.description(), true});
        }
    }
    return ends;
}

Record recordOf(const RepairEnd& end) {
    return {{"kind", std::string(HealthIssueKind::rawValue(end.repair.issue.kind))},
            {"location", end.repair.issue.location.native()},
            {"strategy", std::string(HealthRepairStrategies::name(end.repair.strategy))},
            {"state", std::string(end.hasFailed ? "failed" : "done")},
            {"description", end.sentence}};
}

void print(const std::vector<RepairEnd>& ends, Format format) {
    if (format != Format::human) {
        std::vector<Record> records;
        records.reserve(ends.size());
        for (const RepairEnd& end : ends) records.push_back(recordOf(end));
        return Terminal::writeResult(format == Format::toml ? toml("repairs", records)
                                                            : tsv(namesOf(recordOf({})), records));
    }
    for (const RepairEnd& end : ends) {
        if (end.hasFailed)
            Terminal::say(fmt::format("{}: {}", lastComponent(end.repair.issue.location), end.sentence));
        else
            Terminal::writeLine(end.sentence);
    }
}

}  // namespace

void check(const Host& host, Format format) {
    const HealthReport report = checked(host);
    const std::size_t problems = report.problems().size();
    const auto repairsOf = [&](const HealthIssue& issue) { return HealthRepair::choices(host, issue); };
    Terminal::writeResult(format == Format::human ? HealthTexts::human(report, repairsOf)
                          : format == Format::tsv ? HealthTexts::tsv(report)
                                                  : HealthTexts::toml(report));
    if (problems > 0)
        throw Failure(
            "CommandLine", 1,
            fmt::format("{} found.", problems == 1 ? "1 problem was" : fmt::format("{} problems were", problems)));
}

void repair(const Host& host, const Options& options) {
    strategyOf(options);  // A wrong one is told before a long check.
    const HealthReport report = checked(host);
    const auto [repairs, passedOver] =
        options.paths.empty() ? all(host, report, options) : named(host, report, options);
    for (const std::string& sentence : passedOver) Terminal::say(sentence);
    if (repairs.empty()) {
        if (options.format == Format::human && passedOver.empty())
            Terminal::say(options.strategy.empty()
                              ? "There is nothing that can be repaired without naming it."
                              : fmt::format("There is nothing that {} can repair.", options.strategy));
        return print({}, options.format);
    }
    Terminal::confirm(question(host, repairs), options.yes);
    const auto ends = perform(host, repairs);
    print(ends, options.format);
    const auto failed = std::count_if(ends.begin(), ends.end(), [](const RepairEnd& end) { return end.hasFailed; });
    if (failed > 0)
        throw Failure("CommandLine", 1, fmt::format("{} could not be repaired.", Text::counted(failed, "finding")));
    if (!options.paths.empty() && !passedOver.empty())
        throw Failure("CommandLine", 1,
                      fmt::format("There was nothing to repair at {}.", Text::counted(std::ssize(passedOver), "path")));
}

}  // namespace tarvik::CommandLine::HealthActs
