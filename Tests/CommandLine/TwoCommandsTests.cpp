// Two commands that do the same at the same moment: one of them does it, the other one says so, and nothing is lost.
#include "CommandLine/CommandWorld.h"
#include "CommandLine/Lines.h"
#include "Platform/Machine/ToolTable.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace tarvik {

namespace {

using test::CommandWorld;
using test::RunningProgram;
using testing::HasSubstr;

/// The copy tool of this build, which waits beside itself until it may begin.
std::string waitingDitto() {
    return "here=$(dirname \"$0\"); touch \"$here/begun-$$\"; turns=0\n"
           "until [ -e \"$here/go\" ]; do turns=$((turns+1)); [ $turns -lt 6000 ] || exit 99; sleep 0.01; done\n"
           "exec '" +
           systemTools().ditto.native() + "' \"$@\"";
}

/// A practice machine with a drive that is a real volume, and one application with data.
struct TwoCommandsWorld : CommandWorld {
    TwoCommandsWorld() : CommandWorld(waitingDitto()) {
        for (const auto& item : items()) pictures.push_back(test::pictureOf(item));
    }

    std::vector<fs::path> items() const {
        return {machine.root / "Applications/Full House.app", machine.home / ".fullhouse"};
    }
    std::vector<std::string> move() const {
        return onMachine({"move", "app", "Full House", "--drive", volume.path(), "--yes"});
    }
    std::vector<std::string> restore() const {
        return onMachine({"move", "restore", "Full House", items()[1], "--yes"});
    }

    void holdBack() const {
        for (const auto& entry : fs::directory_iterator(folder / "programs/stand-ins"))
            if (entry.path().filename() != "ditto") fs::remove(entry);
    }
    void letGo() const { test::makeFile(folder / "programs/stand-ins/go"); }
    /// Waits until so many copies have begun.
    void waitForCopies(std::size_t count) const {
        for (int turn = 0; turn < 6000; ++turn) {
            std::size_t begun = 0;
            for (const auto& entry : fs::directory_iterator(folder / "programs/stand-ins"))
                begun += entry.path().filename().native().starts_with("begun-") ? 1 : 0;
            if (begun >= count) return;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        FAIL() << "no copy has begun";
    }

    /// Everything is whole where it belongs, and nothing else was left beside it.
    void expectAt(bool isMoved) const {
        for (std::size_t index = 0; index < pictures.size(); ++index) {
            const fs::path item = items()[index];
            SCOPED_TRACE(item);
            EXPECT_EQ(fs::is_symlink(item), isMoved);
            EXPECT_EQ(test::pictureOf(fs::canonical(item)), pictures[index]);
            EXPECT_EQ(fs::canonical(item).native().starts_with(volume.path().native()), isMoved);
            for (const auto& around : {item.parent_path(), fs::canonical(item).parent_path()})
                for (const auto& entry : fs::directory_iterator(around))
                    EXPECT_THAT(entry.path().filename().native(), testing::Not(testing::StartsWith(".tarvik-")));
        }
        for (const auto* place : {"Apps/Full House.app", "Data/.fullhouse"})
            EXPECT_EQ(fs::exists(volume.path() / "ExternalTarvik" / place), isMoved) << place;
    }

    test::RealVolume volume = test::RealVolume::memory(machine.root / "Volumes", 30'000'000);
    std::vector<std::string> pictures;
};

/// Ends both commands. @returns what both have said.
std::string finishBoth(RunningProgram& first, RunningProgram& second) {
    const auto one = first.finish();
    const auto other = second.finish();
    return one.errors + other.errors;
}

}  // namespace

TEST(TwoCommands, MoveAnApplicationOnce) {
    TARVIK_NEEDS_MADE_TOOLS();
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TwoCommandsWorld world;
    RunningProgram first(world.command, world.move());
    world.waitForCopies(1);
    RunningProgram second(world.command, world.move());
    // It cannot have the bundle, which the copy tool of the first has in its arguments, and goes on with the data.
    world.waitForCopies(2);
    world.letGo();
    const auto other = second.finish();
    EXPECT_EQ(other.status, 1);
    EXPECT_THAT(other.errors, HasSubstr("Full House: App is running: Full House.app."));
    first.finish();
    world.expectAt(true);
}

TEST(TwoCommands, BringAnApplicationBackOnce) {
    TARVIK_NEEDS_MADE_TOOLS();
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TwoCommandsWorld world;
    world.letGo();
    ASSERT_EQ(test::runProgram(world.command, world.move()).status, 0);
    world.holdBack();
    RunningProgram first(world.command, world.restore());
    world.waitForCopies(1);
    const auto app = world.items()[0];
    const auto other = world.run({"move", "restore", app, "--yes"});
    EXPECT_EQ(other.status, 1);
    EXPECT_EQ(other.errors, "moving back\nFull House.app is being moved back already.\n");
    world.letGo();
    EXPECT_EQ(first.finish().status, 0);
    world.expectAt(false);
    const auto late = world.run({"move", "restore", app, "--yes"});
    EXPECT_EQ(late.errors, "Full House.app is not a symlink, so there is nothing to move back.\n");
}

TEST(TwoCommands, LoseNothingHoweverTheyMeet) {
    TARVIK_NEEDS_MADE_TOOLS();
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TwoCommandsWorld world;
    world.letGo();
    for (int round = 0; round < 6; ++round) {
        for (const bool isMove : {true, false}) {
            const auto arguments = isMove ? world.move() : world.restore();
            RunningProgram first(world.command, arguments);
            std::this_thread::sleep_for(std::chrono::milliseconds(15 * round));
            RunningProgram second(world.command, arguments);
            SCOPED_TRACE(std::to_string(round) + "\n" + finishBoth(first, second));
            world.expectAt(isMove);
            if (testing::Test::HasFailure()) return;
        }
    }
}

TEST(TwoCommands, AreBothRemembered) {
    const CommandWorld world;
    const fs::path manifest = world.machine.home / "Library/Application Support/Tarvik/health-manifest.json";
    for (int round = 0; round < 5; ++round) {
        std::vector<std::string> folders;
        for (const auto* name : {"First", "Second"}) {
            folders.push_back(world.machine.home / (name + std::to_string(round)));
            test::makeFile(fs::path(folders.back()) / "file");
        }
        const auto moveOf = [&](const std::string& folder) {
            return world.onMachine({"move", "folder", folder, "--drive", "Studio Drive", "--yes"});
        };
        RunningProgram first(world.command, moveOf(folders[0]));
        RunningProgram second(world.command, moveOf(folders[1]));
        finishBoth(first, second);
        for (const auto& folder : folders) EXPECT_THAT(test::contentOf(manifest), HasSubstr(folder));
    }
}

}  // namespace tarvik
