#include "Copying/HiddenName.h"
#include "MovePlan/WayBack.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Storage/DriveScanner.h"
#include "Records/HealthManifest.h"
#include "Support/Bundles.h"
#include "Support/FailureOf.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace tarvik {

namespace {

using test::failureOf;
using test::makeBundle;
using test::makeFile;
using test::makeFolder;
using test::makeLauncher;
using test::makeLink;
using test::RealVolume;
using test::TemporaryFolder;

class WayBackTest : public testing::Test {
protected:
    std::string refusal(const fs::path& link) {
        try {
            WayBack::plan(world.host, link);
        } catch (const Failure& failure) {
            return failure.description();
        }
        return "planned";
    }
    /// "back", or why not.
    std::string run(const WayBack::Plan& plan) {
        try {
            WayBack::run(world.host, plan, [](std::int64_t, std::int64_t) {});
        } catch (const Failure& failure) {
            return failure.description();
        }
        return "back";
    }

    test::World world;
};

}  // namespace

TEST_F(WayBackTest, AsksBeforeItBringsBack) {
    const Dialog dialog = WayBack::confirm({"/home/Music", "/Volumes/Backup/Music"});
    EXPECT_EQ(dialog.title, "Move Music back?");
    EXPECT_EQ(dialog.text, "Moves the contents back from /Volumes/Backup/Music and removes the symlink.");
    EXPECT_EQ(dialog.buttons, (std::vector<std::string>{"Move Back", "Cancel"}));
    EXPECT_EQ(dialog.details, std::vector<std::string>{"To /home/Music"});
    EXPECT_EQ(WayBack::confirm({"/home/Music", "/elsewhere", false}).details,
              (std::vector<std::string>{"To /home/Music", "Music is not a symlink that Tarvik has left."}));
}

TEST_F(WayBackTest, IsRefusedForWhatNoCopyWouldBring) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder mounts;
    const RealVolume drive = RealVolume::memory(mounts.path(), test::megabyte);
    world.volumes->list.push_back({.mountPath = drive.path(), .name = "Studio"});
    test::makePipe(drive / "Music/pipe");
    makeLink(world.home / "Music", drive / "Music");
    EXPECT_EQ(refusal(world.home / "Music"),
              "Music can't be moved: " + (drive / "Music/pipe").native() + " is a pipe, which no copy can hold.");
    // Within one volume nothing is copied.
    test::makePipe(world.drive / "Films/pipe");
    makeLink(world.home / "Films", world.drive / "Films");
    EXPECT_EQ(refusal(world.home / "Films"), "planned");
}

TEST_F(WayBackTest, SaysWhatIsBack) {
    EXPECT_EQ(WayBack::restored("/home/Music"), "Restored Music");
    EXPECT_EQ(WayBack::movedBack({"/home/Music", "/Volumes/Backup/Music"}), "Moved Music back to /home/Music.");
}

TEST_F(WayBackTest, FindsWhatALinkWouldBringBack) {
    makeFile(world.foldersOnDrive() / "Music/song");
    makeLink(world.home / "Music", world.foldersOnDrive() / "Music");
    WayBack::Plan expected{world.home / "Music", world.foldersOnDrive() / "Music", true};
    expected.drive = world.drive;
    expected.driveMark = DriveScanner::markOf(world.host, world.drive);
    EXPECT_TRUE(expected.driveMark.has_value());
    EXPECT_EQ(WayBack::plan(world.host, world.home / "Music/"), expected);
}

TEST_F(WayBackTest, TakesNothingFromADriveThatHasTakenThePlaceOfTheOther) {
    makeFile(world.foldersOnDrive() / "Music/song");
    makeLink(world.home / "Music", world.foldersOnDrive() / "Music");
    const auto plan = WayBack::plan(world.host, world.home / "Music");
    world.volumes->list[0].identifier = "another";
    EXPECT_EQ(failureOf([&] { WayBack::run(world.host, plan, {}); }),
              "Target drive disconnected. Another drive is at " + world.drive.native() + " now.");
    world.volumes->list.clear();
    EXPECT_EQ(failureOf([&] { WayBack::run(world.host, plan, {}); }), "Target drive disconnected");
    EXPECT_TRUE(Files::isSymbolicLink(world.home / "Music"));
    EXPECT_TRUE(Files::exists(world.foldersOnDrive() / "Music/song"));
}

