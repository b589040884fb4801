#include "CommandLine/UninstallActs.h"

#include "CommandLine/FoundApps.h"
#include "CommandLine/Output/Columns.h"
#include "CommandLine/Output/Records.h"
#include "CommandLine/Output/Terminal.h"
#include "CommandLine/Signals.h"
#include "CommandLine/UninstallTexts.h"
#include "Discovery/InstalledAppsScanner.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/LastComponent.h"
#include "Platform/Files/WrittenPath.h"
#include "Platform/Text/Text.h"
#include "Reports/UninstallTOMLFormatter.h"
#include "Reports/UninstallTSVFormatter.h"
#include "Uninstall/AppFootprintCalculator.h"
#include "Uninstall/AppUninstallPlanner.h"
#include "Uninstall/UninstallTarget.h"
#include "UninstallRun/AppUninstallError.h"
#include "UninstallRun/AppUninstallRunner.h"
#include "UninstallRun/UninstallHistory.h"
#include "UninstallRun/UninstallQuestions.h"
#include "UninstallRun/UninstallUndo.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tarvik::CommandLine::UninstallActs {

namespace {

using UndoItem = UninstallUndo::Item;

[[noreturn]] void failWith(std::string sentence) {
    throw Failure("CommandLine", 1, std::move(sentence));
}

AppRecord chosenApplication(const Host& host, const Options& options) {
    try {
        return UninstallTarget::named(host, options.names.front());
    } catch (const Failure& failure) {
        throw WrongUse(failure.description(), std::string(usageOf(options.verb)));
    }
}

/// What can be uninstalled: all but what belongs to the system.
std::vector<AppRecord> listedApplications(const Host& host, Format format) {
    auto apps = InstalledAppsScanner::discover(host);
    std::erase_if(apps, [](const AppRecord& app) { return app.kind == AppRecordKind::systemRisky; });
    if (format != Format::human) return apps;  // The forms for programs have no sizes.
    measureEach(apps.size(), "applications", format,
                [&](std::size_t index) { apps[index] = AppFootprintCalculator::measured(host, apps[index]); });
    return apps;
}

/// What one of the words behind --with stands for, in a sentence.
std::string_view namedFor(std::string_view word) {
    if (word == "launch-daemons") return "launch daemons";
    if (word == "external-target") return "copy on a drive";
    return word;
}

/// The candidates that one word behind --with means.
std::set<std::string> wanted(const Host& host, const AppUninstallPlan& plan, const std::string& word, Verb verb) {
    const auto those = [&](const auto& fits) {
        std::set<std::string> paths;
        for (const UninstallCandidate& candidate : plan.candidates)
            if (fits(candidate)) paths.insert(candidate.path.native());
        return paths;
    };
    const auto inCategory = [&](UninstallCategory category) {
        return those([&](const UninstallCandidate& candidate) { return candidate.category == category; });
    };
    std::set<std::string> paths;
    if (word == "receipts") {
        paths = inCategory(UninstallCategory::receipts);
    } else if (word == "launch-daemons") {
        paths = inCategory(UninstallCategory::launchDaemons);
    } else if (word == "external-target") {
        paths = those([&](const UninstallCandidate& candidate) {
            return candidate.category == UninstallCategory::executable && candidate.path != plan.app.bundlePath;
        });
    } else if (word.find('/') == std::string::npos) {
        throw WrongUse(
            fmt::format("There is no \"{}\" to take with it: receipts, launch-daemons, external-target, or a "
                        "path that the plan shows.",
                        word),
            std::string(usageOf(verb)));
    } else {
        // The plan shows the home folder as "~", which is another one to a shell where a machine in a folder is meant.
        const fs::path path = word.starts_with("~/") ? host.home / word.substr(2) : WrittenPath::meant(word);
        paths = those([&](const UninstallCandidate& candidate) { return candidate.path == path; });
        if (paths.empty())
            throw WrongUse(
                fmt::format("{} does not belong to {}, as far as is known.", path.native(), plan.app.displayName),
                std::string(usageOf(verb)));
    }
    return paths;
}

/// An application, what belongs to it, and what of that shall go.
struct Choice {
    AppUninstallPlan plan;
    UninstallSelection selection;
    std::set<std::string> paths;
};

Choice chosen(const Host& host, const Options& options) {
    Choice choice;
    choice.selection = options.onlyApp ? UninstallSelection::executableOnly : UninstallSelection::everything;
    choice.plan = AppUninstallPlanner::plan(host, chosenApplication(host, options), choice.selection);
    const AppUninstallPlan& plan = choice.plan;
    for (const UninstallCandidate& candidate : plan.candidates)
        if (AppUninstallPlanner::effectiveSelected(candidate, plan.app, choice.selection))
            choice.paths.insert(candidate.path.native());
    for (const std::string& word : options.with) {
        const auto paths = wanted(host, plan, word, options.verb);
        if (paths.empty()) Terminal::say(fmt::format("{} has no {}.", plan.app.displayName, namedFor(word)));
        choice.paths.insert(paths.begin(), paths.end());
    }
    choice.plan.selectedBytes = 0;
    for (const UninstallCandidate& candidate : plan.candidates)
        if (choice.paths.contains(candidate.path.native())) choice.plan.selectedBytes += candidate.sizeBytes;
    return choice;
}

/// Refuses what the run would refuse, before anybody is asked.
void rehearse(const Host& host, const Choice& choice) {
    AppUninstallRunner::run(host, choice.plan, choice.selection, true, choice.paths, AppUninstallReporter::silent);
}

std::string sessionText(const AppUninstallSession& session, Format format) {
    return format == Format::tsv ? UninstallTSVFormatter::sessions({session})
                                 : UninstallTOMLFormatter::session(session);
}

/// What runs is quit on the user's word, or nothing goes.
void quitRunning(const Host& host, const Choice& choice, const Options& options) {
    auto running = UninstallQuestions::running(host, choice.plan, choice.paths);
    if (running.empty()) return;
    if (options.yes || options.quitsRunning)
        for (const auto& each : running)
            if (each.isBareProgram) Terminal::say(UninstallQuestions::goesOn(each));
    if (options.yes) std::erase_if(running, [](const auto& each) { return each.isBareProgram; });
    if (running.empty()) return;
    if (options.yes && !options.quitsRunning) {
        std::vector<std::string> names;
        names.reserve(running.size());
        for (const auto& each : running) names.push_back(each.name);
        failWith(fmt::format("{} {} running: quit {} first, or use --quit-running.", Text::listed(names, names.size()),
                             names.size() == 1 ? "is" : "are", names.size() == 1 ? "it" : "them"));
    }
    Terminal::confirm(UninstallQuestions::quitRunning(running), options.quitsRunning);
    UninstallQuestions::quit(host, running);
}

/// Why items have stayed and receipts were not forgotten, as the run tells it. Paths may hold tabs: a line is known by
/// the path that it must have.
struct Complaints {
    std::vector<std::string> lines;

