#include "Discovery/AppScanner.h"
#include "MovePlan/AppRestore.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

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

    AppRestore::Plan planned(const std::vector<AppRestore::Wanted>& wanted) const {
        return AppRestore::plan(world.host, wanted);
    }
    std::vector<AppRestore::Result> run(const AppRestore::Plan& plan) const {
        return AppRestore::restoreAll(
            world.host, plan.waysBack, [](std::size_t) {}, [](std::size_t, const ByteProgress&) {});
    }
    static std::vector<fs::path> linksOf(const AppRestore::Plan& plan) {
        std::vector<fs::path> links;
        for (const auto& wayBack : plan.waysBack) links.push_back(wayBack.link);
        return links;
    }

    test::World world;
    fs::path applications = world.folder / "Applications";
    fs::path onDrive = world.drive / "ExternalTarvik/Apps";
};

}  // namespace

TEST_F(AppRestoreTest, KeepsTheMachineAwakeFromTheFirstItemToTheLast) {
    const auto plan = planned({moved("Editor.app"), moved("Mixer.app")});
    fs::remove_all(onDrive / "Editor.app");
    const auto results = AppRestore::restoreAll(world.host, plan.waysBack,
                                                [&](std::size_t) { EXPECT_EQ(world.sleepBlocker->holds, 1); }, {});
    EXPECT_TRUE(results[0]);
    EXPECT_FALSE(results[1]);
    EXPECT_EQ(world.sleepBlocker->holds, 0);
}

TEST_F(AppRestoreTest, FindsTheLinkWithWhatItLeadsTo) {
    const auto plan = planned({moved("Editor.app")});
    ASSERT_THAT(plan.waysBack, SizeIs(1));
    EXPECT_EQ(plan.waysBack[0].link, applications / "Editor.app");
    EXPECT_EQ(plan.waysBack[0].target, onDrive / "Editor.app");
    EXPECT_GT(plan.waysBack[0].bytes, 0);
    EXPECT_THAT(plan.refused, IsEmpty());
}

TEST_F(AppRestoreTest, TakesAPathAsWellAsAnApplication) {
    test::makeFile(world.foldersOnDrive() / "Music/song");
    test::makeLink(world.home / "Music", world.foldersOnDrive() / "Music");
    EXPECT_THAT(linksOf(planned({world.home / "Music", moved("Editor.app"), world.home / "./Music"})),
                ElementsAre(world.home / "Music", applications / "Editor.app"));
}

TEST_F(AppRestoreTest, TakesANameForAPathWhereSomethingStandsThere) {
    EXPECT_TRUE(AppRestore::isPath("a/b"));
    EXPECT_TRUE(AppRestore::isPath("."));
    EXPECT_FALSE(AppRestore::isPath("No such Editor"));
}

TEST_F(AppRestoreTest, RefusesWhatCannotComeBackAndGoesOn) {
    const auto editor = moved("Editor.app");
    fs::remove_all(onDrive / "Editor.app");
    test::makeBundle(applications / "Real.app");
    test::makeLink(applications / "Other.app", "Real.app");
    const auto player = moved("Player.app");
    const auto plan = planned(
        {editor, entryOf(applications / "Other.app"), entryOf(applications / "Real.app"), world.home / "none", player});
    EXPECT_THAT(linksOf(plan), ElementsAre(applications / "Player.app"));
    const auto gone = "Editor.app leads to " + (onDrive / "Editor.app").native() + ", where nothing stands any more.";
    EXPECT_THAT(
        plan.refused,
        ElementsAre(AppRestore::Refused{"Editor.app", applications / "Editor.app", gone},
                    AppRestore::Refused{"Other.app", applications / "Other.app",
                                        "Other.app is a relative symlink, to Real.app: no move leaves one, so there is "
                                        "nothing to move back."},
                    AppRestore::Refused{"Real", applications / "Real.app", "No symlink found for Real."},
                    AppRestore::Refused{"none", world.home / "none",
                                        "Nothing stands at " + (world.home / "none").native() + "."}));
    EXPECT_EQ(AppRestore::refusalOf(plan), std::nullopt);
    EXPECT_THAT(AppRestore::confirm(plan).details,
                ElementsAre(gone, plan.refused[1].reason, plan.refused[2].reason, plan.refused[3].reason));
}

TEST_F(AppRestoreTest, IsRefusedWhenNothingCanComeBack) {
    EXPECT_EQ(AppRestore::refusalOf(planned({})), "Select at least one previously moved app.");
    test::makeBundle(applications / "Real.app");
    const auto real = entryOf(applications / "Real.app");
    EXPECT_EQ(AppRestore::refusalOf(planned({real, real})), "No symlink found for Real.");
    EXPECT_EQ(AppRestore::refusalOf(planned({real, world.home / "none"})),
              "None of the 2 items can be moved back. No symlink found for Real.");
}

