#include "Copying/HiddenName.h"
#include "Copying/ItemLock.h"
#include "MovePlan/FolderMove.h"
#include "MovePlan/MoveRefusal.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
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

class FolderMoveTest : public testing::Test {
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

    World world;
};

}  // namespace

TEST_F(FolderMoveTest, PlansOneJobWithTheMeasuredSize) {
    makeFileOfSize(world.home / "Music/song", 100'000);
    const MoveJob job = tarvik::FolderMove::plan(world.host, world.home / "Music/", world.driveInfo());
    EXPECT_EQ(job.label, "Music");
    EXPECT_EQ(job.source, world.home / "Music");
    EXPECT_EQ(job.destination, world.drive / "ExternalTarvik/Folders/Music");
    EXPECT_EQ(job.status, JobStatus::pending());
    EXPECT_GE(job.bytesTotal, 100'000);
    EXPECT_EQ(job.bytesCopied, 0);
}

TEST_F(FolderMoveTest, AsksBeforeItMoves) {
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

TEST_F(FolderMoveTest, EndsItsMeasuringWhenItIsCancelled) {
    makeFileOfSize(world.home / "Music/song", 2'000'000);
    DriveInfo full = world.driveInfo();
    full.freeBytes = 0;
    const Cancellation cancellation;
    cancellation.cancel();
    const auto plan = [&] { tarvik::FolderMove::plan(world.host, world.home / "Music", full, cancellation); };
    EXPECT_THAT(plan,
                testing::Throws<Failure>(testing::Property(&Failure::description, "Cancelled. Nothing was changed.")));
}

TEST_F(FolderMoveTest, PlansAnEmptyFolder) {
    makeFolder(world.home / "Empty");
    EXPECT_EQ(tarvik::FolderMove::plan(world.host, world.home / "Empty", world.driveInfo()).bytesTotal, 0);
}

TEST_F(FolderMoveTest, RefusesWhatIsNotThere) {
    EXPECT_EQ(refusal(world.home / "missing"), "Source folder doesn't exist.");
    EXPECT_EQ(refusal(world.home / std::string(5000, 'x')), "Source folder doesn't exist.");
}

TEST_F(FolderMoveTest, RefusesWhatIsNoFolder) {
    makeFile(world.home / "notes.txt");
    EXPECT_EQ(refusal(world.home / "notes.txt"), "notes.txt is not a folder. Choose a folder.");
    makeFolder(world.home / "real");
    makeLink(world.home / "link", world.home / "real");
    EXPECT_EQ(refusal(world.home / "link"), "link is already a symlink to " + (world.home / "real").native() + ".");
}

TEST_F(FolderMoveTest, RefusesMoreThanTheDriveHasRoomFor) {
    makeFileOfSize(world.home / "Music/song", 2'000'000);
    DriveInfo drive = world.driveInfo();
    drive.freeBytes = 1'000'000;
    EXPECT_EQ(refusal(world.home / "Music", drive), "Need 2 MB but Backup has 1 MB.");

    const fs::path left = HiddenName::forCopyTo(world.foldersOnDrive() / "Music");
    makeFileOfSize(left / "song", 300'000);
    EXPECT_THAT(refusal(world.home / "Music", drive),
                testing::MatchesRegex("Need 2 MB but Backup has 1 MB\\. An interrupted move has left 30[0-9] KB in " +
                                      world.foldersOnDrive().native() +
                                      ", under a name that begins with \\.tarvik-moving-\\."));
    const FileDescriptor held = ItemLock::hold(left);
    EXPECT_EQ(refusal(world.home / "Music", drive), "Need 2 MB but Backup has 1 MB.");
}

TEST_F(FolderMoveTest, RefusesADriveThatCannotBeWrittenTo) {
    makeFolder(world.home / "Music");
    DriveInfo drive = world.driveInfo();
    drive.isWritable = false;
    EXPECT_EQ(refusal(world.home / "Music", drive), "Backup is read-only. Choose a drive that can be written to.");
}

TEST_F(FolderMoveTest, RefusesTheHomeAndWhatHoldsIt) {
    EXPECT_EQ(refusal(world.home), "The home folder can't be moved.");
    EXPECT_EQ(refusal(world.home / "."), "The home folder can't be moved.");
    const fs::path users = world.home.parent_path();
    EXPECT_EQ(refusal(users), users.native() + " holds the home folder and can't be moved.");
    EXPECT_EQ(refusal("/"), "/ holds the home folder and can't be moved.");
    makeLink(world.folder / "detour", users);
    EXPECT_EQ(refusal(world.folder / "detour/ada"), "The home folder can't be moved.");
}

TEST_F(FolderMoveTest, RefusesFoldersOfTheSystem) {
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

TEST_F(FolderMoveTest, RefusesTheDriveWhatHoldsItAndWhatLiesOnIt) {
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

TEST_F(FolderMoveTest, RefusesADriveWhoseFolderLeadsElsewhere) {
    makeFolder(world.home / "Music");
    makeFolder(world.home / "elsewhere/Folders");
    makeLink(world.drive / "ExternalTarvik", world.home / "elsewhere");
    EXPECT_EQ(refusal(world.home / "Music"), "What is moved to Backup would land in " +
                                                 (world.home / "elsewhere/Folders").native() +
                                                 ", which is not on that drive.");
}

TEST_F(FolderMoveTest, RefusesADriveWhoseRootFolderLeadsElsewhereBeforeItHoldsAnything) {
    makeFolder(world.home / "Music");
    makeFolder(world.home / "elsewhere");
    makeLink(world.drive / "ExternalTarvik", world.home / "elsewhere");
    EXPECT_EQ(refusal(world.home / "Music"), "What is moved to Backup would land in " +
                                                 (world.home / "elsewhere").native() + ", which is not on that drive.");
    EXPECT_TRUE(Files::names(world.home / "elsewhere").empty());
}

TEST_F(FolderMoveTest, RefusesADriveOnWhichAnotherVolumeStandsInTheWay) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    makeFolder(world.home / "Music");
    makeFolder(world.drive);
    const RealVolume inside = RealVolume::memory(world.drive, 1'000'000);
    makeLink(world.drive / "ExternalTarvik", inside.path());
    EXPECT_EQ(refusal(world.home / "Music"),
              "What is moved to Backup would land in " + inside.path().native() + ", which is not on that drive.");
}

TEST_F(FolderMoveTest, RefusesAFolderWithAVolumeMountedInside) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    makeFile(world.home / "Music/song");
    const RealVolume inside = RealVolume::memory(world.home / "Music", 1'000'000);
    EXPECT_EQ(refusal(world.home / "Music"),
              "Music can't be moved: another volume is mounted at " + inside.path().native() + ".");
}

TEST_F(FolderMoveTest, RefusesAFolderWithASocket) {
    makeFile(world.home / "Music/song");
    makeSocket(world.home / "Music/deep/player");
    EXPECT_EQ(refusal(world.home / "Music"), "Music can't be moved: " + (world.home / "Music/deep/player").native() +
                                                 " is a socket, which no copy can hold.");
}

TEST_F(FolderMoveTest, RefusesAFolderWithSomeoneElsesItem) {
    if (::geteuid() != 0) TARVIK_SKIP_BECAUSE("Only the administrator can become another user.");
    makeFile(world.home / "Music/shared/song");
    for (const fs::path& folder : {world.home, world.home / "Music"}) fs::permissions(folder, fs::perms::all);
    ASSERT_EQ(::chmod((world.home / "Music/shared").c_str(), 01777), 0);
    const OrdinaryUser user(world.folder.path());
    EXPECT_EQ(MoveRefusal::ofFolder(world.host, world.home / "Music", world.driveInfo()),
              "Music can't be moved: " + (world.home / "Music/shared/song").native() +
                  " belongs to another user, and only its owner may take it away (Operation not permitted).");
}

TEST_F(FolderMoveTest, RefusesPathsThatMayMeanTwoPlaces) {
    makeFolder(world.home / "Music");
    makeFolder(world.folder / "elsewhere/Music");
    makeFolder(world.folder / "elsewhere/behind");
    makeLink(world.home / "link", world.folder / "elsewhere/behind");
    const fs::path written = world.home / "link/../Music";
    const std::string sentence = "With \"..\" behind a symlink, " + written.native() + " may mean " +
                                 (world.folder / "elsewhere/Music").native() + " or " +
                                 (world.home / "Music").native() + ". Name the one that is meant.";
    EXPECT_EQ(refusal(written), sentence);
    EXPECT_EQ(refusal(world.home / "Music/../Music"), "planned");
}

TEST_F(FolderMoveTest, RefusesWhatIsNotOnARootedMachine) {
    const TemporaryFolder outside;
    makeFolder(outside / "Music");
    const std::string sentence = " is not on the machine in " + world.folder.path().native() + ".";
    EXPECT_EQ(refusal(outside / "Music"), (outside / "Music").native() + sentence);
    makeLink(world.home / "detour", outside.path());
    EXPECT_EQ(refusal(world.home / "detour/Music"), (outside / "Music").native() + sentence);
}

TEST_F(FolderMoveTest, RefusesAFolderThatNoLinkCanTakeThePlaceOf) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const auto card = RealVolume::memory(world.folder.path(), megabyte);
    makeFile(card / "Photos/lake.raw");
    world.volumes->list.push_back(
        {.mountPath = card.path(), .name = "Card", .formatDescription = "exFAT", .keepsLinks = false});
    EXPECT_EQ(refusal(card / "Photos"),
              "Photos can't be moved: a symlink would have to take its place, and Card holds none (exFAT).");
    EXPECT_EQ(MoveRefusal::ofContents(world.host, card / "Photos"),
              "Photos can't be moved: a symlink would have to take its place, and Card holds none (exFAT).");
    world.volumes->list.back().keepsLinks = true;
    EXPECT_EQ(refusal(card / "Photos"), "planned");
}

TEST_F(FolderMoveTest, RefusesWhatHasBeenMovedToAnotherDrive) {
    const fs::path other = world.folder / "Volumes/Other";
    makeFile(other / "ExternalTarvik/Folders/Music/song");
    makeFile(other / "Old/ExternalTarvik/Folders/Music/song");
    world.volumes->list.push_back({.mountPath = other, .name = "Other"});
    for (const char* folder : {"ExternalTarvik", "ExternalTarvik/Folders"})
        EXPECT_EQ(refusal(other / folder),
                  (other / folder).native() + " holds what has been moved to Other and can't be moved itself.");
    EXPECT_EQ(refusal(other / "ExternalTarvik/Folders/Music"),
              "Music has been moved to Other already. Move it back first.");
    EXPECT_EQ(refusal(other / "Old/ExternalTarvik"), "planned") << "that is no drive's";
}

TEST_F(FolderMoveTest, RefusesFoldersOfTheHomeThatProgramsLookFor) {
    makeFile(world.home / "Library/Application Support/Acme/file");
    EXPECT_EQ(refusal(world.home / "Library/Application Support"),
              (world.home / "Library/Application Support").native() + " belongs to the system and can't be moved.");
    EXPECT_EQ(refusal(world.home / "Library/Application Support/Acme"), "planned");
}

}  // namespace tarvik::test
