#include "Health/HealthWorld.h"
#include "Health/SymlinkInspector.h"
#include "Support/Bundles.h"
#include "Support/OrdinaryUser.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

namespace tarvik {

namespace {

using enum HealthIssue::Kind;

class SymlinkInspection : public testing::Test {
protected:
    HealthIssue inspected() const { return SymlinkInspector::inspect(world.host, "/Applications/Foo.app", target); }

    const test::HealthWorld world;
    const fs::path target = world.appsOnDrive / "Foo.app";
};

}  // namespace

TEST_F(SymlinkInspection, FindsAWholeBundleHealthy) {
    test::makeBundle(target);
    EXPECT_EQ(inspected(), (HealthIssue{.kind = healthy, .location = "/Applications/Foo.app", .target = target}));
}

TEST_F(SymlinkInspection, MissesATargetThatIsNotThere) {
    EXPECT_EQ(inspected().kind, dangling);
    EXPECT_EQ(inspected().target, target);
    EXPECT_EQ(inspected().detail,
              "Target does not exist. The external drive may be unmounted, or the file was deleted.");
    test::makeLink(target, target);
    EXPECT_EQ(inspected().kind, dangling) << "a link to itself";
}

TEST_F(SymlinkInspection, CallsNothingMissingThatMayNotBeLookedAt) {
    test::makeBundle(target);
    fs::permissions(world.appsOnDrive, fs::perms::none);
    {
        const test::OrdinaryUser user(world.folder.path());
        EXPECT_EQ(inspected().kind, healthy);
    }
    fs::permissions(world.appsOnDrive, fs::perms{0755});
    fs::permissions(target / "Contents/MacOS", fs::perms::none);
    const test::OrdinaryUser user(world.folder.path());
    EXPECT_EQ(inspected().kind, corrupted) << "nothing in it can be listed";
}

TEST_F(SymlinkInspection, CallsABundleWithoutAListEmpty) {
    test::makeFile(target / "Contents/MacOS/program");
    EXPECT_EQ(inspected().kind, empty);
    EXPECT_EQ(inspected().detail, "Bundle directory exists but has no Contents/Info.plist. App is unlaunchable.");
}

TEST_F(SymlinkInspection, CallsALinkToAFileEmpty) {
    test::makeFile(target);
    EXPECT_EQ(inspected().kind, empty);
}

TEST_F(SymlinkInspection, CallsABundleWithoutAProgramCorrupted) {
    test::makeFile(target / "Contents/Info.plist");
    EXPECT_EQ(inspected().kind, corrupted);
    EXPECT_EQ(inspected().detail, "Bundle has Info.plist but no executable in Contents/MacOS/.");
    test::makeFile(target / "Contents/MacOS");
    EXPECT_EQ(inspected().kind, corrupted) << "that is no folder";
    fs::remove(target / "Contents/MacOS");
    test::makeFolder(target / "Contents/MacOS");
    EXPECT_EQ(inspected().kind, corrupted);
    test::makeFile(target / "Contents/MacOS/.hidden");
    EXPECT_EQ(inspected().kind, healthy) << "a hidden entry counts";
}

}  // namespace tarvik
