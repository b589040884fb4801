#include "Platform/Storage/SeenDrives.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

namespace tarvik {

TEST(SeenDrives, TellTheVolumeThatAPlaceIsOrWillBeOn) {
    const test::World world;
    world.volumes->list.front().identifier = "first";
    const SeenDrive drive{world.drive, "first"};
    const SeenDrives drives(world.host);
    EXPECT_EQ(drives.of(world.drive), drive);
    EXPECT_EQ(drives.of(world.drive / "not/there"), drive);
    EXPECT_EQ(drives.of(world.home), SeenDrive{}) << "the system lists none for it";
    test::makeLink(world.home / "way", world.drive);
    EXPECT_EQ(drives.of(world.home / "way/folder"), drive);
    EXPECT_EQ(drives.of(world.home / "way"), SeenDrive{}) << "the link itself";
}

TEST(SeenDrives, AskNoSilentVolume) {
    test::World world;
    world.host.silentVolumes = {world.drive};
    EXPECT_EQ(SeenDrives(world.host).of(world.drive / "folder"), SeenDrive{});
}

TEST(SeenDrives, TellTheDeepestOfSeveral) {
    const test::World world;
    const fs::path inner = world.drive / "inner";
    test::makeFolder(inner);
    world.volumes->list.push_back({.mountPath = inner, .identifier = "second"});
    EXPECT_EQ(SeenDrives(world.host).of(inner / "folder"), (SeenDrive{inner, "second"}));
}

}  // namespace tarvik
