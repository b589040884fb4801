#include "CommandLine/UninstallTexts.h"

#include "Applications/DataPathSize.h"
#include "CommandLine/Output/Columns.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Text/Text.h"
#include "Uninstall/AppGrouper.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>

namespace tarvik::CommandLine::UninstallTexts {

namespace {

using Columns::Align;
using Rows = std::vector<std::vector<std::string>>;

constexpr std::size_t widestName = 40;

std::string shown(const fs::path& path, const fs::path& home) {
    return Columns::oneLine(DataPathSize{path}.displayPath(home));
}

std::string dayOf(const std::optional<std::chrono::system_clock::time_point>& instant) {
    return instant ? Text::date(*instant).substr(0, std::string_view("2026-11-15").size()) : std::string();
}

std::vector<std::string> rowOf(const AppRecord& app, std::string_view indent, const fs::path& home) {
    return {Columns::cut(Columns::oneLine(fmt::format("{}{}", indent, app.displayName)), widestName),
            app.displaySizeBytes() > 0 ? SizeCalculator::format(app.displaySizeBytes()) : std::string(),
            std::string(textOf(app.kind)), dayOf(app.modifiedAt), shown(app.bundlePath, home)};
}

/// The text of a size that is not measured for each kind of thing: a receipt has none.
std::string sizeOf(const UninstallCandidate& candidate) {
    const bool hasSize = candidate.category != UninstallCategory::receipts;
    return hasSize ? SizeCalculator::format(candidate.sizeBytes) : std::string();
}

std::string sectionOf(UninstallCategory category, const std::vector<UninstallCandidate>& candidates,
                      const std::set<std::string>& selectedPaths, const fs::path& home) {
    Rows rows;
    std::int64_t bytes = 0;
    for (const UninstallCandidate& candidate : candidates) {
        const bool goes = selectedPaths.contains(candidate.path.native());
        rows.push_back({goes ? "[x]" : "[ ]", sizeOf(candidate), std::string(textOf(candidate.confidence)),
                        candidate.reason + (candidate.isPrivileged ? " (admin)" : ""), shown(candidate.path, home)});
        bytes += candidate.sizeBytes;
    }
    return fmt::format("\n{} ({} · {})\n{}", labelOf(category), Text::counted(std::ssize(candidates), "item"),
                       SizeCalculator::format(bytes),
                       Columns::table({{""}, {"Size", Align::right}, {"Sure"}, {"Why"}, {"Where"}}, rows));
}

std::string sumOf(const AppUninstallPlan& plan, const std::set<std::string>& selectedPaths) {
    std::int64_t bytes = 0;
    std::int64_t count = 0;
    for (const UninstallCandidate& candidate : plan.candidates) {
        if (!selectedPaths.contains(candidate.path.native())) continue;
        bytes += candidate.sizeBytes;
        ++count;
    }
    return fmt::format("{} of {}, {} of {}.", count, Text::counted(std::ssize(plan.candidates), "item"),
                       SizeCalculator::format(bytes), SizeCalculator::format(plan.totalBytes));
}

/// How many items are in this state.
std::int64_t countOf(const std::vector<UninstallUndo::Item>& items, UninstallUndo::Item::State state) {
    return std::count_if(items.begin(), items.end(),
                         [&](const UninstallUndo::Item& item) { return item.state == state; });
}

std::string stateOf(const std::vector<UninstallUndo::Item>& items) {
    using State = UninstallUndo::Item::State;
    const auto waiting = countOf(items, State::waiting);
    if (waiting > 0) return fmt::format("{} can be put back", Text::counted(waiting, "item"));
    const auto back = countOf(items, State::back);
    if (back > 0 && back == std::ssize(items)) return "put back";
    if (back > 0)
        return fmt::format("{} of {} are back, the others cannot come back", back,
                           Text::counted(std::ssize(items), "item"));
    return "nothing can be put back";
}

std::string_view wordFor(UninstallUndo::Item::State state) {
    switch (state) {
        case UninstallUndo::Item::State::waiting:
            return "can be put back";
        case UninstallUndo::Item::State::back:
            return "is at its place";
        case UninstallUndo::Item::State::stuck:
            break;
    }
    return "cannot be put back";
}

}  // namespace

std::string apps(const std::vector<AppRecord>& apps, const fs::path& home) {
    Rows rows;
    for (const UninstallGroup& group : AppGrouper::group(apps)) {
        rows.push_back({Columns::oneLine(
            fmt::format("{}: {}", group.label, Text::counted(std::ssize(group.apps), "application")))});
        for (const AppRecord& member : group.apps) rows.push_back(rowOf(member, "  ", home));
    }
    for (const AppRecord& app : AppGrouper::ungrouped(apps)) rows.push_back(rowOf(app, "", home));
    for (auto& row : rows) row.resize(5);
    return Columns::table({{"Application"}, {"Size", Align::right}, {"Kind"}, {"Changed"}, {"Where"}}, rows);
}

std::string app(const AppRecord& app) {
    const auto known = [](const std::optional<std::string>& text) { return text.value_or("-"); };
    const auto yes = [](bool is) { return std::string(is ? "yes" : "no"); };
    const Rows rows = {
        {"Name", Columns::oneLine(app.displayName)},
        {"Where", Columns::oneLine(app.bundlePath.native())},
        {"Kind", std::string(textOf(app.kind))},
        {"Bundle ID", Columns::oneLine(known(app.bundleIdentifier))},
        {"Version", Columns::oneLine(known(app.version))},
        {"Developer", Columns::oneLine(known(app.developer))},
        {"App Store", yes(app.isMacAppStore)},
        {"Login items", yes(app.hasLoginItems)},
        {"System extension", yes(app.hasSystemExtension)},
        {"Leads to", app.externalTargetPath ? Columns::oneLine(app.externalTargetPath->native()) : "-"},
    };
    std::string text;
    for (const auto& row : rows) text += fmt::format("{:<17} {}\n", row.front() + ":", row.back());
    return text;
}

std::string plan(const AppUninstallPlan& plan, const std::set<std::string>& selectedPaths, const fs::path& home) {
    const AppRecord& app = plan.app;
    auto text = app.displayName;
    if (app.version && !app.version->empty()) text += " " + *app.version;
    if (app.bundleIdentifier && !app.bundleIdentifier->empty()) text += fmt::format(" ({})", *app.bundleIdentifier);
    text = Columns::oneLine(text) + "\n";
    for (const auto& [category, candidates] : plan.grouped())
        text += sectionOf(category, candidates, selectedPaths, home);
    if (!plan.warnings.empty()) text += "\n";
    for (const std::string& warning : plan.warnings) text += fmt::format("! {}\n", Columns::oneLine(warning));
    return text + "\n" + sumOf(plan, selectedPaths) + "\n";
}

std::string sessions(const std::vector<Past>& sessions) {
    Rows rows;
    for (const auto& [session, items] : sessions) {
        rows.push_back({Columns::oneLine(session.id), Text::date(session.createdAt),
                        Columns::cut(Columns::oneLine(session.appName), widestName),
                        fmt::to_string(session.goneCount()), SizeCalculator::format(session.goneBytes()),
                        fmt::to_string(std::ssize(session.movedItems) - session.goneCount()), stateOf(items)});
    }
    return Columns::table({{"ID"},
                           {"When"},
                           {"Application"},
                           {"Items", Align::right},
                           {"Size", Align::right},
                           {"Stayed", Align::right},
                           {"Now"}},
                          rows);
}

std::string session(const Past& past, const fs::path& home) {
    const auto& [session, items] = past;
    std::string text =
        Columns::oneLine(fmt::format("{}, uninstalled {}", session.appName, Text::date(session.createdAt))) + "\n";
    Rows rows;
    for (const UninstallUndo::Item& item : items)
        rows.push_back({SizeCalculator::format(item.sizeBytes), shown(item.originalPath, home),
                        Columns::oneLine(item.reason.empty() ? std::string(wordFor(item.state)) : item.reason)});
    if (!rows.empty()) text += "\n" + Columns::table({{"Size", Align::right}, {"What went"}, {"Now"}}, rows);
    bool isFirst = true;
    for (const auto& item : session.movedItems) {
        if (item.succeeded) continue;
        text += fmt::format("{}Stayed: {}\n", isFirst ? "\n" : "", shown(item.originalPath, home));
        if (item.error) text += fmt::format("        {}\n", Columns::oneLine(*item.error));
        isFirst = false;
    }
    for (const std::string& receipt : session.forgottenReceipts)
        text += fmt::format("Receipt forgotten: {}\n", Columns::oneLine(receipt));
    return text;
}

}  // namespace tarvik::CommandLine::UninstallTexts