    /// What a line tells behind this beginning.
    std::optional<std::string> behind(const std::string& beginning) const {
        for (const std::string& line : lines)
            if (line.starts_with(beginning)) return line.substr(beginning.size());
        return std::nullopt;
    }
    bool has(const std::string& line) const { return std::find(lines.begin(), lines.end(), line) != lines.end(); }
};

/// Why the item is where it was.
std::string reasonOf(const AppUninstallSession::MovedItem& item, const Complaints& complaints) {
    const auto why =
        complaints.behind(fmt::format("stays\t{}\t{}\t", textOf(item.category), item.originalPath.native()));
    return why ? fmt::format("{} stays: {}.", item.originalPath.native(), *why)
               : fmt::format("{} could not be moved and stays.", item.originalPath.native());
}

/// The receipts that `pkgutil` has called forgotten and still lists.
std::int64_t stubbornReceipts(const Complaints& complaints) {
    return std::count_if(complaints.lines.begin(), complaints.lines.end(),
                         [](const std::string& line) { return line.starts_with("receipt-stays\t"); });
}

std::string endSentence(const AppUninstallSession& session, std::int64_t forgottenReceipts) {
    const auto all = std::ssize(session.movedItems);
    const auto gone = session.goneCount();
    auto text = gone == all ? fmt::format("Uninstalled {} — {}.", session.appName, Text::counted(all, "item"))
                            : fmt::format("Moved {} of {} of {} to the Trash.", gone, Text::counted(all, "item"),
                                          session.appName);
    if (forgottenReceipts > 0)
        text += fmt::format(" {} {} forgotten.", Text::counted(forgottenReceipts, "receipt"),
                            forgottenReceipts == 1 ? "was" : "were");
    return text;
}

void tellEnd(const AppUninstallSession& session, const Choice& choice, const Complaints& complaints, Format format) {
    // Before the result, which may find no room.
    if (format == Format::human) Terminal::say(fmt::format("To have it back: tarvik uninstall undo {}", session.id));
    const auto stubborn = stubbornReceipts(complaints);
    const auto forgotten = std::ssize(session.forgottenReceipts) - stubborn;
    Terminal::writeResult(format == Format::human ? Columns::oneLine(endSentence(session, forgotten)) + "\n"
                                                  : sessionText(session, format));
    std::int64_t stayed = stubborn;
    std::size_t failedReceipts = 0;
    for (const auto& item : session.movedItems) {
        if (item.succeeded) continue;
        ++stayed;
        Terminal::say(reasonOf(item, complaints));
    }
    for (const UninstallCandidate& candidate : choice.plan.candidates) {
        if (candidate.category != UninstallCategory::receipts) continue;
        const std::string& identifier = candidate.path.native();
        if (complaints.has("receipt-stays\t" + identifier))
            Terminal::say(
                fmt::format("The receipt {} is still there, though pkgutil has called it forgotten.", identifier));
        const auto why = complaints.behind(fmt::format("forget-receipt-fail\t{}\t", identifier));
        if (!why) continue;
        ++stayed;
        ++failedReceipts;
        Terminal::say(fmt::format("The receipt {} was not forgotten{}{}", identifier, why->empty() ? "." : ": ", *why));
    }
    const auto handled = session.movedItems.size() + session.forgottenReceipts.size() + failedReceipts;
    if (handled < choice.paths.size())
        failWith(
            fmt::format("Stopped: {} of {} were handled.", handled, Text::counted(std::ssize(choice.paths), "item")));
    if (stayed > 0) failWith(fmt::format("{} stayed.", Text::counted(stayed, "item")));
}

AppUninstallSession chosenSession(const Host& host, const Options& options) {
    if (auto session = UninstallHistory::find(host, options.names.front())) return *std::move(session);
    throw WrongUse(
        fmt::format("There is no uninstall \"{}\". \"tarvik uninstall list\" shows all.", options.names.front()),
        std::string(usageOf(options.verb)));
}

/// The whole list as one document, in which each is a table.
Record recordOf(const UninstallTexts::Past& past) {
    const AppUninstallSession& session = past.first;
    const auto& items = past.second;
    const auto count = [&](UndoItem::State state) {
        return static_cast<std::int64_t>(
            std::count_if(items.begin(), items.end(), [&](const UndoItem& item) { return item.state == state; }));
    };
    return {{"id", session.id},
            {"appPath", session.appPath.native()},
            {"appName", session.appName},
            {"bundleId", session.bundleIdentifier.value_or("")},
            {"createdAt", Text::isoDate(session.createdAt)},
            {"items", std::ssize(session.movedItems)},
            {"waiting", count(UndoItem::State::waiting)},
            {"back", count(UndoItem::State::back)},
            {"stuck", count(UndoItem::State::stuck)}};
}

std::string_view nameOf(UndoItem::State state) {
    switch (state) {
        case UndoItem::State::waiting:
            return "waiting";
        case UndoItem::State::back:
            return "back";
        case UndoItem::State::stuck:
            break;
    }
    return "stuck";
}

void printUndo(const std::vector<UndoItem>& before, const std::vector<UndoItem>& after, Format format) {
    if (format == Format::human) return Terminal::writeLine(UninstallUndo::summary(before, after));
    std::vector<Record> records;
    records.reserve(after.size());
    for (const UndoItem& item : after)
        records.push_back({{"path", item.originalPath.native()},
                           {"category", std::string(textOf(item.category))},
                           {"bytes", item.sizeBytes},
                           {"state", std::string(nameOf(item.state))},
                           {"place", item.place.native()},
                           {"reason", item.reason}});
    Terminal::writeResult(format == Format::toml
                              ? toml("items", records)
                              : tsv({"path", "category", "bytes", "state", "place", "reason"}, records));
}

}  // namespace

