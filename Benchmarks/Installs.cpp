#include "Installs.h"

#include "Measure.h"
#include "Platform/Files/Files.h"
#include "Platform/Processes/ProgramLocation.h"
#include "Practice/PracticeMachine.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"
#include "Table.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace tarvik::InstallSpeed {

namespace {

using test::RealVolume;

constexpr std::int64_t gigabyte = 1'000'000'000;

/// Installs by us and the two commands in turn. Every round starts with flushed volumes and an empty drive.
void compareInstalls(const fs::path& root, const fs::path& app, const fs::path& drive, const std::string& figure,
                     int rounds, std::int64_t& peakMemory) {
    const auto prepare = [&] {
        fs::remove_all(root / "Applications");
        for (const auto& name : Files::names(drive)) fs::remove_all(drive / name);
        Files::flushVolume(app);
        Files::flushVolume(drive);
    };
    std::vector<double> ours;
    std::vector<double> theirs;
    for (int round = 0; round < rounds; ++round) {
        prepare();
        const auto run = Measure::program({(ProgramLocation::folder() / "install-act").native(), root.native(),
                                           (root / "Users/ada").native(), drive.native(), app.native()});
        ours.push_back(run.seconds);
        peakMemory = std::max(peakMemory, run.peakMemory);
        prepare();
        const std::string copy = (drive / app.filename()).native();
        theirs.push_back(Measure::program({"cp", "-a", app.native(), copy}).seconds +
                         Measure::program({"diff", "-rq", "--no-dereference", app.native(), copy}).seconds);
    }
    Table::ratio(figure, ours, "cp -a, then diff -rq", theirs, "<= 0.75");
}

}  // namespace

void measure(std::size_t files, int rounds) {
    const test::TemporaryFolder folder;
    const fs::path root = folder / "machine";
    test::makeFolder(root / "Users/ada");
    test::makeFolder(root / "Volumes");
    const auto internal = RealVolume::ext4(folder.path(), 8 * gigabyte);
    const auto diskDrive = RealVolume::ext4(root / "Volumes", 8 * gigabyte);
    const auto memoryDrive = RealVolume::memory(root / "Volumes", 4 * gigabyte);
    const auto practice = Practice::build(internal / "practice", {.apps = 0, .specialApps = false, .files = files});
    const fs::path app = internal / "Large.app";
    fs::rename(practice.home, app);
    test::makeFile(app / "Contents/Info.plist", "<plist version=\"1.0\"><dict/></plist>");
    Table::heading(fmt::format("an application of {} files, {:.1f} GB, medians of {} rounds; ext4 in image files",
                               practice.files, static_cast<double>(practice.bytes) / gigabyte, rounds));
    std::int64_t peakMemory = 0;
    compareInstalls(root, app, diskDrive.path(), "install from a folder, ext4 to ext4", rounds, peakMemory);
    compareInstalls(root, app, memoryDrive.path(), "install from a folder, ext4 to memory", rounds, peakMemory);
    Table::line("peak memory of an install", fmt::format("{:.1f} MB", static_cast<double>(peakMemory) / 1e6), "", "",
                "", "<= 60 MB");
}

}  // namespace tarvik::InstallSpeed
