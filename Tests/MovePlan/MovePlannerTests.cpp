#include "MovePlan/MovePlanner.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Storage/SizingService.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MovePlannerTest : public testing::Test {
protected:
    AppEntry entryOf(const fs::path& bundle, std::vector<fs::path> dataPaths = {}) const {
        test::makeFile(bundle / "Contents/Info.plist");
        for (const fs::path& path : dataPaths)
            if (path.filename() != "missing") test::makeFile(path);
        AppEntry entry;
        entry.name = bundle.stem();
        entry.bundlePath = bundle;
        entry.appSize = 12'345;
        entry.dataPaths = std::move(dataPaths);
        return entry;
    }
    std::vector<MoveJob> planned(const std::vector<AppEntry>& entries, bool includeData = true) const {
        return MovePlanner::buildAppJobs(world.host, entries, world.driveInfo(), includeData);
    }
    std::vector<fs::path> sources(const std::vector<AppEntry>& entries, bool includeData = true) const {
        std::vector<fs::path> paths;
        for (const MoveJob& job : planned(entries, includeData)) paths.push_back(job.source);
        return paths;
    }

    test::World world;
    fs::path applications = world.folder / "Applications";
    fs::path library = world.home / "Library";
    fs::path external = world.drive / "ExternalTarvik";
};

TEST_F(MovePlannerTest, MakesOneJobForABundleWithoutData) {
    const fs::path bundle = applications / "Editor.app";
    const auto jobs = planned({entryOf(bundle)});
    ASSERT_EQ(jobs.size(), 1U);
    EXPECT_EQ(jobs[0].label, "Editor");
    EXPECT_EQ(jobs[0].source, bundle);
    EXPECT_EQ(jobs[0].destination, external / "Apps/Editor.app");
    EXPECT_EQ(jobs[0].status, JobStatus::pending());
    EXPECT_EQ(jobs[0].bytesTotal, 12'345);
    EXPECT_EQ(jobs[0].bytesCopied, 0);
}

TEST_F(MovePlannerTest, MakesOneJobForAnItemThatIsNamedInTwoWays) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const fs::path support = library / "Application Support/Editor";
    const auto entry = entryOf(applications / "Editor.app", {support});
    const auto view = test::RealVolume::viewOf(library, world.folder.path());
    if (!view) TARVIK_SKIP_BECAUSE("This system shows no folder twice.");
    auto twice = entry;
    twice.dataPaths.push_back(*view / "Application Support/Editor");
    EXPECT_EQ(sources({twice}), sources({entry}));
}