TEST_F(AppRestoreTest, FindsTheLauncher) {
    test::makeBundle(onDrive / "Editor.app");
    test::makeLauncher(applications / "Editor.app", onDrive / "Editor.app");
    const auto plan = planned({entryOf(applications / "Editor.app")});
    ASSERT_THAT(linksOf(plan), ElementsAre(applications / "Editor.app"));
    EXPECT_EQ(plan.waysBack[0].target, onDrive / "Editor.app");
}

TEST_F(AppRestoreTest, BringsTheApplicationsOfOneFolderBackOnce) {
    for (const auto* name : {"One.app", "Two.app"}) test::makeBundle(onDrive / "Suite" / name);
    test::makeFolder(applications);
    test::makeLink(applications / "Suite", onDrive / "Suite");
    const std::vector<AppRestore::Wanted> both = {entryOf(applications / "Suite/One.app"),
                                                  entryOf(applications / "Suite/Two.app")};
    EXPECT_THAT(linksOf(planned(both)), ElementsAre(applications / "Suite"));
    const auto wanted = both;
    fs::remove_all(onDrive / "Suite");
    EXPECT_THAT(planned(wanted).refused, SizeIs(1)) << "nor is it refused twice";
}

TEST_F(AppRestoreTest, AsksAboutTheFolderThatComesBackForALauncher) {
    for (const auto* name : {"Mixer.app", "Tuner.app"}) {
        test::makeBundle(onDrive / "Suite" / name);
        test::makeLauncher(applications / name, onDrive / "Suite" / name);
    }
    test::makeLink(applications / "Suite", onDrive / "Suite");
    const auto plan = planned({entryOf(applications / "Mixer.app"), entryOf(applications / "Tuner.app")});
    EXPECT_THAT(linksOf(plan), ElementsAre(applications / "Suite"));
    const Dialog question = AppRestore::confirm(plan);
    EXPECT_EQ(question.title, "Move 1 item back?");
    EXPECT_THAT(question.text, testing::EndsWith("\n\nSuite"));

    const auto results = run(plan);
    EXPECT_THAT(results, ElementsAre(std::nullopt));
    EXPECT_EQ(AppRestore::summary(plan, results).text, "Moved 1 item back.");
    EXPECT_THAT(Files::names(applications), ElementsAre("Suite"));
}

TEST_F(AppRestoreTest, LeavesOutTheLauncherOfWhatComesBackWithAFolderElsewhere) {
    const fs::path own = world.home / "Applications";
    test::makeBundle(onDrive / "Suite/Mixer.app");
    const auto alone = moved("Editor.app");
    test::makeFolder(own);
    test::makeLink(own / "Suite", onDrive / "Suite");
    test::makeLauncher(applications / "Mixer.app", onDrive / "Suite/Mixer.app");
    const auto launched = entryOf(applications / "Mixer.app");
    const auto inside = entryOf(own / "Suite/Mixer.app");
    EXPECT_THAT(linksOf(planned({launched, inside, alone})), ElementsAre(own / "Suite", alone.bundlePath));
    EXPECT_THAT(linksOf(planned({inside, alone, launched})), ElementsAre(own / "Suite", alone.bundlePath));
    EXPECT_THAT(linksOf(planned({launched})), ElementsAre(applications / "Mixer.app"));
}

TEST_F(AppRestoreTest, TakesTheFirstOfTwoLaunchersForOne) {
    test::makeBundle(onDrive / "Editor.app");
    for (const auto* name : {"Editor.app", "Copy.app"}) test::makeLauncher(applications / name, onDrive / "Editor.app");
    EXPECT_THAT(linksOf(planned({entryOf(applications / "Editor.app"), entryOf(applications / "Copy.app")})),
                ElementsAre(applications / "Editor.app"));
}

TEST_F(AppRestoreTest, TakesEveryLinkAlsoThoseThatLeadIntoOneAnother) {
    test::makeBundle(onDrive / "Suite/Mixer.app");
    test::makeFolder(applications);
    test::makeLink(applications / "Suite", onDrive / "Suite");
    test::makeLink(applications / "Mixer.app", onDrive / "Suite/Mixer.app");
    EXPECT_THAT(linksOf(planned({entryOf(applications / "Suite/Mixer.app"), entryOf(applications / "Mixer.app")})),
                SizeIs(2));
}

TEST_F(AppRestoreTest, AsksAboutLinksThatNoMoveHasLeft) {
    const auto own = moved("Editor.app");
    test::makeBundle(world.folder / "Elsewhere/Foreign.app");
    test::makeLink(applications / "Foreign.app", world.folder / "Elsewhere/Foreign.app");
    const Dialog question = AppRestore::confirm(planned({own, entryOf(applications / "Foreign.app")}));
    EXPECT_EQ(question.title, "Move 2 items back?");
    EXPECT_THAT(question.details, ElementsAre("Foreign.app is not a symlink that Tarvik has left."));
}

