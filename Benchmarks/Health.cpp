#include "Health.h"

#include "Health/DanglingDataLinkDetector.h"
#include "Health/HealthCheck.h"
#include "Measure.h"
#include "MovedApps.h"
#include "Platform/Processes/ProgramLocation.h"
#include "Table.h"

#include <fmt/format.h>

#include <stdexcept>
#include <string>

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
    Table::line("peak memory of the command", fmt::format("{:.1f} MB", peakMemory(host) / 1e6), "", "", "", "60 MB");
}

}  // namespace tarvik::HealthSpeed
