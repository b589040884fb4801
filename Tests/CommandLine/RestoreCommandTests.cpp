#include "CommandLine/CommandWorld.h"
#include "CommandLine/Lines.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {

namespace {

using test::columnOf;
using test::CommandWorld;
using test::linesOf;
using testing::ElementsAre;
using testing::HasSubstr;

/// A practice machine of which the library and one application have been moved.
struct RestoreWorld : CommandWorld {
    RestoreWorld() {
        EXPECT_EQ(run({"move", "app", "Tunnel", "--drive", "Studio Drive", "--yes"}).status, 0);
        EXPECT_EQ(test::runProgram(command, moveOfLibrary({"--yes"})).status, 0);
    }

    fs::path tunnel = machine.root / "Applications/Tunnel.app";
};

}  // namespace

TEST(RestoreCommand, BringsBackTheRestWhenOneCannotComeBack) {
    const RestoreWorld world;
    const auto back = world.run({"move", "restore", "Full House", world.library, "Tunnel", "--yes"});
    EXPECT_EQ(back.status, 1);
    EXPECT_THAT(linesOf(back.errors), testing::IsSupersetOf({"Full House: No symlink found for Full House.",
                                                             "Move back completed with 1 failure."}));
    EXPECT_FALSE(fs::is_symlink(world.library));
    EXPECT_FALSE(fs::is_symlink(world.tunnel));
}

TEST(RestoreCommand, BringsBackTheFolderOfAnApplicationThatIsNamedByItsPath) {
    const CommandWorld world;
    const auto suite = world.machine.root / "Applications/Linked Suite";
    const auto back = world.run({"move", "restore", suite / "Inside.app", "--yes"});
    EXPECT_EQ(back.status, 0) << back.errors;
    EXPECT_FALSE(fs::is_symlink(suite));
    EXPECT_TRUE(fs::is_directory(suite / "Inside.app"));
}

TEST(RestoreCommand, HasARecordForEachThatWasNamed) {
    const RestoreWorld world;
    const std::vector<std::string> names = {"move", "restore", "Full House", world.library, "--format", "tsv"};
    // There is nobody to ask.
    const auto refused = world.run(names);
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(columnOf(refused.output, "status"), ElementsAre("failed", "failed"));
    EXPECT_TRUE(fs::is_symlink(world.library));

    auto agreed = names;
    agreed.emplace_back("--yes");
    const auto back = world.run(agreed);
    EXPECT_EQ(back.status, 1);
    EXPECT_THAT(columnOf(back.output, "status"), ElementsAre("failed", "done"));
}

TEST(RestoreCommand, TellsOfEachInTheOrderInWhichTheyWereNamed) {
    const RestoreWorld world;
    const auto back = world.run({"move", "restore", world.library, "Full House", "--format", "tsv", "--yes"});
    EXPECT_THAT(columnOf(back.output, "status"), ElementsAre("done", "failed"));
}

TEST(RestoreCommand, SaysInItsQuestionWhatCannotComeBack) {
    const RestoreWorld world;
    test::RunningProgram program(world.command,
                                 world.onMachine({"move", "restore", "Full House", world.library.native()}),
                                 test::RunningProgram::Streams::terminal);
    EXPECT_TRUE(program.waitForOutput("Move Logic Pro Library.bundle back?"));
    EXPECT_TRUE(program.waitForOutput("No symlink found for Full House."));
    program.type("y\n");
    EXPECT_EQ(program.finish().status, 1);
    EXPECT_FALSE(fs::is_symlink(world.library));
}

}  // namespace tarvik