TEST_F(WayBackTest, TellsThatTheDriveOfALauncherIsAway) {
    makeFile(world.home / "Ghost.app/Contents/Resources/ExternalAppTarget.txt",
             (world.folder / "Volumes/Away/ExternalTarvik/Apps/Ghost.app").native());
    EXPECT_THAT(failureOf([&] { WayBack::plan(world.host, world.home / "Ghost.app"); }),
                testing::HasSubstr("is on a drive that is not connected"));
}

TEST_F(WayBackTest, KnowsTheLinksThatMovesHaveLeft) {
    const auto isOwn = [&](const fs::path& target) {
        makeFolder(target);
        fs::remove(world.home / "Music");
        makeLink(world.home / "Music", target);
        return WayBack::plan(world.host, world.home / "Music").isOwn;
    };
    EXPECT_TRUE(isOwn(world.drive / "ExternalTarvik/Data/Music"));
    EXPECT_TRUE(isOwn(world.drive / "Tarvik/Music")) << "an earlier layout";
    EXPECT_FALSE(isOwn(world.drive / "Music"));
    EXPECT_FALSE(isOwn(world.drive / "ExternalTarvik2/Music"));
    EXPECT_FALSE(isOwn(world.home / "Tarvik/Music"));
    EXPECT_FALSE(isOwn(world.home / "Other"));
    HealthManifest::record(world.host, {world.home / "Music", world.home / "Other", std::nullopt, 1, {}});
    EXPECT_TRUE(isOwn(world.home / "Other")) << "it is remembered";
    EXPECT_FALSE(isOwn(world.home / "Another")) << "another link at the same place";
}

TEST_F(WayBackTest, RefusesARelativeLinkWhateverTheWorkingDirectory) {
    makeFile(world.foldersOnDrive() / "Music/song");
    makeLink(world.home / "Music", "../../Volumes/Backup/ExternalTarvik/Folders/Music");
    const std::string expected =
        "Music is a relative symlink, to ../../Volumes/Backup/ExternalTarvik/Folders/Music: no move leaves one, so "
        "there "
        "is nothing to move back.";
    EXPECT_EQ(refusal(world.home / "Music"), expected);
    const fs::path before = fs::current_path();
    fs::current_path(world.home);
    EXPECT_EQ(refusal("Music"), expected);
    fs::current_path(before);
}

TEST_F(WayBackTest, SaysWhereTheTargetOfALinkWas) {
    const fs::path target = world.foldersOnDrive() / "Music";
    makeLink(world.home / "Music", target);
    EXPECT_EQ(refusal(world.home / "Music"), "Music leads to " + target.native() + ", where nothing stands any more.");
    world.volumes->list.clear();
    const std::string unplugged =
        "Music is on a drive that is not connected: " + target.native() + ". Connect it and try again.";
    EXPECT_EQ(refusal(world.home / "Music"), unplugged) << "only its mount path is left";
    fs::remove_all(world.drive);
    EXPECT_EQ(refusal(world.home / "Music"), unplugged);
    makeLink(world.home / "Films", world.folder / "Volumes/Other/Films");
    EXPECT_EQ(refusal(world.home / "Films"),
              "Films is on a drive that is not connected: " + (world.folder / "Volumes/Other/Films").native() +
                  ". Connect it and try again.");
}

TEST_F(WayBackTest, RefusesWhatIsNoMovedItem) {
    makeFolder(world.home / "Music");
    EXPECT_EQ(refusal(world.home / "Music"), "Music is not a symlink, so there is nothing to move back.");
    EXPECT_EQ(refusal(world.home / "none"), "Nothing stands at " + (world.home / "none").native() + ".");
    makeLink(world.home / "gone", world.drive / "gone");
    EXPECT_EQ(refusal(world.home / "gone"),
              "gone leads to " + (world.drive / "gone").native() + ", where nothing stands any more.");
    makeLink(world.home / "system", "/usr/bin");
    EXPECT_EQ(refusal(world.home / "system"), "/usr/bin belongs to the system and can't be moved.");
    makeLink(world.home / "Music/up", world.home);
    EXPECT_EQ(refusal(world.home / "Music/up"), "The home folder can't be moved.");
    makeLink(world.home / "Music/self", world.home / "Music");
    EXPECT_EQ(refusal(world.home / "Music/self"),
              (world.home / "Music").native() + " holds the symlink itself and can't be moved into its place.");
}

