#include "Discovery/AppScanner.h"
#include "Move/AppRestore.h"
#include "Platform/Files.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class AppRestoreTest : public testing::Test {
protected:
    /// A moved application; `name` may stand in a folder.
    AppEntry moved(const std::string& name) const {
        test::makeBundle(onDrive / name);
        test::makeFolder(applications);
        test::makeLink(applications / name, onDrive / name);
        return entryOf(applications / name);
    }
    AppEntry entryOf(const fs::path& bundle) const { return AppScanner::metadataEntry(world.host, bundle).value(); }

    test::World world;
    fs::path applications = world.folder / "Applications";
    fs::path onDrive = world.drive / "ExternalTarvik/Apps";
};

}  // namespace

TEST_F(AppRestoreTest, FindsTheLinkWithWhatItLeadsTo) {
    const auto link = AppRestore::restoreEntry(world.host, moved("Editor.app"));
    ASSERT_TRUE(link);
    EXPECT_EQ(link->location, applications / "Editor.app");
    EXPECT_EQ(link->target, onDrive / "Editor.app");
    EXPECT_TRUE(link->isValid);
    EXPECT_GT(link->targetSize, 0);
}

TEST_F(AppRestoreTest, FindsALinkWhoseTargetIsGone) {
    const auto editor = moved("Editor.app");
    fs::remove_all(onDrive / "Editor.app");
    const auto link = AppRestore::restoreEntry(world.host, editor);
    ASSERT_TRUE(link);
    EXPECT_FALSE(link->isValid);
    EXPECT_EQ(link->targetSize, 0);
}

TEST_F(AppRestoreTest, ReadsARelativeLinkFromItsFolder) {
    test::makeBundle(applications / "Real.app");
    test::makeLink(applications / "Other.app", "Real.app");
    EXPECT_EQ(AppRestore::restoreEntry(world.host, entryOf(applications / "Other.app"))->target,
              applications / "Real.app");
}

TEST_F(AppRestoreTest, FindsTheLauncher) {
    test::makeBundle(onDrive / "Editor.app");
    test::makeLauncher(applications / "Editor.app", onDrive / "Editor.app");
    const auto link = AppRestore::restoreEntry(world.host, entryOf(applications / "Editor.app"));
    ASSERT_TRUE(link);
    EXPECT_EQ(link->target, onDrive / "Editor.app");
}

TEST_F(AppRestoreTest, GivesOneLinkForTheApplicationsOfOneFolder) {
    for (const auto* name : {"One.app", "Two.app"}) test::makeBundle(onDrive / "Suite" / name);
    test::makeFolder(applications);
    test::makeLink(applications / "Suite", onDrive / "Suite");
    const auto links = AppRestore::dedupedRestoreEntries(
        world.host, {entryOf(applications / "Suite/One.app"), entryOf(applications / "Suite/Two.app")});
    ASSERT_THAT(links, SizeIs(1));
    EXPECT_EQ(links[0].location, applications / "Suite");
}

TEST_F(AppRestoreTest, LeavesOutTheLauncherOfWhatComesBackWithItsFolder) {
    test::makeBundle(onDrive / "Suite/Mixer.app");
    const auto alone = moved("Editor.app");
    test::makeLink(applications / "Suite", onDrive / "Suite");
    test::makeLauncher(applications / "Mixer.app", onDrive / "Suite/Mixer.app");
    const auto launched = entryOf(applications / "Mixer.app");
    const auto inside = entryOf(applications / "Suite/Mixer.app");
    for (const auto& chosen : {std::vector{launched, inside, alone}, std::vector{inside, alone, launched}}) {
        std::vector<fs::path> places;
        for (const auto& link : AppRestore::dedupedRestoreEntries(world.host, chosen)) places.push_back(link.location);
        EXPECT_THAT(places, testing::UnorderedElementsAre(applications / "Suite", alone.bundlePath));
    }
    EXPECT_EQ(AppRestore::dedupedRestoreEntries(world.host, {launched}).at(0).location, applications / "Mixer.app");
}

