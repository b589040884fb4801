#include "Platform/Files/Files.h"
#include "State/EventLoop.h"
#include "State/StateWorld.h"
#include "State/Threads/BusyThreads.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"

namespace tarvik::test {

namespace {

/// A machine on which the folder Music has been moved.
class AppStateRestore : public StateWorld {
protected:
    AppStateRestore() {
        begin();
        makeFolders({"Music"});
        foldersTab().moveArbitraryFolder(FilePath(link));
        settle();
        dialogs.asked.clear();
    }

    bool canMoveBack() {
        auto& model = *state->jobsModel();
        return model.data(model.index(0, 0), model.roleNames().key("canMoveBack")).toBool();
    }

    const fs::path link = world.home / "Music";
};

}  // namespace

TEST_F(AppStateRestore, BringsAFolderBack) {
    EXPECT_TRUE(canMoveBack());
    const int scans = volumes->askedCount();
    state->restoreSymlink(FilePath(link));
    settle();
    ASSERT_EQ(dialogs.asked.size(), 1U);
    EXPECT_EQ(dialogs.asked[0].title, "Move Music back?");
    EXPECT_EQ(dialogs.asked[0].buttons, (std::vector<std::string>{"Move Back", "Cancel"}));
    EXPECT_EQ(dialogs.asked[0].details, std::vector<std::string>{"To " + link.native()});
    EXPECT_TRUE(Files::isFolder(link));
    EXPECT_EQ(contentOf(link / "file"), "Music");
    EXPECT_FALSE(Files::exists(world.foldersOnDrive() / "Music"));
    EXPECT_EQ(state->lastInfo(), "Restored Music");
    EXPECT_EQ(state->lastError(), "");
    EXPECT_EQ(state->restore().label(), "Music");
    EXPECT_EQ(state->restore().outcome(), "Restored Music");
    EXPECT_FALSE(state->restore().hasFailed());
    EXPECT_FALSE(state->isRestoring());
    EXPECT_EQ(state->restore().fraction(), 1);
    EXPECT_EQ(volumes->askedCount(), scans + 3) << "for the question, for the act, and everything is looked at anew";
    EXPECT_FALSE(canMoveBack());
}

TEST_F(AppStateRestore, KeepsTheWindowOpenUntilTheItemIsBack) {
    bool mayClose = true;
    QObject::connect(state.get(), &AppState::isRestoringChanged, [&] {
        if (state->isRestoring()) mayClose = state->mayClose();
    });
    bool isReady = false;
    QObject::connect(state.get(), &AppState::readyToClose, [&] { isReady = true; });
    state->restoreSymlink(FilePath(link));
    spinUntil([&] { return isReady; });
    EXPECT_FALSE(mayClose);
    EXPECT_EQ(dialogs.asked.back().title, "Quit while an item is being moved?");
    EXPECT_TRUE(Files::isFolder(link));
    settle();
}

TEST_F(AppStateRestore, DuringAScanLeavesNoOfferToMoveTheSameBackAgain) {
    ASSERT_FALSE(symlinksTab().symlinks().empty());
    makeBundle(world.folder / "Applications/Editor.app");
    BusyThreads busyThreads;
    appsTab().refreshApps();
    spinUntil([this] { return appsTab().sizeTotal() == 1; });
    state->restoreSymlink(FilePath(link));
    spinUntil([this] { return state->restore().outcome() == "Restored Music"; });
    busyThreads.end();
    settle();
    EXPECT_FALSE(canMoveBack());
    EXPECT_TRUE(symlinksTab().symlinks().empty());
}

TEST_F(AppStateRestore, ThatIsCancelledChangesNothing) {
    const std::string before = pictureOf(world.folder.path());
    dialogs.answers = {1};
    state->restoreSymlink(FilePath(link));
    settle();
    EXPECT_EQ(pictureOf(world.folder.path()), before);
    EXPECT_EQ(state->lastInfo(), "Moved 1 item.") << "as it was";
    EXPECT_EQ(state->lastError(), "");
    EXPECT_EQ(state->restore().label(), "");
    EXPECT_TRUE(canMoveBack());
}

TEST_F(AppStateRestore, SaysWhenTheDriveIsNotThere) {
    fs::rename(world.drive, world.folder / "unplugged");
    const int scans = volumes->askedCount();
    state->restoreSymlink(FilePath(link));
    settle();
    EXPECT_EQ(state->lastError().toStdString(),
              "Music is on a drive that is not connected: " + (world.foldersOnDrive() / "Music").native() +
                  ". Connect it and try again.");
    EXPECT_TRUE(dialogs.asked.empty());
    EXPECT_TRUE(Files::isSymbolicLink(link));
    EXPECT_EQ(volumes->askedCount(), scans);
}

TEST_F(AppStateRestore, ThatFailsShowsWhatIsAtTheOldPathNow) {
    // The link goes between the question and the act, so that the act fails and nothing can be moved back any more.
    class Meddler : public ScriptedDialogs {
    public:
        explicit Meddler(fs::path path) : m_path(std::move(path)) {}
        QCoro::Task<int> ask(Dialog dialog) override {
            if (dialog.buttons.front() == "Move Back") fs::remove(m_path);
            co_return 0;
        }

    private:
        fs::path m_path;
    } meddler(world.home / "Other");
    state = std::make_unique<AppState>(world.host, meddler);
    begin();
    makeFolders({"Other"});
    foldersTab().moveArbitraryFolder(FilePath(world.home / "Other"));
    settle();
    ASSERT_TRUE(canMoveBack());
    state->restoreSymlink(FilePath(world.home / "Other"));
    settle();
    EXPECT_TRUE(state->restore().hasFailed());
    EXPECT_FALSE(canMoveBack());
    state.reset();
}

TEST_F(AppStateRestore, ThatFailsTellsWhyAndRefreshesNoDrives) {
    // The link goes between the question and the act.
    class Meddler : public ScriptedDialogs {
    public:
        explicit Meddler(fs::path path) : m_path(std::move(path)) {}
        QCoro::Task<int> ask(Dialog) override {
            fs::remove(m_path);
            co_return 0;
        }

    private:
        fs::path m_path;
    } meddler(link);
    state = std::make_unique<AppState>(world.host, meddler);
    begin();
    runJobs(makeFolders({"Earlier"}));
    settle();
    const int scans = volumes->askedCount();
    state->restoreSymlink(FilePath(link));
    settle();
    EXPECT_NE(state->lastError(), "");
    EXPECT_EQ(state->restore().outcome(), state->lastError());
    EXPECT_TRUE(state->restore().hasFailed());
    EXPECT_FALSE(state->isRestoring());
    EXPECT_EQ(state->lastInfo(), "Moved 1 item.") << "as it was";
    EXPECT_EQ(volumes->askedCount(), scans + 2) << "for the question and for the act";
    EXPECT_EQ(contentOf(world.foldersOnDrive() / "Music/file"), "Music");
    state.reset();
}

TEST_F(AppStateRestore, SaysInItsQuestionWhenNoMoveHasLeftTheLink) {
    makeFolder(world.home / "Projects");
    makeLink(world.home / "Work", world.home / "Projects");
    dialogs.answers = {1};
    state->restoreSymlink(FilePath(world.home / "Work"));
    settle();
    ASSERT_EQ(dialogs.asked.size(), 1U);
    EXPECT_EQ(dialogs.asked[0].details.back(), "Work is not a symlink that Tarvik has left.");
}

TEST_F(AppStateRestore, RefusesWhatIsNoLink) {
    makeFolder(world.home / "Plain");
    state->restoreSymlink(FilePath(world.home / "Plain"));
    settle();
    EXPECT_EQ(state->lastError(), "Plain is not a symlink, so there is nothing to move back.");
    EXPECT_TRUE(dialogs.asked.empty());
}

TEST_F(AppStateRestore, KeepsItsOutcomeUntilTheNextRun) {
    state->restoreSymlink(FilePath(link));
    settle();
    runJobs(makeFolders({"Other"}));
    EXPECT_EQ(state->restore().outcome(), "");
    settle();
}

}  // namespace tarvik::test