TEST_F(WayBackTest, RefusesAWholeVolume) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const RealVolume volume = RealVolume::memory(world.home, 1'000'000);
    makeLink(world.home / "stick", volume.path());
    EXPECT_EQ(refusal(world.home / "stick"), volume.path().native() + " is a whole volume and can't be moved.");
}

TEST_F(WayBackTest, BringsTheMovedFolderOfALauncherBack) {
    const fs::path applications = world.folder / "Applications";
    const fs::path suite = world.foldersOnDrive() / "Suite";
    makeBundle(suite / "Mixer.app");
    makeBundle(world.foldersOnDrive() / "Alone.app");
    makeFolder(applications);
    makeLink(applications / "Suite", suite);
    makeLauncher(applications / "Mixer.app", suite / "Mixer.app");
    makeLauncher(applications / "Alone.app", world.foldersOnDrive() / "Alone.app");
    const auto linkOf = [&](const char* name) {
        return WayBack::plan(world.host, applications / name).link.filename();
    };
    EXPECT_EQ(linkOf("Mixer.app"), "Suite");
    EXPECT_EQ(linkOf("Suite"), "Suite");
    EXPECT_EQ(linkOf("Alone.app"), "Alone.app");
}

TEST_F(WayBackTest, TellsOfTheDataThatAnApplicationLeavesOnADrive) {
    const fs::path editor = world.folder / "Applications/Editor.app";
    const fs::path caches = world.home / "Library/Caches/Editor";
    const fs::path support = world.home / "Library/Application Support/Editor";
    makeBundle(world.foldersOnDrive() / "Editor.app");
    makeFolder(editor.parent_path());
    makeLink(editor, world.foldersOnDrive() / "Editor.app");
    makeFile(caches / "cache");
    const auto remark = [&] { return WayBack::dataStays(WayBack::plan(world.host, editor)); };
    EXPECT_EQ(remark(), "");
    makeFile(world.drive / "Data/support/file");
    makeFolder(support.parent_path());
    makeLink(support, world.drive / "Data/support");
    EXPECT_EQ(remark(), "1 item of the data of Editor.app stays on a drive: " + support.native() + ".");
    fs::rename(caches, world.drive / "Data/caches");
    makeLink(caches, world.drive / "Data/caches");
    const auto both = [](const fs::path& one, const fs::path& other) {
        return "2 items of the data of Editor.app stay on a drive: " + one.native() + " and " + other.native() + ".";
    };
    EXPECT_THAT(remark(), testing::AnyOf(both(support, caches), both(caches, support)));
    EXPECT_THAT(WayBack::confirm(WayBack::plan(world.host, editor)).details, testing::Contains(remark()));
}

TEST_F(WayBackTest, LeavesASocketBehind) {
    makeFile(world.home / "Music/song");
    test::makeSocket(world.home / "Music/player");
    makeLink(world.home / "link", world.home / "Music");
    EXPECT_EQ(refusal(world.home / "link"), "planned");
}

TEST_F(WayBackTest, RefusesAPathThatMayMeanTwoPlaces) {
    makeFolder(world.home / "Music");
    makeFolder(world.folder / "elsewhere/Music");
    makeFolder(world.folder / "elsewhere/behind");
    makeLink(world.home / "link", world.folder / "elsewhere/behind");
    EXPECT_THAT(refusal(world.home / "link/../Music"),
                testing::AllOf(testing::StartsWith("With \"..\" behind a symlink, "),
                               testing::EndsWith(". Name the one that is meant.")));
}

