#include "Platform/Files/TreeWalk.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace tarvik::test {

namespace {

std::vector<std::string> walked(const fs::path& root, TreeWalk::Options options = {}) {
    std::vector<std::string> events;
    TreeWalk walk(root, options);
    while (walk.next()) {
        const char* mark = walk.event() == TreeWalk::Event::item    ? ""
                           : walk.event() == TreeWalk::Event::leave ? "<"
                                                                    : "!";
        events.push_back(mark + walk.relativePath());
    }
    return events;
}

}  // namespace

TEST(TreeWalk, GivesEachFolderBeforeItsContentsInListingOrder) {
    const TemporaryFolder folder;
    makeFile(folder / "b/two");
    makeFile(folder / "b/one");
    makeFile(folder / "a");
    makeFolder(folder / "c");
    EXPECT_EQ(walked(folder.path()), (std::vector<std::string>{"a", "b", "b/one", "b/two", "c"}));
    EXPECT_EQ(walked(folder.path(), {.givesLeave = true}),
              (std::vector<std::string>{"a", "b", "b/one", "b/two", "<b", "c", "<c"}));
}

TEST(TreeWalk, GivesTheEntriesOfAFolderInTheOrderOfTheDisk) {
    const TemporaryFolder folder;
    for (int number = 0; number < 100; ++number) makeFile(folder / std::to_string(number * 7919 % 1000));
    std::vector<std::uint64_t> inodes;
    TreeWalk walk(folder.path(), {.order = TreeWalk::Order::disk});
    while (walk.next()) inodes.push_back(walk.status()->st_ino);
    EXPECT_EQ(inodes.size(), 100U);
    EXPECT_TRUE(std::is_sorted(inodes.begin(), inodes.end()));
}

TEST(TreeWalk, DoesNotFollowLinks) {
    const TemporaryFolder folder;
    makeFolder(folder / "real");
    makeLink(folder / "real/loop", "..");
    makeLink(folder / "self", "self");
    EXPECT_EQ(walked(folder.path()), (std::vector<std::string>{"real", "real/loop", "self"}));
    makeLink(folder / "root", "real");
    EXPECT_EQ(TreeWalk(folder / "root", {}).rootError(), ENOTDIR);
}

TEST(TreeWalk, LeavesHiddenEntriesOutAtEveryDepth) {
    const TemporaryFolder folder;
    makeFile(folder / ".hidden/inside");
    makeFile(folder / "shown/.secret");
    makeFile(folder / "shown/open");
    EXPECT_EQ(walked(folder.path(), {.skipsHidden = true}), (std::vector<std::string>{"shown", "shown/open"}));
}

TEST(TreeWalk, PassesOverContentsWhenAsked) {
    const TemporaryFolder folder;
    makeFile(folder / "a/inside");
    makeFile(folder / "b");
    TreeWalk walk(folder.path(), {});
    ASSERT_TRUE(walk.next());
    EXPECT_EQ(walk.relativePath(), "a");
    walk.skipContents();
    ASSERT_TRUE(walk.next());
    EXPECT_EQ(walk.relativePath(), "b");
    EXPECT_FALSE(walk.next());
}

TEST(TreeWalk, TellsWhyARootCannotBeOpened) {
    const TemporaryFolder folder;
    makeFile(folder / "file");
    EXPECT_EQ(TreeWalk(folder / "missing", {}).rootError(), ENOENT);
    EXPECT_EQ(TreeWalk(folder / "file", {}).rootError(), ENOTDIR);
    EXPECT_TRUE(walked(folder / "missing").empty());
}

TEST(TreeWalk, ReportsAFolderThatVanishesBeforeItIsEntered) {
    const TemporaryFolder folder;
    makeFolder(folder / "a");
    makeFile(folder / "b");
    TreeWalk walk(folder.path(), {});
    ASSERT_TRUE(walk.next());
    fs::remove(folder / "a");
    ASSERT_TRUE(walk.next());
    EXPECT_EQ(walk.event(), TreeWalk::Event::unreadable);
    EXPECT_EQ(walk.errorNumber(), ENOENT);
    EXPECT_STREQ(walk.name(), "a");
    ASSERT_TRUE(walk.next());
    EXPECT_EQ(walk.relativePath(), "b");
}

TEST(TreeWalk, WalksATreeThatIsDeeperThanAPathAndThanOpenFilesAllow) {
    const TemporaryFolder folder;
    const fs::path before = fs::current_path();
    fs::current_path(folder.path());
    constexpr int levels = 2500;
    for (int level = 0; level < levels; ++level) {
        ASSERT_EQ(::mkdir("a", 0755), 0);
        ASSERT_EQ(::symlink("x", "link"), 0);
        ASSERT_EQ(::chdir("a"), 0);
    }
    fs::current_path(before);
    TreeWalk walk(folder.path(), {.givesLeave = true});
    int folders = 0;
    int links = 0;
    int leaves = 0;
    while (walk.next()) {
        ASSERT_NE(walk.event(), TreeWalk::Event::unreadable);
        if (walk.event() == TreeWalk::Event::leave) {
            ++leaves;
        } else {
            ASSERT_TRUE(walk.status());
            (walk.type() == Files::ItemType::folder ? folders : links) += 1;
        }
    }
    EXPECT_EQ(folders, levels);
    EXPECT_EQ(leaves, levels);
    EXPECT_EQ(links, levels);
    Files::removeItem(folder / "a");
}

TEST(TreeWalk, StopsInAFolderThatWasMovedAwayWhileItWasBelow) {
    const TemporaryFolder folder;
    // Deep enough that the upper levels are closed and have to be found again.
    fs::path deep = folder / "top";
    for (int level = 0; level < 60; ++level) deep /= "d";
    makeFile(deep / "file");
    makeFile(folder / "top/z");
    makeFolder(folder / "elsewhere");
    TreeWalk walk(folder.path(), {});
    while (walk.next() && walk.type() != Files::ItemType::regular) continue;
    fs::rename(folder / "top/d/d", folder / "elsewhere/d");
    int unreadable = 0;
    while (walk.next()) unreadable += walk.event() == TreeWalk::Event::unreadable ? 1 : 0;
    EXPECT_GE(unreadable, 1);
}

}  // namespace tarvik::test