void apps(const Host& host, const Options& options) {
    const Format format = options.format;
    if (!options.names.empty()) {
        const AppRecord app = chosenApplication(host, options);
        return Terminal::writeResult(format == Format::human ? UninstallTexts::app(app)
                                     : format == Format::tsv ? UninstallTSVFormatter::inspection(app)
                                                             : UninstallTOMLFormatter::inspection(app));
    }
    const auto apps = listedApplications(host, format);
    if (apps.empty() && format == Format::human) return Terminal::say("No applications were found.");
    Terminal::writeResult(format == Format::human ? UninstallTexts::apps(apps, host.home)
                          : format == Format::tsv ? UninstallTSVFormatter::apps(apps)
                                                  : UninstallTOMLFormatter::apps(apps));
}

void plan(const Host& host, const Options& options) {
    const Choice choice = chosen(host, options);
    switch (options.format) {
        case Format::human:
            Terminal::writeResult(UninstallTexts::plan(choice.plan, choice.paths, host.home));
            return Terminal::writeLine("Nothing was changed.");
        case Format::tsv:
            return Terminal::writeResult(UninstallTSVFormatter::plan(choice.plan));
        case Format::toml:
            return Terminal::writeResult(UninstallTOMLFormatter::plan(choice.plan));
    }
}

