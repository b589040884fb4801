// What the rules of the file system let nobody read, remove or link to.
#include "Copying/MoverError.h"
#include "Move/MoverEngine.h"
#include "MovePlan/MoveRefusal.h"
#include "Platform/Files/Files.h"
#include "Support/Linux/DriveFaults.h"
#include "Support/Linux/PlainUser.h"
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

constexpr uid_t someoneElse = 1234;

class GuardedItems : public testing::Test {
protected:
    GuardedItems() {
        world.withRealDitto();
        makeTree(source);
    }

    void makeTree(const fs::path& root) {
        makeFile(root / "a", "first");
        makeFile(root / "sub/b", "second");
        makeFile(root / "z", "last");
        picture = pictureOf(root);
    }

    std::string failureOfMove(const fs::path& item, const fs::path& destinationParent) const {
        try {
            MoverEngine::moveAndLink(
                world.host, item, destinationParent, false, [](const JobStatus&) {}, [](std::int64_t, std::int64_t) {});
        } catch (const Failure& failure) {
            return failure.description();
        }
        return "moved";
    }
    std::string failureOfMove(const fs::path& item) const { return failureOfMove(item, world.foldersOnDrive()); }

    fs::path stashed(const fs::path& item) const { return world.trash->folder / item.filename(); }

    /// After a removal that failed: the copy is disposed of whole, and no link stands at the old place.
    void expectCopyStashed(const fs::path& item) const {
        EXPECT_FALSE(Files::isSymbolicLink(item));
        EXPECT_FALSE(Files::itemExists(world.foldersOnDrive() / item.filename()));
        EXPECT_EQ(pictureOf(stashed(item)), picture);
    }

    World world;
    fs::path source = world.home / "Music";
    std::string picture;
};

bool isSuperuser() {
    return ::geteuid() == 0;
}

}  // namespace

TEST_F(GuardedItems, AFileThatMayNotBeReadStaysWithAllOthers) {
    fs::permissions(source / "sub/b", fs::perms::none);
    {
        const PlainUser user;
        EXPECT_EQ(failureOfMove(source),
                  "Copy failed: ditto failed: ditto: " + (source / "sub/b").native() + ": Permission denied");
    }
    fs::permissions(source / "sub/b", fs::perms(0644));
    EXPECT_EQ(pictureOf(source), picture);
    EXPECT_FALSE(Files::itemExists(world.foldersOnDrive() / "Music"));
}

TEST_F(GuardedItems, AnItemInAFolderThatMayNotBeChangedStaysWhole) {
    fs::permissions(world.home, fs::perms(0555));
    {
        const PlainUser user;
        EXPECT_EQ(failureOfMove(source), "Could not remove original after copy: Could not remove what is in " +
                                             world.home.native() + ": Permission denied");
    }
    fs::permissions(world.home, fs::perms(0755));
    EXPECT_EQ(pictureOf(source), picture);
    expectCopyStashed(source);
}

TEST_F(GuardedItems, SomeoneElsesItemInASharedFolderStaysWhole) {
    if (!isSuperuser()) TARVIK_SKIP_BECAUSE("Only the administrator can give a folder away.");
    // Only its owner may take an item out of a folder with the sticky bit.
    ASSERT_EQ(::chmod(world.home.c_str(), 01777), 0);
    for (const fs::path& item : {world.home, source}) ASSERT_EQ(::chown(item.c_str(), someoneElse, someoneElse), 0);
    ASSERT_EQ(::chmod(source.c_str(), 0777), 0);
    picture = pictureOf(source);
    {
        const PlainUser user;
        EXPECT_EQ(failureOfMove(source), "Could not remove original after copy: Could not remove " + source.native() +
                                             ": Operation not permitted");
    }
    EXPECT_EQ(pictureOf(source), picture);
    expectCopyStashed(source);
}

TEST_F(GuardedItems, SomeoneElsesFileInASharedFolderInsideStaysWithAllOthers) {
    if (!isSuperuser()) TARVIK_SKIP_BECAUSE("Only the administrator can give a folder away.");
    ASSERT_EQ(::chmod((source / "sub").c_str(), 01777), 0);
    for (const char* name : {"sub", "sub/b"}) ASSERT_EQ(::chown((source / name).c_str(), someoneElse, someoneElse), 0);
    picture = pictureOf(source);
    {
        const PlainUser user;
        EXPECT_EQ(failureOfMove(source), "Could not remove original after copy: Could not remove " +
                                             (source / "sub/b").native() + ": Operation not permitted");
    }
    EXPECT_EQ(pictureOf(source), picture);
    expectCopyStashed(source);
}

TEST_F(GuardedItems, AnImmutableFileStaysWithAllOthers) {
    TARVIK_NEEDS_REAL_VOLUMES();
    const TemporaryFolder mounts;
    const RealVolume disk = RealVolume::ext4(mounts.path(), 20'000'000);
    const fs::path item = disk / "Music";
    makeTree(item);
    const Flagged file(item / "sub/b", FileFlag::immutable);
    EXPECT_EQ(failureOfMove(item), "Could not remove original after copy: Could not remove " +
                                       (item / "sub/b").native() + ": Operation not permitted");
    EXPECT_EQ(pictureOf(item), picture);
    EXPECT_EQ(Files::names(disk.path()), (std::vector<std::string>{"Music", "lost+found"}));
    expectCopyStashed(item);
    // Who asks first is told before anything is copied.
    world.volumes->list.push_back({.mountPath = disk.path(), .name = "Disk"});
    EXPECT_EQ(MoveRefusal::ofFolder(world.host, item, world.driveInfo()),
              "Music can't be moved: " + (item / "sub/b").native() +
                  " is locked (Operation not permitted). Unlock it with: sudo chattr -i " + (item / "sub/b").native());
}

TEST_F(GuardedItems, AnItemWhoseLinkCannotBeMadeStaysAsItWas) {
    TARVIK_NEEDS_REAL_VOLUMES();
    // A disk of this size has blocks of 1024 bytes, and no link on it may hold a longer text.
    const TemporaryFolder mounts;
    const RealVolume disk = RealVolume::ext4(mounts.path(), 20'000'000);
    const fs::path item = disk / "Music";
    makeTree(item);
    fs::path far = world.foldersOnDrive();
    for (int level = 0; level < 5; ++level) far /= std::string(250, 'f');
    EXPECT_EQ(failureOfMove(item, far),
              "Symlink creation failed: Could not create the link " + item.native() + ": File name too long");
    EXPECT_EQ(pictureOf(item), picture);
    EXPECT_EQ(Files::names(disk.path()), (std::vector<std::string>{"Music", "lost+found"}));
    EXPECT_TRUE(Files::names(far).empty());
    EXPECT_FALSE(Files::itemExists(stashed(item)));
}

}  // namespace tarvik::test
