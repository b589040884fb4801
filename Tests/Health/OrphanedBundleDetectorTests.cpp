#include "Health/HealthWorld.h"
#include "Health/OrphanedBundleDetector.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class OrphanDetection : public testing::Test {
protected:
    std::vector<HealthIssue> found(const std::set<fs::path>& targets, const std::set<std::string>& names) const {
        return OrphanedBundleDetector::detect({world.appsOnDrive}, targets, names, HealthSizes(world.host));
    }

    const test::HealthWorld world;
    const fs::path bundle = world.appsOnDrive / "Foo.app";
};

}  // namespace

TEST_F(OrphanDetection, FindsABundleThatNothingLeadsTo) {
    test::makeFileOfSize(bundle / "Contents/large", 8192);
    const auto issues = found({"/elsewhere"}, {"Bar.app"});
    ASSERT_EQ(issues.size(), 1U);
    EXPECT_EQ(issues[0], (HealthIssue{.kind = HealthIssue::Kind::orphan,
                                      .location = bundle,
                                      .detail = "Bundle on SSD with no inbound symlink. Wasting 8 KB.",
                                      .sizeBytes = 8192}));
}

TEST_F(OrphanDetection, LeavesOneAloneThatALinkLeadsTo) {
    test::makeBundle(bundle);
    EXPECT_THAT(found({bundle}, {}), IsEmpty());
}

TEST_F(OrphanDetection, KnowsABundleHoweverItsFolderIsWritten) {
    test::makeBundle(bundle);
    EXPECT_THAT(OrphanedBundleDetector::detect({world.appsOnDrive / "../Apps"}, {bundle}, {}, HealthSizes(world.host)),
                IsEmpty());
}

TEST_F(OrphanDetection, LeavesOneAloneWhoseNameARealApplicationBears) {
    test::makeBundle(bundle);
    EXPECT_THAT(found({}, {"Foo.app"}), IsEmpty());
}

TEST_F(OrphanDetection, TakesNoAccountOfLaunchersOfAnotherName) {
    test::makeBundle(bundle);
    test::makeLauncher(world.applications / "Other.app", bundle);
    EXPECT_THAT(test::kindsAndNames(found({}, {"Other.app"})), ElementsAre("orphan Foo.app"));
}

}  // namespace tarvik
