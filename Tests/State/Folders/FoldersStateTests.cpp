#include "Platform/Files/Files.h"
#include "State/EventLoop.h"
#include "State/StateWorld.h"
#include "Support/Tree.h"

namespace tarvik::test {

namespace {

using FoldersStateTest = StateWorld;

}  // namespace

TEST_F(FoldersStateTest, NeedsADrive) {
    makeFolders({"Music"});
    foldersTab().moveArbitraryFolder(FilePath(world.home / "Music"));
    settle();
    EXPECT_EQ(state->lastError(), "Select a target drive first.");
    EXPECT_TRUE(dialogs.asked.empty());
}

TEST_F(FoldersStateTest, NeedsAFolder) {
    begin();
    foldersTab().moveArbitraryFolder(FilePath(world.home / "Music"));
    settle();
    EXPECT_EQ(state->lastError(), "Source folder doesn't exist.");
    EXPECT_TRUE(dialogs.asked.empty());
    EXPECT_TRUE(state->jobs().empty());
}

TEST_F(FoldersStateTest, NeedsSpace) {
    volumes->set({backup(0)});
    begin();
    makeFolders({"Music"});
    foldersTab().moveArbitraryFolder(FilePath(world.home / "Music"));
    settle();
    EXPECT_EQ(state->lastError(), "Need 4 KB but Backup has Zero KB.");
    EXPECT_TRUE(dialogs.asked.empty());
}

TEST_F(FoldersStateTest, ReplacesAFolderByALinkToTheDrive) {
    begin();
    makeFolders({"Music"});
    foldersTab().moveArbitraryFolder(FilePath(world.home / "Music"));
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

TEST_F(FoldersStateTest, ChangesNothingWhenAMoveIsCancelled) {
    begin();
    runJobs(makeFolders({"Earlier"}));
    settle();
    state->clearRun();
    makeFolders({"Music"});
    foldersTab().moveArbitraryFolder(FilePath(world.home / "Missing"));
    settle();
    const std::string before = pictureOf(world.folder.path());
    dialogs.answers = {1};
    foldersTab().moveArbitraryFolder(FilePath(world.home / "Music"));
    settle();
    EXPECT_EQ(dialogs.asked.size(), 1U);
    EXPECT_EQ(state->lastError(), "Source folder doesn't exist.");
    EXPECT_EQ(state->lastInfo(), "Moved 1 item.") << "as it was";
    EXPECT_TRUE(state->jobs().empty());
    EXPECT_EQ(pictureOf(world.folder.path()), before);
}

TEST_F(FoldersStateTest, OffersTheCommonCandidatesThatExist) {
    makeFolder(world.home / "Downloads");
    makeFolder(world.home / "Music/Logic Pro Library.bundle");
    begin();
    ASSERT_EQ(foldersTab().quickPicks().size(), 2U);
    EXPECT_EQ(foldersTab().quickPicks()[0].label, "Logic Pro Library");
    EXPECT_EQ(foldersTab().quickPicks()[1].label, "Downloads");
    EXPECT_EQ(foldersTab().quickPicks()[1].path, world.home / "Downloads");
    EXPECT_EQ(foldersTab().quickPicks()[1].pathText, "~/Downloads");
}

TEST_F(FoldersStateTest, ForgetsAChosenFolderThatHasMovedAndKeepsAnotherOne) {
    begin();
    makeFolders({"Music", "Photos"});
    auto& source = *foldersTab().source();
    for (const char* chosen : {"Photos", "Music"}) {
        source.setPath(FilePath(world.home / chosen));
        foldersTab().moveArbitraryFolder(FilePath(world.home / "Music"));
        settle();
        EXPECT_EQ(source.isEmpty(), source.path().path != world.home / "Photos");
        if (source.isEmpty()) continue;
        state->restoreSymlink(FilePath(world.home / "Music"));
        settle();
    }
    EXPECT_TRUE(source.isEmpty());
    spinUntil([&] { return !source.isMeasuring(); });
}

TEST_F(FoldersStateTest, LooksAtTheChosenFolderAnewWhenItIsBack) {
    begin();
    makeFolders({"Music"});
    foldersTab().moveArbitraryFolder(FilePath(world.home / "Music"));
    settle();
    auto& source = *foldersTab().source();
    source.setPath(FilePath(world.home / "Music"));
    spinUntil([&] { return !source.isMeasuring(); });
    EXPECT_TRUE(source.isLink());
    state->restoreSymlink(FilePath(world.home / "Music"));
    settle();
    spinUntil([&] { return !source.isMeasuring(); });
    EXPECT_FALSE(source.isLink());
    EXPECT_EQ(source.problem(), "");
}

TEST_F(FoldersStateTest, LooksAtTheChosenFolderAnewWithEverythingElse) {
    begin();
    makeFolders({"Music"});
    auto& source = *foldersTab().source();
    source.setPath(FilePath(world.home / "Music"));
    spinUntil([&] { return !source.isMeasuring(); });
    EXPECT_EQ(source.problem(), "");
    fs::remove_all(world.home / "Music");
    state->refreshAll();
    settle();
    spinUntil([&] { return !source.isMeasuring(); });
    EXPECT_EQ(source.problem(), "Nothing stands at this path any more.");
}

}  // namespace tarvik::test
