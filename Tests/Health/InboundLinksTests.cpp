#include "Health/HealthWorld.h"
#include "Health/InboundLinks.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

namespace tarvik {

TEST(InboundLinks, RememberTheMovesWhoseLinksStillLeadThere) {
    const test::HealthWorld world;
    const fs::path links = world.home / "Desktop";
    for (const char* name : {"Linked.app", "Elsewhere.app", "Gone.app"})
        world.remember(links / name, world.appsOnDrive / name);
    test::makeLink(links / "Linked.app", (world.appsOnDrive / "Linked.app").lexically_relative(links));
    test::makeLink(links / "Elsewhere.app", "/elsewhere/Elsewhere.app");
    const InboundLinks inbound(world.host);
    EXPECT_TRUE(inbound.leadTo(world.appsOnDrive / "Linked.app"));
    EXPECT_FALSE(inbound.leadTo(world.appsOnDrive / "Elsewhere.app"));
    EXPECT_FALSE(inbound.leadTo(world.appsOnDrive / "Gone.app"));
}

TEST(InboundLinks, LeadToABundleHoweverItsFolderIsWritten) {
    const test::HealthWorld world;
    world.moveApp("Foo.app");
    EXPECT_TRUE(InboundLinks(world.host).leadTo(world.appsOnDrive / "../Apps/Foo.app"));
    EXPECT_FALSE(InboundLinks(world.host).leadTo(world.appsOnDrive / "Bar.app"));
    test::makeLink(world.folder / "way", world.appsOnDrive);
    test::makeLink(world.applications / "Bar.app", world.folder / "way/Bar.app");
    test::makeLink(world.appsOnDrive / "Bar.app", world.home);
    EXPECT_TRUE(InboundLinks(world.host).leadTo(world.appsOnDrive / "Bar.app")) << "on the way home";
}

TEST(InboundLinks, MayLeadAnywhereFromAFolderOnASilentVolume) {
    test::HealthWorld world;
    EXPECT_FALSE(InboundLinks(world.host).unreadableFolder());
    test::makeLink(world.home / "Applications", world.drive);
    world.remember(world.drive / "Foo.app", "/Volumes/Other/Foo.app");
    world.host.silentVolumes = {world.drive};
    const InboundLinks inbound(world.host);
    EXPECT_EQ(inbound.unreadableFolder(), world.home / "Applications");
    EXPECT_TRUE(inbound.leadTo("/Volumes/Other/Foo.app"));
}

}  // namespace tarvik
