#include "Copying/HiddenName.h"
#include "Discovery/AppScanner.h"
#include "MovePlan/AppMove.h"
#include "Platform/Basics/Failure.h"
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

class AppMoveTest : public testing::Test {
protected:
    AppEntry entryOf(const fs::path& bundle) const {
        auto entry = AppScanner::metadataEntry(world.host, bundle).value();
        entry.appSize = 1000;
        return entry;
    }
    AppEntry made(const std::string& name) const {
        test::makeBundle(applications / (name + ".app"));
        return entryOf(applications / (name + ".app"));
    }
    AppMove::Plan planned(const std::vector<AppEntry>& entries, bool includeData = true) const {
        return AppMove::plan(world.host, entries, world.driveInfo(), includeData);
    }

    test::World world;
    fs::path applications = world.folder / "Applications";
    fs::path onDrive = world.drive / "ExternalTarvik/Apps";
};

}  // namespace

TEST_F(AppMoveTest, PlansTheBundlesAndTheirData) {
    test::makeFileOfSize(world.home / "Library/Caches/Editor/cache", 40'000);
    const auto editor = made("Editor");
    const auto plan = planned({editor, made("Player")});
    ASSERT_THAT(plan.jobs, SizeIs(3));
    EXPECT_EQ(plan.jobs[1].source, world.home / "Library/Caches/Editor");
    EXPECT_GT(plan.jobs[1].bytesTotal, 0);
    EXPECT_EQ(plan.totalBytes(), 2000 + plan.jobs[1].bytesTotal);
    EXPECT_THAT(plan.staying, IsEmpty());
    EXPECT_THAT(plan.obstructed, IsEmpty());
    EXPECT_THAT(planned({editor}, false).jobs, SizeIs(1));
}

TEST_F(AppMoveTest, SaysWhereAnApplicationIsThatHasBeenMovedAlready) {
    test::makeBundle(onDrive / "Far.app");
    test::makeFolder(applications);
    test::makeLink(applications / "Far.app", onDrive / "Far.app");
    test::makeLauncher(applications / "Launched.app", onDrive / "Far.app");
    test::makeLink(applications / "Gone.app", world.folder / "Unplugged/Gone.app");
    test::makeFile(world.home / "Library/Caches/Far/cache");
    auto gone = entryOf(applications / "Gone.app");
    const auto plan = planned({entryOf(applications / "Far.app"), entryOf(applications / "Launched.app"), gone});
    EXPECT_THAT(plan.jobs, IsEmpty());
    const auto place = (onDrive / "Far.app").native();
    EXPECT_THAT(plan.staying, ElementsAre("Far stays: it has been moved already, to " + place + ".",
                                          "Launched stays: it has been moved already, to " + place + ".",
                                          "Gone stays: it has been moved already, to a place that is not there now."));
}

TEST_F(AppMoveTest, KnowsALinkInTheUsersOwnFolderToo) {
    const auto own = world.home / "Applications";
    test::makeBundle(onDrive / "Far.app");
    test::makeFolder(own);
    test::makeLink(own / "Far.app", onDrive / "Far.app");
    EXPECT_THAT(planned({entryOf(own / "Far.app")}).staying,
                ElementsAre("Far stays: it has been moved already, to " + (onDrive / "Far.app").native() + "."));
}

TEST_F(AppMoveTest, SaysWhenTwoBundlesWouldTakeOnePlaceOnTheDrive) {
    const auto first = made("Editor");
    test::makeBundle(applications / "Old/Editor.app");
    auto second = entryOf(applications / "Old/Editor.app");
    const auto reason = (applications / "Editor.app").native() + " would take its place on the drive.";
    EXPECT_THAT(planned({first, second}).staying, ElementsAre("Editor stays: " + reason));

    test::makeFile(world.home / "Library/Caches/Editor/cache");
    second = entryOf(applications / "Old/Editor.app");
    EXPECT_THAT(planned({first, second}).staying, ElementsAre("Only data of Editor would move: " + reason));
}

TEST_F(AppMoveTest, SaysWhenAnApplicationIsGone) {
    const auto editor = made("Editor");
    fs::remove_all(editor.bundlePath);
    EXPECT_THAT(planned({editor}).staying,
                ElementsAre("Editor stays: " + editor.bundlePath.native() + " is not there any more."));
}

TEST_F(AppMoveTest, NamesTheJobsWhoseGoalIsTaken) {
    const auto editor = made("Editor");
    test::makeLink(onDrive / "Editor.app", "nowhere");
    const auto sentence = "Editor would not move: " + (onDrive / "Editor.app").native() + " is taken already.";
    const auto plan = planned({editor, made("Player")});
    EXPECT_THAT(plan.obstructed, ElementsAre(sentence));
    EXPECT_THAT(AppMove::confirmMove(plan).details, ElementsAre(sentence)) << "the question tells it too";
    EXPECT_EQ(AppMove::reasonToMoveNothing(plan), std::nullopt);
    EXPECT_EQ(AppMove::reasonToMoveNothing(planned({editor})), sentence);
    EXPECT_EQ(AppMove::refusalOf(planned({editor})), std::nullopt) << "the run itself says so";
}

TEST_F(AppMoveTest, NamesTheJobsWhoseItemsCannotBeMoved) {
    const auto editor = made("Editor");
    test::makePipe(editor.bundlePath / "Contents/pipe");
    const auto plan = planned({editor, made("Player")});
    const std::string sentence = "Editor.app can't be moved: " + (editor.bundlePath / "Contents/pipe").native() +
                                 " is a pipe, which no copy can hold.";
    EXPECT_THAT(plan.obstructed, ElementsAre(sentence));
    EXPECT_THAT(AppMove::confirmMove(plan).details, testing::Contains(sentence));
    EXPECT_EQ(AppMove::reasonToMoveNothing(plan), std::nullopt);
    EXPECT_EQ(AppMove::reasonToMoveNothing(planned({editor})), sentence);
}

TEST_F(AppMoveTest, TellsWhatTheDriveCannotHold) {
    const auto editor = made("Editor");
    test::makeLink(editor.bundlePath / "Contents/Current", "MacOS");
    auto stick = world.driveInfo();
    stick.filesystem = "exFAT";
    stick.keepsLinks = stick.keepsPermissions = false;
    const auto plan = AppMove::plan(world.host, {editor}, stick, false);
    EXPECT_THAT(plan.obstructed, ElementsAre("Editor.app does not fit on " + stick.name + ": " +
                                             (editor.bundlePath / "Contents/Current").native() +
                                             " is a symlink, and exFAT holds none. Choose another drive."));
    EXPECT_THAT(AppMove::confirmMove(plan).details, testing::Contains(testing::HasSubstr("keeps no permissions")));
    EXPECT_EQ(plan.jobs.at(0).drive, plan.drive) << "the run is to know it too";
}

TEST_F(AppMoveTest, CountsOnThePlaceOfACopyThatAKilledMoveHasLeft) {
    const auto editor = made("Editor");
    test::makeBundle(onDrive / "Editor.app");
    test::makeLink(HiddenName::forRemovalOf(editor.bundlePath), onDrive / "Editor.app");
    EXPECT_THAT(planned({editor}).obstructed, IsEmpty());
    EXPECT_EQ(AppMove::refusalOf(planned({editor})), std::nullopt);
}

TEST_F(AppMoveTest, IsRefusedInItsOwnWordsWhenNothingWouldMove) {
    test::makeBundle(onDrive / "Far.app");
    const auto inFolder = made("Suite/Inner");
    test::makeLink(applications / "Far.app", onDrive / "Far.app");
    EXPECT_EQ(AppMove::refusalOf(planned({})), "Select at least one app.");
    EXPECT_EQ(AppMove::refusalOf(planned({entryOf(applications / "Far.app")})),
              "Selected apps are already moved. Use Move Back.");
    fs::rename(applications / "Suite", onDrive / "Suite");
    test::makeLink(applications / "Suite", onDrive / "Suite");
    EXPECT_EQ(AppMove::refusalOf(planned({inFolder})), "Everything selected is already symlinked.");
}

TEST_F(AppMoveTest, PlansOneMoveForTheQuestionAndForALookAhead) {
    const auto editor = made("Editor");
    const auto proposal = AppMove::propose(world.host, {editor}, world.driveInfo(), true);
    const auto plan = planned({editor});
    EXPECT_EQ(proposal.totalBytes(), plan.totalBytes());
    EXPECT_EQ(proposal.movable, plan.movable);
    EXPECT_EQ(proposal.drive, plan.drive);
}

TEST_F(AppMoveTest, TellsTheRiskyOnesAmongThoseThatMove) {
    for (const auto* name : {"Store", "Gone"})
        test::makeFile(applications / (std::string(name) + ".app") / "Contents/_MASReceipt/receipt");
    const auto store = made("Store");
    const auto gone = made("Gone");
    fs::remove_all(gone.bundlePath);
    EXPECT_THAT(planned({made("Plain"), store, gone}).risky, ElementsAre(store));
}

TEST_F(AppMoveTest, WarnsOfARiskyOneAlsoWhenOnlyItsDataMoves) {
    auto store = made("Store");
    test::makeFile(store.bundlePath / "Contents/_MASReceipt/receipt");
    store.isMacAppStore = true;
    fs::remove_all(store.bundlePath);
    test::makeFile(world.home / "Library/Caches/Store/cache");
    store.dataPaths = {world.home / "Library/Caches/Store"};
    const auto plan = planned({store});
    EXPECT_THAT(plan.risky, IsEmpty());
    EXPECT_THAT(AppMove::confirmMove(plan).text, testing::HasSubstr("1 item has warnings: Store"));
}

TEST_F(AppMoveTest, TellsTheRunningOnesAmongThoseThatMove) {
    const auto editor = made("Editor");
    world.applications->list = {{.process = 1, .bundlePath = editor.bundlePath}};
    EXPECT_THAT(AppMove::runningApps(world.host, planned({editor, made("Player")})), ElementsAre("Editor"));
    fs::remove_all(editor.bundlePath);
    EXPECT_THAT(AppMove::runningApps(world.host, planned({editor, made("Player")})), IsEmpty()) << "it stays";
    test::makeFile(world.home / "Library/Caches/Editor/cache");
    auto withData = editor;
    withData.dataPaths = {world.home / "Library/Caches/Editor"};
    EXPECT_THAT(AppMove::runningApps(world.host, planned({withData})), ElementsAre("Editor")) << "its data moves";
}

TEST(AppMove, CountsEveryFlagAsARisk) {
    EXPECT_FALSE(AppMove::isRisky({}));
    EXPECT_TRUE(AppMove::isRisky({.isMacAppStore = true}));
    EXPECT_TRUE(AppMove::isRisky({.hasLoginItems = true}));
    EXPECT_TRUE(AppMove::isRisky({.hasSystemExtension = true}));
    EXPECT_FALSE(AppMove::isRisky({.isAlreadySymlinked = true}));
}

TEST_F(AppMoveTest, IsRefusedWhereAFolderOnTheDriveLeadsElsewhere) {
    test::makeFile(world.home / "Library/Caches/Editor/cache");
    const fs::path elsewhere = world.folder / "Elsewhere";
    test::makeFolder(elsewhere);
    test::makeFolder(world.drive / "ExternalTarvik/Data");
    test::makeLink(world.drive / "ExternalTarvik/Data/Library", elsewhere);
    const auto editor = made("Editor");
    const auto refusal = AppMove::refusalOf(planned({editor}));
    EXPECT_EQ(refusal, "What is moved to Backup would land in " + elsewhere.native() + ", which is not on that drive.");
    try {
        AppMove::propose(world.host, {editor}, world.driveInfo(), true);
        FAIL() << "it was not refused";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.description(), refusal);
    }
    EXPECT_EQ(AppMove::refusalOf(planned({editor}, false)), std::nullopt);
}

