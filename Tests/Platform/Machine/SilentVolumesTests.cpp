#include "Platform/Machine/SilentVolumes.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

namespace tarvik {

namespace {

class SilentVolumesNoted : public testing::Test {
protected:
    SilentVolumesNoted() { world.host.silentVolumes = {silent}; }
    bool hold(const fs::path& path) const { return SilentVolumes::hold(world.host, path); }

    test::World world;
    const fs::path silent = world.folder / "Volumes/Silent";
};

}  // namespace

TEST_F(SilentVolumesNoted, HoldWhatStandsBelowThem) {
    EXPECT_TRUE(hold(silent));
    EXPECT_TRUE(hold(silent / "Apps/Foo.app"));
    EXPECT_TRUE(hold(world.home / "../../Volumes/./Silent//x"));
    EXPECT_FALSE(hold(world.folder / "Volumes"));
    EXPECT_FALSE(hold(world.folder / "Volumes/Silent 2/x"));
    EXPECT_TRUE(hold(silent / "../Other")) << "the way leads through it";
    world.host.silentVolumes.clear();
    EXPECT_FALSE(hold(silent));
}

TEST_F(SilentVolumesNoted, HoldWhatLinksLeadTo) {
    test::makeLink(world.home / "absolute", silent / "Data");
    test::makeLink(world.home / "relative", "absolute/deep");
    test::makeLink(world.home / "up", "../../Volumes/Silent");
    test::makeLink(world.home / "elsewhere", world.drive);
    for (const char* name : {"absolute", "absolute/x", "relative/x", "up/x"})
        EXPECT_TRUE(hold(world.home / name)) << name;
    EXPECT_FALSE(hold(world.home / "elsewhere/x"));
}

TEST_F(SilentVolumesNoted, EndAtLinksThatGoInCircles) {
    test::makeLink(world.home / "one", "two");
    test::makeLink(world.home / "two", "one");
    EXPECT_FALSE(hold(world.home / "one/x"));
}

TEST(SilentVolumes, AreNoneWhereAllAnswer) {
    test::World world;
    world.volumes->list = {{.mountPath = world.drive}, {.mountPath = "/nowhere"}};
    EXPECT_EQ(SilentVolumes::noted(world.host).silentVolumes, std::vector<fs::path>());
}

}  // namespace tarvik
