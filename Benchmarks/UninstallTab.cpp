#include "UninstallTab.h"

#include "Discovery/InstalledAppsScanner.h"
#include "ManyApps.h"
#include "Measure.h"
#include "Platform/Processes/ProgramLocation.h"
#include "Table.h"
#include "Uninstall/AppGrouper.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace tarvik::UninstallTab {

namespace {

/// What the window tells, a value a round for each name. Milliseconds.
using Values = std::map<std::string, std::vector<double>>;

void run(const ManyApps& apps, Values& values) {
    const auto program = ProgramLocation::folder() / "tarvik-window";
    const auto run =
        Measure::program({program.native(), "--root", apps.machine().root.native(), "--measure-uninstall"});
    std::istringstream lines(run.output);
    std::string name;
    for (double value = 0; lines >> name >> value;) values[name].push_back(value);
}

std::string inMilliseconds(double value) {
    return fmt::format("{:.0f} ms", value);
}

}  // namespace

void measure(const ManyApps& apps, int rounds) {
    const auto records = InstalledAppsScanner::discover(apps.host());
    std::vector<fs::path> bundles;
    for (const AppRecord& record : records) bundles.push_back(record.bundlePath);
    const auto du = ManyApps::command({"du", "-s"}, bundles);

    Values values;
    std::vector<double> duSeconds;
    for (int round = 0; round <= rounds; ++round) {
        const double seconds = Measure::seconds([&] { Measure::program(du); });
        Values found;
        run(apps, found);
        if (round == 0) continue;
        duSeconds.push_back(seconds);
        for (const auto& [name, all] : found) values[name].insert(values[name].end(), all.begin(), all.end());
    }
    const auto median = [&](const std::string& name) { return Measure::median(values.at(name)); };
    const auto most = [&](const std::string& name) {
        return inMilliseconds(*std::max_element(values.at(name).begin(), values.at(name).end()));
    };
    const double duTime = Measure::median(duSeconds) * 1e3;
    Table::line("Uninstall tab, to the list on the screen", inMilliseconds(median("list")), "", "", "", "250 ms");
    Table::line("to all sizes", inMilliseconds(median("sizes")), "du -s of the bundles", inMilliseconds(duTime),
                fmt::format("{:.2f}", median("sizes") / duTime), "<= 1.20");
    Table::line("event loop stood still", inMilliseconds(median("gap")), "the worst of all", most("gap"), "", "50 ms");
    Table::line("  its thread worked in one turn", inMilliseconds(median("work")), "the worst of all", most("work"), "",
                "");
    Table::milliseconds(
        "groups of the applications", [&] { AppGrouper::group(records); }, rounds, "5 ms");
}

}  // namespace tarvik::UninstallTab