TEST_F(AppRestoreTest, FindsNothingAboveTheFoldersOfApplications) {
    test::makeBundle(world.folder / "Elsewhere/Editor.app");
    test::makeLink(world.folder / "Applications", world.folder / "Elsewhere");
    EXPECT_EQ(AppRestore::linkOf(world.host, entryOf(applications / "Editor.app")), applications)
        << "the folder itself is one of them";
    fs::remove(applications);
    test::makeBundle(applications / "Editor.app");
    EXPECT_THAT([&] { AppRestore::linkOf(world.host, entryOf(applications / "Editor.app")); },
                testing::Throws<Failure>(testing::Property(&Failure::description, "No symlink found for Editor.")));
}

TEST_F(AppRestoreTest, BeginsNothingMoreOnceItIsCancelled) {
    const auto plan = planned({moved("Editor.app"), moved("Player.app"), moved("Third.app")});
    Cancellation stop;
    const auto results = AppRestore::restoreAll(
        world.host, plan.waysBack,
        [&](std::size_t index) {
            if (index == 1) stop.cancel();
        },
        [](std::size_t, const ByteProgress&) {}, stop);
    EXPECT_THAT(results, ElementsAre(std::nullopt, std::nullopt));
    EXPECT_TRUE(Files::isFolder(applications / "Player.app")) << "the item that is under way is brought to its end";
    EXPECT_TRUE(Files::isSymbolicLink(applications / "Third.app"));
    EXPECT_EQ(AppRestore::summary(plan, results).text, "Moved 2 items back.");
}

TEST_F(AppRestoreTest, TakesWhatLiesInsideOfAnotherOneOutFirst) {
    const auto suite = onDrive / "Suite";
    test::makeBundle(suite / "Inside.app");
    test::makeFolder(applications);
    test::makeLink(applications / "Suite", suite);
    test::makeLink(applications / "Inner.app", suite / "Inside.app");
    test::makeLink(applications / "Twin", suite);
    const auto plan = planned({applications / "Suite", applications / "Inner.app", applications / "Twin"});
    EXPECT_THAT(linksOf(plan), ElementsAre(applications / "Inner.app", applications / "Suite"));
    ASSERT_THAT(plan.refused, SizeIs(1));
    EXPECT_EQ(plan.refused[0].reason,
              "Twin leads to the same item as " + (applications / "Suite").native() + ", which takes it back.");
    EXPECT_THAT(plan.order, ElementsAre(applications / "Suite", applications / "Inner.app", applications / "Twin"));
    EXPECT_THAT(run(plan), ElementsAre(std::nullopt, std::nullopt));
    EXPECT_TRUE(Files::isFolder(applications / "Inner.app"));
    EXPECT_TRUE(Files::isFolder(applications / "Suite"));
}

TEST_F(AppRestoreTest, DropsTickedOnesThatNoLinkStandsForAnyMore) {
    const auto editor = moved("Editor.app");
    test::makeBundle(applications / "Real.app");
    const auto real = entryOf(applications / "Real.app");
    const auto plan = AppRestore::planTicked(world.host, {real, editor});
    ASSERT_THAT(plan.waysBack, SizeIs(1));
    EXPECT_EQ(plan.waysBack[0].link, applications / "Editor.app");
    EXPECT_THAT(plan.refused, IsEmpty());
    EXPECT_EQ(AppRestore::refusalOf(AppRestore::planTicked(world.host, {real})),
              "Select at least one previously moved app.");
}

TEST_F(AppRestoreTest, NeedsNobodyWhoListens) {
    const auto plan = planned({moved("Editor.app")});
    EXPECT_THAT(AppRestore::restoreAll(world.host, plan.waysBack, {}, {}), ElementsAre(std::nullopt));
    EXPECT_TRUE(Files::isFolder(applications / "Editor.app"));
}

TEST_F(AppRestoreTest, GoesOnAfterAnItemThatFailsAndCountsIt) {
    auto plan = planned({moved("Editor.app"), moved("Player.app")});
    fs::remove_all(onDrive / "Editor.app");
    const auto results = run(plan);
    EXPECT_THAT(results,
                ElementsAre(testing::Optional(testing::HasSubstr("where nothing stands any more.")), std::nullopt));
    EXPECT_EQ(AppRestore::summary(plan, results).text, "Move back completed with 1 failure.");
    EXPECT_TRUE(Files::isFolder(applications / "Player.app"));
    plan.refused.push_back({"Other", "/Other", "why"});
    EXPECT_EQ(AppRestore::summary(plan, results).text, "Move back completed with 2 failures.");
    EXPECT_TRUE(AppRestore::summary(plan, results).hasFailures);
}

}  // namespace tarvik
