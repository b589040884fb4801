#include "CommandLine/AppTexts.h"

#include "AppData/CategorizedPaths.h"
#include "Applications/AppRecordKind.h"
#include "Applications/RiskLevel.h"
#include "CommandLine/Output/Columns.h"
#include "Platform/Files/Files.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

namespace tarvik::CommandLine::AppTexts {

namespace {

using Fact = std::pair<std::string_view, std::string>;

constexpr std::size_t widestName = 32;
constexpr std::size_t widestVersion = 14;

std::string kindOf(const FoundApp& app) {
    switch (app.record.kind) {
        case AppRecordKind::normal:
        case AppRecordKind::userApplications:
            // Its own path is no link, but a folder above it is.
            return app.entry.isAlreadySymlinked ? "in a symlink" : "app";
        case AppRecordKind::symlink:
            return "symlink";
        case AppRecordKind::tarvikLauncher:
            return "launcher";
        case AppRecordKind::externalTarget:
            return "external";
        case AppRecordKind::macAppStore:
            return "App Store";
        case AppRecordKind::systemRisky:
            return "system";
    }
    return {};
}

std::string riskOf(const AppEntry& entry) {
    switch (entry.riskLevel()) {
        case RiskLevel::low:
            return "low";
        case RiskLevel::medium:
            return "medium";
        case RiskLevel::high:
            return "high";
    }
    return {};
}

std::string shortened(const fs::path& path, const fs::path& home) {
    return Columns::oneLine(DataPathSize{path}.displayPath(home));
}

std::string flagsOf(const AppEntry& entry) {
    std::vector<std::string_view> flags;
    if (entry.isMacAppStore) flags.emplace_back("an App Store receipt");
    if (entry.hasLoginItems) flags.emplace_back("login items");
    if (entry.hasSystemExtension) flags.emplace_back("a system extension");
    return fmt::format("{}", fmt::join(flags, ", "));
}

std::string leadsTo(const FoundApp& app, const fs::path& home) {
    const auto place = app.leadsTo();
    if (!place) return {};
    return shortened(*place, home) + (Files::exists(*place) ? "" : " (not there)");
}

/// Facts without a text are not known, and left out.
std::string linesOf(const std::vector<Fact>& facts) {
    std::size_t widest = 0;
    for (const auto& [label, text] : facts)
        if (!text.empty()) widest = std::max(widest, label.size());
    std::string lines;
    for (const auto& [label, text] : facts)
        if (!text.empty()) lines += fmt::format("  {:<{}}  {}\n", label, widest, Columns::oneLine(text));
    return lines;
}

std::string dataOf(const AppEntry& entry, const fs::path& home) {
    if (entry.dataPathSizes.empty()) return "\nIt keeps no data outside of its bundle.\n";
    const auto groups = categorizedPaths(entry);
    std::size_t widest = 0;
    for (const auto& group : groups) widest = std::max(widest, Text::byteCount(group.total()).size());
    auto text = fmt::format("\nData: {}\n", Text::byteCount(entry.dataSize));
    for (const auto& group : groups) {
        text += fmt::format("  {:>{}}  {}, {}\n", Text::byteCount(group.total()), widest, textOf(group.category),
                            group.fileFolderSummary());
        for (const auto& item : group.items)
            text += fmt::format("  {:{}}  {:>{}}  {}\n", "", widest, Text::byteCount(item.size), widest,
                                shortened(item.path, home));
    }
    return text;
}

}  // namespace

std::string table(const std::vector<FoundApp>& apps) {
    using Columns::Align;
    std::vector<std::vector<std::string>> rows;
    for (const auto& app : apps) {
        const auto& entry = app.entry;
        rows.push_back({Columns::cut(Columns::oneLine(entry.name), widestName),
                        Columns::cut(Columns::oneLine(entry.version.value_or("")), widestVersion), kindOf(app),
                        Text::byteCount(entry.appSize), Text::byteCount(entry.dataSize), riskOf(entry),
                        Columns::oneLine(entry.bundlePath.native())});
    }
    // A path is shown whole, to be copied, and may be long: at the end it pushes nothing aside.
    return Columns::table(
        {{"Name"}, {"Version"}, {"Kind"}, {"Size", Align::right}, {"Data", Align::right}, {"Risk"}, {"Where"}}, rows);
}

std::string portrait(const FoundApp& app, const Vouchers& vouchers, const fs::path& home) {
    const auto& entry = app.entry;
    const auto& modifiedAt = app.record.modifiedAt;
    auto text = Columns::oneLine(entry.name) + "\n";
    text += linesOf({{"Identifier", entry.bundleIdentifier.value_or("")},
                     {"Version", entry.version.value_or("")},
                     {"Developer", app.record.developer.value_or("")},
                     {"Kind", kindOf(app)},
                     {"Where", shortened(entry.bundlePath, home)},
                     {"Leads to", leadsTo(app, home)},
                     {"Modified", modifiedAt ? Text::date(*modifiedAt) : ""},
                     {"Signed by", vouchers.signedBy.value_or("")},
                     {"Notarization", vouchers.notarization.value_or("")},
                     {"Has", flagsOf(entry)},
                     {"Risk", riskOf(entry)},
                     {"Size", Text::byteCount(entry.appSize)},
                     {"With data", Text::byteCount(entry.totalSize())}});
    const auto warnings = entry.warnings();
    if (!warnings.empty()) text += "\n";
    for (const auto& warning : warnings) text += fmt::format("Warning: {}\n", warning);
    return text + dataOf(entry, home);
}

Record recordOf(const FoundApp& app) {
    const auto& [entry, record] = app;
    return {{"name", entry.name},
            {"bundleIdentifier", entry.bundleIdentifier.value_or("")},
            {"version", entry.version.value_or("")},
            {"developer", record.developer.value_or("")},
            {"kind", std::string(textOf(record.kind))},
            {"appBytes", entry.appSize},
            {"dataBytes", entry.dataSize},
            {"totalBytes", entry.totalSize()},
            {"dataPaths", static_cast<std::int64_t>(entry.dataPaths.size())},
            {"risk", riskOf(entry)},
            {"macAppStore", entry.isMacAppStore},
            {"loginItems", entry.hasLoginItems},
            {"systemExtension", entry.hasSystemExtension},
            {"alreadyMoved", entry.isAlreadySymlinked},
            {"path", entry.bundlePath.native()},
            {"leadsTo", app.leadsTo().value_or(fs::path()).native()},
            {"modified", record.modifiedAt ? Text::isoDate(*record.modifiedAt) : std::string()},
            {"warnings", entry.warnings()}};
}

Record recordOf(const FoundApp& app, const Vouchers& vouchers) {
    auto record = recordOf(app);
    record.emplace_back("signedBy", vouchers.signedBy.value_or(""));
    record.emplace_back("notarization", vouchers.notarization.value_or(""));
    return record;
}

std::vector<Record> dataRecordsOf(const AppEntry& entry) {
    std::vector<Record> records;
    for (const auto& group : categorizedPaths(entry))
        for (const auto& item : group.items)
            records.push_back({{"category", std::string(textOf(group.category))},
                               {"bytes", item.size},
                               {"dataPath", item.path.native()}});
    return records;
}

}  // namespace tarvik::CommandLine::AppTexts
