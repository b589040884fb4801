// Moves to and from real second file systems: what only they can do wrong.
#include "Copying/MoverError.h"
#include "Move/ItemMover.h"
#include "Move/MoverEngine.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/ToolTable.h"
#include "Platform/Storage/DriveScanner.h"
#include "Support/FailureOf.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik::test {

namespace {

void makeMusic(const fs::path& folder) {
    makeFileOfSize(folder / "song", 100'000);
    makeFile(folder / ".hidden/notes", "la");
    makeLink(folder / "link", "song");
    makeFolder(folder / "empty");
    fs::create_hard_link(folder / "song", folder / "same song");
}

void move(const World& world, const fs::path& source, const MoverEngine::StatusCallback& status = {}) {
    MoverEngine::moveAndLink(
        world.host, source, world.foldersOnDrive(), false,
        [&](const JobStatus& reached) {
            if (status) status(reached);
        },
        [](std::int64_t, std::int64_t) {});
}

}  // namespace

TEST(RealVolumes, TakeAFolderAndGiveItBack) {
    TARVIK_NEEDS_REAL_VOLUMES();
    const TemporaryFolder mounts;
    for (const bool inMemory : {false, true}) {
        const RealVolume volume = inMemory ? RealVolume::memory(mounts.path(), 20 * megabyte)
                                           : RealVolume::ext4(mounts.path(), 20 * megabyte);
        World world(volume.path());
        world.withRealDitto();
        makeMusic(world.home / "Music");
        const std::string picture = pictureOf(world.home / "Music");
        move(world, world.home / "Music");
        EXPECT_EQ(Files::linkText(world.home / "Music"), world.foldersOnDrive() / "Music");
        EXPECT_EQ(pictureOf(world.foldersOnDrive() / "Music"), picture);
        MoverEngine::restore(world.host, world.home / "Music");
        EXPECT_EQ(pictureOf(world.home / "Music"), picture);
        EXPECT_EQ(Files::info(world.home / "Music/song")->inode, Files::info(world.home / "Music/same song")->inode);
        EXPECT_FALSE(Files::itemExists(world.foldersOnDrive() / "Music"));
        EXPECT_EQ(world.namesAtHome(), std::vector<std::string>{"Music"});
    }
}

TEST(RealVolumes, ThatFillUpInTheMiddleLeaveTheOriginalWhole) {
    TARVIK_NEEDS_REAL_VOLUMES();
    const TemporaryFolder mounts;
    const RealVolume volume = RealVolume::memory(mounts.path(), 2 * megabyte);
    World world(volume.path());
    world.withRealDitto();
    makeMusic(world.home / "Music");
    makeFileOfSize(world.home / "Music/big", 5'000'000);
    const std::string picture = pictureOf(world.home / "Music");
    EXPECT_THAT(failureOf([&] { move(world, world.home / "Music"); }),
                testing::MatchesRegex(
                    "Copy failed: ditto failed: ditto: .*: No space left on device( \\(and [0-9]+ more\\))?"));
    EXPECT_EQ(pictureOf(world.home / "Music"), picture);
    EXPECT_FALSE(Files::itemExists(world.foldersOnDrive() / "Music"));
}

TEST(RealVolumes, ThatAreFullAreRefusedBeforeTheCopy) {
    TARVIK_NEEDS_REAL_VOLUMES();
    const TemporaryFolder mounts;
    const RealVolume volume = RealVolume::memory(mounts.path(), 2 * megabyte);
    World world(volume.path());
    world.withRealDitto().host.volumes = makeSystemVolumeList(world.home);
    makeFileOfSize(world.home / "Music/big", 5'000'000);
    EXPECT_THAT(failureOf([&] { move(world, world.home / "Music"); }),
                testing::StartsWith("Not enough space. Need 5 MB"));
    EXPECT_FALSE(Files::itemExists(world.foldersOnDrive() / "Music"));
}

TEST(RealVolumes, ThatAreReadOnlyTakeNothing) {
    TARVIK_NEEDS_REAL_VOLUMES();
    const TemporaryFolder mounts;
    RealVolume volume = RealVolume::ext4(mounts.path(), 20 * megabyte);
    volume.remountReadOnly();
    World world(volume.path());
    world.withRealDitto();
    makeMusic(world.home / "Music");
    const std::string picture = pictureOf(world.home / "Music");
    EXPECT_THAT(failureOf([&] { move(world, world.home / "Music"); }),
                testing::MatchesRegex("Could not create the folder .*: Read-only file system"));
    EXPECT_EQ(pictureOf(world.home / "Music"), picture);
}

TEST(RealVolumes, ThatTurnReadOnlyBeforeTheCopyLeaveTheOriginalWhole) {
    TARVIK_NEEDS_REAL_VOLUMES();
    const TemporaryFolder mounts;
    const RealVolume volume = RealVolume::ext4(mounts.path(), 20 * megabyte);
    World world(volume.path());
    world.withDitto(RealVolume::makingReadOnly(volume.path()) + "; exec '" + systemTools().ditto.native() + "' \"$@\"");
    makeMusic(world.home / "Music");
    const std::string picture = pictureOf(world.home / "Music");
    EXPECT_THAT(
        failureOf([&] { move(world, world.home / "Music"); }),
        testing::MatchesRegex("Copy failed: ditto failed: ditto: .*: Read-only file system( \\(and [0-9]+ more\\))?"));
    EXPECT_EQ(pictureOf(world.home / "Music"), picture);
}

TEST(RealVolumes, ThatAreUnpluggedDuringTheCopyLeaveTheOriginalWhole) {
    TARVIK_NEEDS_REAL_VOLUMES();
    const TemporaryFolder mounts;
    RealVolume volume = RealVolume::ext4(mounts.path(), 20 * megabyte);
    World world(volume.path());
    const std::string real = systemTools().ditto;
    makeMusic(world.home / "Music");
    const std::string picture = pictureOf(world.home / "Music");

    // Gone before the copy: the tool then writes into the folder that the drive left behind.
    world.withDitto(RealVolume::unplugging(volume.path()) + "; exec '" + real + "' \"$@\"");
    EXPECT_EQ(failureOf([&] { move(world, world.home / "Music"); }),
              "Verification failed: The target drive was disconnected while it was written to.");
    EXPECT_EQ(pictureOf(world.home / "Music"), picture);
}

TEST(RealVolumes, ThatAreUnpluggedWhileTheyAreListedAreNotThere) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    class Volumes : public MadeVolumes {
    public:
        std::vector<Volume> mounted() const override {
            EXPECT_EQ(std::system(meanwhile.c_str()), 0);
            return list;
        }
        std::string meanwhile = "true";
    };
    World world;
    const RealVolume volume = RealVolume::memory(world.folder.path(), megabyte);
    const auto volumes = std::make_shared<Volumes>();
    volumes->list = {{.mountPath = volume.path()}};
    world.host.volumes = volumes;
    EXPECT_TRUE(DriveScanner::isThere(world.host, volume.path()));
    // It leaves its mount path behind.
    volumes->meanwhile = RealVolume::unplugging(volume.path());
    EXPECT_FALSE(DriveScanner::isThere(world.host, volume.path()));
}

