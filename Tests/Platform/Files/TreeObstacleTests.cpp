#include "Platform/Files/Files.h"
#include "Platform/Files/TreeObstacle.h"
#include "Support/OrdinaryUser.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace tarvik::test {

namespace {

/// The obstacle's failure, in words.
std::string words(const std::optional<TreeObstacle>& obstacle) {
    return obstacle ? obstacle->error().description() : "none";
}

class TreeObstacles : public testing::Test {
protected:
    TreeObstacles() {
        makeFile(tree / "sub/file");
        makeLink(tree / "link", "sub");
        fs::permissions(tree, fs::perms::all);
    }

    const TemporaryFolder folder;
    const fs::path tree = folder / "tree";
};

}  // namespace

TEST_F(TreeObstacles, AreNoneInAnOrdinaryTree) {
    EXPECT_EQ(words(TreeObstacle::toMove(tree)), "none");
    EXPECT_EQ(words(TreeObstacle::toMove(tree / "sub/file")), "none");
    EXPECT_EQ(words(TreeObstacle::toMove(tree / "link")), "none");
    EXPECT_EQ(words(TreeObstacle::toMove(tree / "missing")), "none");
}

TEST_F(TreeObstacles, ArePipesWhereverACopyIsMade) {
    makePipe(tree / "sub/pipe");
    for (const auto& obstacle : {TreeObstacle::toMove(tree), TreeObstacle::toReturn(tree)}) {
        ASSERT_TRUE(obstacle);
        EXPECT_EQ(obstacle->kind, TreeObstacle::Kind::pipe);
        EXPECT_EQ(obstacle->path, tree / "sub/pipe");
    }
    EXPECT_EQ(words(TreeObstacle::toRemoval(tree)), "none");
}

TEST_F(TreeObstacles, AreFilesThatTheCopyToolPassesOver) {
    for (const char* name : {".nfs0000000001", ".afpDeleted1234"}) {
        makeFile(tree / "sub" / name);
        const auto obstacle = TreeObstacle::toMove(tree);
        ASSERT_TRUE(obstacle) << name;
        EXPECT_EQ(obstacle->kind, TreeObstacle::Kind::serverFile);
        EXPECT_EQ(obstacle->path, tree / "sub" / name);
        EXPECT_TRUE(TreeObstacle::toReturn(tree));
        EXPECT_TRUE(TreeObstacle::toMove(tree / "sub" / name));
        EXPECT_EQ(words(TreeObstacle::toRemoval(tree)), "none");
        fs::remove(tree / "sub" / name);
    }
    makeFile(tree / "sub/nfs.nfs");
    EXPECT_EQ(words(TreeObstacle::toMove(tree)), "none");
}

TEST_F(TreeObstacles, AreDeviceFilesForWhoCannotMakeThem) {
    if (::mknod((tree / "sub/null").c_str(), S_IFCHR | 0666, statusOf("/dev/null").st_rdev) != 0)
        TARVIK_SKIP_BECAUSE("Only the administrator can make device files.");
    EXPECT_EQ(words(TreeObstacle::toMove(tree)), "none");
    fs::permissions(tree / "sub", fs::perms::all);
    const OrdinaryUser user(folder.path());
    const auto obstacle = TreeObstacle::toMove(tree);
    ASSERT_TRUE(obstacle);
    EXPECT_EQ(obstacle->kind, TreeObstacle::Kind::device);
    EXPECT_EQ(words(TreeObstacle::toReturn(tree)), "none");
}

TEST_F(TreeObstacles, TellWhoseTheFolderIsThatLetsNothingGo) {
    if (::geteuid() != 0) TARVIK_SKIP_BECAUSE("Only the administrator can become another user.");
    constexpr uid_t someoneElse = 1234;
    fs::permissions(tree / "sub", fs::perms(0755));
    ASSERT_EQ(::chown((tree / "sub").c_str(), someoneElse, someoneElse), 0);
    const OrdinaryUser user(folder.path());
    const auto obstacle = TreeObstacle::toMove(tree);
    ASSERT_TRUE(obstacle);
    EXPECT_EQ(obstacle->kind, TreeObstacle::Kind::sealedFolder);
    EXPECT_EQ(obstacle->path, tree / "sub");
    EXPECT_EQ(obstacle->errorNumber, EACCES);
    EXPECT_EQ(obstacle->owner, someoneElse);
}

TEST_F(TreeObstacles, AreSocketsForAMoveAlone) {
    makeSocket(tree / "sub/socket");
    const auto obstacle = TreeObstacle::toMove(tree);
    ASSERT_TRUE(obstacle);
    EXPECT_EQ(obstacle->kind, TreeObstacle::Kind::socket);
    EXPECT_EQ(obstacle->path, tree / "sub/socket");
    EXPECT_EQ(words(TreeObstacle::toRemoval(tree)), "none");
    EXPECT_EQ(words(TreeObstacle::toReturn(tree)), "none");
}