TEST_F(WayBackTest, RefusesWhatIsNotOnARootedMachine) {
    const TemporaryFolder outside;
    makeFolder(outside / "Music");
    makeFolder(world.foldersOnDrive() / "Music");
    const std::string sentence = " is not on the machine in " + world.folder.path().native() + ".";
    makeLink(outside / "link", world.foldersOnDrive() / "Music");
    EXPECT_EQ(refusal(outside / "link"), (outside / "link").native() + sentence);
    makeLink(world.home / "link", outside / "Music");
    EXPECT_EQ(refusal(world.home / "link"), (outside / "Music").native() + sentence);
}

TEST_F(WayBackTest, BringsBackWhatWasAskedAbout) {
    makeFile(world.foldersOnDrive() / "Music/song");
    makeLink(world.home / "Music", world.foldersOnDrive() / "Music");
    EXPECT_EQ(run(WayBack::plan(world.host, world.home / "Music")), "back");
    EXPECT_TRUE(Files::exists(world.home / "Music/song"));
    EXPECT_FALSE(Files::isSymbolicLink(world.home / "Music"));
}

TEST_F(WayBackTest, BringsNothingBackThatNobodyWasAskedAbout) {
    makeFile(world.foldersOnDrive() / "Music/song");
    makeFile(world.foldersOnDrive() / "Other/song");
    makeLink(world.home / "Music", world.foldersOnDrive() / "Music");
    const auto plan = WayBack::plan(world.host, world.home / "Music");
    fs::remove(world.home / "Music");
    makeLink(world.home / "Music", world.foldersOnDrive() / "Other");
    EXPECT_EQ(run(plan),
              "Music leads to " + (world.foldersOnDrive() / "Other").native() + " by now. Look at it and try again.");
    EXPECT_TRUE(Files::isSymbolicLink(world.home / "Music"));
    EXPECT_TRUE(Files::exists(world.foldersOnDrive() / "Other/song"));
}

TEST_F(WayBackTest, BringsNoFolderBackForTheLauncherOfOneApplication) {
    const fs::path applications = world.folder / "Applications";
    makeBundle(world.foldersOnDrive() / "Suite/Mixer.app");
    makeFolder(applications);
    makeLauncher(applications / "Mixer.app", world.foldersOnDrive() / "Suite/Mixer.app");
    const auto plan = WayBack::plan(world.host, applications / "Mixer.app");
    makeLink(applications / "Suite", world.foldersOnDrive() / "Suite");
    EXPECT_EQ(run(plan), "Mixer.app leads to " + (world.foldersOnDrive() / "Suite").native() +
                             " by now. Look at it and try again.");
    EXPECT_TRUE(Files::exists(world.foldersOnDrive() / "Suite/Mixer.app"));
}

TEST_F(WayBackTest, TakesNoLinkOfAKilledActForAMovedFolder) {
    const fs::path applications = world.folder / "Applications";
    makeBundle(world.foldersOnDrive() / "Suite/Mixer.app");
    makeBundle(applications / "Suite/Mixer.app");
    makeLink(HiddenName::forRemovalOf(applications / "Suite"), world.foldersOnDrive() / "Suite");
    makeLauncher(applications / "Mixer.app", world.foldersOnDrive() / "Suite/Mixer.app");
    EXPECT_EQ(WayBack::plan(world.host, applications / "Mixer.app").link, applications / "Mixer.app");
}

TEST_F(WayBackTest, TellsOnlyOfDataThatIsOnADrive) {
    const fs::path editor = world.folder / "Applications/Editor.app";
    const fs::path caches = world.home / "Library/Caches/Editor";
    makeBundle(world.foldersOnDrive() / "Editor.app");
    makeFolder(editor.parent_path());
    makeLink(editor, world.foldersOnDrive() / "Editor.app");
    makeFile(world.home / "elsewhere/caches/cache");
    makeFolder(caches.parent_path());
    makeLink(caches, world.home / "elsewhere/caches");
    EXPECT_EQ(WayBack::dataStays(WayBack::plan(world.host, editor)), "");
}

TEST_F(WayBackTest, KnowsTheDriveOfATargetWithATellingName) {
    const fs::path target = world.drive / "Old/ExternalTarvik/Music";
    makeLink(world.home / "Music", target);
    EXPECT_EQ(refusal(world.home / "Music"), "Music leads to " + target.native() + ", where nothing stands any more.")
        << "its drive is there";
}

}  // namespace tarvik