TEST_F(AppMoveTest, IsRefusedToADriveThatCannotBeWrittenTo) {
    auto drive = world.driveInfo();
    drive.isWritable = false;
    EXPECT_EQ(AppMove::refusalOf(AppMove::plan(world.host, {made("Editor")}, drive, true)),
              "Backup is read-only. Choose a drive that can be written to.");
}

TEST_F(AppMoveTest, TellsInItsQuestionWhatAnApplicationLosesOnADrive) {
    test::makeFile(applications / "Store.app/Contents/_MASReceipt/receipt");
    const auto plan = planned({made("Store"), made("Editor")}, false);
    EXPECT_THAT(AppMove::confirmMove(plan).details,
                ElementsAre("The App Store may not update Store on a drive: move back before an update."));
    test::makeFolder(onDrive);
    fs::rename(applications / "Store.app", onDrive / "Store.app");
    test::makeLink(applications / "Store.app", onDrive / "Store.app");
    EXPECT_THAT(planned({entryOf(applications / "Store.app")}, false).doubts, IsEmpty()) << "it does not move";
}

TEST_F(AppMoveTest, TellsInItsQuestionWhichOfTwoOfOneNameStays) {
    const auto own = world.home / "Applications/Quill.app";
    test::makeBundle(own);
    const auto first = made("Quill");
    const auto proposal = AppMove::propose(world.host, {first, entryOf(own)}, world.driveInfo(), false);
    EXPECT_THAT(AppMove::confirmMove(proposal).details,
                ElementsAre("Quill stays: " + first.bundlePath.native() + " would take its place on the drive."));
    EXPECT_THAT(AppMove::confirmMove(AppMove::propose(world.host, {first}, world.driveInfo(), false)).details,
                IsEmpty());
}

}  // namespace tarvik
