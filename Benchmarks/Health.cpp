#include "Health.h"

#include "Health/DanglingDataLinkDetector.h"
#include "Health/HealthCheck.h"
#include "Measure.h"
#include "MovedApps.h"
#include "Platform/Processes/ProgramLocation.h"
#include "Table.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace tarvik::HealthSpeed {

namespace {

void check(const Host& host, HealthSizes::Wish sizes = HealthSizes::Wish::measured) {
    const auto report = HealthCheck::run(host, HealthCheck::applicationRoots(host), {.sizes = sizes});
    if (!report.problems().empty()) throw std::runtime_error(report.problems().front().detail);
}

/// In bytes, of the command as a process of its own: another process tells, which holds less itself.
double peakMemory(const Host& host) {
    const std::string script = R"(import resource, subprocess, sys
subprocess.run(sys.argv[1:], stdout=subprocess.DEVNULL, check=True)
print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss * 1024))";
    return std::stod(Measure::program({"python3", "-c", script, (ProgramLocation::folder() / "tarvik").native(),
                                       "--root", host.root.native(), "health"})
                         .output);
}

/// What the window tells of one check, a value for each name.
std::map<std::string, double> checkInWindow(const Host& host) {
    const auto run = Measure::program(
        {(ProgramLocation::folder() / "tarvik-window").native(), "--root", host.root.native(), "--measure-health"});
    std::istringstream lines(run.output);
    std::map<std::string, double> values;
    std::string name;
    for (double value = 0; lines >> name >> value;) values[name] = value;
    return values;
}

/// The window with the programs of this build for its tools.
void measureWindow(const Host& host, int rounds) {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ::setenv("QT_QUICK_BACKEND", "software", 1);
    std::map<std::string, std::vector<double>> values;
    for (int round = 0; round <= rounds; ++round)
        for (const auto& [name, value] : checkInWindow(host))
            if (round > 0) values[name].push_back(value);
    const auto text = [&](const std::string& name) {
        return fmt::format("{:.0f} ms", Measure::median(values.at(name)));
    };
    const auto most = [&](const std::string& name) {
        return fmt::format("{:.0f} ms", *std::max_element(values.at(name).begin(), values.at(name).end()));
    };
    Table::line("check in the window, real stand-ins", text("check"), "", "", "", "");
    Table::line("event loop stood still meanwhile", text("gap"), "the worst of all", most("gap"), "", "50 ms");
    Table::line("  its thread worked in one turn", text("work"), "the worst of all", most("work"), "", "");
}

}  // namespace

void measure(int rounds) {
    const MovedApps apps;
    const Host& host = apps.host();
    Table::heading(apps.heading(rounds));

    const auto du = apps.du();
    Table::compare(
        "check, tools that answer at once", [&] { check(host); }, "du -s of the bundles", [&] { Measure::program(du); },
        rounds, "<= 1.10");
    Table::milliseconds(
        "the same without sizes", [&] { check(host, HealthSizes::Wish::leftOut); }, rounds, "150 ms");
    Table::milliseconds(
        "  of it, links among data", [&] { DanglingDataLinkDetector::detect(host); }, rounds, "");
    Host toolsThatRun = host;
    toolsThatRun.tools.codesign = toolsThatRun.tools.xcrun = "/bin/true";
    Table::milliseconds(
        "without sizes, 1,500 runs of /bin/true", [&] { check(toolsThatRun, HealthSizes::Wish::leftOut); }, rounds, "");
    measureWindow(host, rounds);
    Table::line("peak memory of the command", fmt::format("{:.1f} MB", peakMemory(host) / 1e6), "", "", "", "60 MB");
}

}  // namespace tarvik::HealthSpeed
