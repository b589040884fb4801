#include "Platform/Files/Files.h"
#include "Platform/Machine/FileEvents.h"
#include "Support/EventLog.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <thread>

namespace tarvik {
namespace {

using test::makeFile;
using test::makeFolder;
using test::makeLink;
using testing::IsEmpty;

class FileEventsTest : public testing::Test {
protected:
    FileEventsTest() { makeFolder(root); }

    std::unique_ptr<FileEvents::Stream> watch(const std::vector<fs::path>& roots) const {
        return events->begin(roots, log.listener());
    }
    /// Waits until all that happened before has been told.
    void catchUp() const {
        static std::atomic<int> count = 0;
        const fs::path mark = root / fmt::format("mark{}", ++count);
        makeFile(mark);
        ASSERT_TRUE(log.tells(mark));
    }

    const std::shared_ptr<const FileEvents> events = makeSystemFileEvents();
    const test::TemporaryFolder world;
    const fs::path root = world / "root";
    const test::EventLog log;
};

TEST_F(FileEventsTest, TellOfWhatIsMadeChangedRenamedAndRemoved) {
    makeFile(root / "changed");
    makeFile(root / "renamed");
    makeFile(root / "removed");
    makeFile(root / "permitted");
    makeFolder(root / "deep/down");
    const auto stream = watch({root});
    ASSERT_TRUE(stream);
    makeFile(root / "made");
    makeFile(root / "changed", "anew");
    fs::rename(root / "renamed", root / "named");
    fs::remove(root / "removed");
    fs::permissions(root / "permitted", fs::perms::owner_read);
    makeFile(root / "deep/down/made");
    makeFile(root / ".hidden/.too");
    EXPECT_THAT(log.missingOf({root / "made", root / "changed", root / "renamed", root / "named", root / "removed",
                               root / "permitted", root / "deep/down/made", root / ".hidden", root / ".hidden/.too"}),
                IsEmpty());
    EXPECT_THAT(log.sentences(), IsEmpty());
}

TEST_F(FileEventsTest, TellOfALinkAndNotOfWhatItLeadsTo) {
    const fs::path elsewhere = world / "elsewhere";
    makeFolder(elsewhere);
    const auto stream = watch({root});
    makeLink(root / "link", elsewhere);
    makeLink(root / "dangling", "nowhere");
    ASSERT_THAT(log.missingOf({root / "link", root / "dangling"}), IsEmpty());
    makeFile(elsewhere / "file");
    catchUp();
    EXPECT_FALSE(log.hasTold(root / "link/file"));
    EXPECT_FALSE(log.hasTold(elsewhere / "file"));
}

TEST_F(FileEventsTest, MissNoneOfManyFilesThatAreCopiedAtOnce) {
    std::vector<std::string> expected;
    for (int folder = 0; folder < 1'000; ++folder)
        for (int file = 0; file < 100; ++file) {
            const std::string name = fmt::format("tree/{}/{}/{}", folder % 10, folder, file);
            if (file == 0) makeFolder((world / name).parent_path());
            makeFile(world / name, "");
            expected.push_back(root / name);
        }
    const auto stream = watch({root});
    const std::string copy = fmt::format("cp -R '{}' '{}'", (world / "tree").native(), root.native());
    ASSERT_EQ(std::system(copy.c_str()), 0);
    EXPECT_THAT(log.missingOf(expected), IsEmpty());
    EXPECT_THAT(log.sentences(), IsEmpty());
}

TEST_F(FileEventsTest, FindFoldersThatAreMadeFilledAndRenamedAtOnce) {
    const auto stream = watch({root});
    std::vector<std::string> expected;
    for (int count = 0; count < 300; ++count) {
        const fs::path first = root / fmt::format("unfinished{}", count);
        const fs::path last = root / fmt::format("finished{}", count);
        makeFile(first / "a/b/file");
        makeFile(first / "other");
        fs::rename(first, last);
        makeFile(last / "a/late");
        fs::rename(last / "a", last / "c");
        makeFile(last / "c/b/last");
        for (const fs::path name : {"c/b/file", "other", "c/late", "c/b/last"}) expected.push_back(last / name);
    }
    EXPECT_THAT(log.missingOf(expected), IsEmpty());
}

TEST_F(FileEventsTest, TellOfAFolderUnderItsNewNameOnceItIsRenamed) {
    makeFolder(root / "old/deep");
    const auto stream = watch({root});
    fs::rename(root / "old", root / "new");
    ASSERT_TRUE(log.tells(root / "new"));
    makeFile(root / "new/deep/file");
    EXPECT_TRUE(log.tells(root / "new/deep/file"));
    EXPECT_FALSE(log.hasTold(root / "old/deep/file"));
}

TEST_F(FileEventsTest, TellTwoFoldersApartThatHaveExchangedTheirNames) {
    makeFolder(root / "one/in one");
    makeFolder(root / "two/in two");
    const auto stream = watch({root});
    Files::exchange(root / "one", root / "two", root / "between");
    ASSERT_THAT(log.missingOf({root / "one", root / "two"}), IsEmpty());
    catchUp();
    for (int count = 0; count < 4; ++count) catchUp();  // Until what is believed to have left has been given up.
    makeFile(root / "one/in two/file");
    makeFile(root / "two/in one/file");
    EXPECT_THAT(log.missingOf({root / "one/in two/file", root / "two/in one/file"}), IsEmpty());
}

TEST_F(FileEventsTest, FollowWhatIsMovedInAndForgetWhatIsMovedOut) {
    makeFile(world / "coming/deep/file");
    makeFolder(root / "going/deep");
    const auto stream = watch({root});
    fs::rename(world / "coming", root / "come");
    fs::rename(root / "going", world / "gone");
    ASSERT_THAT(log.missingOf({root / "come", root / "going"}), IsEmpty());
    makeFile(root / "come/deep/later");
    makeFile(world / "gone/deep/later");
    EXPECT_TRUE(log.tells(root / "come/deep/later"));
    catchUp();
    EXPECT_FALSE(log.hasTold(root / "going/deep/later"));
    EXPECT_FALSE(log.hasTold(world / "gone/deep/later"));
}

TEST_F(FileEventsTest, SeeAFolderThatIsRemovedAndMadeAgain) {
    makeFolder(root / "folder");
    const auto stream = watch({root});
    for (int count = 0; count < 100; ++count) {
        fs::remove_all(root / "folder");
        makeFolder(root / "folder");
    }
    makeFile(root / "folder/file");
    ASSERT_TRUE(log.tells(root / "folder/file"));
    makeFile(root / "folder/later");
    EXPECT_TRUE(log.tells(root / "folder/later"));
}

TEST_F(FileEventsTest, WaitForARootThatIsNotThere) {
    const fs::path late = world / "not/yet/there";
    const auto stream = watch({late});
    ASSERT_TRUE(stream);
    makeFile(world / "not/this");
    makeFile(late / "folder/file");
    ASSERT_TRUE(log.tells(late / "folder/file"));
    makeFile(late / "folder/later");
    EXPECT_TRUE(log.tells(late / "folder/later"));
    EXPECT_FALSE(log.hasTold(world / "not/this"));
}

TEST_F(FileEventsTest, SeeARootGoAndComeAgain) {
    const fs::path inner = root / "inner";
    makeFile(inner / "file");
    const auto stream = watch({inner});
    fs::remove_all(inner);
    ASSERT_THAT(log.missingOf({inner, inner / "file"}), IsEmpty());
    makeFile(inner / "folder/new");
    ASSERT_TRUE(log.tells(inner / "folder/new"));
    fs::rename(root, world / "away");
    makeFile(inner / "newest");
    EXPECT_TRUE(log.tells(inner / "newest")) << "the folder that holds the root has been another one since";
}

TEST_F(FileEventsTest, TakeRootsThatLieInEachOtherOrAreNoFolders) {
    makeFolder(root / "inner");
    makeFile(world / "file");
    const auto stream = watch({root / "inner", root, world / "file"});
    ASSERT_TRUE(stream);
    makeFile(root / "inner/file");
    makeFile(root / "file");
    EXPECT_THAT(log.missingOf({root / "inner/file", root / "file"}), IsEmpty());
}

TEST_F(FileEventsTest, AreNoneWithoutRoots) {
    EXPECT_EQ(watch({}), nullptr);
}

TEST_F(FileEventsTest, KeepNamesOfAnyBytes) {
    TARVIK_NEEDS_NAMES_OF_ANY_BYTES();
    const auto stream = watch({root});
    const fs::path odd = root / "\xff\xfe\n\t folder";
    makeFile(odd / "\x80 file");
    makeFile(root / std::string(255, '\xe9'));
    EXPECT_THAT(log.missingOf({odd, odd / "\x80 file", root / std::string(255, '\xe9')}), IsEmpty());
}

TEST_F(FileEventsTest, EndWhileThingsHappen) {
    std::atomic<bool> goesOn = true;
    std::thread busy([&] {
        for (int count = 0; goesOn; ++count) {
            const fs::path folder = root / fmt::format("folder{}", count % 50);
            makeFile(folder / "deep/file");
            fs::rename(folder, root / "other");
            fs::remove_all(root / "other");
        }
    });
    const auto other = watch({root});
    for (int count = 0; count < 5; ++count) {
        const test::EventLog own;
        auto stream = events->begin({root}, own.listener());
        while (stream && own.batches() == 0) std::this_thread::yield();
        stream.reset();
        const auto batches = own.batches();
        catchUp();
        EXPECT_EQ(own.batches(), batches) << "nobody is told any more";
    }
    for (int count = 0; count < 50; ++count) events->begin({root}, test::EventLog().listener()).reset();
    goesOn = false;
    busy.join();
}

}  // namespace
}  // namespace tarvik