TEST(RealVolumes, ThatAreUnpluggedAfterTheCopyLeaveTheOriginalWhole) {
    TARVIK_NEEDS_REAL_VOLUMES();
    const TemporaryFolder mounts;
    const RealVolume volume = RealVolume::ext4(mounts.path(), 20 * megabyte);
    World world(volume.path());
    makeMusic(world.home / "Music");
    const std::string picture = pictureOf(world.home / "Music");
    world.withDitto("'" + systemTools().ditto.native() + "' \"$@\" && " + RealVolume::unplugging(volume.path()));
    EXPECT_EQ(failureOf([&] { move(world, world.home / "Music"); }),
              "Verification failed: Music is missing at the destination.");
    EXPECT_EQ(pictureOf(world.home / "Music"), picture);
}

TEST(RealVolumes, MountedInsideAFolderStopItsRemoval) {
    TARVIK_NEEDS_REAL_VOLUMES();
    World world;
    world.withRealDitto();
    makeMusic(world.home / "Music");
    const RealVolume inside = RealVolume::memory(world.home / "Music", megabyte);
    makeFile(inside.path() / "precious", "only copy");
    const std::string failure = failureOf([&] { move(world, world.home / "Music"); });
    EXPECT_EQ(failure, "Could not remove original after copy: Could not remove the mounted volume " +
                           inside.path().native() + ": " + wordsFor(EBUSY));
    EXPECT_EQ(contentOf(inside.path() / "precious"), "only copy");
    EXPECT_TRUE(Files::exists(world.home / "Music/song"));
    EXPECT_FALSE(Files::itemExists(world.foldersOnDrive() / "Music"));
}

