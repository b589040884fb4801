#include "Platform/Files/FileError.h"
#include "Platform/Processes/ChildProcess.h"
#include "Support/EnvironmentVariable.h"
#include "Support/ReadToEnd.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <pthread.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tarvik {
namespace {

ChildProcess startedShell(const std::string& script) {
    return ChildProcess::start("/bin/sh", {"-c", script});
}

std::string outputOf(const std::string& script) {
    ChildProcess child = startedShell(script);
    return test::readToEnd(child.standardOutput());
}

int errorOfStarting(const fs::path& program, const std::vector<std::string>& arguments = {}) {
    try {
        ChildProcess::start(program, arguments);
    } catch (const FileError& error) {
        return error.code();
    }
    return 0;
}

bool isOurChild(pid_t process) {
    int status = 0;
    return ::waitpid(process, &status, WNOHANG) != -1;
}

TEST(ChildProcess, GivesBothStreamsAndTheExitStatus) {
    ChildProcess child = startedShell("echo out; echo problem >&2; exit 7");
    EXPECT_EQ(test::readToEnd(child.standardOutput()), "out\n");
    EXPECT_EQ(test::readToEnd(child.standardError()), "problem\n");
    EXPECT_EQ(child.wait(), 7);
    EXPECT_EQ(child.wait(), 7);
    EXPECT_EQ(child.poll(), 7);
}

TEST(ChildProcess, PassesArgumentsAsTheyStand) {
    ChildProcess child =
        ChildProcess::start("/bin/sh", {"-c", "printf '%s|' \"$@\"", "sh", "two words", "$HOME;*", "", "\xFF"});
    EXPECT_EQ(test::readToEnd(child.standardOutput()), "two words|$HOME;*||\xFF|");
}

TEST(ChildProcess, InheritsTheEnvironmentButForTheChanges) {
    const test::EnvironmentVariable kept("TARVIK_TEST", "kept");
    const test::EnvironmentVariable longer("TARVIK_TEST_LONGER", "kept too");
    const test::EnvironmentVariable absent("TARVIK_TEST_ABSENT", std::nullopt);
    const auto told = [](const EnvironmentChange& change) {
        ChildProcess child = ChildProcess::start("/bin/sh", {"-c", "set | grep ^TARVIK_TEST | sort"}, change);
        return test::readToEnd(child.standardOutput());
    };
    EXPECT_EQ(told({}), "TARVIK_TEST='kept'\nTARVIK_TEST_LONGER='kept too'\n");
    EXPECT_EQ(told({{"TARVIK_TEST", std::nullopt}}), "TARVIK_TEST_LONGER='kept too'\n");
    EXPECT_EQ(told({{"TARVIK_TEST", "a=b"}, {"TARVIK_TEST_ABSENT", ""}, {"TARVIK_TEST_LONGER", std::nullopt}}),
              "TARVIK_TEST='a=b'\nTARVIK_TEST_ABSENT=''\n");
    EXPECT_STREQ(std::getenv("TARVIK_TEST"), "kept");
}

TEST(ChildProcess, GivesTheNumberOfTheSignalThatEndedIt) {
    ChildProcess child = startedShell("kill -TERM $$");
    EXPECT_EQ(child.wait(), SIGTERM);
}

TEST(ChildProcess, PollsWithoutWaiting) {
    ChildProcess sleeping = startedShell("exec sleep 100");
    EXPECT_EQ(sleeping.poll(), std::nullopt);
    sleeping.terminate();
    EXPECT_EQ(sleeping.wait(), SIGTERM);
    EXPECT_EQ(sleeping.poll(), SIGTERM);
}

TEST(ChildProcess, IsKilledWhenItWillNotListen) {
    ChildProcess child = startedShell("trap '' TERM; echo ready; while :; do sleep 0.01; done");
    char byte = 0;
    ASSERT_EQ(::read(child.standardOutput(), &byte, 1), 1);
    child.terminate();
    child.kill();
    EXPECT_EQ(child.wait(), SIGKILL);
}

TEST(ChildProcess, SaysWhyAProgramCannotBeStarted) {
    const test::TemporaryFolder folder;
    test::makeFile(folder / "plain");
    test::makeFile(folder / "bad format",
                   "\x7F"
                   "ELF rubbish");
    fs::permissions(folder / "bad format", fs::perms::owner_all);

    EXPECT_EQ(errorOfStarting(folder / "missing"), ENOENT);
    EXPECT_EQ(errorOfStarting(folder / "plain"), EACCES);
    EXPECT_EQ(errorOfStarting(folder / "bad format"), ENOEXEC);
    EXPECT_EQ(errorOfStarting(folder.path()), EACCES);
    EXPECT_EQ(errorOfStarting(""), ENOENT);
}

TEST(ChildProcess, DoesNotSearchForAName) {
    EXPECT_EQ(errorOfStarting("sh"), ENOENT);
}

TEST(ChildProcess, RefusesAnArgumentThatWouldArriveCutOff) {
    EXPECT_EQ(errorOfStarting("/bin/echo", {std::string("a\0b", 3)}), EINVAL);
    EXPECT_EQ(errorOfStarting(std::string("/bin/echo\0b", 11)), EINVAL);
}

TEST(ChildProcess, LeavesNoDescriptorOpenWhenStartingFails) {
    const int before = ::dup(STDIN_FILENO);
    ::close(before);
    for (int attempt = 0; attempt < 3; ++attempt) errorOfStarting("/missing/program");
    const int after = ::dup(STDIN_FILENO);
    ::close(after);
    EXPECT_EQ(after, before);
}

TEST(ChildProcess, PassesNoDescriptorButTheStandardStreams) {
    const FileDescriptor inheritable(::open("/dev/null", O_RDONLY));
    ASSERT_GE(inheritable.get(), 3);
    const auto isOpen = "if true <&" + std::to_string(inheritable.get()) + "; then echo open; else echo closed; fi";
    EXPECT_EQ(outputOf("(" + isOpen + ") 2>/dev/null"), "closed\n");
}

TEST(ChildProcess, EndsItsStreamsThoughAnotherChildStartedMeanwhileStillRuns) {
    ChildProcess first = startedShell("echo first");
    ChildProcess second = startedShell("exec sleep 100");
    EXPECT_EQ(test::readToEnd(first.standardOutput()), "first\n");
    EXPECT_EQ(second.poll(), std::nullopt);
}

TEST(ChildProcess, StartsWithOrdinarySignals) {
    sigset_t blocked;
    sigset_t previous;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &previous);
    const auto previousPipeHandler = std::signal(SIGPIPE, SIG_IGN);
    ChildProcess blockedParent = startedShell("kill -TERM $$; echo survived");
    ChildProcess ignoringParent = startedShell("kill -PIPE $$; echo survived");
    std::signal(SIGPIPE, previousPipeHandler);
    ::pthread_sigmask(SIG_SETMASK, &previous, nullptr);

