#include "Copying/ChangeWatch.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/SystemCalls.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

namespace tarvik::test {

namespace {

class ChangeWatchTest : public testing::Test {
protected:
    ChangeWatchTest() {
        makeFile(tree / "sub/file", "12345");
        makeLink(tree / "link", "sub");
    }
    std::string changed() { return tarvik::ChangeWatch::changedBelow(world.host, tree, start).value_or("nothing"); }

    World world;
    fs::path tree = world.home / "";
    tarvik::ChangeWatch::Mark start;
};

}  // namespace

TEST_F(ChangeWatchTest, FindsNothingInATreeThatWasOnlyRead) {
    start = tarvik::ChangeWatch::mark(tree);
    pictureOf(tree);
    EXPECT_EQ(changed(), "nothing");
}

TEST_F(ChangeWatchTest, FindsBytesOfTheSameLength) {
    start = tarvik::ChangeWatch::mark(tree);
    makeFile(tree / "sub/file", "54321");
    EXPECT_EQ(changed(), "sub/file");
}

TEST_F(ChangeWatchTest, IsNotFooledByATimeThatWasSetBack) {
    struct stat before {};
    ASSERT_EQ(::stat((tree / "sub/file").c_str(), &before), 0);
    start = tarvik::ChangeWatch::mark(tree);
    makeFile(tree / "sub/file", "54321");
    const timespec times[] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT}, SystemCalls::contentChangeTime(before)};
    ASSERT_EQ(::utimensat(AT_FDCWD, (tree / "sub/file").c_str(), times, 0), 0);
    EXPECT_EQ(changed(), "sub/file");
}

TEST_F(ChangeWatchTest, FindsWhatWasMadeAndWhatWasTakenAway) {
    start = tarvik::ChangeWatch::mark(tree);
    makeFile(tree / "sub/new", "");
    EXPECT_EQ(changed(), "sub");
    start = tarvik::ChangeWatch::mark(tree);
    fs::remove(tree / "link");
    EXPECT_EQ(changed(), "");
}

TEST_F(ChangeWatchTest, FindsWhatWasPutInPlaceOfTheTreeHoweverOldThatIs) {
    tree = world.home / "tree";
    makeFile(tree / "file", "12345");
    makeFile(world.home / "other/file", "54321");
    start = tarvik::ChangeWatch::mark(tree);
    fs::rename(tree, world.home / "old");
    fs::rename(world.home / "other", tree);
    EXPECT_EQ(changed(), "");
    // Another name is no change.
    fs::rename(world.home / "old", world.home / "new name");
    tree = world.home / "new name";
    EXPECT_EQ(changed(), "nothing");
}

TEST_F(ChangeWatchTest, TellsNothingOfATreeThatIsOutOfReach) {
    start = tarvik::ChangeWatch::mark(tree);
    fs::remove_all(tree);
    EXPECT_THROW(changed(), FileError);  // Its drive has gone, for instance.
}

TEST_F(ChangeWatchTest, LooksAtASingleFile) {
    tree = tree / "sub/file";
    start = tarvik::ChangeWatch::mark(tree);
    EXPECT_EQ(changed(), "nothing");
    makeFile(tree, "54321");
    EXPECT_EQ(changed(), "");
}

TEST_F(ChangeWatchTest, FindsARootThatWasReplacedByAnOlderOne) {
    const fs::path folder = tree / "sub";
    for (const fs::path& root : {folder / "file", folder}) {
        const fs::path older = world.folder / "older";
        fs::copy(root, older, fs::copy_options::recursive);
        tree = root;
        start = tarvik::ChangeWatch::mark(root);
        fs::remove_all(root);
        fs::rename(older, root);
        EXPECT_EQ(changed(), "");
    }
}

TEST_F(ChangeWatchTest, KnowsTimesThatTellOnlyEveryOtherSecond) {
    tree = tree / "sub/file";
    const auto changedAt = [&](timespec time) {
        const timespec times[] = {time, time};
        EXPECT_EQ(::utimensat(AT_FDCWD, tree.c_str(), times, 0), 0);
        return changed();
    };
    start.time = {1001, 900'000'000};
    EXPECT_EQ(changedAt({1002, 0}), "");
    EXPECT_EQ(changedAt({1001, 0}), "");
    EXPECT_EQ(changedAt({1000, 0}), "") << "written at 1001.95, for instance";
    for (const time_t wellBefore : {999, 998, 900}) EXPECT_EQ(changedAt({wellBefore, 0}), "nothing") << wellBefore;
    // Finer times are taken as they are.
    EXPECT_EQ(changedAt({1001, 900'000'001}), "");
    EXPECT_EQ(changedAt({1001, 900'000'000}), "nothing");
    EXPECT_EQ(changedAt({1000, 1}), "nothing");
    EXPECT_EQ(changedAt({1002, 1}), "");
    start.time = {1000, 0};
    EXPECT_EQ(changedAt({1000, 0}), "");
    EXPECT_EQ(changedAt({998, 0}), "nothing");
}

}  // namespace tarvik::test
