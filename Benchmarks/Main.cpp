// Holds Tarvik against what a user would pick instead, side by side in one run, and prints a table of ratios.
//   tarvik-benchmark [FILES] [ROUNDS]
#include "Measure.h"
#include "Move/MoveVerifier.h"
#include "Move/SizingService.h"
#include "Platform/Files.h"
#include "Platform/Host.h"
#include "Platform/ProgramLocation.h"
#include "Practice/PracticeMachine.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <functional>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace tarvik;
using test::RealVolume;

constexpr std::int64_t gigabyte = 1'000'000'000;

struct Sizes {
    std::size_t files = 60'000;
    int rounds = 5;
};

/// Prints a line as soon as its figures are there.
void printLine(const std::string& figure, const std::string& ours, const std::string& peer, const std::string& theirs,
               const std::string& ratio, const std::string& aim) {
    fmt::print("{:<38} {:>10}   {:<22} {:>10} {:>7} {:>9}\n", figure, ours, peer, theirs, ratio, aim);
    std::cout.flush();
}

void printRatio(const std::string& figure, const std::vector<double>& ours, const std::string& peer,
                const std::vector<double>& theirs, const std::string& aim) {
    const double us = Measure::median(ours);
    const double them = Measure::median(theirs);
    printLine(figure, fmt::format("{:.3f} s", us), peer, fmt::format("{:.3f} s", them),
              fmt::format("{:.2f}", us / them), aim);
}

/// Runs both alternately, after one round that only warms the caches.
void compare(const std::string& figure, const std::function<void()>& ours, const std::string& peer,
             const std::function<void()>& theirs, int rounds, const std::string& aim) {
    std::vector<double> us;
    std::vector<double> them;
    for (int round = 0; round <= rounds; ++round) {
        const double our = Measure::seconds(ours);
        const double their = Measure::seconds(theirs);
        if (round == 0) continue;
        us.push_back(our);
        them.push_back(their);
    }
    printRatio(figure, us, peer, them, aim);
}

/// An internal volume and two kinds of drive, below a home folder.
class Machine {
public:
    Machine()
        : m_internal(RealVolume::ext4(m_folder.path(), 12 * gigabyte)),
          m_memoryDrive(RealVolume::memory(m_folder.path(), 8 * gigabyte)),
          m_diskDrive(RealVolume::ext4(m_folder.path(), 12 * gigabyte)) {}

    const fs::path& home() const { return m_folder.path(); }
    const fs::path& internal() const { return m_internal.path(); }
    const fs::path& memoryDrive() const { return m_memoryDrive.path(); }
    const fs::path& diskDrive() const { return m_diskDrive.path(); }

    std::vector<std::string> moveCommand(const fs::path& folder, const fs::path& drive) const {
        return {(ProgramLocation::folder() / "tarvik").native(),
                "--home",
                home().native(),
                "--yes",
                "move",
                "folder",
                folder.native(),
                "--drive",
                drive.native()};
    }

private:
    test::TemporaryFolder m_folder;
    RealVolume m_internal;
    RealVolume m_memoryDrive;
    RealVolume m_diskDrive;
};

/// The moves of a tree that `make` sets up at the given path, by us and by the peer in turn. Every round starts with
/// flushed volumes and an empty drive.
void compareMoves(const Machine& machine, const fs::path& drive, const std::string& figure,
                  const std::function<void(const fs::path&)>& make, int rounds, const std::string& aim,
                  std::int64_t& peakMemory) {
    const fs::path source = machine.internal() / "Tree";
    const auto prepare = [&] {
        fs::remove_all(source);
        for (const auto& name : Files::names(drive)) fs::remove_all(drive / name);
        make(source);
        Files::flushVolume(machine.internal());
        Files::flushVolume(drive);
    };
    std::vector<double> ours;
    std::vector<double> theirs;
    std::vector<double> theirsFlushed;
    for (int round = 0; round < rounds; ++round) {
        prepare();
        const auto run = Measure::program(machine.moveCommand(source, drive));
        ours.push_back(run.seconds);
        peakMemory = std::max(peakMemory, run.peakMemory);
        prepare();
        theirs.push_back(Measure::program({"mv", source.native(), (drive / "Tree").native()}).seconds);
        theirsFlushed.push_back(theirs.back() + Measure::seconds([&] { Files::flushVolume(drive); }));
    }
    printRatio(figure, ours, "mv, nothing proved", theirs, aim);
    printRatio("", ours, "mv, then flushed", theirsFlushed, "");
}

