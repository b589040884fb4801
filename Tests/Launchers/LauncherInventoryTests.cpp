#include "Launchers/LauncherInventory.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {

namespace {

using Condition = LauncherEntry::Condition;
using testing::ElementsAre;
using testing::IsEmpty;

/// A world with a linked suite and a few applications on the drive.
class LauncherInventoryTest : public testing::Test {
protected:
    LauncherInventoryTest() {
        world.host.tools.externalAppLauncher = world.folder / "external-app-launcher";
        test::makeFile(world.host.tools.externalAppLauncher, "the program");
        test::makeFolder(applications);
        test::makeBundle(onDrive / "Editor.app");
    }

    void launcherFor(const fs::path& bundle, const fs::path& target) const {
        test::makeLauncher(bundle, target);
        test::makeFile(bundle / "Contents/MacOS/ExternalAppLauncher");
    }

    std::vector<LauncherEntry> list() const { return LauncherInventory::list(world.host); }

    test::World world;
    fs::path applications = world.folder / "Applications";
    fs::path onDrive = world.drive / "ExternalTarvik/Apps";
};

}  // namespace

TEST_F(LauncherInventoryTest, KnowsWhatEachLauncherIsWorth) {
    launcherFor(applications / "Good.app", onDrive / "Editor.app");
    launcherFor(world.home / "Applications/Own.app", onDrive / "Editor.app");
    launcherFor(applications / "Gone.app", onDrive / "Gone.app");
    launcherFor(applications / "Empty.app", "");
    launcherFor(applications / "Relative.app", ".");
    launcherFor(applications / "Old.app", world.drive / "Tarvik/Apps/Editor.app");
    test::makeLauncher(applications / "Hollow.app", onDrive / "Editor.app");
    test::makeBundle(world.drive / "Suite/Mixer.app");
    test::makeBundle(world.drive / "Suite/Tuner.app");
    test::makeLink(applications / "Suite", world.drive / "Suite");
    launcherFor(applications / "Mixer.app", onDrive / "Editor.app");
    EXPECT_THAT(
        list(),
        ElementsAre(LauncherEntry{applications / "Empty.app", "", Condition::broken},
                    LauncherEntry{applications / "Gone.app", onDrive / "Gone.app", Condition::broken},
                    LauncherEntry{applications / "Good.app", onDrive / "Editor.app", Condition::ok},
                    LauncherEntry{applications / "Hollow.app", onDrive / "Editor.app", Condition::incomplete},
                    LauncherEntry{applications / "Mixer.app", world.drive / "Suite/Mixer.app", Condition::outdated},
                    LauncherEntry{applications / "Old.app", onDrive / "Editor.app", Condition::relocated},
                    LauncherEntry{applications / "Relative.app", ".", Condition::broken},
                    LauncherEntry{applications / "Tuner.app", world.drive / "Suite/Tuner.app", Condition::missing},
                    LauncherEntry{world.home / "Applications/Own.app", onDrive / "Editor.app", Condition::ok}));
}

TEST_F(LauncherInventoryTest, LeavesOutWhatIsNoLauncher) {
    test::makeBundle(applications / "Real.app");
    launcherFor(world.drive / "Launcher.app", onDrive / "Editor.app");
    test::makeLink(applications / "Link.app", world.drive / "Launcher.app");
    launcherFor(applications / ".Hidden.app", onDrive / "Editor.app");
    launcherFor(applications / "Folder", onDrive / "Editor.app");
    EXPECT_THAT(list(), IsEmpty());
    fs::remove_all(applications);
    EXPECT_THAT(list(), IsEmpty());
}

TEST_F(LauncherInventoryTest, MendsWhatCanBeMended) {
    launcherFor(applications / "Gone.app", onDrive / "Gone.app");
    launcherFor(applications / "Old.app", world.drive / "Tarvik/Apps/Editor.app");
    test::makeLauncher(applications / "Hollow.app", onDrive / "Editor.app");
    test::makeBundle(world.drive / "Suite/Mixer.app");
    test::makeLink(applications / "Suite", world.drive / "Suite");
    for (const auto& entry : list())
        if (entry.isRepairable()) LauncherInventory::repair(world.host, entry);
    EXPECT_THAT(list(),
                ElementsAre(LauncherEntry{applications / "Gone.app", onDrive / "Gone.app", Condition::broken},
                            LauncherEntry{applications / "Hollow.app", onDrive / "Editor.app", Condition::ok},
                            LauncherEntry{applications / "Mixer.app", world.drive / "Suite/Mixer.app", Condition::ok},
                            LauncherEntry{applications / "Old.app", onDrive / "Editor.app", Condition::ok}));
    EXPECT_THAT(Files::names(world.trash->folder), ElementsAre("Hollow.app", "Old.app"));
}

