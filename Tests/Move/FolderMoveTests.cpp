#include "Move/FolderMove.h"
#include "Move/HealthManifest.h"
#include "Move/HiddenPlace.h"
#include "Move/MoveRefusal.h"
#include "Platform/Failure.h"
#include "Platform/Files.h"
#include "Support/Bundles.h"
#include "Support/OrdinaryUser.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik::test {

namespace {

class FolderMove : public testing::Test {
protected:
    std::string refusal(const fs::path& folder, const DriveInfo& drive) {
        const std::string before = pictureOf(world.folder.path());
        std::string sentence = "planned";
        try {
            tarvik::FolderMove::plan(world.host, folder, drive);
        } catch (const Failure& failure) {
            sentence = failure.description();
        }
        EXPECT_EQ(pictureOf(world.folder.path()), before);
        return sentence;
    }
    std::string refusal(const fs::path& folder) { return refusal(folder, world.driveInfo()); }

    std::string refusalOfRestore(const fs::path& link) {
        try {
            tarvik::FolderMove::planRestore(world.host, link);
        } catch (const Failure& failure) {
            return failure.description();
        }
        return "planned";
    }

    World world;
};

}  // namespace

TEST_F(FolderMove, PlansOneJobWithTheMeasuredSize) {
    makeFileOfSize(world.home / "Music/song", 100'000);
    const MoveJob job = tarvik::FolderMove::plan(world.host, world.home / "Music/", world.driveInfo());
    EXPECT_EQ(job.label, "Music");
    EXPECT_EQ(job.source, world.home / "Music");
    EXPECT_EQ(job.destination, world.drive / "ExternalTarvik/Folders/Music");
    EXPECT_EQ(job.status, JobStatus::pending());
    EXPECT_GE(job.bytesTotal, 100'000);
    EXPECT_EQ(job.bytesCopied, 0);
}

TEST_F(FolderMove, AsksBeforeItMoves) {
    const MoveJob job("Music", "/home/Music", "/Volumes/Backup/ExternalTarvik/Folders/Music", JobStatus::pending(),
                      1'500'000, 0);
    const Dialog dialog = tarvik::FolderMove::confirmMove(job, world.driveInfo());
    EXPECT_EQ(dialog.title, "Move Music to Backup?");
    EXPECT_EQ(dialog.text,
              "Total 1.5 MB. Original location will become a symlink to "
              "/Volumes/Backup/ExternalTarvik/Folders/Music.");
    EXPECT_EQ(dialog.buttons, (std::vector<std::string>{"Move", "Cancel"}));
    EXPECT_EQ(dialog.details, std::vector<std::string>{"From /home/Music"});
}

TEST_F(FolderMove, AsksBeforeItMovesBack) {
    const Dialog dialog = tarvik::FolderMove::confirmRestore({"/home/Music", "/Volumes/Backup/Music"});
    EXPECT_EQ(dialog.title, "Move Music back?");
    EXPECT_EQ(dialog.text, "Moves the contents back from /Volumes/Backup/Music and removes the symlink.");
    EXPECT_EQ(dialog.buttons, (std::vector<std::string>{"Move Back", "Cancel"}));
    EXPECT_EQ(dialog.details, std::vector<std::string>{"To /home/Music"});
    EXPECT_EQ(tarvik::FolderMove::confirmRestore({"/home/Music", "/elsewhere", false}).details,
              (std::vector<std::string>{"To /home/Music", "Music is not a symlink that Tarvik has left."}));
}

TEST_F(FolderMove, SaysWhatIsBack) {
    EXPECT_EQ(tarvik::FolderMove::restored("/home/Music"), "Restored Music");
    EXPECT_EQ(tarvik::FolderMove::movedBack({"/home/Music", "/Volumes/Backup/Music"}),
              "Moved Music back to /home/Music.");
}

TEST_F(FolderMove, EndsItsMeasuringWhenItIsCancelled) {
    makeFileOfSize(world.home / "Music/song", 2'000'000);
    DriveInfo full = world.driveInfo();
    full.freeBytes = 0;
    const Cancellation cancellation;
    cancellation.cancel();
    const auto plan = [&] { tarvik::FolderMove::plan(world.host, world.home / "Music", full, cancellation); };
    EXPECT_THAT(plan,
                testing::Throws<Failure>(testing::Property(&Failure::description, "Cancelled. Nothing was changed.")));
}

TEST_F(FolderMove, PlansAnEmptyFolder) {
    makeFolder(world.home / "Empty");
    EXPECT_EQ(tarvik::FolderMove::plan(world.host, world.home / "Empty", world.driveInfo()).bytesTotal, 0);
}

TEST_F(FolderMove, RefusesWhatIsNotThere) {
    EXPECT_EQ(refusal(world.home / "missing"), "Source folder doesn't exist.");
    EXPECT_EQ(refusal(world.home / std::string(5000, 'x')), "Source folder doesn't exist.");
}

TEST_F(FolderMove, RefusesWhatIsNoFolder) {
    makeFile(world.home / "notes.txt");
    EXPECT_EQ(refusal(world.home / "notes.txt"), "notes.txt is not a folder. Choose a folder.");
    makeFolder(world.home / "real");
    makeLink(world.home / "link", world.home / "real");
    EXPECT_EQ(refusal(world.home / "link"), "link is already a symlink to " + (world.home / "real").native() + ".");
}

TEST_F(FolderMove, RefusesMoreThanTheDriveHasRoomFor) {
    makeFileOfSize(world.home / "Music/song", 2'000'000);
    DriveInfo drive = world.driveInfo();
    drive.freeBytes = 1'000'000;
    EXPECT_EQ(refusal(world.home / "Music", drive), "Need 2 MB but Backup has 1 MB.");

    const fs::path left = HiddenPlace::forCopyTo(world.foldersOnDrive() / "Music");
    makeFileOfSize(left / "song", 300'000);
    EXPECT_THAT(refusal(world.home / "Music", drive),
                testing::MatchesRegex("Need 2 MB but Backup has 1 MB\\. An interrupted move has left 30[0-9] KB in " +
                                      world.foldersOnDrive().native() +
                                      ", under a name that begins with \\.tarvik-moving-\\."));
    const FileDescriptor held = HiddenPlace::hold(left);
    EXPECT_EQ(refusal(world.home / "Music", drive), "Need 2 MB but Backup has 1 MB.");
}

TEST_F(FolderMove, RefusesADriveThatCannotBeWrittenTo) {
    makeFolder(world.home / "Music");
    DriveInfo drive = world.driveInfo();
    drive.isWritable = false;
    EXPECT_EQ(refusal(world.home / "Music", drive), "Backup is read-only. Choose a drive that can be written to.");
}

TEST_F(FolderMove, RefusesTheHomeAndWhatHoldsIt) {
    EXPECT_EQ(refusal(world.home), "The home folder can't be moved.");
    EXPECT_EQ(refusal(world.home / "."), "The home folder can't be moved.");
    const fs::path users = world.home.parent_path();
    EXPECT_EQ(refusal(users), users.native() + " holds the home folder and can't be moved.");
    EXPECT_EQ(refusal("/"), "/ holds the home folder and can't be moved.");
    makeLink(world.folder / "detour", users);
    EXPECT_EQ(refusal(world.folder / "detour/ada"), "The home folder can't be moved.");
}

TEST_F(FolderMove, RefusesFoldersOfTheSystem) {
    for (const char* name : {"Applications", "Library", "System", "System/Library", "Volumes", "usr/bin"}) {
        makeFolder(world.folder / name);
        EXPECT_EQ(refusal(world.folder / name),
                  (world.folder / name).native() + " belongs to the system and can't be moved.");
    }
    makeFolder(world.home / "Library/Caches");
    EXPECT_EQ(refusal(world.home / "Library"),
              (world.home / "Library").native() + " belongs to the system and can't be moved.");
    EXPECT_EQ(refusal(world.home / "Library/Caches"), "planned");
}

TEST_F(FolderMove, RefusesTheDriveWhatHoldsItAndWhatLiesOnIt) {
    EXPECT_EQ(refusal(world.drive), "Backup is the target drive itself and can't be moved to it.");
    makeFolder(world.drive / "Stuff");
    EXPECT_EQ(refusal(world.drive / "Stuff"), "Stuff is on Backup already.");
    DriveInfo nested = world.driveInfo();
    nested.mountPath = world.home / "mounts/stick";
    makeFolder(nested.mountPath);
    EXPECT_EQ(refusal(world.home / "mounts", nested),
              (world.home / "mounts").native() + " holds the target drive Backup and can't be moved to it.");
    EXPECT_EQ(refusal(nested.mountPath, nested), "Backup is the target drive itself and can't be moved to it.");
}

TEST_F(FolderMove, RefusesADriveWhoseFolderLeadsElsewhere) {
    makeFolder(world.home / "Music");
    makeFolder(world.home / "elsewhere/Folders");
    makeLink(world.drive / "ExternalTarvik", world.home / "elsewhere");
    EXPECT_EQ(refusal(world.home / "Music"), "What is moved to Backup would land in " +
                                                 (world.home / "elsewhere/Folders").native() +
                                                 ", which is not on that drive.");
}

TEST_F(FolderMove, RefusesADriveWhoseRootFolderLeadsElsewhereBeforeItHoldsAnything) {
    makeFolder(world.home / "Music");
    makeFolder(world.home / "elsewhere");
    makeLink(world.drive / "ExternalTarvik", world.home / "elsewhere");
    EXPECT_EQ(refusal(world.home / "Music"), "What is moved to Backup would land in " +
                                                 (world.home / "elsewhere").native() + ", which is not on that drive.");
    EXPECT_TRUE(Files::names(world.home / "elsewhere").empty());
}

TEST_F(FolderMove, RefusesADriveOnWhichAnotherVolumeStandsInTheWay) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    makeFolder(world.home / "Music");
    makeFolder(world.drive);
    const RealVolume inside = RealVolume::memory(world.drive, 1'000'000);
    makeLink(world.drive / "ExternalTarvik", inside.path());
    EXPECT_EQ(refusal(world.home / "Music"),
              "What is moved to Backup would land in " + inside.path().native() + ", which is not on that drive.");
}

TEST_F(FolderMove, RefusesAFolderWithAVolumeMountedInside) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    makeFile(world.home / "Music/song");
    const RealVolume inside = RealVolume::memory(world.home / "Music", 1'000'000);
    EXPECT_EQ(refusal(world.home / "Music"),
              "Music can't be moved: another volume is mounted at " + inside.path().native() + ".");
}

TEST_F(FolderMove, RefusesAFolderWithASocket) {
    makeFile(world.home / "Music/song");
    makePipe(world.home / "Music/pipe");
    makeSocket(world.home / "Music/deep/player");
    EXPECT_EQ(refusal(world.home / "Music"), "Music can't be moved: " + (world.home / "Music/deep/player").native() +
                                                 " is a socket, which no copy can hold.");
    // On the way back it is only left behind.
    makeLink(world.home / "link", world.home / "Music");
    EXPECT_EQ(refusalOfRestore(world.home / "link"), "planned");
}

TEST_F(FolderMove, RefusesAFolderWithSomeoneElsesItem) {
    if (::geteuid() != 0) TARVIK_SKIP_BECAUSE("Only the administrator can become another user.");
    makeFile(world.home / "Music/shared/song");
    for (const fs::path& folder : {world.home, world.home / "Music"}) fs::permissions(folder, fs::perms::all);
    ASSERT_EQ(::chmod((world.home / "Music/shared").c_str(), 01777), 0);
    const OrdinaryUser user(world.folder.path());
    EXPECT_EQ(MoveRefusal::ofFolder(world.host, world.home / "Music", world.driveInfo()),
              "Music can't be moved: " + (world.home / "Music/shared/song").native() +
                  " belongs to another user, and only its owner may take it away (Operation not permitted).");
}

TEST_F(FolderMove, FindsWhatALinkWouldBringBack) {
    makeFile(world.foldersOnDrive() / "Music/song");
    makeLink(world.home / "Music", world.foldersOnDrive() / "Music");
    const tarvik::FolderMove::WayBack expected{world.home / "Music", world.foldersOnDrive() / "Music", true};
    EXPECT_EQ(tarvik::FolderMove::planRestore(world.host, world.home / "Music/"), expected);
}

TEST_F(FolderMove, KnowsTheLinksThatMovesHaveLeft) {
    const auto isOwn = [&](const fs::path& target) {
        makeFolder(target);
        fs::remove(world.home / "Music");
        makeLink(world.home / "Music", target);
        return tarvik::FolderMove::planRestore(world.host, world.home / "Music").isOwn;
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

TEST_F(FolderMove, RefusesARelativeLinkWhateverTheWorkingDirectory) {
    makeFile(world.foldersOnDrive() / "Music/song");
    makeLink(world.home / "Music", "../../Volumes/Backup/ExternalTarvik/Folders/Music");
    const std::string expected =
        "Music is a relative symlink, to ../../Volumes/Backup/ExternalTarvik/Folders/Music: no move leaves one, so "
        "there "
        "is nothing to move back.";
    EXPECT_EQ(refusalOfRestore(world.home / "Music"), expected);
    const fs::path before = fs::current_path();
    fs::current_path(world.home);
    EXPECT_EQ(refusalOfRestore("Music"), expected);
    fs::current_path(before);
}

TEST_F(FolderMove, SaysWhereTheTargetOfALinkWas) {
    const fs::path target = world.foldersOnDrive() / "Music";
    makeLink(world.home / "Music", target);
    EXPECT_EQ(refusalOfRestore(world.home / "Music"),
              "Music leads to " + target.native() + ", where nothing stands any more.");
    world.volumes->list.clear();
    const std::string unplugged =
        "Music is on a drive that is not connected: " + target.native() + ". Connect it and try again.";
    EXPECT_EQ(refusalOfRestore(world.home / "Music"), unplugged) << "only its mount path is left";
    fs::remove_all(world.drive);
    EXPECT_EQ(refusalOfRestore(world.home / "Music"), unplugged);
    makeLink(world.home / "Films", world.folder / "Volumes/Other/Films");
    EXPECT_EQ(refusalOfRestore(world.home / "Films"),
              "Films is on a drive that is not connected: " + (world.folder / "Volumes/Other/Films").native() +
                  ". Connect it and try again.");
}

TEST_F(FolderMove, RefusesPathsThatMayMeanTwoPlaces) {
    makeFolder(world.home / "Music");
    makeFolder(world.folder / "elsewhere/Music");
    makeFolder(world.folder / "elsewhere/behind");
    makeLink(world.home / "link", world.folder / "elsewhere/behind");
    const fs::path written = world.home / "link/../Music";
    const std::string sentence = "With \"..\" behind a symlink, " + written.native() + " may mean " +
                                 (world.folder / "elsewhere/Music").native() + " or " +
                                 (world.home / "Music").native() + ". Name the one that is meant.";
    EXPECT_EQ(refusal(written), sentence);
    EXPECT_EQ(refusalOfRestore(written), sentence);
    EXPECT_EQ(refusal(world.home / "Music/../Music"), "planned");
}

TEST_F(FolderMove, RefusesWhatIsNotOnARootedMachine) {
    const TemporaryFolder outside;
    makeFolder(outside / "Music");
    makeFolder(world.foldersOnDrive() / "Music");
    const std::string sentence = " is not on the machine in " + world.folder.path().native() + ".";
    EXPECT_EQ(refusal(outside / "Music"), (outside / "Music").native() + sentence);
    makeLink(world.home / "detour", outside.path());
    EXPECT_EQ(refusal(world.home / "detour/Music"), (outside / "Music").native() + sentence);
    makeLink(outside / "link", world.foldersOnDrive() / "Music");
    EXPECT_EQ(refusalOfRestore(outside / "link"), (outside / "link").native() + sentence);
    makeLink(world.home / "link", outside / "Music");
    EXPECT_EQ(refusalOfRestore(world.home / "link"), (outside / "Music").native() + sentence);
}

TEST_F(FolderMove, RefusesToBringBackWhatIsNoMovedItem) {
    makeFolder(world.home / "Music");
    EXPECT_EQ(refusalOfRestore(world.home / "Music"), "Music is not a symlink, so there is nothing to move back.");
    EXPECT_EQ(refusalOfRestore(world.home / "none"), "Nothing stands at " + (world.home / "none").native() + ".");
    makeLink(world.home / "gone", world.drive / "gone");
    EXPECT_EQ(refusalOfRestore(world.home / "gone"),
              "gone leads to " + (world.drive / "gone").native() + ", where nothing stands any more.");
    makeLink(world.home / "system", "/usr/bin");
    EXPECT_EQ(refusalOfRestore(world.home / "system"), "/usr/bin belongs to the system and can't be moved.");
    makeLink(world.home / "Music/up", world.home);
    EXPECT_EQ(refusalOfRestore(world.home / "Music/up"), "The home folder can't be moved.");
    makeLink(world.home / "Music/self", world.home / "Music");
    EXPECT_EQ(refusalOfRestore(world.home / "Music/self"),
              (world.home / "Music").native() + " holds the symlink itself and can't be moved into its place.");
}

TEST_F(FolderMove, RefusesToBringBackAWholeVolume) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const RealVolume volume = RealVolume::memory(world.home, 1'000'000);
    makeLink(world.home / "stick", volume.path());
    EXPECT_EQ(refusalOfRestore(world.home / "stick"),
              volume.path().native() + " is a whole volume and can't be moved.");
}

TEST_F(FolderMove, BringsTheMovedFolderOfALauncherBack) {
    const fs::path applications = world.folder / "Applications";
    const fs::path suite = world.foldersOnDrive() / "Suite";
    makeBundle(suite / "Mixer.app");
    makeBundle(world.foldersOnDrive() / "Alone.app");
    makeFolder(applications);
    makeLink(applications / "Suite", suite);
    makeLauncher(applications / "Mixer.app", suite / "Mixer.app");
    makeLauncher(applications / "Alone.app", world.foldersOnDrive() / "Alone.app");
    const auto linkOf = [&](const char* name) {
        return tarvik::FolderMove::planRestore(world.host, applications / name).link.filename();
    };
    EXPECT_EQ(linkOf("Mixer.app"), "Suite");
    EXPECT_EQ(linkOf("Suite"), "Suite");
    EXPECT_EQ(linkOf("Alone.app"), "Alone.app");
}

TEST_F(FolderMove, TellsOfTheDataThatAnApplicationLeavesOnADrive) {
    const fs::path editor = world.folder / "Applications/Editor.app";
    const fs::path caches = world.home / "Library/Caches/Editor";
    const fs::path support = world.home / "Library/Application Support/Editor";
    makeBundle(world.foldersOnDrive() / "Editor.app");
    makeFolder(editor.parent_path());
    makeLink(editor, world.foldersOnDrive() / "Editor.app");
    makeFile(caches / "cache");
    const auto remark = [&] {
        return tarvik::FolderMove::dataStays(tarvik::FolderMove::planRestore(world.host, editor));
    };
    EXPECT_EQ(remark(), "");
    makeFile(world.drive / "Data/support/file");
    makeFolder(support.parent_path());
    makeLink(support, world.drive / "Data/support");
    EXPECT_EQ(remark(), "1 item of the data of Editor.app stays on a drive: " + support.native() + ".");
    fs::rename(caches, world.drive / "Data/caches");
    makeLink(caches, world.drive / "Data/caches");
    EXPECT_THAT(remark(), testing::StartsWith("2 items of the data of Editor.app stay on a drive: "));
    EXPECT_THAT(tarvik::FolderMove::confirmRestore(tarvik::FolderMove::planRestore(world.host, editor)).details,
                testing::Contains(remark()));
}

}  // namespace tarvik::test
