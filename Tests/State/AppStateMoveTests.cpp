#include "Platform/Files.h"
#include "State/Background.h"
#include "State/BusyThreads.h"
#include "State/EventLoop.h"
#include "State/JobRunner.h"
#include "State/StateWorld.h"
#include "State/WindowDialogs.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"

#include <QThread>

#include <algorithm>
#include <future>
#include <utility>

namespace tarvik::test {

namespace {

using AppStateMoves = StateWorld;

constexpr const char* busy = "Another item is being moved. Try again when it is done.";

}  // namespace

TEST_F(AppStateMoves, NeedADrive) {
    makeFolders({"Music"});
    state->moveArbitraryFolder(FilePath(world.home / "Music"));
    settle();
    EXPECT_EQ(state->lastError(), "Select a target drive first.");
    EXPECT_TRUE(dialogs.asked.empty());
}

TEST_F(AppStateMoves, NeedAFolder) {
    begin();
    state->moveArbitraryFolder(FilePath(world.home / "Music"));
    settle();
    EXPECT_EQ(state->lastError(), "Source folder doesn't exist.");
    EXPECT_TRUE(dialogs.asked.empty());
    EXPECT_TRUE(state->jobs().empty());
}

TEST_F(AppStateMoves, NeedSpace) {
    volumes->set({backup(0)});
    begin();
    makeFolders({"Music"});
    state->moveArbitraryFolder(FilePath(world.home / "Music"));
    settle();
    EXPECT_EQ(state->lastError(), "Need 4 KB but Backup has Zero KB.");
    EXPECT_TRUE(dialogs.asked.empty());
}

TEST_F(AppStateMoves, ReplaceAFolderByALinkToTheDrive) {
    begin();
    makeFolders({"Music"});
    state->moveArbitraryFolder(FilePath(world.home / "Music"));
    settle();
    ASSERT_EQ(dialogs.asked.size(), 1U);
    EXPECT_EQ(dialogs.asked[0].title, "Move Music to Backup?");
    EXPECT_EQ(dialogs.asked[0].buttons, (std::vector<std::string>{"Move", "Cancel"}));
    EXPECT_EQ(dialogs.asked[0].details, std::vector<std::string>{"From " + (world.home / "Music").native()});
    EXPECT_EQ(Files::linkText(world.home / "Music"), world.foldersOnDrive() / "Music");
    EXPECT_EQ(contentOf(world.home / "Music/file"), "Music");
    EXPECT_EQ(state->lastInfo(), "Moved 1 item.");
    EXPECT_EQ(state->lastError(), "");
    EXPECT_FALSE(state->isRunning());
    ASSERT_EQ(state->jobs().size(), 1U);
    EXPECT_EQ(statusOf(0), JobStatus::done());
    EXPECT_EQ(state->jobsFraction(), 1);
    EXPECT_EQ(state->jobsSummary(), "Moved 1 item.");
}

TEST_F(AppStateMoves, ThatAreCancelledChangeNothing) {
    begin();
    makeFolders({"Music"});
    state->moveArbitraryFolder(FilePath(world.home / "Missing"));
    settle();
    const std::string before = pictureOf(world.folder.path());
    dialogs.answers = {1};
    state->moveArbitraryFolder(FilePath(world.home / "Music"));
    settle();
    EXPECT_EQ(dialogs.asked.size(), 1U);
    EXPECT_EQ(state->lastError(), "Source folder doesn't exist.");
    EXPECT_EQ(state->lastInfo(), "");
    EXPECT_TRUE(state->jobs().empty());
    EXPECT_EQ(pictureOf(world.folder.path()), before);
}

TEST_F(AppStateMoves, ClearTheLastErrorWhenTheyStart) {
    begin();
    state->moveArbitraryFolder(FilePath(world.home / "Missing"));
    settle();
    runJobs(makeFolders({"Music"}));
    EXPECT_TRUE(state->isRunning());
    EXPECT_EQ(state->lastError(), "");
    settle();
}

TEST_F(AppStateMoves, GoOnAfterAFailedOne) {
    begin();
    makeFile(world.foldersOnDrive() / "Two/taken");
    runJobs(makeFolders({"One", "Two", "Three"}));
    settle();
    EXPECT_EQ(statusOf(0), JobStatus::done());
    EXPECT_EQ(statusOf(1), JobStatus::failed("Destination already exists."));
    EXPECT_EQ(statusOf(2), JobStatus::done());
    EXPECT_EQ(state->lastError(), "Completed with 1 failure.");
    EXPECT_EQ(state->lastInfo(), "");
}

TEST_F(AppStateMoves, FailOneByOneAfterTheDriveWasUnplugged) {
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

TEST_F(AppStateMoves, TellWhichOneIsUnderWayAndThenWhichOneFailed) {
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

TEST_F(AppStateMoves, TellHowLongTheyStillTakeWhenThatCanBeTold) {
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

TEST_F(AppStateMoves, AreForgottenOnceTheyAreOver) {
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

TEST_F(AppStateMoves, ShowNoProgressOfATotalOfZero) {
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

TEST_F(AppStateMoves, AreNotBroughtBackToLifeByALateReport) {
    begin();
    runJobs(makeFolders({"One"}));
    settle();
    state->setJobProgress(0, {1, 2});
    EXPECT_EQ(statusOf(0), JobStatus::done());
    state->setJobProgress(7, {1, 2});
    state->setJobStatus(7, JobStatus::pending());
    EXPECT_EQ(state->jobs().size(), 1U);
}

TEST_F(AppStateMoves, AreRefusedWhileARunIsUnderWay) {
    holdCopyOf("One");
    begin();
    runJobs(makeFolders({"One"}));
    waitForHeldCopy();
    makeFolders({"Music"});
    state->moveArbitraryFolder(FilePath(world.home / "Music"));
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

TEST_F(AppStateMoves, AreRefusedWhileAnotherOneIsBeingPrepared) {
    begin();
    makeFolders({"One", "Two"});
    state->moveArbitraryFolder(FilePath(world.home / "One"));
    state->moveArbitraryFolder(FilePath(world.home / "Two"));
    EXPECT_EQ(state->lastError(), busy);
    settle();
    EXPECT_EQ(dialogs.asked.size(), 1U);
    EXPECT_TRUE(Files::isSymbolicLink(world.home / "One"));
    EXPECT_TRUE(Files::isFolder(world.home / "Two"));
}

TEST_F(AppStateMoves, DoNotAskAfterTheWindowHasClosedWhileTheyWerePrepared) {
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
    prepareAndClose([&] { state->moveArbitraryFolder(FilePath(world.home / "One")); });
    prepareAndClose([&] { state->restoreSymlink(FilePath(world.home / "Link")); });
    EXPECT_TRUE(Files::isFolder(world.home / "One"));
    EXPECT_TRUE(Files::isSymbolicLink(world.home / "Link"));
}

TEST_F(AppStateMoves, EndEvenWhenTheRunItselfBreaksDown) {
    begin();
    volumes->breakDown();
    runJobs(makeFolders({"One"}));
    settle();
    EXPECT_FALSE(state->isRunning());
    EXPECT_EQ(state->lastInfo(), "");
    EXPECT_NE(state->lastError(), "");
    EXPECT_EQ(state->jobsSummary(), "");
    volumes->set({backup()});
    runJobs(makeFolders({"Two"}));
    settle();
    EXPECT_EQ(statusOf(0), JobStatus::done());
}

TEST_F(AppStateMoves, AreNotContradictedByAnOlderLookAtTheirLinks) {
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

TEST_F(AppStateMoves, CanFollowOneAnother) {
    begin();
    makeFolders({"One", "Two"});
    for (const char* name : {"One", "Two"}) {
        state->moveArbitraryFolder(FilePath(world.home / name));
        settle();
        ASSERT_EQ(state->jobs().size(), 1U);
        EXPECT_EQ(state->jobs()[0].job.label, name);
        EXPECT_EQ(statusOf(0), JobStatus::done());
        EXPECT_TRUE(Files::isSymbolicLink(world.home / name));
    }
}

TEST_F(AppStateMoves, RefreshAtTheEndUnlessApplicationsAreScanned) {
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
    state->refreshApps();
    spinUntil([this] { return state->sizeTotal() == 1; });
    const int before = volumes->askedCount();
    runJobs(makeFolders({"Two"}));
    spinUntil([this] { return !state->isRunning(); });
    EXPECT_EQ(volumes->askedCount() - before, 1) << "sizes are still missing";
    busyThreads.end();
    settle();
}

TEST_F(AppStateMoves, EndAfterTheCurrentItemWhenTheStateGoes) {
    holdCopyOf("One");
    begin();
    runJobs(makeFolders({"One", "Two"}));
    waitForHeldCopy();
    letGo();
    state.reset();
    EXPECT_EQ(Files::linkText(world.home / "One"), world.foldersOnDrive() / "One");
    EXPECT_TRUE(Files::isFolder(world.home / "Two"));
}

TEST_F(AppStateMoves, DoNotRunForAStateThatIsGone) {
    const auto jobs = makeFolders({"One"});
    JobRunner::run(jobs, world.drive, nullptr, false);
    spinOnce();
    EXPECT_TRUE(Files::isFolder(world.home / "One"));
}

TEST_F(AppStateMoves, LetTheWindowCloseWhenThereAreNone) {
    begin();
    EXPECT_TRUE(state->mayClose());
    EXPECT_TRUE(dialogs.asked.empty());
}

TEST_F(AppStateMoves, KeepTheWindowOpenWhenTheUserWantsThemToGoOn) {
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

TEST_F(AppStateMoves, LetTheWindowCloseWhenTheCurrentItemIsDone) {
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

TEST_F(AppStateMoves, AreShownToTheViewsInRoles) {
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
