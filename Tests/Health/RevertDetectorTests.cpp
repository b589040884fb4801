#include "Health/HealthWorld.h"
#include "Health/ManifestRevertDetector.h"
#include "Health/SSDRevertDetector.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using enum HealthIssue::Kind;

class RevertDetection : public testing::Test {
protected:
    SSDRevertDetector::Result fromDrive() const {
        return SSDRevertDetector::detect(world.host, {world.appsOnDrive}, realAppNames, HealthSizes(world.host));
    }
    std::vector<HealthIssue> fromManifest(const std::set<fs::path>& links = {},
                                          const std::set<fs::path>& handled = {}) const {
        return ManifestRevertDetector::detect(world.host, links, handled, HealthSizes(world.host));
    }

    const test::HealthWorld world;
    const fs::path local = world.applications / "Foo.app";
    const fs::path copy = world.appsOnDrive / "Foo.app";
    std::set<std::string> realAppNames = {"Foo.app"};
};

}  // namespace

TEST_F(RevertDetection, FindsACopyOfARealApplicationOnADrive) {
    test::makeBundle(copy);
    test::makeFileOfSize(copy / "Contents/large", 100'000);
    test::makeBundle(local);
    const auto result = fromDrive();
    EXPECT_THAT(result.handledSources, ElementsAre(local));
    EXPECT_THAT(
        result.issues,
        ElementsAre(HealthIssue{
            .kind = reverted,
            .location = local,
            .target = copy,
            .detail = "An updater replaced the symlink with a real bundle on internal disk. SSD copy is now orphaned.",
            .sizeBytes = SizeCalculator::size(world.host, copy)}));
    EXPECT_GE(result.issues.at(0).sizeBytes, 100'000);
}

TEST_F(RevertDetection, TakesALauncherForNoRevertButHasHandledIt) {
    test::makeBundle(copy);
    test::makeLauncher(local, copy);
    world.remember(local, copy);
    const auto result = fromDrive();
    EXPECT_THAT(result.issues, IsEmpty());
    EXPECT_THAT(result.handledSources, ElementsAre(local));
    EXPECT_THAT(fromManifest({}, result.handledSources), IsEmpty());
}

TEST_F(RevertDetection, LeavesOtherNamesAlone) {
    test::makeBundle(world.appsOnDrive / "Bar.app");
    test::makeBundle(world.appsOnDrive / "Foo.APP");
    test::makeBundle(world.appsOnDrive / ".Foo.app");
    test::makeBundle(world.appsOnDrive / "Folder/Foo.app");
    realAppNames = {"Foo.app", "Foo.APP", ".Foo.app"};
    EXPECT_THAT(fromDrive().issues, IsEmpty());
    EXPECT_THAT(SSDRevertDetector::detect(world.host, {"/nowhere"}, {"Foo.app"}, HealthSizes(world.host)).issues,
                IsEmpty());
}

TEST_F(RevertDetection, LeavesSizesOutWhenTheyAreNotWanted) {
    test::makeBundle(copy);
    const HealthSizes none(world.host, HealthSizes::Wish::leftOut);
    EXPECT_EQ(SSDRevertDetector::detect(world.host, {world.appsOnDrive}, realAppNames, none).issues.at(0).sizeBytes, 0);
}

TEST_F(RevertDetection, FindsARecordedSourceThatIsNoLink) {
    test::makeBundle(local);
    world.remember(local, "/Volumes/Gone/Foo.app");
    EXPECT_THAT(fromManifest(),
                ElementsAre(HealthIssue{.kind = reverted,
                                        .location = local,
                                        .target = "/Volumes/Gone/Foo.app",
                                        .detail = "Manifest says this was symlinked to SSD on 2026-11-15 17:45:43 "
                                                  "+0000. It's now a real bundle on internal disk and the SSD copy is "
                                                  "gone.",
                                        .sizeBytes = SizeCalculator::size(world.host, local)}));
}

TEST_F(RevertDetection, PassesOverWhatIsALinkOrGoneOrHandled) {
    test::makeBundle(copy);
    world.remember(world.moveApp("Linked.app"), world.appsOnDrive / "Linked.app");
    world.remember(world.applications / "Gone.app", copy);
    test::makeBundle(local);
    world.remember(local, copy);
    EXPECT_THAT(fromManifest({}, {local}), IsEmpty());
    EXPECT_THAT(fromManifest({local}), IsEmpty());
    EXPECT_EQ(fromManifest().size(), 1U);
}

TEST_F(RevertDetection, FindsNothingInAManifestThatIsNone) {
    test::makeBundle(local);
    test::makeFile(world.library / "Application Support/Tarvik/health-manifest.json", "[{\"sourcePath\"");
    EXPECT_THAT(fromManifest(), IsEmpty());
}

}  // namespace tarvik
