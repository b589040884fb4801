#include "Tracking.h"

#include "Installers/Tracking/FilesystemEventRecorder.h"
#include "Installers/Tracking/Snapshotter.h"
#include "Measure.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/Host.h"
#include "Platform/Processes/ProgramLocation.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"
#include "Table.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

namespace tarvik::TrackingSpeed {

namespace {

using test::RealVolume;

constexpr std::int64_t gigabyte = 1'000'000'000;
constexpr int manyBundles = 500;
constexpr int partsOfBundle = 40;
constexpr int filesOfPart = 50;

/// Empty files with paths as long as those of applications are. A million of them with all bundles.
void makeBundles(const fs::path& root, int bundles) {
    for (int bundle = 0; bundle < bundles; ++bundle)
        for (int part = 0; part < partsOfBundle; ++part) {
            const fs::path folder = root / fmt::format("Some Editor {}.app/Contents/Resources/Part {}", bundle, part);
            fs::create_directories(folder);
            for (int file = 0; file < filesOfPart; ++file)
                test::makeFile(folder / fmt::format("Localizable {:02}.strings", file), "");
        }
}

void compareListings(const fs::path& volume, int rounds) {
    const fs::path applications = volume / "Applications";
    const fs::path support = volume / "Application Support";
    makeBundles(applications, manyBundles / 2);
    makeBundles(support, manyBundles / 2);
    const auto count = Snapshotter::capture({applications, support}).paths.size();
    Table::heading(fmt::format("Two folders with {} items, {} rounds", count, rounds));

    // First, while this program is still small: the system counts its memory to those that it starts.
    const auto run = Measure::program({ProgramLocation::executable().native(), "snapshots", volume.native()});
    Table::line("peak memory of two snapshots, 10,000 new", fmt::format("{} MB", run.peakMemory / 1'000'000), "", "",
                "", "150 MB");

    const std::string listing = (volume / "listing").native();
    const std::string find = fmt::format("find '{}' '{}' > '{}' && LC_ALL=C sort -o '{}.sorted' '{}'",
                                         applications.native(), support.native(), listing, listing, listing);
    Table::compare(
        "snapshot",
        [&] {
            Snapshotter::capture({applications, support});
        },
        "find > file, sort",
        [&] {
            Measure::program({"sh", "-c", find});
        },
        rounds, "<= 1.00");
}

/// How often a path of `expected` is not in `seen`. Both are sorted.
std::size_t missedOf(const std::vector<std::string>& expected, const std::vector<std::string>& seen) {
    std::vector<std::string> missed;
    std::set_difference(expected.begin(), expected.end(), seen.begin(), seen.end(), std::back_inserter(missed));
    return missed.size();
}

/// Copies the tree into a folder, watched or not. @returns the seconds that the copy takes.
double copy(const fs::path& source, const fs::path& folder, bool isWatched, std::size_t& missed) {
    fs::create_directory(folder);
    Files::flushVolume(folder);
    FilesystemEventRecorder recorder(Host::thisMachine(), {folder});
    if (isWatched) recorder.start();
    const double seconds = Measure::program({"cp", "-r", source.native(), folder.native()}).seconds;
    const auto seen = recorder.stop();
    if (isWatched) {
        missed += missedOf(Snapshotter::added({}, Snapshotter::capture({folder / source.filename()})), seen);
        for (const std::string& warning : recorder.warnings()) throw std::runtime_error(warning);
    }
    fs::remove_all(folder);
    return seconds;
}

void compareCopies(const fs::path& volume, const std::string& kind, int rounds) {
    constexpr int folders = 1'000;
    constexpr int filesOfFolder = 100;
    const fs::path source = volume / "source";
    for (int file = 0; file < folders * filesOfFolder; ++file) {
        const fs::path folder = source / std::to_string(file % folders);
        if (file < folders) fs::create_directories(folder);
        test::makeFile(folder / std::to_string(file));
    }
    std::vector<double> watched;
    std::vector<double> alone;
    std::size_t missed = 0;
    copy(source, volume / "copy", false, missed);
    for (int round = 0; round < rounds; ++round) {
        watched.push_back(copy(source, volume / "copy", true, missed));
        alone.push_back(copy(source, volume / "copy", false, missed));
    }
    Table::ratio(fmt::format("cp -r of 100,000 files, watched, on {}", kind), watched, "cp -r alone", alone, "<= 1.10");
    Table::line("of these files not noted, all rounds", std::to_string(missed), "", "", "", "0");
}

}  // namespace

void measure(int rounds) {
    const test::TemporaryFolder folder;
    compareListings(RealVolume::memory(folder.path(), 8 * gigabyte).path(), rounds);
    Table::heading(fmt::format("1,000 folders with 100 files each, {} rounds", rounds));
    compareCopies(RealVolume::ext4(folder.path(), 4 * gigabyte).path(), "ext4", rounds);
    compareCopies(RealVolume::memory(folder.path(), 4 * gigabyte).path(), "memory", rounds);
}

void compareSnapshots(const fs::path& folder) {
    const auto before = Snapshotter::capture({folder});
    constexpr int count = 10'000;
    for (int file = 0; file < count; ++file) test::makeFile(folder / "new" / std::to_string(file), "");
    const auto after = Snapshotter::capture({folder});
    const auto added = Snapshotter::added(before, after);
    fs::remove_all(folder / "new");
    if (added.size() != count + 1) throw std::runtime_error("The difference is not the files that came.");
}

}  // namespace tarvik::TrackingSpeed
