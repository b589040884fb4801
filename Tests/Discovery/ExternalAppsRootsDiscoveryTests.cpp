#include "Discovery/ExternalAppsRootsDiscovery.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using testing::ElementsAre;

TEST(ExternalAppsRootsDiscovery, FindsOurFolderOnVolumesAndThenTheExtras) {
    const test::World world;
    const fs::path volumes = world.folder / "Volumes";
    test::makeFolder(volumes / "Two/ExternalTarvik/Apps");
    test::makeFolder(volumes / "One/ExternalTarvik/Apps");
    test::makeFolder(volumes / "Other/ExternalTarvik/Data");
    test::makeFolder(volumes / ".hidden/ExternalTarvik/Apps");
    test::makeFile(volumes / "file");
    test::makeFolder(world.folder / "Extra");
    EXPECT_THAT(ExternalAppsRootsDiscovery::roots(world.host, {world.folder / "missing", world.folder / "Extra",
                                                               volumes / "One/ExternalTarvik/Apps"}),
                ElementsAre(volumes / "One/ExternalTarvik/Apps", volumes / "Two/ExternalTarvik/Apps",
                            world.folder / "Extra", volumes / "One/ExternalTarvik/Apps"));
}

TEST(ExternalAppsRootsDiscovery, FindsDrivesThatAreMountedElsewhereOnce) {
    const test::World world;
    const fs::path media = world.folder / "media/ada";
    for (const fs::path& drive : {media / "Stick", media / "Card", world.drive}) {
        test::makeFolder(drive / "ExternalTarvik/Apps");
        if (drive != world.drive) world.volumes->list.push_back({.mountPath = drive, .isBrowsable = true});
    }
    world.volumes->list.front().isBrowsable = true;
    world.volumes->list.push_back({.mountPath = world.folder / "mnt", .isBrowsable = true});
    EXPECT_THAT(ExternalAppsRootsDiscovery::roots(world.host, {}),
                ElementsAre(world.drive / "ExternalTarvik/Apps", media / "Card/ExternalTarvik/Apps",
                            media / "Stick/ExternalTarvik/Apps"));
}

TEST(ExternalAppsRootsDiscovery, FindsBesideASilentVolumeWhatItFindsWithoutOne) {
    test::World world;
    const fs::path silent = world.folder / "media/Silent";
    const fs::path shown = world.folder / "media/Shown";
    const fs::path hidden = world.folder / "media/Hidden";
    for (const fs::path& drive : {silent, shown, hidden}) {
        test::makeFolder(drive / "ExternalTarvik/Apps");
        world.volumes->list.push_back({.mountPath = drive, .isBrowsable = drive != hidden});
    }
    world.host.silentVolumes = {silent};
    EXPECT_THAT(ExternalAppsRootsDiscovery::roots(world.host, {}), ElementsAre(shown / "ExternalTarvik/Apps"));
}

TEST(ExternalAppsRootsDiscovery, GivesTheExtrasAlsoWithoutVolumes) {
    const test::World world;
    fs::remove_all(world.folder / "Volumes");
    test::makeFolder(world.folder / "Extra");
    EXPECT_THAT(ExternalAppsRootsDiscovery::roots(world.host, {world.folder / "Extra"}),
                ElementsAre(world.folder / "Extra"));
}

}  // namespace
}  // namespace tarvik
