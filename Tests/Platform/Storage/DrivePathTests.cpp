#include "Platform/Storage/DrivePath.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

namespace tarvik {

TEST(DrivePath, IsTheFolderInThatOfVolumesOrTheOneAboveOurs) {
    const test::World world;
    const fs::path volumes = world.folder / "Volumes";
    EXPECT_EQ(DrivePath::of(world.host, volumes / "Backup"), volumes / "Backup");
    EXPECT_EQ(DrivePath::of(world.host, volumes / "Backup/Some/Folder"), volumes / "Backup");
    EXPECT_EQ(DrivePath::of(world.host, "/media/ada/Stick/ExternalTarvik/Apps"), "/media/ada/Stick");
    EXPECT_EQ(DrivePath::of(world.host, volumes), std::nullopt);
    EXPECT_EQ(DrivePath::of(world.host, volumes / ""), std::nullopt);
    EXPECT_EQ(DrivePath::of(world.host, "/ExternalTarvik/Apps"), std::nullopt);
    EXPECT_EQ(DrivePath::of(world.host, "ExternalTarvik/Apps"), std::nullopt);
    EXPECT_EQ(DrivePath::of(world.host, "Stick/ExternalTarvik/Apps"), std::nullopt);
    EXPECT_EQ(DrivePath::of(world.host, world.home / "Music"), std::nullopt);
}

TEST(DrivePath, IsAbsentWhereNothingIsMounted) {
    const test::World world;
    const fs::path volumes = world.folder / "Volumes";
    EXPECT_EQ(DrivePath::absent(world.host, world.drive / "Folder"), std::nullopt);
    EXPECT_EQ(DrivePath::absent(world.host, volumes / "Away/Folder"), volumes / "Away");
    test::makeFolder(volumes / "Away");
    EXPECT_EQ(DrivePath::absent(world.host, volumes / "Away/Folder"), volumes / "Away") << "left behind";
    test::makeLink(volumes / "Disk", "/");
    EXPECT_EQ(DrivePath::absent(world.host, volumes / "Disk/Folder"), std::nullopt) << "the disk itself";
    EXPECT_EQ(DrivePath::absent(world.host, world.home / "Music"), std::nullopt);
}

}  // namespace tarvik
