#include "Discovery/SymlinkScanner.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Support/OrdinaryUser.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <unordered_set>
#include <vector>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SymlinkScannerTest : public testing::Test {
protected:
    std::vector<std::string> namesIn(const std::vector<fs::path>& roots) const {
        std::vector<std::string> names;
        for (const SymlinkEntry& entry : SymlinkScanner::links(roots)) names.push_back(entry.location.filename());
        return names;
    }

    test::World world;
    fs::path applications = world.folder / "Applications";
};

TEST_F(SymlinkScannerTest, SearchesTheFoldersThatThingsAreMovedFrom) {
    EXPECT_THAT(SymlinkScanner::defaultRoots(world.host),
                ElementsAre(applications, world.home / "Applications", world.home / "Library/Application Support",
                            world.home / "Library/Containers", world.home / "Library/Group Containers",
                            world.home / "Music", world.home));
}

TEST_F(SymlinkScannerTest, TellsWhereALinkPointsAndHowMuchIsThere) {
    const fs::path target = world.drive / "ExternalTarvik/Apps/Editor.app";
    test::makeFileOfSize(target / "program", 100'000);
    test::makeLink(applications / "Editor.app", target);
    const std::int64_t size = SizeCalculator::size(world.host, target);
    ASSERT_GE(size, 100'000);
    const SymlinkEntry expected{(applications / "Editor.app").native(), applications / "Editor.app", target, true,
                                size};
    EXPECT_THAT(SymlinkScanner::scan(world.host, {applications}), ElementsAre(expected));
}

TEST_F(SymlinkScannerTest, ListsTheSameWithoutSizes) {
    test::makeFileOfSize(world.drive / "data", 100'000);
    test::makeLink(applications / "data", world.drive / "data");
    auto entries = SymlinkScanner::scan(world.host, {applications});
    ASSERT_THAT(entries, testing::SizeIs(1));
    EXPECT_GT(entries.front().targetSize, 0);
    entries.front().targetSize = 0;
    EXPECT_EQ(SymlinkScanner::links({applications}), entries);
}

TEST_F(SymlinkScannerTest, ListsOnlyVisibleLinksDirectlyInARoot) {
    test::makeLink(world.home / "link", "/");
    test::makeLink(world.home / ".hidden", "/");
    test::makeLink(world.home / "Documents/below", "/");
    test::makeLink(world.home / "Music/song", "/");
    test::makeLink(world.home / "Music/Album/song", "/");
    test::makeFile(world.home / "file");
    EXPECT_THAT(namesIn({world.home}), ElementsAre("link"));
    EXPECT_THAT(namesIn(SymlinkScanner::defaultRoots(world.host)), ElementsAre("song", "link"));
}

TEST_F(SymlinkScannerTest, KeepsALinkWhoseDriveIsUnplugged) {
    test::makeLink(applications / "Editor.app", "/Volumes/Unplugged/Editor.app");
    EXPECT_THAT(SymlinkScanner::scan(world.host, {applications}),
                ElementsAre(SymlinkEntry{(applications / "Editor.app").native(), applications / "Editor.app",
                                         "/Volumes/Unplugged/Editor.app", false, 0}));
}

TEST_F(SymlinkScannerTest, TakesOneStepOfAChainAndAsksWhetherItsEndExists) {
    test::makeFile(world.drive / "end");
    test::makeLink(world.drive / "good", "end");
    test::makeLink(world.drive / "bad", "missing");
    test::makeLink(world.drive / "loop", "loop");
    for (const char* name : {"bad", "good", "loop"}) test::makeLink(applications / name, world.drive / name);
    const auto entries = SymlinkScanner::scan(world.host, {applications});
    ASSERT_THAT(entries, testing::SizeIs(3));
    EXPECT_EQ(entries[0].target, world.drive / "bad");
    EXPECT_FALSE(entries[0].isValid);
    EXPECT_EQ(entries[1].target, world.drive / "good");
    EXPECT_TRUE(entries[1].isValid);
    EXPECT_FALSE(entries[2].isValid);
}

TEST_F(SymlinkScannerTest, MakesARelativeTargetAbsolute) {
    test::makeLink(world.home / "Music/Samples", "../../../Volumes/Backup/./Samples/");
    EXPECT_EQ(SymlinkScanner::links({world.home / "Music"}).at(0).target, world.folder / "Volumes/Backup/Samples");
}

TEST_F(SymlinkScannerTest, GivesEachLinkOnceHoweverOftenItsRootIsNamed) {
    test::makeLink(applications / "Editor.app", "/x");
    EXPECT_THAT(namesIn({applications, applications / "", applications, applications / "../Applications"}),
                ElementsAre("Editor.app"));
    EXPECT_EQ(SymlinkScanner::links({applications / ""}).at(0).id, (applications / "Editor.app").native());
}

TEST_F(SymlinkScannerTest, PassesOverRootsThatCannotBeListed) {
    test::makeLink(world.home / "link", "/");
    test::makeFile(world.folder / "file");
    test::makeLink(world.folder / "closed/link", "/");
    fs::permissions(world.folder / "closed", fs::perms::none);
    {
        const test::OrdinaryUser user(world.folder.path());
        EXPECT_THAT(namesIn({world.folder / "missing", world.folder / "file", world.folder / "closed", world.home}),
                    ElementsAre("link"));
    }
    fs::permissions(world.folder / "closed", fs::perms::owner_all);
    EXPECT_THAT(namesIn({}), IsEmpty());
}

TEST_F(SymlinkScannerTest, GoesByTheBytesOfPaths) {
    TARVIK_NEEDS_NAMES_OF_ANY_BYTES();
    for (const char* name : {"b", "B", "a", "Zebra", "ä", "日本", "\xFFx", "a b"})
        test::makeLink(applications / name, "/missing");
    test::makeLink(world.folder / "Applications a/link", "/missing");
    EXPECT_THAT(namesIn({applications, world.folder / "Applications a"}),
                ElementsAre("link", "B", "Zebra", "a", "a b", "b", "ä", "日本", "\xFFx"));
}

TEST_F(SymlinkScannerTest, MeasuresNothingOnceCancelled) {
    test::makeFileOfSize(world.drive / "data/file", 100'000);
    test::makeLink(applications / "data", world.drive / "data");
    Cancellation cancellation;
    cancellation.cancel();
    const auto entries = SymlinkScanner::scan(world.host, {applications}, cancellation);
    ASSERT_THAT(entries, testing::SizeIs(1));
    EXPECT_TRUE(entries[0].isValid);
    EXPECT_EQ(entries[0].targetSize, 0);
}

TEST(SymlinkEntry, HashesByAllItsFields) {
    const SymlinkEntry entry{"/a", "/a", "/b", true, 1};
    std::unordered_set<SymlinkEntry> entries = {entry, entry};
    EXPECT_EQ(entries.size(), 1U);
    for (const SymlinkEntry& other : {SymlinkEntry{"/x", "/a", "/b", true, 1}, SymlinkEntry{"/a", "/x", "/b", true, 1},
                                      SymlinkEntry{"/a", "/a", "/x", true, 1}, SymlinkEntry{"/a", "/a", "/b", false, 1},
                                      SymlinkEntry{"/a", "/a", "/b", true, 2}}) {
        EXPECT_NE(std::hash<SymlinkEntry>()(other), std::hash<SymlinkEntry>()(entry));
        entries.insert(other);
    }
    EXPECT_EQ(entries.size(), 6U);
}

}  // namespace
}  // namespace tarvik