void uninstall(const Host& host, const Options& options) {
    const Choice choice = chosen(host, options);
    rehearse(host, choice);
    Terminal::writeMessage(UninstallTexts::plan(choice.plan, choice.paths, host.home) + "\n");
    Dialog question = UninstallQuestions::confirm(choice.plan);
    question.details = UninstallQuestions::leftBehind(choice.plan, choice.paths);
    if (options.yes)
        for (const std::string& sentence : question.details) Terminal::say(sentence);
    Terminal::confirm(question, options.yes);
    quitRunning(host, choice, options);
    Complaints complaints;
    const SignalGuard guard;
    const auto session = AppUninstallRunner::run(host, choice.plan, choice.selection, false, choice.paths,
                                                 {[&](const std::string& line) { complaints.lines.push_back(line); }},
                                                 SignalGuard::request());
    tellEnd(session, choice, complaints, options.format);
}

void list(const Host& machine, const Options& options) {
    const Host host = UninstallHistory::knownMachine(machine);
    if (!options.names.empty()) {
        const AppUninstallSession session = chosenSession(host, options);
        return Terminal::writeResult(
            options.format == Format::human
                ? UninstallTexts::session({session, UninstallUndo::look(host, session)}, host.home)
                : sessionText(session, options.format));
    }
    const auto sessions = UninstallHistory::list(host);
    if (options.format == Format::tsv) return Terminal::writeResult(UninstallTSVFormatter::sessions(sessions));
    std::vector<UninstallTexts::Past> past;
    past.reserve(sessions.size());
    for (const AppUninstallSession& session : sessions) past.emplace_back(session, UninstallUndo::look(host, session));
    if (options.format == Format::human) {
        if (past.empty()) return Terminal::say("Nothing was uninstalled yet.");
        return Terminal::writeResult(UninstallTexts::sessions(past));
    }
    std::vector<Record> records;
    records.reserve(past.size());
    for (const auto& each : past) records.push_back(recordOf(each));
    Terminal::writeResult(toml("sessions", records));
}

void undo(const Host& machine, const Options& options) {
    const Host host = UninstallHistory::knownMachine(machine);
    const AppUninstallSession session = chosenSession(host, options);
    const auto before = UninstallUndo::look(host, session);
    const auto isIn = [](UndoItem::State state) {
        return [state](const UndoItem& item) { return item.state == state; };
    };
    auto after = before;
    if (std::any_of(before.begin(), before.end(), isIn(UndoItem::State::waiting))) {
        Terminal::confirm(UninstallQuestions::confirmPutBack(session, before), options.yes);
        const SignalGuard guard;
        after = UninstallUndo::putBack(host, session, AppUninstallReporter::silent, SignalGuard::request());
    }
    printUndo(before, after, options.format);
    for (const UndoItem& item : after)
        if (item.state == UndoItem::State::stuck)
            Terminal::say(fmt::format("{}: {}", item.originalPath.native(), item.reason));
    for (const std::string& receipt : session.forgottenReceipts)
        Terminal::say(fmt::format("The receipt {} does not come back.", receipt));
    const auto stuck = std::count_if(after.begin(), after.end(), isIn(UndoItem::State::stuck));
    const auto waiting = std::count_if(after.begin(), after.end(), isIn(UndoItem::State::waiting));
    if (waiting > 0) failWith(fmt::format("Stopped: {} can still be put back.", Text::counted(waiting, "item")));
    if (stuck > 0) failWith(fmt::format("{} could not be put back.", Text::counted(stuck, "item")));
}

}  // namespace tarvik::CommandLine::UninstallActs
