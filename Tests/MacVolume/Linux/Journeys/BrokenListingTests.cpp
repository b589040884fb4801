// A folder whose listing breaks off in an error of the disk: what was not listed is not taken for gone.
#include "Backups/BackupPlan.h"
#include "Backups/BackupService.h"
#include "Launchers/LauncherInventory.h"
#include "MacMachine.h"
#include "Platform/Files/Files.h"
#include "Support/FailureOf.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace tarvik::test {

namespace {

using testing::HasSubstr;

class ABrokenListing : public OnMacVolumes {
protected:
    void SetUp() override {
        OnMacVolumes::SetUp();
        if (!mac) return;
        films = mac->atHome("Films");
        for (const auto* name : {"a", "b", "c", "d"}) makeFile(films / "Holiday" / name, name);
        makeOld(films);
        before = pictureOf(films);
        moved = mac->extended / "ExternalTarvik/Folders/Films";
    }

    fs::path films, moved;
    std::string before;
};

class ABrokenListingOfApplications : public WithMacApplications {};

}  // namespace

TEST_F(ABrokenListing, EndsAMoveBeforeItBegins) {
    breakListing(films / "Holiday");
    EXPECT_EQ(
        mac->moveFolder(films, mac->extended),
        "Films can't be moved as a whole: " + (films / "Holiday").native() + " can't be read (Input/output error).");
    EXPECT_FALSE(Files::itemExists(moved.parent_path()));
    const auto byCommand = mac->run({"move", "folder", films, "--drive", "Extended", "--yes"});
    EXPECT_EQ(byCommand.status, 1);
    EXPECT_THAT(byCommand.errors, HasSubstr("can't be read (Input/output error)"));
    breakListing(films / "Holiday", false);
    EXPECT_EQ(pictureOf(films), before);
    EXPECT_EQ(mac->moveFolder(films, mac->extended), "moved");
}

TEST_F(ABrokenListing, LeavesOnTheDriveWhatIsThere) {
    ASSERT_EQ(mac->moveFolder(films, mac->extended), "moved");
    breakListing(moved / "Holiday");
    EXPECT_THAT(mac->moveBack(films), HasSubstr("can't be read (Input/output error)"));
    EXPECT_TRUE(leadsTo(films, moved));
    breakListing(moved / "Holiday", false);
    EXPECT_EQ(pictureOf(moved), before);
    EXPECT_EQ(mac->moveBack(films), "back");
    EXPECT_EQ(pictureOf(films), before);
}

TEST_F(ABrokenListing, MakesNoBackupOfAHalf) {
    const auto plan = BackupPlan::plan(mac->host, {films}, mac->driveInfo(mac->extended));
    breakListing(films / "Holiday");
    EXPECT_THAT(failureOf([&] { BackupPlan::plan(mac->host, {films}, mac->driveInfo(mac->extended)); }),
                HasSubstr("Holiday can't be read (Input/output error)"));
    EXPECT_NE(failureOf([&] { BackupPlan::run(mac->host, plan, {}); }), "done");
    EXPECT_TRUE(BackupService::list(mac->host, mac->extended.path()).empty());
}

TEST_F(ABrokenListing, RemovesNothing) {
    breakListing(films / "Holiday");
    EXPECT_THAT(failureOf([&] { Files::removeItem(films); }), HasSubstr("Input/output error"));
    breakListing(films / "Holiday", false);
    EXPECT_EQ(pictureOf(films), before);
}

TEST_F(ABrokenListingOfApplications, TakesNoLauncherAway) {
    const fs::path suite = mac->at("Applications/Studio Suite");
    ASSERT_EQ(mac->moveFolder(suite, mac->extended), "moved");
    const fs::path moved = mac->extended / "ExternalTarvik/Folders/Studio Suite";
    const fs::path mixer = mac->at("Applications/Mixer.app");
    const std::string before = pictureOf(mixer);
    breakListing(moved);
    mac->run({"launchers", "--repair", "--yes"});
    EXPECT_EQ(pictureOf(mixer), before);
    EXPECT_THAT(mac->moveBack(suite), HasSubstr("can't be read"));
    EXPECT_EQ(pictureOf(mixer), before);
}

TEST_F(ABrokenListingOfApplications, LetsNoLauncherRunWhatMayBeTheWrongProgram) {
    const fs::path suite = mac->at("Applications/Studio Suite");
    ASSERT_EQ(mac->moveFolder(suite, mac->extended), "moved");
    const fs::path mixer = mac->extended / "ExternalTarvik/Folders/Studio Suite/Mixer.app/Contents";
    fs::remove_all(mixer);
    for (const auto* name : {"one", "two"}) {
        makeFile(mixer / "MacOS" / name, "#!/bin/sh\necho wrong\n");
        fs::permissions(mixer / "MacOS" / name, fs::perms::all);
    }
    breakListing(mixer / "MacOS");  // Tells of one of the two.
    const fs::path programs = mac->at("Applications/Mixer.app/Contents/MacOS");
    const auto started = runProgram(programs / Files::names(programs).at(0), {});
    EXPECT_EQ(started.status, 1);
    EXPECT_EQ(started.output, "");
    EXPECT_THAT(started.errors, HasSubstr("no program that could be run"));
}

}  // namespace tarvik::test
