#include "Platform/Files/Files.h"
#include "State/EventLoop.h"
#include "State/Shared/JobRunner.h"
#include "State/Shared/WindowDialogs.h"
#include "State/StateWorld.h"
#include "State/Threads/Background.h"
#include "State/Threads/BusyThreads.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"

#include <QThread>

#include <algorithm>
#include <future>
#include <utility>

namespace tarvik::test {

namespace {

using AppStateRuns = StateWorld;

constexpr const char* busy = "Another item is being moved. Try again when it is done.";

}  // namespace

TEST_F(AppStateRuns, ClearTheLastErrorWhenTheyStart) {
    begin();
    foldersTab().moveArbitraryFolder(FilePath(world.home / "Missing"));
    settle();
    runJobs(makeFolders({"Music"}));
    EXPECT_TRUE(state->isRunning());
    EXPECT_EQ(state->lastError(), "");
    settle();
}

TEST_F(AppStateRuns, GoOnAfterAFailedOne) {
    begin();
    runJobs(makeFolders({"Earlier"}));
    settle();
    makeFile(world.foldersOnDrive() / "Two/taken");
    runJobs(makeFolders({"One", "Two", "Three"}));
    settle();
    EXPECT_EQ(statusOf(0), JobStatus::done());
    EXPECT_EQ(statusOf(1), JobStatus::failed("Destination already exists."));
    EXPECT_EQ(statusOf(2), JobStatus::done());
    EXPECT_EQ(state->lastError(), "Completed with 1 failure.");
    EXPECT_EQ(state->lastInfo(), "Moved 1 item.") << "as it was";
}

TEST_F(AppStateRuns, FailOneByOneAfterTheDriveWasUnplugged) {
    holdCopyOf("Two");
    begin();
    runJobs(makeFolders({"One", "Two", "Three"}));
    waitForHeldCopy();
    EXPECT_EQ(statusOf(0), JobStatus::done());
    EXPECT_EQ(statusOf(1), JobStatus::copying(0));
    EXPECT_EQ(statusOf(2), JobStatus::pending());
    EXPECT_EQ(state->jobsSummary(), "2 of 3");

    fs::rename(world.drive, world.folder / "unplugged");
    volumes->set({});
    letGo();
    settle();
    EXPECT_TRUE(statusOf(1).is<JobStatus::Failed>());
    EXPECT_EQ(statusOf(2), JobStatus::failed("Target drive disconnected"));
    EXPECT_EQ(state->lastError(), "Completed with 2 failures.");
    EXPECT_EQ(contentOf(world.home / "Two/file"), "Two");
    EXPECT_EQ(contentOf(world.home / "Three/file"), "Three");
}

TEST_F(AppStateRuns, TellWhichOneIsUnderWayAndThenWhichOneFailed) {
    holdCopyOf("Three");
    begin();
    EXPECT_EQ(state->currentJob(), -1);
    makeFile(world.foldersOnDrive() / "Two/taken");
    runJobs(makeFolders({"One", "Two", "Three"}));
    waitForHeldCopy();
    EXPECT_EQ(state->currentJob(), 2);
    EXPECT_EQ(state->currentJobLabel(), "Three");
    letGo();
    settle();
    EXPECT_EQ(state->currentJob(), 1);
    EXPECT_EQ(state->currentJobLabel(), "Two");
}

TEST_F(AppStateRuns, TellHowLongTheyStillTakeWhenThatCanBeTold) {
    holdCopyOf("One");
    begin();
    runJobs(makeFolders({"One"}));
    waitForHeldCopy();
    state->setJobProgress(0, {5, 20});
    EXPECT_EQ(state->timeLeft(), "") << "it is too early";
    // The copy that is held reports as well.
    spinUntil([&] {
        state->setJobProgress(0, {3'000'000, 4'000'000});
        return state->timeLeft() == "Less than a minute left";
    });
    letGo();
    settle();
    EXPECT_EQ(state->timeLeft(), "");
}

TEST_F(AppStateRuns, AreForgottenOnceTheyAreOver) {
    holdCopyOf("One");
    begin();
    runJobs(makeFolders({"One"}));
    waitForHeldCopy();
    state->clearRun();
    EXPECT_EQ(state->jobs().size(), 1U) << "it is under way";
    letGo();
    settle();
    state->restoreSymlink(FilePath(world.home / "One"));
    settle();
    EXPECT_FALSE(state->restore().isEmpty());
    state->clearRun();
    EXPECT_TRUE(state->jobs().empty());
    EXPECT_TRUE(state->restore().isEmpty());
    EXPECT_EQ(state->jobsSummary(), "");
    EXPECT_EQ(state->currentJob(), -1);
}

TEST_F(AppStateRuns, ShowNoProgressOfATotalOfZero) {
    holdCopyOf("One");
    begin();
    runJobs(makeFolders({"One"}));
    waitForHeldCopy();
    state->setJobProgress(0, {5, 0});
    EXPECT_EQ(statusOf(0), JobStatus::copying(0));
    state->setJobProgress(0, {5, 20});
    EXPECT_EQ(statusOf(0), JobStatus::copying(0.25));
    EXPECT_EQ(state->jobsFraction(), 0.25);
    state->setJobProgress(0, {40, 20});
    EXPECT_EQ(statusOf(0), JobStatus::copying(1));
    letGo();
    settle();
}

TEST_F(AppStateRuns, AreNotBroughtBackToLifeByALateReport) {
    begin();
    runJobs(makeFolders({"One"}));
    settle();
    state->setJobProgress(0, {1, 2});
    EXPECT_EQ(statusOf(0), JobStatus::done());
    state->setJobProgress(7, {1, 2});
    state->setJobStatus(7, JobStatus::pending());
    EXPECT_EQ(state->jobs().size(), 1U);
}

TEST_F(AppStateRuns, AreRefusedWhileARunIsUnderWay) {
    holdCopyOf("One");
    begin();
    runJobs(makeFolders({"One"}));
    waitForHeldCopy();
    makeFolders({"Music"});
    foldersTab().moveArbitraryFolder(FilePath(world.home / "Music"));
    EXPECT_EQ(state->lastError(), busy);
    state->clearError();
    state->restoreSymlink(FilePath(world.home / "Music"));
    EXPECT_EQ(state->lastError(), busy);
    EXPECT_TRUE(dialogs.asked.empty());
    letGo();
    settle();
    EXPECT_EQ(statusOf(0), JobStatus::done());
    EXPECT_TRUE(Files::isFolder(world.home / "Music"));
}

TEST_F(AppStateRuns, AreRefusedWhileAnotherOneIsBeingPrepared) {
    begin();
    makeFolders({"One", "Two"});
    foldersTab().moveArbitraryFolder(FilePath(world.home / "One"));
    foldersTab().moveArbitraryFolder(FilePath(world.home / "Two"));
    EXPECT_EQ(state->lastError(), busy);
    settle();
    EXPECT_EQ(dialogs.asked.size(), 1U);
    EXPECT_TRUE(Files::isSymbolicLink(world.home / "One"));
    EXPECT_TRUE(Files::isFolder(world.home / "Two"));
}

TEST_F(AppStateRuns, DoNotAskAfterTheWindowHasClosedWhileTheyWerePrepared) {
    WindowDialogs window{nullptr};  // A question to it would wait for ever.
    makeFolders({"One"});
    makeLink(world.home / "Link", world.foldersOnDrive() / "Two");
    makeFile(world.foldersOnDrive() / "Two/file");
    const auto prepareAndClose = [&](const auto& prepare) {
        state = std::make_unique<AppState>(world.host, window);
        begin();
        prepare();
        state.reset();
        EXPECT_FALSE(window.isOpen());
    };
    prepareAndClose([&] { foldersTab().moveArbitraryFolder(FilePath(world.home / "One")); });
    prepareAndClose([&] { state->restoreSymlink(FilePath(world.home / "Link")); });
    EXPECT_TRUE(Files::isFolder(world.home / "One"));
    EXPECT_TRUE(Files::isSymbolicLink(world.home / "Link"));
}

TEST_F(AppStateRuns, EndEvenWhenTheRunItselfBreaksDown) {
    begin();
    runJobs(makeFolders({"Earlier"}));
    settle();
    volumes->breakDown();
    runJobs(makeFolders({"One"}));
    settle();
    EXPECT_FALSE(state->isRunning());
    EXPECT_EQ(state->lastInfo(), "Moved 1 item.") << "as it was";
    EXPECT_NE(state->lastError(), "");
    EXPECT_EQ(state->jobsSummary(), "");
    volumes->set({backup()});
    runJobs(makeFolders({"Two"}));
    settle();
    EXPECT_EQ(statusOf(0), JobStatus::done());
}

TEST_F(AppStateRuns, AreNotContradictedByAnOlderLookAtTheirLinks) {
    holdCopyOf("One");
    begin();
    runJobs(makeFolders({"One"}));
    waitForHeldCopy();
    // With one thread left for checks, they are made in order: once the last one is over, the look at the links is too.
    BusyThreads busyThreads(BusyThreads::all() - 1);
    state->refreshAll();
    busyThreads.waitForTheLastThread();
    EXPECT_FALSE(Files::isSymbolicLink(world.home / "One"));
    state->setJobStatus(0, JobStatus::done());
    spinOnce();
    EXPECT_TRUE(state->jobs().at(0).isLinked);
    letGo();
    busyThreads.end();
    settle();
}

TEST_F(AppStateRuns, CanFollowOneAnother) {
    begin();
    makeFolders({"One", "Two"});
    for (const char* name : {"One", "Two"}) {
        foldersTab().moveArbitraryFolder(FilePath(world.home / name));
        settle();
        ASSERT_EQ(state->jobs().size(), 1U);
        EXPECT_EQ(state->jobs()[0].job.label, name);
        EXPECT_EQ(statusOf(0), JobStatus::done());
        EXPECT_TRUE(Files::isSymbolicLink(world.home / name));
    }
}

TEST_F(AppStateRuns, RefreshAtTheEndUnlessApplicationsAreScanned) {
    begin();
    const auto scansOf = [this](const char* name) {
        const int before = volumes->askedCount();
        runJobs(makeFolders({name}));
        settle();
        return volumes->askedCount() - before;
    };
    EXPECT_EQ(scansOf("One"), 2) << "the run's own look at the drive, and the refresh";
    makeBundle(world.folder / "Applications/Editor.app");
    BusyThreads busyThreads;
    appsTab().refreshApps();
    spinUntil([this] { return appsTab().sizeTotal() == 1; });
    const int before = volumes->askedCount();
    runJobs(makeFolders({"Two"}));
    spinUntil([this] { return !state->isRunning(); });
    EXPECT_EQ(volumes->askedCount() - before, 1) << "sizes are still missing";
    busyThreads.end();
    settle();
}

TEST_F(AppStateRuns, EndAfterTheCurrentItemWhenTheStateGoes) {
    holdCopyOf("One");
    begin();
    runJobs(makeFolders({"One", "Two"}));
    waitForHeldCopy();
    letGo();
    state.reset();
    EXPECT_EQ(Files::linkText(world.home / "One"), world.foldersOnDrive() / "One");
    EXPECT_TRUE(Files::isFolder(world.home / "Two"));
}

TEST_F(AppStateRuns, DoNotRunForAStateThatIsGone) {
    const auto jobs = makeFolders({"One"});
    JobRunner::run(jobs, world.drive, nullptr, false);
    spinOnce();
    EXPECT_TRUE(Files::isFolder(world.home / "One"));
}

TEST_F(AppStateRuns, LetTheWindowCloseWhenThereAreNone) {
    begin();
    EXPECT_TRUE(state->mayClose());
    EXPECT_TRUE(dialogs.asked.empty());
}

TEST_F(AppStateRuns, KeepTheWindowOpenWhenTheUserWantsThemToGoOn) {
    holdCopyOf("One");
    begin();
    runJobs(makeFolders({"One", "Two"}));
    waitForHeldCopy();
    dialogs.answers = {1};
    EXPECT_FALSE(state->mayClose());
    EXPECT_EQ(dialogs.asked.size(), 1U);
    letGo();
    settle();
    EXPECT_EQ(statusOf(1), JobStatus::done());
}

TEST_F(AppStateRuns, LetTheWindowCloseWhenTheCurrentItemIsDone) {
    holdCopyOf("One");
    begin();
    runJobs(makeFolders({"One", "Two"}));
    waitForHeldCopy();
    bool isReady = false;
    QObject::connect(state.get(), &AppState::readyToClose, [&] { isReady = true; });
    EXPECT_FALSE(state->mayClose());
    EXPECT_FALSE(isReady);
    letGo();
    spinUntil([&] { return isReady; });
    EXPECT_EQ(statusOf(0), JobStatus::done());
    EXPECT_EQ(statusOf(1), JobStatus::pending());
    EXPECT_TRUE(Files::isFolder(world.home / "Two"));
    EXPECT_EQ(state->lastInfo(), "Moved 1 item.");
}

TEST_F(AppStateRuns, AreShownToTheViewsInRoles) {
    begin();
    makeFile(world.foldersOnDrive() / "Two/taken");
    runJobs(makeFolders({"One", "Two"}));
    settle();
    auto& model = *state->jobsModel();
    const auto value = [&](int row, const char* role) {
        return model.data(model.index(row, 0), model.roleNames().key(role));
    };
    EXPECT_EQ(value(0, "label"), "One");
    EXPECT_EQ(value(0, "source").value<FilePath>().path, world.home / "One");
    EXPECT_EQ(value(0, "state"), "done");
    EXPECT_EQ(value(0, "statusText"), "Done");
    EXPECT_EQ(value(0, "bytesText"), "4 KB");
    EXPECT_EQ(value(0, "progress"), 1.0);
    EXPECT_EQ(value(0, "canMoveBack"), true);
    EXPECT_EQ(value(1, "state"), "failed");
    EXPECT_EQ(value(1, "statusText"), "Destination already exists.");
    EXPECT_EQ(value(1, "canMoveBack"), false);
}

}  // namespace tarvik::test
