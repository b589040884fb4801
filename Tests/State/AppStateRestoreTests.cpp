#include "Platform/Files.h"
#include "State/EventLoop.h"
#include "State/StateWorld.h"
#include "Support/Tree.h"

namespace tarvik::test {

namespace {

/// A machine on which the folder Music has been moved.
class AppStateRestore : public StateWorld {
protected:
    AppStateRestore() {
        begin();
        makeFolders({"Music"});
        state->moveArbitraryFolder(FilePath(link));
        settle();
        state->clearInfo();
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
    EXPECT_EQ(volumes->askedCount(), scans + 1) << "everything is looked at anew";
    EXPECT_FALSE(canMoveBack());
}

TEST_F(AppStateRestore, ThatIsCancelledChangesNothing) {
    const std::string before = pictureOf(world.folder.path());
    dialogs.answers = {1};
    state->restoreSymlink(FilePath(link));
    settle();
    EXPECT_EQ(pictureOf(world.folder.path()), before);
    EXPECT_EQ(state->lastInfo(), "");
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
    state->moveArbitraryFolder(FilePath(world.home / "Other"));
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
    const int scans = volumes->askedCount();
    state->restoreSymlink(FilePath(link));
    settle();
    EXPECT_NE(state->lastError(), "");
    EXPECT_EQ(state->restore().outcome(), state->lastError());
    EXPECT_TRUE(state->restore().hasFailed());
    EXPECT_FALSE(state->isRestoring());
    EXPECT_EQ(state->lastInfo(), "");
    EXPECT_EQ(volumes->askedCount(), scans);
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