void run(const Sizes& sizes) {
    RealVolume::prepareProcess();
    if (const auto reason = RealVolume::unavailableReason()) throw std::runtime_error(*reason);
    const Machine machine;
    const Host host = Host::thisMachine(machine.home());
    const auto practice = Practice::build(machine.internal() / "practice", {.apps = 0, .files = sizes.files});
    const fs::path tree = practice.home;
    fmt::print("{} files, {} folders, {:.1f} GB, medians of {} rounds; ext4 in image files on the disk\n\n",
               practice.files, practice.folders, static_cast<double>(practice.bytes) / gigabyte, sizes.rounds);
    printLine("figure", "Tarvik", "peer", "", "ratio", "aim");

    {
        const Measure::OneCore oneCore;
        compare(
            "size of the tree, one core", [&] { SizingService::size(host, tree); }, "du -s",
            [&] {
                Measure::program({"du", "-s", tree.native()});
            },
            sizes.rounds, "<= 0.85");
    }
    const auto copyTree = [&](const fs::path& to) { Measure::program({"cp", "-a", tree.native(), to.native()}); };
    const fs::path copy = machine.diskDrive() / "Copy";
    copyTree(copy);
    compare(
        "verification of a copy",
        [&] {
            if (MoveVerifier::failureReason(host, tree, copy)) throw std::runtime_error("the copy is not good");
        },
        "du -s of both sides",
        [&] {
            Measure::program({"du", "-s", tree.native(), copy.native()});
        },
        sizes.rounds, "<= 1.50");

    std::int64_t peakMemory = 0;
    const auto makeBigFile = [](const fs::path& folder) {
        fs::create_directories(folder);
        Measure::program(
            {"dd", "if=/dev/zero", "of=" + (folder / "film").native(), "bs=4M", "count=1024", "status=none"});
    };
    for (const fs::path& drive : {machine.memoryDrive(), machine.diskDrive()}) {
        const std::string kind = drive == machine.diskDrive() ? "ext4 to ext4" : "ext4 to memory";
        compareMoves(machine, drive, "move of the tree, " + kind, copyTree, sizes.rounds, "<= 0.75", peakMemory);
        compareMoves(machine, drive, "move of one 4 GB file, " + kind, makeBigFile, sizes.rounds, "<= 1.05",
                     peakMemory);
    }
    printLine("peak memory of a move", fmt::format("{:.1f} MB", static_cast<double>(peakMemory) / 1e6), "", "", "",
              "<= 48 MB");

    std::vector<double> frames;
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    for (int round = 0; round <= sizes.rounds; ++round) {
        const std::string text = Measure::outputOf({(ProgramLocation::folder() / "tarvik-window").native(), "--root",
                                                    practice.root.native(), "--time-to-first-frame"});
        if (round > 0) frames.push_back(std::strtod(text.c_str(), nullptr));
    }
    printLine("window, start to first frame", fmt::format("{:.0f} ms", Measure::median(frames)), "", "", "", "400 ms");
}

}  // namespace

int main(int argc, char** argv) {
    try {
        Sizes sizes;
        if (argc > 1) sizes.files = std::strtoul(argv[1], nullptr, 10);
        if (argc > 2) sizes.rounds = std::max(1, std::atoi(argv[2]));
        run(sizes);
        return 0;
    } catch (const std::exception& failure) {
        fmt::print(stderr, "{}\n", failure.what());
        return 1;
    }
}
