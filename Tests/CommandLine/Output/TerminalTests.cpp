#include "CommandLine/CommandWorld.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <unistd.h>

namespace tarvik {

namespace {

using test::CommandWorld;
using test::RunningProgram;
using testing::HasSubstr;
using Streams = RunningProgram::Streams;

/// Copies, then waits until the test has ended everything: a copy that is caught in the middle.
constexpr auto endlessDitto = R"(mkdir -p "$3"; echo part > "$3/part"; echo caught > "${0%/*}/caught"; exec sleep 600)";

/// Waits until the copy tool of `world` stands in the middle of its work.
void waitUntilCaught(const CommandWorld& world) {
    const auto sign = world.command.parent_path() / "stand-ins/caught";
    for (int tenths = 0; tenths < 600 && !fs::exists(sign); ++tenths) ::usleep(100000);
    ASSERT_TRUE(fs::exists(sign));
}

}  // namespace

TEST(CommandOnATerminal, AsksAndMovesOnYes) {
    const CommandWorld world;
    RunningProgram program(world.command, world.moveOfLibrary(), Streams::terminal);
    ASSERT_TRUE(program.waitForOutput("Move? [y/N] "));
    EXPECT_FALSE(fs::is_symlink(world.library));
    program.type("y\n");
    const auto finished = program.finish();
    EXPECT_THAT(finished.output, HasSubstr("Move Logic Pro Library.bundle to Studio Drive?"));
    EXPECT_THAT(finished.output, HasSubstr("From " + world.library.native() + "\r\n"));
    EXPECT_THAT(finished.output, HasSubstr("Original location will become a symlink to " + world.moved.native()));
    EXPECT_THAT(finished.output, HasSubstr("Moved Logic Pro Library.bundle to "));
    EXPECT_EQ(finished.status, 0);
    EXPECT_TRUE(fs::is_symlink(world.library));
}

TEST(CommandOnATerminal, ChangesNothingOnAnyOtherAnswer) {
    const CommandWorld world;
    const auto picture = test::pictureOf(world.machine.root);
    for (const auto* answer : {"n\n", "\n", "\x04", "maybe\n", "cancel\n"}) {
        RunningProgram program(world.command, world.moveOfLibrary(), Streams::terminal);
        ASSERT_TRUE(program.waitForOutput("Move? [y/N] "));
        program.type(answer);
        const auto finished = program.finish();
        EXPECT_EQ(finished.status, 1);
        EXPECT_THAT(finished.output, HasSubstr("Cancelled. Nothing was changed."));
    }
    EXPECT_EQ(test::pictureOf(world.machine.root), picture);
}

TEST(CommandOnATerminal, TakesTheButtonsOwnNameForYes) {
    const CommandWorld world;
    ASSERT_EQ(test::runProgram(world.command, world.moveOfLibrary({"--yes"})).status, 0);
    RunningProgram program(world.command, world.onMachine({"move", "restore", world.library.native()}),
                           Streams::terminal);
    ASSERT_TRUE(program.waitForOutput("Move Back? [y/N] "));
    program.type("move back\n");
    EXPECT_EQ(program.finish().status, 0);
    EXPECT_FALSE(fs::is_symlink(world.library));
}

TEST(CommandOnATerminal, EndsAtTheQuestionOnControlC) {
    const CommandWorld world;
    RunningProgram program(world.command, world.moveOfLibrary(), Streams::terminal);
    ASSERT_TRUE(program.waitForOutput("Move? [y/N] "));
    program.type("\x03");
    EXPECT_EQ(program.finish().status, 128 + SIGINT);
    EXPECT_FALSE(fs::is_symlink(world.library));
}

TEST(CommandOnATerminal, ShowsABarOnOneLineAndTakesItOff) {
    const CommandWorld world;
    const auto finished = test::runProgram(world.command, world.moveOfLibrary({"--yes"}), Streams::terminal);
    EXPECT_EQ(finished.status, 0);
    EXPECT_THAT(finished.output, HasSubstr("\r\x1B[Kcopying Logic Pro Library.bundle"));
    EXPECT_THAT(finished.output, HasSubstr("\r\x1B[KMoved Logic Pro Library.bundle to "));
    EXPECT_EQ(finished.output.find('\n'), finished.output.size() - 1) << "the bar must stay on one line";
}

TEST(CommandOnATerminal, ShowsABarWhileAFolderComesBackAndTakesItOff) {
    const CommandWorld world;
    ASSERT_EQ(test::runProgram(world.command, world.moveOfLibrary({"--yes"})).status, 0);
    const auto finished = world.run({"move", "restore", world.library.native(), "--yes"}, Streams::terminal);
    EXPECT_EQ(finished.status, 0);
    EXPECT_THAT(finished.output, testing::ContainsRegex("\r\x1B\\[Kmoving back Logic.*  \\[-+\\]   0 %"));
    EXPECT_THAT(finished.output, testing::EndsWith("\r\x1B[KMoved Logic Pro Library.bundle back to " +
                                                   world.library.native() + ".\r\n"));
    EXPECT_EQ(finished.output.find('\n'), finished.output.size() - 1) << "the bar must stay on one line";
}

TEST(CommandOnASignal, CleansUpWhenACopyIsInterrupted) {
    TARVIK_NEEDS_MADE_TOOLS();
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const CommandWorld world(endlessDitto);
        const auto picture = test::pictureOf(world.library);
        RunningProgram program(world.command, world.moveOfLibrary({"--yes"}));
        waitUntilCaught(world);
        program.signalGroup(signal);
        const auto finished = program.finish();
        EXPECT_EQ(finished.status, 1) << finished.errors;
        EXPECT_THAT(finished.errors, HasSubstr("Copy failed: ditto failed: "));
        EXPECT_EQ(test::pictureOf(world.library), picture);
        EXPECT_FALSE(fs::exists(world.moved)) << "the part of a copy is disposed of";
    }
}

TEST(CommandOnASignal, PassesASignalOnThatReachedItAlone) {
    TARVIK_NEEDS_MADE_TOOLS();
    const CommandWorld world(endlessDitto);
    RunningProgram program(world.command, world.moveOfLibrary({"--yes"}));
    waitUntilCaught(world);
    ::kill(program.process(), SIGTERM);
    EXPECT_EQ(program.finish().status, 1);
    EXPECT_FALSE(fs::exists(world.moved));
    EXPECT_FALSE(fs::is_symlink(world.library));
}

TEST(CommandOnASignal, FinishesWhatTheCopyIsFollowedBy) {
    TARVIK_NEEDS_MADE_TOOLS();
    // The copy is whole, and then the signal comes: from here on the original and the link belong together.
    const CommandWorld world(
        R"(cp -aT "$2" "$3" && trap '' INT TERM HUP && kill -INT $PPID && kill -TERM $PPID && kill -HUP $PPID)");
    const auto picture = test::pictureOf(world.library);
    const auto finished = test::runProgram(world.command, world.moveOfLibrary({"--yes"}));
    EXPECT_EQ(finished.status, 0) << finished.errors;
    EXPECT_EQ(fs::read_symlink(world.library), world.moved);
    EXPECT_EQ(test::pictureOf(world.moved), picture);
}

TEST(CommandOnASignal, StartsNothingMore) {
    TARVIK_NEEDS_MADE_TOOLS();
    const CommandWorld world(R"(cp -aT "$2" "$3" && trap '' INT && kill -INT $PPID)");
    const auto applications = world.machine.root / "Applications";
    const auto moved = test::runProgram(
        world.command,
        world.onMachine({"move", "app", "Tunnel", "Menu Meters", "--no-data", "--drive", "Studio Drive", "--yes"}));
    EXPECT_EQ(moved.status, 1);
    EXPECT_THAT(moved.errors, HasSubstr("Menu Meters: Not started: the command was asked to end.\n"));
    EXPECT_TRUE(fs::is_symlink(applications / "Tunnel.app"));
    EXPECT_FALSE(fs::is_symlink(applications / "Menu Meters.app"));
}

TEST(CommandOnASignal, LetsItsToolsEndOnSignalsAsUsual) {
    TARVIK_NEEDS_MADE_TOOLS();
    const CommandWorld world(R"(kill -PIPE $$; cp -aT "$2" "$3")");
    const auto finished = test::runProgram(world.command, world.moveOfLibrary({"--yes"}));
    EXPECT_EQ(finished.status, 1) << "the tool must not inherit an ignored signal";
    EXPECT_FALSE(fs::is_symlink(world.library));
}

TEST(CommandWithoutAReader, FinishesTheMove) {
    const CommandWorld world;
    const auto picture = test::pictureOf(world.library);
    const auto finished = test::runProgram(world.command, world.moveOfLibrary({"--yes"}), Streams::closedPipes);
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(fs::read_symlink(world.library), world.moved);
    EXPECT_EQ(test::pictureOf(world.moved), picture);
}

TEST(CommandWithoutAReader, FinishesTheMoveWithEveryStreamClosed) {
    TARVIK_NEEDS_MADE_TOOLS();
    const CommandWorld world(R"(cp -aT "$2" "$3")");
    const auto picture = test::pictureOf(world.library);
    EXPECT_EQ(test::runProgram(world.command, world.moveOfLibrary({"--yes"}), Streams::none).status, 1);
    EXPECT_EQ(fs::read_symlink(world.library), world.moved);
    EXPECT_EQ(test::pictureOf(world.moved), picture);
}

TEST(CommandWithoutAReader, SaysWhenResultsCannotBeWritten) {
    const CommandWorld world;
    if (!fs::exists("/dev/full")) TARVIK_SKIP_BECAUSE("this system has no device that is always full");
    for (const auto* format : {"human", "tsv", "toml"}) {
        const auto finished = world.run({"drives", "--format", format}, Streams::fullDisk);
        EXPECT_EQ(finished.status, 1);
        EXPECT_EQ(finished.errors, "Could not write to standard output: No space left on device\n");
    }
}

}  // namespace tarvik