TEST(RealVolumes, GetTheirLinkBackWhenTheWayHomeFails) {
    TARVIK_NEEDS_REAL_VOLUMES();
    const TemporaryFolder mounts;
    const RealVolume small = RealVolume::memory(mounts.path(), megabyte);
    World world;
    world.withRealDitto();
    const fs::path onDrive = world.foldersOnDrive() / "Music";
    makeFileOfSize(onDrive / "big", 3'000'000);
    const std::string picture = pictureOf(onDrive);
    makeLink(small.path() / "Music", onDrive);
    EXPECT_THAT(failureOf([&] { MoverEngine::restore(world.host, small.path() / "Music"); }),
                testing::MatchesRegex("ditto failed: ditto: .*: No space left on device( \\(and [0-9]+ more\\))?"));
    EXPECT_EQ(Files::linkText(small.path() / "Music"), onDrive);
    EXPECT_EQ(pictureOf(onDrive), picture);
    EXPECT_EQ(Files::names(small.path()), std::vector<std::string>{"Music"});
}

TEST(RealVolumes, KeepWhatWasWrittenWhileItWasMovedBack) {
    TARVIK_NEEDS_REAL_VOLUMES();
    const TemporaryFolder mounts;
    const RealVolume volume = RealVolume::ext4(mounts.path(), 20 * megabyte);
    World world(volume.path());
    const fs::path onDrive = world.foldersOnDrive() / "Music";
    makeMusic(onDrive);
    makeLink(world.home / "Music", onDrive);
    world.withDitto(R"(cp -aT "$2" "$3"; printf 'lo' > "$2/.hidden/notes")");
    EXPECT_EQ(failureOf([&] { MoverEngine::restore(world.host, world.home / "Music"); }),
              "Verification failed: Music/.hidden/notes was changed while it was copied.");
    EXPECT_EQ(Files::linkText(world.home / "Music"), onDrive);
    EXPECT_EQ(contentOf(onDrive / ".hidden/notes"), "lo");
    EXPECT_EQ(world.namesAtHome(), std::vector<std::string>{"Music"});
}

TEST(RealVolumes, GiveBackAFolderInWhichASocketWasMadeMeanwhile) {
    TARVIK_NEEDS_REAL_VOLUMES();
    const TemporaryFolder mounts;
    const RealVolume volume = RealVolume::ext4(mounts.path(), 20 * megabyte);
    World world(volume.path());
    world.withRealDitto();
    makeMusic(world.home / "Music");
    move(world, world.home / "Music");
    makeSocket(world.home / "Music/socket");
    MoverEngine::restore(world.host, world.home / "Music");
    EXPECT_TRUE(Files::exists(world.home / "Music/song"));
    EXPECT_FALSE(Files::itemExists(world.foldersOnDrive() / "Music"));
}

TEST(ItemMover, ReportsProgressOnlyAcrossVolumes) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder mounts;
    const RealVolume volume = RealVolume::memory(mounts.path(), 20 * megabyte);
    World world(volume.path());
    const fs::path isReported = world.folder / "reported";
    world.withDitto("cp -aT \"$2\" \"$3\"\n" + waitFor(isReported));
    makeFileOfSize(world.home / "tree/file", megabyte);
    std::int64_t reportedTotal = -1;
    const auto progress = [&](std::int64_t, std::int64_t total) {
        reportedTotal = total;
        makeFile(isReported);
    };
    ItemMover::move(world.host, world.home / "tree", world.home / "renamed", ItemMover::Goal::free, progress);
    EXPECT_EQ(reportedTotal, -1);
    ItemMover::move(world.host, world.home / "renamed", world.drive / "tree", ItemMover::Goal::free, progress);
    EXPECT_GE(reportedTotal, megabyte);
    EXPECT_TRUE(Files::exists(world.drive / "tree/file"));
    EXPECT_FALSE(Files::itemExists(world.home / "renamed"));
}

TEST(ItemMover, NeverReplacesWhatStandsAtTheGoal) {
    const World world;
    makeFile(world.home / "one", "1");
    makeFile(world.home / "two", "2");
    EXPECT_THROW(ItemMover::move(world.host, world.home / "one", world.home / "two", ItemMover::Goal::free), FileError);
    EXPECT_EQ(contentOf(world.home / "one"), "1");
    EXPECT_EQ(contentOf(world.home / "two"), "2");
}

}  // namespace tarvik::test