TEST_F(TreeObstacles, AreSomeoneElsesItemsInAFolderWithTheStickyBit) {
    if (::geteuid() != 0) TARVIK_SKIP_BECAUSE("Only the administrator can become another user.");
    ASSERT_EQ(::chmod((tree / "sub").c_str(), 01777), 0);
    EXPECT_EQ(words(TreeObstacle::toRemoval(tree)), "none");
    {
        const OrdinaryUser user(folder.path());
        EXPECT_EQ(words(TreeObstacle::toRemoval(tree)),
                  "Could not remove " + (tree / "sub/file").native() + ": Operation not permitted");
    }
    // The owner of the file, and that of the folder, may.
    ASSERT_EQ(::chown((tree / "sub/file").c_str(), 65534, 65534), 0);
    {
        const OrdinaryUser user(folder.path());
        EXPECT_EQ(words(TreeObstacle::toRemoval(tree)), "none");
    }
    ASSERT_EQ(::chown((tree / "sub/file").c_str(), 0, 0), 0);
    ASSERT_EQ(::chown((tree / "sub").c_str(), 65534, 65534), 0);
    const OrdinaryUser user(folder.path());
    EXPECT_EQ(words(TreeObstacle::toRemoval(tree)), "none");
}

TEST_F(TreeObstacles, AreTheItemItselfInASharedFolder) {
    if (::geteuid() != 0) TARVIK_SKIP_BECAUSE("Only the administrator can become another user.");
    ASSERT_EQ(::chmod(tree.c_str(), 01777), 0);
    const OrdinaryUser user(folder.path());
    for (const char* name : {"sub", "link"})
        EXPECT_EQ(words(TreeObstacle::toRemoval(tree / name)),
                  "Could not remove " + (tree / name).native() + ": Operation not permitted");
}

TEST_F(TreeObstacles, AreFilesThatCannotBeReadWhereverACopyIsMade) {
    makeFile(tree / "sub/secret");
    fs::permissions(tree / "sub/secret", fs::perms::none);
    fs::permissions(tree / "sub", fs::perms::all);
    const OrdinaryUser user(folder.path());
    for (const auto& obstacle : {TreeObstacle::toMove(tree), TreeObstacle::toReturn(tree),
                                 TreeObstacle::toBackup(tree, {}), TreeObstacle::toMove(tree / "sub/secret")}) {
        ASSERT_TRUE(obstacle);
        EXPECT_EQ(obstacle->kind, TreeObstacle::Kind::unreadable);
        EXPECT_EQ(obstacle->path, tree / "sub/secret");
        EXPECT_EQ(obstacle->errorNumber, EACCES);
    }
    EXPECT_EQ(words(TreeObstacle::toRemoval(tree)), "none");
}

TEST_F(TreeObstacles, AreNoFilesOfOthersThatEverybodyMayRead) {
    fs::permissions(tree / "sub", fs::perms::all);
    {
        const OrdinaryUser user(folder.path());
        EXPECT_EQ(words(TreeObstacle::toMove(tree)), "none");
    }
    if (::geteuid() != 0) return;
    // Who owns a file is asked before all others: its owner may be the one who may not read it.
    ASSERT_EQ(::chown((tree / "sub/file").c_str(), 65534, 65534), 0);
    fs::permissions(tree / "sub/file", fs::perms::others_read | fs::perms::group_read);
    const OrdinaryUser user(folder.path());
    EXPECT_TRUE(TreeObstacle::toMove(tree));
}

TEST_F(TreeObstacles, ToABackupAreNoneThatOnlyKeepTheOriginal) {
    fs::permissions(tree / "sub", fs::perms(0555));
    makePipe(tree / "pipe");
    makeFile(tree / ".nfs folder/x");
    makeSocket(tree / "socket");
    std::vector<fs::path> leftOut;
    const auto leaveOut = [&](const TreeObstacle& item) { leftOut.push_back(item.path); };
    {
        const OrdinaryUser user(folder.path());
        EXPECT_EQ(words(TreeObstacle::toBackup(tree, leaveOut)), "none");
    }
    std::sort(leftOut.begin(), leftOut.end());
    EXPECT_EQ(leftOut, (std::vector<fs::path>{tree / ".nfs folder", tree / "pipe", tree / "socket"}));
    const auto itself = TreeObstacle::toBackup(tree / "pipe", leaveOut);
    ASSERT_TRUE(itself);
    EXPECT_EQ(itself->kind, TreeObstacle::Kind::pipe);
}

}  // namespace tarvik::test
