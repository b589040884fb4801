#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/Files.h"
#include "Platform/Processes/ChildProcess.h"
#include "Platform/Processes/CommandRunner.h"
#include "Platform/Processes/ProcessTable.h"
#include "Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <limits>
#include <string>
#include <sys/file.h>
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

TEST(CommandRunner, ACancelledQuestionEndsTheToolAtOnce) {
    const test::TemporaryFolder folder;
    const fs::path ready = folder / "ready";
    const Cancellation cancellation;
    std::thread user([&] {
        while (!Files::exists(ready)) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        cancellation.cancel();
    });
    const std::string script =
        fmt::format("trap '' TERM; echo $$ >{0}.pid; mv {0}.pid {0}; exec sleep 100", ready.native());
    const auto result = CommandRunner::ask("/bin/sh", {"-c", script}, {Seconds(100), cancellation});
    user.join();
    EXPECT_EQ(result, (CommandResult{SIGKILL, "", "", true}));
    EXPECT_EQ(::kill(std::stoi(Files::read(ready)), 0), -1) << "it runs still, or nobody has waited for it";
    EXPECT_TRUE(CommandRunner::ask("/bin/echo", {"x"}, {Seconds(100), cancellation}).timedOut);
}

TEST(CommandRunner, AToolMayRunUntilItIsCancelled) {
    const Cancellation cancellation;
    const auto run = [&](const std::string& script) {
        return CommandRunner::runUntil("/bin/sh", {"-c", script}, cancellation, 3);
    };
    EXPECT_EQ(run("echo 12345; echo x >&2; exit 7"), (CommandResult{7, "12", "x\n", false}));
    EXPECT_EQ(CommandRunner::runUntil("/missing/tool", {}, cancellation).status, CommandResult::notLaunched);
    cancellation.cancel();
    EXPECT_EQ(run("exit 0"), (CommandResult{CommandResult::notLaunched, "", "", true}));
}

TEST(CommandRunner, ACancelledToolEndsWithAllThatItHasStarted) {
    // The one ends when it is asked to, the other must be killed; the tool itself ends at once and leaves both.
    const test::TemporaryFolder folder;
    const Cancellation cancellation;
    std::thread user([&] {
        while (!Files::exists(folder / "polite.pid") || !Files::exists(folder / "deaf.pid"))
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        cancellation.cancel();
    });
    const auto shellOf = [&](const std::string& name, const std::string& first) {
        return fmt::format("sh -c '{0} echo $$ >{1}; mv {1} {1}.pid; while :; do sleep 0.05; done' & ", first,
                           (folder / name).native());
    };
    const auto result = CommandRunner::runUntil(
        "/bin/sh", {"-c", shellOf("polite", "") + shellOf("deaf", "trap \"\" TERM;") + "wait"}, cancellation);
    user.join();
    EXPECT_EQ(result, (CommandResult{SIGTERM, "", "", true}));
    for (const char* name : {"polite.pid", "deaf.pid"})
        while (!ProcessTable::programOf(std::stoi(Files::read(folder / name))).empty())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

TEST(CommandRunner, AnAnswerIsNoLongerThanWanted) {
    const auto asked = [](const std::string& script, std::size_t most) {
        return CommandRunner::ask("/bin/sh", {"-c", script}, {.limit = Seconds(100), .mostOutput = most});
    };
    const auto flood = asked("yes | head -c 100000000; yes n | head -c 100000000 >&2; exit 3", 1000);
    EXPECT_EQ(flood.status, 3);
    EXPECT_TRUE(flood.stdout.starts_with("y\ny\n") && flood.stderr.starts_with("n\nn\n"));
    EXPECT_LE(std::max(flood.stdout.size(), flood.stderr.size()), 1000U);
    EXPECT_GE(std::min(flood.stdout.size(), flood.stderr.size()), 990U);
    EXPECT_EQ(asked("printf '\\303\\251\\303\\251\\303\\251'", 5).stdout, "\u00E9\u00E9") << "whole characters";
    EXPECT_EQ(asked("printf '\\303\\251'", 2).stdout, "\u00E9");
}

TEST(CommandRunner, AQuestionWaitsForNoProcessLeftBehind) {
    const auto start = steady_clock::now();
    CommandResult result;
    for (double limit = 0.2; limit < 50; limit *= 2) {
        result = CommandRunner::ask("/bin/sh", {"-c", "sleep 100 & echo early"}, {Seconds(limit)});
        if (!result.timedOut) break;
    }
    EXPECT_EQ(result, (CommandResult{0, "early\n", "", false}));
    EXPECT_LT(steady_clock::now() - start, Seconds(100));
}

TEST(CommandRunner, AQuestionHasItsLimit) {
    EXPECT_EQ(CommandRunner::ask("/bin/sleep", {"100"}, {Seconds(0)}), (CommandResult{SIGTERM, "", "", true}));
    EXPECT_EQ(CommandRunner::ask("/missing/tool", {}, {Seconds(0)}).status, CommandResult::notLaunched);
    EXPECT_EQ(CommandRunner::ask("/bin/echo", {"x"}, {Seconds(100)}), (CommandResult{0, "x\n", "", false}));
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

TEST(CommandRunner, LetsAToolWriteToWhatIsOpen) {
    const test::TemporaryFolder folder;
    const FileDescriptor file(::open((folder / "file").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    const auto result = CommandRunner::runWritingTo(file, "/bin/sh", {"-c", "echo answer; echo problem >&2; exit 3"});
    EXPECT_EQ(result, (CommandResult{3, "", "problem\n", false}));
    EXPECT_EQ(Files::read(folder / "file"), "answer\n");
    EXPECT_EQ(CommandRunner::runWritingTo(file, folder / "none", {}).status, CommandResult::notLaunched);
}

TEST(CommandRunner, LeavesALockWithTheToolForAsLongAsItRuns) {
    const test::TemporaryFolder folder;
    const fs::path path = folder / "file";
    FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    ASSERT_EQ(::flock(file.get(), LOCK_SH | LOCK_NB), 0);
    const auto isLocked = [&] {
        const FileDescriptor other(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
        return ::flock(other.get(), LOCK_EX | LOCK_NB) != 0;
    };
    {
        ChildProcess child = ChildProcess::startWritingTo(file, "/bin/sh", {"-c", "exec sleep 600"});
        file.close();
        EXPECT_EQ(child.standardOutput(), -1);
        EXPECT_TRUE(isLocked());
    }
    EXPECT_FALSE(isLocked());
}

}  // namespace
}  // namespace tarvik
