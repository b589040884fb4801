#include "Discovery.h"

#include "Discovery/AppScanner.h"
#include "Discovery/InstalledAppsScanner.h"
#include "Discovery/SymlinkScanner.h"
#include "Platform/Files.h"
#include "Platform/Host.h"
#include "Practice/PracticeMachine.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Table.h"

#include <fmt/format.h>

#include <atomic>
#include <stdexcept>
#include <thread>

namespace tarvik::Discovery {

namespace {

constexpr std::int64_t volumeBytes = 8'000'000'000;
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

/// A command with the paths that exist, links resolved as the scans resolve them.
std::vector<std::string> command(std::vector<std::string> words, const std::vector<fs::path>& paths) {
    for (const fs::path& path : paths)
        if (const auto real = Files::resolved(path)) words.push_back(real->native());
    return words;
}

std::vector<fs::path> pathsOf(const std::vector<AppEntry>& entries) {
    std::vector<fs::path> paths;
    for (const AppEntry& entry : entries) {
        paths.push_back(entry.bundlePath);
        paths.insert(paths.end(), entry.dataPaths.begin(), entry.dataPaths.end());
    }
    return paths;
}

}  // namespace

void measure(int rounds) {
    const test::TemporaryFolder folder;
    const auto volume = test::RealVolume::ext4(folder.path(), volumeBytes);
    const auto machine = Practice::build(volume / "machine", {.apps = 500, .files = 20'000, .appFiles = 180'000});
    const Host host = Host::rootedAt(machine.root, machine.home);
    const std::vector<AppEntry> entries = AppScanner::discoverMetadata(host);
    if (entries.size() < 500) throw std::runtime_error("The scan finds too few applications.");
    Table::heading(fmt::format("{} applications, {} files, {} folders, medians of {} rounds, caches warm",
                               entries.size(), machine.files, machine.folders, rounds));

    Table::milliseconds(
        "applications for the uninstaller", [&] { InstalledAppsScanner::discover(host); }, rounds, "150 ms");
    Table::milliseconds(
        "applications to move", [&] { AppScanner::discoverMetadata(host); }, rounds, "150 ms");

    const auto roots = SymlinkScanner::defaultRoots(host);
    const auto ls = command({"ls"}, roots);
    Table::compare(
        "links in the usual folders", [&] { SymlinkScanner::links(roots); }, "ls", [&] { Measure::program(ls); },
        rounds, "<= 3.00");

    const auto du = command({"du", "-s"}, pathsOf(entries));
    Table::compare(
        fmt::format("sizes of all, {} at a time", atOnce), [&] { sizeAll(host, entries); }, "du -s",
        [&] { Measure::program(du); }, rounds, "<= 0.80");
}

}  // namespace tarvik::Discovery
