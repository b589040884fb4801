#include "CommandLine/AppMoveActs.h"

#include "Applications/DataPathSize.h"
#include "CommandLine/DriveActs.h"
#include "CommandLine/FoundApps.h"
#include "CommandLine/Outcome.h"
#include "CommandLine/Output/Columns.h"
#include "CommandLine/Output/Records.h"
#include "CommandLine/Output/Terminal.h"
#include "CommandLine/WatchedRun.h"
#include "MovePlan/AppMove.h"
#include "MovePlan/MoveDialogs.h"
#include "MovePlan/MoveRefusal.h"
#include "MovePlan/MoveRun.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Storage/SizingService.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace tarvik::CommandLine::AppMoveActs {

namespace {

/// Each once, however often it was named, with the sizes of their bundles.
std::vector<AppEntry> chosenApps(const Host& host, const Options& options) {
    const auto entries = findApps(host);
    std::vector<AppEntry> chosen;
    for (const auto& name : options.names) {
        const auto& entry = chosenApp(entries, name, options.verb);
        const auto isIt = [&](const AppEntry& other) { return other.bundlePath == entry.bundlePath; };
        if (std::none_of(chosen.begin(), chosen.end(), isIt)) chosen.push_back(entry);
    }
    measureEach(chosen.size(), "applications", options.format, [&](std::size_t index) {
        chosen[index].appSize = SizingService::size(host, chosen[index].bundlePath);
    });
    return chosen;
}

/// What is to be known before the move, a sentence each.
std::vector<std::string> remarksOf(const Host& host, const AppMove::Plan& plan) {
    auto remarks = plan.staying;
    remarks.insert(remarks.end(), plan.obstructed.begin(), plan.obstructed.end());
    for (const auto& name : AppMove::runningApps(host, plan))
        remarks.push_back(fmt::format("{} is running: quit it before it moves.", name));
    for (const auto& entry : plan.risky)
        for (const auto& warning : entry.warnings()) remarks.push_back(fmt::format("{}: {}", entry.name, warning));
    return remarks;
}

std::string tableOf(const std::vector<MoveJob>& jobs, const fs::path& home) {
    constexpr std::size_t widestLabel = 40;
    const auto text = [&](const fs::path& path) { return Columns::oneLine(DataPathSize{path}.displayPath(home)); };
    std::vector<std::vector<std::string>> rows;
    rows.reserve(jobs.size());
    for (const auto& job : jobs)
        rows.push_back({Columns::cut(Columns::oneLine(job.label), widestLabel), SizeCalculator::format(job.bytesTotal),
                        text(job.source), text(job.destination)});
    return Columns::table({{"What"}, {"Size", Columns::Align::right}, {"From"}, {"To"}}, rows);
}

std::string sumOf(const AppMove::Plan& plan) {
    const auto& drive = plan.drive;
    const auto total = plan.totalBytes();
    auto text = fmt::format("{}, {} in all. {} has {} free now", Text::counted(std::ssize(plan.jobs), "item"),
                            SizeCalculator::format(total), drive.name, SizeCalculator::format(drive.freeBytes));
    if (total <= drive.freeBytes)
        text += fmt::format(" and would have {} after", SizeCalculator::format(drive.freeBytes - total));
    return text + ".";
}

std::string humanOf(const AppMove::Plan& plan, const std::vector<std::string>& remarks, const fs::path& home) {
    std::string text;
    if (!plan.jobs.empty()) text = tableOf(plan.jobs, home) + "\n" + Columns::oneLine(sumOf(plan)) + "\n";
    for (const auto& remark : remarks) text += Columns::oneLine(remark) + "\n";
    if (!plan.jobs.empty()) text += "Nothing was changed.\n";
    return text;
}

std::vector<Record> jobRecordsOf(const std::vector<MoveJob>& jobs) {
    std::vector<Record> records;
    records.reserve(jobs.size());
    for (const auto& job : jobs)
        records.push_back({{"label", job.label},
                           {"source", job.source.native()},
                           {"destination", job.destination.native()},
                           {"bytes", job.bytesTotal}});
    return records;
}

std::string tomlOf(const AppMove::Plan& plan, const std::vector<std::string>& remarks) {
    const auto& drive = plan.drive;
    const auto total = plan.totalBytes();
    const Record facts = {{"drive", drive.mountPath.native()},
                          {"totalBytes", total},
                          {"freeBytes", drive.freeBytes},
                          {"freeBytesAfter", drive.freeBytes - total},
                          {"fits", !MoveRefusal::ofSpace(total, drive)},
                          {"remarks", remarks}};
    return toml(facts) + "\n" + toml("jobs", jobRecordsOf(plan.jobs));
}

/// `failure` is told besides, at the end.
void print(const Host& host, const AppMove::Plan& plan, Format format, const std::string& failure) {
    auto remarks = remarksOf(host, plan);
    // Who reads both reads each sentence once; a record is complete.
    if (format != Format::toml)
        std::erase_if(remarks, [&](const std::string& remark) { return failure.ends_with(remark); });
    if (format == Format::human) return Terminal::writeResult(humanOf(plan, remarks, host.home));
    if (format == Format::toml) return Terminal::writeResult(tomlOf(plan, remarks));
    // A table of jobs has no place for them.
    for (const auto& remark : remarks) Terminal::say(remark);
    Terminal::writeResult(tsv({"label", "source", "destination", "bytes"}, jobRecordsOf(plan.jobs)));
}

/// Whether running applications shall be quit: asked where there is somebody to ask. Without an answer those stay.
bool quitsRunning(const Host& host, const AppMove::Plan& plan, const Options& options) {
    if (options.quitsRunning || options.yes) return options.quitsRunning;
    const auto running = AppMove::runningApps(host, plan);
    if (running.empty()) return false;
    Terminal::confirm(MoveDialogs::handleRunningApps(running), false);
    return true;
}

/// What is to be run.
struct Agreed {
    AppMove::Plan plan;
    bool quitRunning = false;
};

/// @throws Failure when it is refused, or an answer is no.
Agreed agreed(const Host& host, const Options& options) {
    const auto drive = DriveActs::chosen(host, options.drive, options.verb);
    auto plan = AppMove::propose(host, chosenApps(host, options), drive, options.includesData);
    if (options.yes)
        for (const auto& sentence : plan.staying) Terminal::say(sentence);
    Terminal::confirm(AppMove::confirmMove(plan), options.yes);
    if (const auto told = AppMove::takeSnapshot(host)) Terminal::say(*told);
    const bool quitRunning = quitsRunning(host, plan, options);
    return {std::move(plan), quitRunning};
}

}  // namespace