TEST_F(LauncherInventoryTest, TakesTheLaunchersOfAFolderAwayThatHasComeBack) {
    const fs::path suite = world.drive / "ExternalTarvik/Folders/Suite";
    test::makeBundle(suite / "Mixer.app");
    test::makeBundle(applications / "Suite/Mixer.app");
    test::makeBundle(applications / "Suite/Tools/Tuner.app");
    launcherFor(applications / "Mixer.app", suite / "Mixer.app");
    launcherFor(applications / "Tuner.app", suite / "Tools/Tuner.app");
    launcherFor(applications / "Gone.app", suite / "Gone.app");
    EXPECT_THAT(list(),
                ElementsAre(LauncherEntry{applications / "Gone.app", suite / "Gone.app", Condition::broken},
                            LauncherEntry{applications / "Mixer.app", suite / "Mixer.app", Condition::needless},
                            LauncherEntry{applications / "Tuner.app", suite / "Tools/Tuner.app", Condition::needless}));
    for (const auto& entry : list())
        if (entry.isRepairable()) LauncherInventory::repair(world.host, entry);
    EXPECT_THAT(Files::names(applications), ElementsAre("Gone.app", "Suite"));
    EXPECT_TRUE(Files::exists(suite / "Mixer.app"));
}

TEST_F(LauncherInventoryTest, LeavesALauncherForWhatALinkLeadsTo) {
    const fs::path suite = world.drive / "ExternalTarvik/Folders/Suite";
    test::makeBundle(suite / "Mixer.app");
    test::makeBundle(applications / "Suite/Mixer.app");
    test::makeLink(applications / "Other", suite);
    launcherFor(applications / "Mixer.app", suite / "Mixer.app");
    EXPECT_THAT(list(), ElementsAre(LauncherEntry{applications / "Mixer.app", suite / "Mixer.app", Condition::ok}));
}

TEST_F(LauncherInventoryTest, SaysWhyALauncherCannotBeMade) {
    fs::remove(world.host.tools.externalAppLauncher);
    try {
        LauncherInventory::repair(world.host, {applications / "Editor.app", onDrive / "Editor.app"});
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.description(), "Launcher binary is missing.");
    }
}

TEST(LauncherInventory, AsksBeforeItRepairs) {
    std::vector<LauncherEntry> entries = {{.launcher = "/Applications/1.app"}};
    EXPECT_EQ(LauncherInventory::confirmRepair(entries),
              (Dialog{"Install or repair 1 launcher?",
                      "1.app. What stands in their places goes to the Trash.",
                      {"Repair", "Cancel"}}));
    for (int number = 2; number <= 7; ++number)
        entries.push_back({.launcher = "/Applications/" + std::to_string(number) + ".app"});
    const auto dialog = LauncherInventory::confirmRepair(entries);
    EXPECT_EQ(dialog.title, "Install or repair 7 launchers?");
    EXPECT_EQ(dialog.text,
              "1.app, 2.app, 3.app, 4.app, 5.app, 6.app and 1 more. What stands in their places goes to the Trash.");
}

TEST(LauncherInventory, CountsWhatWasRepaired) {
    EXPECT_EQ(LauncherInventory::repaired(0), "Installed/repaired 0 Spotlight launchers.");
    EXPECT_EQ(LauncherInventory::repaired(1), "Installed/repaired 1 Spotlight launcher.");
    EXPECT_EQ(LauncherInventory::repaired(2), "Installed/repaired 2 Spotlight launchers.");
}

TEST_F(LauncherInventoryTest, LeavesARealApplicationThatCameMeanwhile) {
    test::makeBundle(world.drive / "Suite/Mixer.app");
    test::makeLink(applications / "Suite", world.drive / "Suite");
    const auto missing = list();
    ASSERT_EQ(missing.size(), 1U);
    test::makeBundle(applications / "Mixer.app");
    const auto before = test::pictureOf(applications);
    EXPECT_THROW(LauncherInventory::repair(world.host, missing[0]), Failure);
    EXPECT_EQ(test::pictureOf(applications), before);
}

}  // namespace tarvik
