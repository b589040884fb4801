#include "Discovery/AppScanner.h"
#include "Move/AppMove.h"
#include "Platform/Failure.h"
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
    EXPECT_THAT(planned({editor, made("Player")}).obstructed,
                ElementsAre("Editor would not move: " + (onDrive / "Editor.app").native() + " is taken already."));
}

TEST_F(AppMoveTest, TellsTheRiskyOnesAmongThoseThatMove) {
    for (const auto* name : {"Store", "Gone"})
        test::makeFile(applications / (std::string(name) + ".app") / "Contents/_MASReceipt/receipt");
    const auto store = made("Store");
    const auto gone = made("Gone");
    fs::remove_all(gone.bundlePath);
    EXPECT_THAT(planned({made("Plain"), store, gone}).risky, ElementsAre(store));
}

TEST_F(AppMoveTest, TellsTheRunningOnesAmongThoseThatMove) {
    const auto editor = made("Editor");
    world.applications->list = {{.process = 1, .bundlePath = editor.bundlePath}};
    EXPECT_THAT(planned({editor, made("Player")}).running, ElementsAre(editor));
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
    const auto refusal = AppMove::refusalOf(planned({editor}), world.driveInfo());
    EXPECT_EQ(refusal, "What is moved to Backup would land in " + elsewhere.native() + ", which is not on that drive.");
    try {
        AppMove::propose(world.host, {editor}, world.driveInfo(), true);
        FAIL() << "it was not refused";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.description(), refusal);
    }
    EXPECT_EQ(AppMove::refusalOf(planned({editor}, false), world.driveInfo()), std::nullopt);
}

TEST_F(AppMoveTest, IsRefusedToADriveThatCannotBeWrittenTo) {
    auto drive = world.driveInfo();
    drive.isWritable = false;
    EXPECT_EQ(AppMove::refusalOf(planned({made("Editor")}), drive),
              "Backup is read-only. Choose a drive that can be written to.");
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
