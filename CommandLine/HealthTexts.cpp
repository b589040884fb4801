#include "CommandLine/HealthTexts.h"

#include "CommandLine/Output/Columns.h"
#include "Platform/Files/LastComponent.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cstdint>
#include <numeric>
#include <string_view>
#include <vector>

namespace tarvik::CommandLine::HealthTexts {

namespace {

constexpr std::size_t mostLargest = 10;

std::string sizeOf(const HealthIssue& issue) {
    return issue.sizeBytes >= 1 ? SizeCalculator::format(issue.sizeBytes) : std::string();
}

std::string nameOf(const HealthIssue& issue) {
    return Columns::oneLine(lastComponent(issue.location));
}

std::string repairLineOf(const std::vector<HealthRepairStrategy>& repairs) {
    std::vector<std::string_view> names;
    names.reserve(repairs.size());
    for (const HealthRepairStrategy repair : repairs) names.push_back(HealthRepairStrategies::name(repair));
    return names.empty() ? "    No repair\n" : fmt::format("    Repair: {}\n", fmt::join(names, " or "));
}

std::string findingOf(const HealthIssue& issue, const RepairsOf& repairsOf) {
    std::string text = "  " + nameOf(issue);
    if (const auto size = sizeOf(issue); !size.empty()) text += fmt::format("  ({})", size);
    text += fmt::format("\n    {}\n", Columns::oneLine(issue.location.native()));
    if (!issue.detail.empty()) text += fmt::format("    {}\n", Columns::oneLine(issue.detail));
    if (issue.target) text += fmt::format("    → {}\n", Columns::oneLine(issue.target->native()));
    return text + repairLineOf(repairsOf(issue));
}

std::string sectionOf(HealthIssue::Kind kind, const std::vector<HealthIssue>& issues, const RepairsOf& repairsOf) {
    std::string text = fmt::format("\n{} ({})", HealthIssueKind::title(kind), issues.size());
    if (kind == HealthIssue::Kind::reverted) {
        const auto add = [](std::int64_t sum, const HealthIssue& issue) { return sum + issue.sizeBytes; };
        const auto total = std::accumulate(issues.begin(), issues.end(), std::int64_t{0}, add);
        text += "  Total reclaimable: " + SizeCalculator::format(total);
    }
    text += "\n";
    for (const HealthIssue& issue : issues) text += findingOf(issue, repairsOf);
    return text;
}

std::string largestOf(const std::vector<HealthIssue>& largest) {
    std::vector<std::vector<std::string>> rows;
    rows.reserve(largest.size());
    for (const HealthIssue& issue : largest) rows.push_back({SizeCalculator::format(issue.sizeBytes), nameOf(issue)});
    return "\nTop 10 largest healthy symlinked apps\n" +
           Columns::table({{"Size", Columns::Align::right}, {"App"}}, rows);
}

Record recordOf(const HealthIssue& issue) {
    return {{"kind", std::string(HealthIssueKind::rawValue(issue.kind))},
            {"location", issue.location.native()},
            {"target", issue.target ? issue.target->native() : std::string()},
            {"bytes", issue.sizeBytes},
            {"detail", issue.detail}};
}

std::vector<Record> recordsOf(const HealthReport& report) {
    std::vector<Record> records;
    records.reserve(report.issues.size());
    for (const HealthIssue& issue : report.issues) records.push_back(recordOf(issue));
    return records;
}

}  // namespace

std::string human(const HealthReport& report, const RepairsOf& repairsOf) {
    const auto groups = report.grouped();
    std::string text = fmt::format("Healthy {}  Problems {}  Scanned {}  Drives {}\n", report.healthyCount,
                                   report.problems().size(), report.scannedSymlinks, report.scannedDrives.size());
    if (report.problems().empty()) text += "\nAll moved apps are healthy. Nothing to repair.\n";
    for (const HealthIssue::Kind kind : HealthIssueKind::sections())
        if (const auto group = groups.find(kind); group != groups.end())
            text += sectionOf(kind, group->second, repairsOf);
    if (const auto largest = report.largestHealthy(mostLargest); !largest.empty()) text += largestOf(largest);
    return text;
}

std::string tsv(const HealthReport& report) {
    return CommandLine::tsv(namesOf(recordOf({})), recordsOf(report));
}

std::string toml(const HealthReport& report) {
    std::vector<std::string> drives;
    for (const fs::path& drive : report.scannedDrives) drives.push_back(drive);
    return CommandLine::toml(Record{{"healthy", static_cast<std::int64_t>(report.healthyCount)},
                                    {"problems", static_cast<std::int64_t>(report.problems().size())},
                                    {"scanned", static_cast<std::int64_t>(report.scannedSymlinks)},
                                    {"drives", drives},
                                    {"scanned_at", Text::isoDate(report.scannedAt)}}) +
           "\n" + CommandLine::toml("issues", recordsOf(report));
}

}  // namespace tarvik::CommandLine::HealthTexts