TEST_F(MovePlannerTest, MakesAJobForEachDataPathAfterTheBundle) {
    const fs::path support = library / "Application Support/Editor";
    const fs::path shared = world.folder / "Library/Application Support/Acme";
    const fs::path other = world.folder / "opt/acme";
    AppEntry entry = entryOf(applications / "Editor.app", {shared, other});
    test::makeFileOfSize(support / "file", 70'000);
    test::makeFileOfSize(support / ".hidden", 80'000);
    entry.dataPaths.insert(entry.dataPaths.begin(), support);
    const auto jobs = planned({entry});
    ASSERT_EQ(jobs.size(), 4U);
    EXPECT_EQ(jobs[1].label, "Editor — Editor");
    EXPECT_EQ(jobs[1].source, support);
    EXPECT_EQ(jobs[1].destination, external / "Data/Library/Application Support/Editor");
    EXPECT_EQ(jobs[1].status, JobStatus::pending());
    EXPECT_EQ(jobs[1].bytesTotal, SizingService::size(world.host, support));
    EXPECT_GT(jobs[1].bytesTotal, 70'000);
    EXPECT_EQ(jobs[2].destination, external / "Data/System/Library/Application Support/Acme");
    EXPECT_EQ(jobs[3].destination, external / "Data/acme");
}

TEST_F(MovePlannerTest, MeasuresDataQuicklyEachFolderOnce) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    AppEntry entry = entryOf(applications / "Editor.app");
    const fs::path data = library / "Data";
    entry.dataPaths.push_back(data);
    test::makeFileOfSize(data / "folder/file", 70'000);
    test::makeFolder(data / "again");
    const auto again = test::RealVolume::viewOf(data / "folder", data / "again");
    if (!again) TARVIK_SKIP_BECAUSE("This system shows no folder in two places.");
    const std::int64_t file = SizingService::size(world.host, data / "folder");
    ASSERT_EQ(SizeCalculator::size(world.host, data), 2 * file);
    EXPECT_EQ(planned({entry}).at(1).bytesTotal, file);
}

TEST_F(MovePlannerTest, MovesDataOnceWithTheDataThatItStandsIn) {
    const fs::path data = library / "Application Support/Acme";
    const AppEntry inner =
        entryOf(applications / "Editor.app", {data / "plugins/more/file", data / "plugins.old/file"});
    const AppEntry outer = entryOf(applications / "Player.app");
    AppEntry both = outer;
    both.dataPaths = {data / "plugins", data};
    EXPECT_THAT(sources({inner, both}), ElementsAre(inner.bundlePath, both.bundlePath, data));
    both.dataPaths = {data / "plugins"};
    EXPECT_THAT(sources({both, inner}),
                ElementsAre(both.bundlePath, data / "plugins", inner.bundlePath, data / "plugins.old/file"));
}

TEST_F(MovePlannerTest, TakesNoFolderWithABundleForData) {
    AppEntry entry = entryOf(applications / "Suite/Editor.app", {library / "Editor"});
    entry.dataPaths.push_back(applications / "Suite");
    entry.dataPaths.push_back(entry.bundlePath / "Contents");
    EXPECT_THAT(sources({entry}), ElementsAre(entry.bundlePath, library / "Editor"));
}

TEST_F(MovePlannerTest, LeavesDataOutUnlessItIsAskedFor) {
    const fs::path bundle = applications / "Editor.app";
    EXPECT_THAT(sources({entryOf(bundle, {library / "a", library / "b"})}, false), ElementsAre(bundle));
}

TEST_F(MovePlannerTest, PassesOverWhatIsMissing) {
    AppEntry entry = entryOf(applications / "Editor.app", {library / "missing", library / "there"});
    test::makeLink(library / "dangling", "nowhere");
    entry.dataPaths.push_back(library / "dangling");
    fs::remove_all(entry.bundlePath);
    EXPECT_THAT(sources({entry}), ElementsAre(library / "there"));
}

TEST_F(MovePlannerTest, NeverMovesPreferencesThatTheSystemRewrites) {
    const AppEntry entry =
        entryOf(applications / "Editor.app",
                {library / "Preferences/com.acme.plist", library / "Preferences/ByHost/com.acme.plist",
                 library / "Preferences/Sub/com.acme.plist", library / "Preferences/com.acme.data",
                 library / "Preferences.plist", world.folder / "Library/Preferences/com.acme.editor.plist"});
    EXPECT_THAT(sources({entry}), ElementsAre(entry.bundlePath, library / "Preferences/Sub/com.acme.plist",
                                              library / "Preferences/com.acme.data", library / "Preferences.plist"));
}

TEST_F(MovePlannerTest, PlansTheDataOfABundleThatIsLinkedAlready) {
    const fs::path bundle = applications / "Editor.app";
    test::makeFile(external / "Apps/Editor.app/x");
    test::makeLink(bundle, external / "Apps/Editor.app");
    const AppEntry entry{.name = "Editor", .bundlePath = bundle, .dataPaths = {library / "data"}};
    test::makeFile(library / "data");
    EXPECT_THAT(sources({entry}), ElementsAre(library / "data"));
}

TEST_F(MovePlannerTest, PassesOverWhatStandsInALinkedFolder) {
    test::makeFile(world.drive / "Suite/Editor.app/x");
    test::makeFile(world.drive / "Suite/data");
    test::makeLink(applications / "Suite", world.drive / "Suite");
    test::makeLink(library / "Suite", world.drive / "Suite");
    const AppEntry entry{.name = "Editor",
                         .bundlePath = applications / "Suite/Editor.app",
                         .dataPaths = {library / "Suite", library / "Suite/data"}};
    EXPECT_THAT(sources({entry}), IsEmpty());
}

TEST_F(MovePlannerTest, DoesNotCountALinkAboveAnApplicationsFolder) {
    test::makeFolder(world.folder / "disk/Applications/Editor.app");
    test::makeLink(world.folder / "link", "disk");
    Host host = world.host;
    host.root = world.folder / "link";
    EXPECT_TRUE(MovePlanner::shouldMove(host, world.folder / "link/Applications/Editor.app"));
    EXPECT_FALSE(MovePlanner::shouldMove(world.host, world.folder / "link/Applications/Editor.app"));
}

TEST_F(MovePlannerTest, CountsAnApplicationsFolderThatIsALink) {
    test::makeFolder(world.folder / "disk/Editor.app");
    test::makeLink(applications, "disk");
    EXPECT_FALSE(MovePlanner::shouldMove(world.host, applications / "Editor.app"));
}

TEST_F(MovePlannerTest, MovesDataOfTwoApplicationsOnce) {
    const AppEntry one = entryOf(applications / "One.app", {library / "Shared", library / "Shared"});
    const AppEntry two = entryOf(applications / "Two.app", {library / "Shared"});
    const auto jobs = planned({one, two});
    ASSERT_EQ(jobs.size(), 3U);
    EXPECT_EQ(jobs[1].label, "One — Shared");
    EXPECT_EQ(jobs[2].label, "Two");
}

TEST_F(MovePlannerTest, KeepsTheFirstJobForADestination) {
    const AppEntry one = entryOf(applications / "Editor.app");
    const AppEntry two = entryOf(world.home / "Applications/Editor.app");
    const AppEntry three = entryOf(applications / "Other.app", {world.folder / "a/data", world.folder / "b/data"});
    EXPECT_THAT(sources({one, two, three}), ElementsAre(one.bundlePath, three.bundlePath, world.folder / "a/data"));
}

TEST_F(MovePlannerTest, PutsABundleWithATrailingSlashUnderItsName) {
    AppEntry entry = entryOf(applications / "Editor.app");
    entry.bundlePath /= "";
    EXPECT_EQ(planned({entry}).at(0).destination, external / "Apps/Editor.app");
}

TEST_F(MovePlannerTest, KeepsTheBytesOfNames) {
    const AppEntry entry = entryOf(applications / "\xFF日本.app", {library / "\xFE"});
    const auto jobs = planned({entry});
    ASSERT_EQ(jobs.size(), 2U);
    EXPECT_EQ(jobs[0].destination, external / "Apps/\xFF日本.app");
    EXPECT_EQ(jobs[1].destination, external / "Data/Library/\xFE");
}

TEST_F(MovePlannerTest, PlansNothingForNothing) {
    EXPECT_THAT(planned({}), IsEmpty());
}

TEST_F(MovePlannerTest, TellsWhetherOneItemShouldMove) {
    test::makeFile(library / "Preferences/com.acme.plist");
    test::makeFile(library / "data/file");
    test::makeLink(library / "link", "data");
    test::makeLink(library / "loop", "loop");
    EXPECT_TRUE(MovePlanner::shouldMove(world.host, library / "data"));
    EXPECT_TRUE(MovePlanner::shouldMove(world.host, library / "data/file"));
    EXPECT_FALSE(MovePlanner::shouldMove(world.host, library / "link"));
    EXPECT_FALSE(MovePlanner::shouldMove(world.host, library / "link/file"));
    EXPECT_FALSE(MovePlanner::shouldMove(world.host, library / "loop"));
    EXPECT_FALSE(MovePlanner::shouldMove(world.host, library / "missing"));
    EXPECT_FALSE(MovePlanner::shouldMove(world.host, library / "Preferences/com.acme.plist"));
}

TEST(MovePlanner, KnowsPreferencesThatMustStay) {
    struct Row {
        const char* path;
        bool isUnsafe;
    };
    const Row rows[] = {
        {"/Users/ada/Library/Preferences/com.acme.plist", true},
        {"/Users/ada/Library/Preferences/ByHost/com.acme.plist", true},
        {"/Library/Preferences/com.acme.plist", true},
        {"/Users/ada/Library/./Preferences/Sub/../com.acme.plist", true},
        {"/Users/ada/Library/Preferences/.GlobalPreferences.plist", true},
        {"/Users/ada/Library/Preferences/.plist", false},
        {"/Users/ada/Library/Preferences/com.acme.PLIST", false},
        {"/Users/ada/Library/Preferences/com.acme.plist.old", false},
        {"/Users/ada/Library/Preferences/Sub/com.acme.plist", false},
        {"/Users/ada/Library/Preferences/ByHost/Sub/com.acme.plist", false},
        {"/Users/ada/Library/Preferences.plist", false},
        {"/Users/ada/MyLibrary/Preferences/com.acme.plist", false},
        {"/Users/ada/Library/Preferences2/com.acme.plist", false},
        {"/Users/ada/Library/Preferences", false},
        {"/com.acme.plist", false},
    };
    for (const Row& row : rows) EXPECT_EQ(MovePlanner::isUnsafePrefsPlist(row.path), row.isUnsafe) << row.path;
}

}  // namespace
}  // namespace tarvik
