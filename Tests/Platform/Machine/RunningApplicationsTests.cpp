#include "Platform/Bundles/RunningBundle.h"
#include "Platform/Machine/RunningApplications.h"
#include "Platform/Processes/ProcessTable.h"
#include "Platform/Processes/ProgramLocation.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <unistd.h>

namespace tarvik {
namespace {

using test::makeScript;
using test::runSleeperIn;
using test::runStubbornSleeperIn;
using test::TemporaryFolder;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

/// The processes that run from inside the bundles of a folder.
std::vector<RunningApplication> runningIn(const fs::path& folder) {
    return makeProcessTableApplications({folder})->running();
}

std::vector<fs::path> bundlesRunningIn(const fs::path& folder) {
    std::vector<fs::path> bundles;
    for (const auto& application : runningIn(folder)) bundles.push_back(application.bundlePath);
    return bundles;
}

TEST(RunningApplications, AProcessBelongsToTheBundleThatItRunsFrom) {
    TARVIK_NEEDS_NAMES_OF_ANY_BYTES();
    const TemporaryFolder folder;
    EXPECT_THAT(runningIn(folder.path()), IsEmpty());
    const ChildProcess program = runSleeperIn(folder / "My Grüße\xFF.app");
    EXPECT_THAT(bundlesRunningIn(folder.path()), ElementsAre(folder / "My Grüße\xFF.app"));
}

TEST(RunningApplications, AProcessBelongsToEachOfNestedBundles) {
    const TemporaryFolder folder;
    const fs::path outer = folder / "Outer.app";
    const fs::path inner = outer / "Contents/Helpers/Inner.app";
    const ChildProcess program = runSleeperIn(inner);
    EXPECT_THAT(bundlesRunningIn(folder.path()), UnorderedElementsAre(outer, inner));
}

TEST(RunningApplications, TellTheBundlesOfAllProcesses) {
    const TemporaryFolder folder;
    const fs::path outer = folder / "Outer.app";
    // As applications of another system's devices lie in theirs: not in "Contents".
    const fs::path inner = outer / "Wrapper/Inner.app";
    const auto inUse = [&] { return makeProcessTableApplications({folder.path()})->bundlesInUse(); };
    EXPECT_THAT(inUse(), IsEmpty());
    const ChildProcess program = runSleeperIn(inner);
    EXPECT_THAT(inUse(), UnorderedElementsAre(outer, inner));
    EXPECT_THAT(makeProcessTableApplications({folder / "elsewhere"})->bundlesInUse(), IsEmpty());
    EXPECT_THAT(makeProcessTableApplications({})->bundlesInUse(), Contains(inner));
}

TEST(RunningApplications, OnlyBundlesInTheGivenFoldersCount) {
    const TemporaryFolder folder;
    const ChildProcess outside = runSleeperIn(folder / "outside/One.app");
    const ChildProcess inside = runSleeperIn(folder / "inside/Two.app");
    EXPECT_THAT(bundlesRunningIn(folder / "inside"), ElementsAre(folder / "inside/Two.app"));
    EXPECT_THAT(makeProcessTableApplications({folder / "inside", folder / "outside"})->running(), testing::SizeIs(2));
}

TEST(RunningApplications, AProgramOutsideOfBundlesIsNone) {
    const TemporaryFolder folder;
    test::makeSleeper(folder / "plain/sleeper");
    test::makeSleeper(folder / "Sleeper.app");  // A file that is only named like a bundle.
    const ChildProcess plain = ChildProcess::start(folder / "plain/sleeper", {"100"});
    const ChildProcess file = ChildProcess::start(folder / "Sleeper.app", {"100"});
    EXPECT_THAT(runningIn(folder.path()), IsEmpty());
}

TEST(RunningApplications, AScriptBelongsToItsBundle) {
    for (const char* interpreter : {"/bin/sh", "/bin/sh -e", "/usr/bin/env sh"}) {
        const TemporaryFolder folder;
        const fs::path script = folder / "Script.app/Contents/MacOS/run";
        makeScript(script, interpreter);
        const ChildProcess program = ChildProcess::start(script, {"argument"});
        // The last of them becomes the interpreter a moment after it was started.
        for (int looks = 0; looks < 1000 && runningIn(folder.path()).empty(); ++looks) ::usleep(10'000);
        // A command of the script is the script's shell for a moment, too.
        const auto bundles = bundlesRunningIn(folder.path());
        EXPECT_THAT(bundles, Not(IsEmpty())) << interpreter;
        EXPECT_THAT(bundles, Each(folder / "Script.app")) << interpreter;
    }
}

/// How many processes have something in a folder as their last argument.
std::ptrdiff_t processesNaming(const fs::path& folder) {
    const auto processes = ProcessTable::processes();
    return std::count_if(processes.begin(), processes.end(), [&](const ProcessTable::Process& process) {
        return process.arguments.size() > 1 && process.arguments.back().starts_with(folder.native() + "/");
    });
}

TEST(RunningApplications, WhoeverReadsAFileOfABundleDoesNotBelongToIt) {
    const TemporaryFolder folder;
    const fs::path script = folder / "Script.app/Contents/MacOS/run";
    makeScript(script, "/bin/sh");
    test::makeFile(folder / "Script.app/Contents/Info.plist");
    const ChildProcess reader = ChildProcess::start("/usr/bin/tail", {"-f", script.native()});
    const ChildProcess other = ChildProcess::start("/bin/sh", {"-c", "while :; do sleep 0.05; done", script.native()});
    const ChildProcess plain =
        ChildProcess::start("/usr/bin/tail", {"-f", (folder / "Script.app/Contents/Info.plist").native()});
    // The process table tells their arguments a moment after they have begun. A command of the shell bears the shell's
    // arguments between its fork and its program.
    for (int looks = 0; looks < 1000 && processesNaming(folder.path()) < 3; ++looks) ::usleep(10'000);
    ASSERT_GE(processesNaming(folder.path()), 3);
    EXPECT_THAT(runningIn(folder.path()), IsEmpty());
}

TEST(RunningApplications, AProgramThatWasRemovedStillRunsFromItsBundle) {
    const TemporaryFolder folder;
    const ChildProcess program = runSleeperIn(folder / "Gone.app");
    fs::remove(folder / "Gone.app/Contents/MacOS/sleeper");
    EXPECT_THAT(bundlesRunningIn(folder.path()), ElementsAre(folder / "Gone.app"));
}

TEST(RunningApplications, TheTwoRequestsEndAProgramInTheirWays) {
    const TemporaryFolder folder;
    const auto applications = makeProcessTableApplications({folder.path()});
    ChildProcess polite = runSleeperIn(folder / "Polite.app");
    applications->terminate(applications->running().at(0));
    EXPECT_EQ(polite.wait(), SIGTERM);
    ChildProcess stubborn = runStubbornSleeperIn(folder / "Stubborn.app");
    applications->terminate(applications->running().at(0));
    EXPECT_EQ(stubborn.poll(), std::nullopt);
    applications->forceTerminate(applications->running().at(0));
    EXPECT_EQ(stubborn.wait(), SIGKILL);
}

TEST(RunningApplications, AnEndedProgramDoesNotRunEvenBeforeItIsWaitedFor) {
    const TemporaryFolder folder;
    ChildProcess program = runSleeperIn(folder / "Ended.app");
    program.kill();
    for (int looks = 0; looks < 1000 && !runningIn(folder.path()).empty(); ++looks) ::usleep(10'000);
    EXPECT_THAT(runningIn(folder.path()), IsEmpty());
}

TEST(RunningApplications, AnotherProcessOfTheSameNumberIsLeftAlone) {
    const TemporaryFolder folder;
    const auto applications = makeProcessTableApplications({folder.path()});
    ChildProcess program = runSleeperIn(folder / "Later.app");
    RunningApplication earlier = applications->running().at(0);
    --earlier.startTime;
    applications->forceTerminate(earlier);
    EXPECT_THAT(runningIn(folder.path()), testing::SizeIs(1));
    applications->terminate(applications->running().at(0));
    EXPECT_EQ(program.wait(), SIGTERM);  // Not the one of before.
}

TEST(RunningApplications, OfThisSystemAreThere) {
    EXPECT_TRUE(makeSystemRunningApplications());
}

TEST(ProcessTable, HasEveryProcessButThisOneAndTheFirst) {
    const TemporaryFolder folder;
    test::makeSleeper(folder / "sleeper");
    const ChildProcess program = test::runTold(folder / "sleeper", {"100", "1"});
    const auto processes = ProcessTable::processes();
    const auto found = std::find_if(processes.begin(), processes.end(),
                                    [&](const auto& process) { return process.executable == folder / "sleeper"; });
    ASSERT_NE(found, processes.end());
    EXPECT_THAT(found->arguments, ElementsAre((folder / "sleeper").native(), "100", "1"));
    EXPECT_EQ(found->workingFolder, fs::current_path());
    EXPECT_GT(found->startTime, 0U);
    for (const auto& process : processes) EXPECT_TRUE(process.identifier > 1 && process.identifier != ::getpid());
}

TEST(ProcessTable, TellsWhatStartedThisProcess) {
    const auto lineage = ProcessTable::lineage();
    ASSERT_GE(lineage.size(), 2U);
    EXPECT_EQ(lineage[0], ::getpid());
    EXPECT_EQ(lineage[1], ::getppid());
    EXPECT_EQ(ProcessTable::programOf(lineage[0]), ProgramLocation::folder() / "core-tests");
    EXPECT_THAT(lineage, Not(Contains(1)));
    EXPECT_EQ(ProcessTable::parentOf(0x7FFFFFFF), 0);
    EXPECT_EQ(ProcessTable::programOf(0x7FFFFFFF), "");
}

/// When this process began, as another one sees it.
std::uint64_t ownStartTime() {
    const pid_t self = ::getpid();
    int ends[2] = {};
    if (::pipe(ends) != 0) return 0;
    std::uint64_t startTime = 0;
    if (::fork() == 0) {
        for (const auto& process : ProcessTable::processes())
            if (process.identifier == self) startTime = process.startTime;
        ::_exit(::write(ends[1], &startTime, sizeof startTime) == sizeof startTime ? 0 : 1);
    }
    if (::read(ends[0], &startTime, sizeof startTime) != sizeof startTime) return 0;
    return startTime;
}

TEST(ProcessTable, KnowsWhereARemovedProgramStood) {
    const TemporaryFolder folder;
    test::makeSleeper(folder / "sleeper");
    const ChildProcess program = test::runTold(folder / "sleeper", {"100"});
    fs::remove(folder / "sleeper");
    const auto processes = ProcessTable::processes();
    EXPECT_TRUE(std::any_of(processes.begin(), processes.end(),
                            [&](const auto& process) { return process.executable == folder / "sleeper"; }));
}

TEST(ProcessTable, SendsThisProcessNoSignal) {
    EXPECT_EXIT(
        {
            const std::uint64_t startTime = ownStartTime();
            ProcessTable::send(SIGKILL, ::getpid(), startTime);
            ::_exit(startTime > 0 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace tarvik
