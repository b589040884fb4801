#include "Moves.h"

#include "Copying/MoveVerifier.h"
#include "Measure.h"
#include "Platform/Bundles/RunningAppsDetector.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/Host.h"
#include "Platform/Processes/ProgramLocation.h"
#include "Platform/Storage/SizingService.h"
#include "Practice/PracticeMachine.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Table.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <regex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik::Moves {

namespace {

using test::RealVolume;

constexpr std::int64_t gigabyte = 1'000'000'000;

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
    Table::ratio(figure, ours, "mv, nothing proved", theirs, aim);
    Table::ratio("", ours, "mv, then flushed", theirsFlushed, "");
}

/// Lines of a busy machine's process list: a third of them are applications, some of which name their program twice.
std::vector<std::string> processLines() {
    constexpr int count = 2000;
    std::vector<std::string> lines;
    for (int number = 0; number < count; ++number) {
        const std::string app = fmt::format("/Applications/Some Editor {}.app", number);
        const std::string program = app + "/Contents/MacOS/Some Editor";
        lines.push_back(number % 3 == 0 ? program + " " + program + " --type=renderer --enable-features=a,b,c"
                        : number % 3 == 1
                            ? fmt::format("/usr/libexec/daemon{0} /usr/libexec/daemon{0} -x /var/db", number)
                            : fmt::format("worker{0} /opt/tools/lib/worker{0} --config=\"/etc/a\"", number));
    }
    return lines;
}

/// How long it takes to find the bundles that the lines of a process list name.
void compareProcessLines(int rounds) {
    const auto lines = processLines();
    const std::vector<std::string_view> views(lines.begin(), lines.end());
    const std::regex expression(R"((/[^"\n]+?\.app)(?:/Contents/|\s|$))");
    std::size_t found = 0;
    Table::compare(
        "bundles in 2,000 process lines", [&] { found += RunningAppsDetector::bundlePathsIn(views).size(); },
        "std::regex",
        [&] {
            for (const auto& line : lines)
                found += static_cast<std::size_t>(
                    std::distance(std::sregex_iterator(line.begin(), line.end(), expression), {}));
        },
        rounds, "10 ms");
    if (found == 0) throw std::runtime_error("no bundle was found");
}

}  // namespace

void measure(std::size_t files, int rounds) {
    const Machine machine;
    const Host host = Host::thisMachine(machine.home());
    const auto practice =
        Practice::build(machine.internal() / "practice", {.apps = 0, .specialApps = false, .files = files});
    const fs::path tree = practice.home;
    Table::heading(fmt::format("{} files, {} folders, {:.1f} GB, medians of {} rounds; ext4 in image files on the disk",
                               practice.files, practice.folders, static_cast<double>(practice.bytes) / gigabyte,
                               rounds));

    {
        const Measure::OneCore oneCore;
        Table::compare(
            "size of the tree, one core", [&] { SizingService::size(host, tree); }, "du -s",
            [&] {
                Measure::program({"du", "-s", tree.native()});
            },
            rounds, "<= 0.85");
    }
    compareProcessLines(rounds);
    const auto copyTree = [&](const fs::path& to) { Measure::program({"cp", "-a", tree.native(), to.native()}); };
    const fs::path copy = machine.diskDrive() / "Copy";
    copyTree(copy);
    Table::compare(
        "verification of a copy",
        [&] {
            if (MoveVerifier::failureReason(host, tree, copy)) throw std::runtime_error("the copy is not good");
        },
        "du -s of both sides",
        [&] {
            Measure::program({"du", "-s", tree.native(), copy.native()});
        },
        rounds, "<= 1.50");

    std::int64_t peakMemory = 0;
    const auto makeBigFile = [](const fs::path& folder) {
        fs::create_directories(folder);
        Measure::program(
            {"dd", "if=/dev/zero", "of=" + (folder / "film").native(), "bs=4M", "count=1024", "status=none"});
    };
    for (const fs::path& drive : {machine.memoryDrive(), machine.diskDrive()}) {
        const std::string kind = drive == machine.diskDrive() ? "ext4 to ext4" : "ext4 to memory";
        compareMoves(machine, drive, "move of the tree, " + kind, copyTree, rounds, "<= 0.75", peakMemory);
        compareMoves(machine, drive, "move of one 4 GB file, " + kind, makeBigFile, rounds, "<= 1.05", peakMemory);
    }
    Table::line("peak memory of a move", fmt::format("{:.1f} MB", static_cast<double>(peakMemory) / 1e6), "", "", "",
                "<= 48 MB");
}

}  // namespace tarvik::Moves
