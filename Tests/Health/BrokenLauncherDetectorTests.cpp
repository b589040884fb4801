#include "Health/BrokenLauncherDetector.h"
#include "Health/HealthWorld.h"
#include "Support/Bundles.h"
#include "Support/OrdinaryUser.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class BrokenLauncherDetection : public testing::Test {
protected:
    std::vector<HealthIssue> found() const { return BrokenLauncherDetector::detect(world.host, world.applications); }
    void writeTarget(std::string_view text) const {
        test::makeFile(world.applications / "Foo.app/Contents/Resources/ExternalAppTarget.txt", text);
    }

    const test::HealthWorld world;
};

}  // namespace

TEST_F(BrokenLauncherDetection, FindsALauncherWhoseApplicationHasGone) {
    test::makeLauncher(world.applications / "Foo.app", "/Volumes/Gone/Foo.app");
    EXPECT_THAT(found(), ElementsAre(HealthIssue{
                             .kind = HealthIssue::Kind::brokenLauncher,
                             .location = world.applications / "Foo.app",
                             .target = "/Volumes/Gone/Foo.app",
                             .detail = "Launcher points to a missing app target. The app will not open until the "
                                       "launcher is retargeted, removed, or the app is reinstalled."}));
}

TEST_F(BrokenLauncherDetection, TrimsWhatTheLauncherSays) {
    test::makeBundle(world.appsOnDrive / "Foo.app");
    writeTarget(" \n" + (world.appsOnDrive / "Foo.app").native() + " \n\n");
    EXPECT_THAT(found(), IsEmpty());
    writeTarget("\t/Volumes/Gone/Foo.app\n");
    EXPECT_EQ(found().at(0).target, "/Volumes/Gone/Foo.app");
}

TEST_F(BrokenLauncherDetection, TakesNothingElseForALauncher) {
    test::makeBundle(world.applications / "Plain.app");
    writeTarget(" \n\t");
    EXPECT_THAT(found(), IsEmpty());
    writeTarget("/Volumes/\xff");
    EXPECT_THAT(found(), IsEmpty()) << "no UTF-8";
    writeTarget(std::string(1'000'000, '/'));
    EXPECT_THAT(found(), IsEmpty()) << "too long for a path";
    fs::remove(world.applications / "Foo.app/Contents/Resources/ExternalAppTarget.txt");
    test::makePipe(world.applications / "Foo.app/Contents/Resources/ExternalAppTarget.txt");
    EXPECT_THAT(found(), IsEmpty()) << "a pipe, which would never end";
    EXPECT_THAT(BrokenLauncherDetector::detect(world.host, "/nowhere"), IsEmpty());
}

TEST_F(BrokenLauncherDetection, ReadsNoEndlessFile) {
    writeTarget("/Volumes/Gone/Foo.app");
    fs::resize_file(world.applications / "Foo.app/Contents/Resources/ExternalAppTarget.txt", 1U << 30U);
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(BrokenLauncherDetection, LooksAtNoLauncherBelowTheFolder) {
    test::makeLauncher(world.applications / "Suite/Foo.app", "/Volumes/Gone/Foo.app");
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(BrokenLauncherDetection, CallsNothingMissingThatMayNotBeLookedAt) {
    const fs::path closed = world.folder / "closed";
    test::makeFolder(closed / "Foo.app");
    test::makeLauncher(world.applications / "Foo.app", closed / "Foo.app");
    fs::permissions(closed, fs::perms::none);
    {
        const test::OrdinaryUser user(world.folder.path());
        EXPECT_THAT(found(), IsEmpty());
    }
    fs::permissions(closed, fs::perms::owner_all);
}

}  // namespace tarvik
