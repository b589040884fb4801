#include "Discovery.h"

#include "Dedupe/AppDedupeService.h"
#include "Discovery/AppScanner.h"
#include "Discovery/InstalledAppsScanner.h"
#include "Discovery/SymlinkScanner.h"
#include "ManyApps.h"
#include "Measure.h"
#include "Platform/Machine/Host.h"
#include "Table.h"

#include <fmt/format.h>

#include <atomic>
#include <thread>
#include <vector>

namespace tarvik::Discovery {

namespace {

/// What is sized at one time, as in the window.
constexpr int atOnce = 8;

/// Sizes all entries, as many at one time as the window does.
void sizeAll(const Host& host, const std::vector<AppEntry>& entries) {
    std::atomic<std::size_t> next = 0;
    std::vector<std::thread> threads;
    for (int count = 0; count < atOnce; ++count)
        threads.emplace_back([&] {
            for (std::size_t index = next++; index < entries.size(); index = next++)
                AppScanner::computeSizes(host, entries[index]);
        });
    for (std::thread& thread : threads) thread.join();
}

}  // namespace

void measure(int rounds) {
    const ManyApps apps;
    const Host& host = apps.host();
    Table::heading(apps.heading(rounds));

    Table::milliseconds(
        "applications for the uninstaller", [&] { InstalledAppsScanner::discover(host); }, rounds, "150 ms");
    Table::milliseconds(
        "applications to move", [&] { AppScanner::discoverMetadata(host); }, rounds, "150 ms");
    const auto folders = AppDedupeService::applicationRoots(host);
    Table::milliseconds(
        "duplicate launchers", [&] { AppDedupeService::plan(host, folders); }, rounds, "150 ms");

    const auto roots = SymlinkScanner::defaultRoots(host);
    const auto ls = ManyApps::command({"ls"}, roots);
    Table::compare(
        "links in the usual folders", [&] { SymlinkScanner::links(roots); }, "ls", [&] { Measure::program(ls); },
        rounds, "<= 3.00");

    const auto du = apps.du();
    Table::compare(
        fmt::format("sizes of all, {} at a time", atOnce), [&] { sizeAll(host, apps.entries()); }, "du -s",
        [&] { Measure::program(du); }, rounds, "<= 0.80");
}

}  // namespace tarvik::Discovery