TEST_F(AppRestoreTest, GivesTheFirstOfTwoLaunchersForOne) {
    test::makeBundle(onDrive / "Editor.app");
    for (const auto* name : {"Editor.app", "Copy.app"}) test::makeLauncher(applications / name, onDrive / "Editor.app");
    const auto links = AppRestore::dedupedRestoreEntries(
        world.host, {entryOf(applications / "Editor.app"), entryOf(applications / "Copy.app")});
    ASSERT_THAT(links, SizeIs(1));
    EXPECT_EQ(links[0].location, applications / "Editor.app");
}

TEST_F(AppRestoreTest, GivesEveryLinkAlsoThoseThatLeadIntoOneAnother) {
    test::makeBundle(onDrive / "Suite/Mixer.app");
    test::makeFolder(applications);
    test::makeLink(applications / "Suite", onDrive / "Suite");
    test::makeLink(applications / "Mixer.app", onDrive / "Suite/Mixer.app");
    EXPECT_THAT(AppRestore::dedupedRestoreEntries(
                    world.host, {entryOf(applications / "Suite/Mixer.app"), entryOf(applications / "Mixer.app")}),
                SizeIs(2));
}

TEST_F(AppRestoreTest, AsksAboutLinksThatNoMoveHasLeft) {
    const auto own = moved("Editor.app");
    test::makeBundle(world.folder / "Elsewhere/Foreign.app");
    test::makeLink(applications / "Foreign.app", world.folder / "Elsewhere/Foreign.app");
    const auto links = AppRestore::dedupedRestoreEntries(world.host, {own, entryOf(applications / "Foreign.app")});
    const Dialog question = AppRestore::confirmRestore(world.host, links);
    EXPECT_EQ(question.title, "Move 2 items back?");
    EXPECT_THAT(question.details, ElementsAre("Foreign.app is not a symlink that Tarvik has left."));
}

TEST_F(AppRestoreTest, FindsNothingAboveTheFoldersOfApplications) {
    test::makeBundle(world.folder / "Elsewhere/Editor.app");
    test::makeLink(world.folder / "Applications", world.folder / "Elsewhere");
    const auto found = AppRestore::restoreEntry(world.host, entryOf(applications / "Editor.app"));
    ASSERT_TRUE(found) << "the folder itself is one of them";
    EXPECT_EQ(found->location, applications);
    fs::remove(applications);
    test::makeBundle(applications / "Editor.app");
    EXPECT_FALSE(AppRestore::restoreEntry(world.host, entryOf(applications / "Editor.app")));
}

TEST_F(AppRestoreTest, BeginsNothingMoreOnceItIsCancelled) {
    const auto links =
        AppRestore::dedupedRestoreEntries(world.host, {moved("Editor.app"), moved("Player.app"), moved("Third.app")});
    Cancellation stop;
    const auto outcome = AppRestore::restoreAll(
        world.host, links,
        [&](std::size_t index) {
            if (index == 1) stop.cancel();
        },
        [](std::size_t, const ByteProgress&) {}, stop);
    EXPECT_EQ(outcome.total, 2);
    EXPECT_THAT(outcome.failures, IsEmpty());
    EXPECT_TRUE(Files::isFolder(applications / "Player.app")) << "the item that is under way is brought to its end";
    EXPECT_TRUE(Files::isSymbolicLink(applications / "Third.app"));
    EXPECT_EQ(AppRestore::summary(outcome).text, "Moved 2 items back.");
}

TEST_F(AppRestoreTest, TellsEachFailureWithItsName) {
    const auto links = AppRestore::dedupedRestoreEntries(world.host, {moved("Editor.app"), moved("Player.app")});
    fs::remove_all(onDrive / "Editor.app");
    const auto outcome = AppRestore::restoreAll(
        world.host, links, [](std::size_t) {}, [](std::size_t, const ByteProgress&) {});
    EXPECT_THAT(outcome.failures, ElementsAre(testing::StartsWith("Editor.app: ")));
    EXPECT_EQ(AppRestore::summary(outcome).text, "Move back completed with 1 failure.");
    EXPECT_TRUE(Files::isFolder(applications / "Player.app"));
}

}  // namespace tarvik