    EXPECT_EQ(blockedParent.wait(), SIGTERM);
    EXPECT_EQ(ignoringParent.wait(), SIGPIPE);
}

TEST(ChildProcess, StartsWhenThisProcessHasNoStandardStreams) {
    EXPECT_EXIT(
        {
            for (int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::close(stream);
            ChildProcess child = startedShell("(true 3<&0) 2>/dev/null && echo input; echo out; echo problem >&2");
            const bool right = test::readToEnd(child.standardOutput()) == "out\n" &&
                               test::readToEnd(child.standardError()) == "problem\n";
            ::_exit(right ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(ChildProcess, IsKilledAndWaitedForAtTheEndOfItsLife) {
    pid_t process = 0;
    {
        ChildProcess child = startedShell("echo $$; exec sleep 100");
        std::string number;
        for (char byte = 0; ::read(child.standardOutput(), &byte, 1) == 1 && byte != '\n';) number += byte;
        process = std::stoi(number);
        ASSERT_TRUE(isOurChild(process));
    }
    EXPECT_FALSE(isOurChild(process));
}

TEST(ChildProcess, MovesToAnotherName) {
    ChildProcess child = startedShell("echo moved; exit 3");
    ChildProcess other = std::move(child);
    EXPECT_EQ(test::readToEnd(other.standardOutput()), "moved\n");
    EXPECT_EQ(other.wait(), 3);
    other = startedShell("exit 4");
    EXPECT_EQ(other.wait(), 4);
}

TEST(ChildProcess, NeverTakesALostStatusForSuccess) {
    EXPECT_EXIT(
        {
            std::signal(SIGCHLD, SIG_IGN);
            ChildProcess child = startedShell("exit 0");
            ::_exit(child.wait() != 0 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace tarvik
