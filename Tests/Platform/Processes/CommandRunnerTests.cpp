#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"
#include "Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <limits>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tarvik {
namespace {

using Seconds = std::chrono::duration<double>;
using std::chrono::steady_clock;

CommandResult shell(const std::string& script, std::optional<Seconds> timeout = std::nullopt) {
    return CommandRunner::run("/bin/sh", {"-c", script}, timeout);
}

/// Runs a script with longer and longer limits until it was quick enough to make the file `ready` in its working folder
/// within one, so that a slow machine changes nothing. It begins anew each time, in an empty folder.
CommandResult shellThatGetsReady(const std::string& script) {
    CommandResult result;
    for (double limit = 0.2; limit < 60; limit *= 2) {
        const test::TemporaryFolder folder;
        result = shell("cd '" + folder.path().native() + "'; " + script, Seconds(limit));
        if (Files::exists(folder / "ready")) break;
    }
    return result;
}

/// "1\n2\n...", each number padded to 500 digits: far more than a pipe holds.
std::string manyLines() {
    std::string lines;
    for (int number = 1; number <= 2000; ++number) lines += fmt::format("{:0500}\n", number);
    return lines;
}

const std::string printManyLines =
    "i=1; while [ $i -le 2000 ]; do printf '%0500d\\n' $i; printf '%0500d\\n' $i >&2; i=$((i+1)); done";

TEST(CommandResult, SucceedsOnlyWithStatusZeroInTime) {
    EXPECT_TRUE((CommandResult{0, "", "", false}).succeeded());
    EXPECT_FALSE((CommandResult{1, "", "", false}).succeeded());
    EXPECT_FALSE((CommandResult{0, "", "", true}).succeeded());
}

TEST(CommandRunner, GathersBothStreamsAndTheStatus) {
    for (const auto timeout : {std::optional<Seconds>(), std::optional<Seconds>(60.0)})
        EXPECT_EQ(shell("echo out; echo problem >&2; exit 3", timeout),
                  (CommandResult{3, "out\n", "problem\n", false}));
}

TEST(CommandRunner, PutsNoShellBetween) {
    EXPECT_EQ(CommandRunner::run("/bin/echo", {"$HOME", "a  b", "*"}).stdout, "$HOME a  b *\n");
}

TEST(CommandRunner, AToolThatCannotBeLaunchedGives127AndTheReason) {
    const auto result = CommandRunner::run("/missing/tool", {"argument"});
    EXPECT_EQ(result, (CommandResult{127, "", "Could not start /missing/tool: No such file or directory", false}));
    EXPECT_FALSE(result.succeeded());
    EXPECT_EQ(CommandRunner::run("/missing/tool", {}, Seconds(0)).timedOut, false);
}

TEST(CommandRunner, GivesTheSignalThatEndedTheTool) {
    EXPECT_EQ(shell("kill -KILL $$"), (CommandResult{SIGKILL, "", "", false}));
}

TEST(CommandRunner, ALimitOfZeroStopsTheToolAtOnce) {
    const auto start = steady_clock::now();
    EXPECT_EQ(CommandRunner::run("/bin/sleep", {"100"}, Seconds(0)), (CommandResult{SIGTERM, "", "", true}));
    EXPECT_LT(steady_clock::now() - start, Seconds(50));
}

TEST(CommandRunner, ANegativeLimitIsOverAtOnce) {
    EXPECT_TRUE(CommandRunner::run("/bin/sleep", {"100"}, Seconds(-1)).timedOut);
}

TEST(CommandRunner, AnEndlessLimitIsNone) {
    const auto result = shell("sleep 0.1; echo done", Seconds(std::numeric_limits<double>::infinity()));
    EXPECT_EQ(result, (CommandResult{0, "done\n", "", false}));
}

TEST(CommandRunner, AToolThatIsSeenEndedAfterTheLimitIsInTime) {
    // A process that is stopped until the limit has passed looks at the tool too late, and finds it ended. The helper
    // learns from the end of the fifo that the tool has gone. A tool that is too slow to stop it gets more time.
    const auto isSeenLateAndInTime = [](double limit) {
        const test::TemporaryFolder folder;
        const std::string script = fmt::format(
            "cd {}; mkfifo gone; (exec >/dev/null 2>&1 <gone; read line; sleep {}; "
            "kill -CONT $PPID) & exec 9>gone; kill -STOP $PPID",
            folder.path().native(), limit * 1.2);
        const auto start = steady_clock::now();
        const auto result = shell(script, Seconds(limit));
        return steady_clock::now() - start > Seconds(limit) && result.succeeded();
    };
    EXPECT_EXIT(
        {
            double limit = 0.5;
            while (limit < 10 && !isSeenLateAndInTime(limit)) limit *= 2;
            ::_exit(limit < 10 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(CommandRunner, AToolThatEndsWellWhenAskedToStopHasStillFailed) {
    const auto result = shellThatGetsReady("trap 'echo stopping; exit 0' TERM; : >ready; while :; do sleep 0.01; done");
    EXPECT_EQ(result, (CommandResult{0, "stopping\n", "", true}));
    EXPECT_FALSE(result.succeeded());
}

TEST(CommandRunner, AToolThatWillNotListenIsKilledTwoSecondsLater) {
    const auto previous = std::signal(SIGTERM, SIG_IGN);  // The tool inherits that.
    const auto start = steady_clock::now();
    const auto result = CommandRunner::run("/bin/sleep", {"100"}, Seconds(0));
    const auto elapsed = steady_clock::now() - start;
    std::signal(SIGTERM, previous);
    EXPECT_EQ(result, (CommandResult{SIGKILL, "", "", true}));
    EXPECT_GE(elapsed, Seconds(2));
}

TEST(CommandRunner, KeepsWhatAStoppedToolHadPrinted) {
    EXPECT_EQ(shellThatGetsReady("echo begun; : >ready; exec sleep 100"),
              (CommandResult{SIGTERM, "begun\n", "", true}));
}

TEST(CommandRunner, GivesNoTextForBytesThatAreNoUtf8) {
    EXPECT_EQ(shell("printf 'good\\377'; echo fine >&2; exit 4"), (CommandResult{4, "", "fine\n", false}));
    EXPECT_EQ(shell("printf 'caf\\303\\251'").stdout, "caf\u00E9");
}

TEST(CommandRunner, AllOfAFloodOnBothStreamsArrivesInOrder) {
    const std::string lines = manyLines();
    for (const auto timeout : {std::optional<Seconds>(), std::optional<Seconds>(60.0)})
        EXPECT_TRUE(shell(printManyLines, timeout) == (CommandResult{0, lines, lines, false}));
}

TEST(CommandRunner, WaitsForAProcessLeftBehindThatHoldsThePipes) {
    const std::string script = "(sleep 0.2; echo late; echo problem >&2) & echo early";
    EXPECT_EQ(shell(script), (CommandResult{0, "early\nlate\n", "problem\n", false}));
}

TEST(CommandRunner, TheLimitDoesNotCoverAProcessLeftBehind) {
    // The process that is left behind ends when the limit, which the tool has kept, is long over.
    CommandResult result;
    for (double limit = 0.2; limit < 10; limit *= 2) {
        result = shell(fmt::format("(sleep {}; echo late) & echo early", limit * 1.5), Seconds(limit));
        if (!result.timedOut) break;
    }
    EXPECT_EQ(result, (CommandResult{0, "early\nlate\n", "", false}));
}

TEST(CommandRunner, DrainsAfterAStoppedToolToo) {
    // The process that is left behind learns from the end of the fifo that the tool has been stopped.
    EXPECT_EQ(shellThatGetsReady("mkfifo gone; (exec <gone; read line; echo late) & exec 9>gone; : >ready; "
                                 "exec sleep 100"),
              (CommandResult{SIGTERM, "late\n", "", true}));
}

TEST(CommandRunner, WaitsForAToolThatClosesItsStreamsEarly) {
    for (const auto timeout : {std::optional<Seconds>(), std::optional<Seconds>(60.0)})
        EXPECT_EQ(shell("echo out; exec >&- 2>&-; sleep 0.2; exit 5", timeout), (CommandResult{5, "out\n", "", false}));
}

TEST(CommandRunner, RunsManyToolsAtOnceWithoutMixingThem) {
    constexpr int toolCount = 16;
    std::vector<CommandResult> results(toolCount);
    std::vector<std::thread> threads;
    for (int tool = 0; tool < toolCount; ++tool)
        threads.emplace_back([tool, &results] { results[tool] = shell(fmt::format("echo {0}; exit {0}", tool)); });
    for (auto& thread : threads) thread.join();
    for (int tool = 0; tool < toolCount; ++tool)
        EXPECT_EQ(results[tool], (CommandResult{tool, fmt::format("{}\n", tool), "", false}));
}

}  // namespace
}  // namespace tarvik