void move(const Host& host, const Options& options) {
    Agreed run;
    try {
        run = agreed(host, options);
    } catch (const WrongUse&) {
        throw;
    } catch (const Failure& failure) {
        if (options.format == Format::human) throw;
        std::vector<Outcome> refused;
        for (const auto& name : options.names) refused.push_back({.label = name, .failure = failure.description()});
        return finish(refused, options.format, failure.description());
    }
    const auto& [plan, quitRunning] = run;
    const auto ended = runWatched(host, plan.jobs, plan.drive.mountPath, quitRunning, options.format);
    std::vector<Outcome> outcomes;
    outcomes.reserve(ended.size());
    for (const auto& job : ended) outcomes.push_back(outcomeOf(job));
    finish(outcomes, options.format, MoveRun::summary(ended).text);
}

void plan(const Host& host, const Options& options) {
    const auto drive = DriveActs::chosen(host, options.drive, options.verb);
    const auto plan = AppMove::plan(host, chosenApps(host, options), drive, options.includesData);
    const auto refusal = AppMove::refusalOf(plan);
    const auto failure = refusal ? refusal : AppMove::reasonToMoveNothing(plan);
    print(host, plan, options.format, failure.value_or(std::string()));
    if (failure) throw Failure("CommandLine", 1, *failure);
}

}  // namespace tarvik::CommandLine::AppMoveActs
