#include "Health/HealthSizes.h"
#include "Health/HealthWorld.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

namespace tarvik {

namespace {

/// What a finding with a folder of 4 KB for its location gets.
std::int64_t filled(const test::HealthWorld& world, HealthSizes::Wish wish, const Cancellation& cancellation = {}) {
    test::makeFileOfSize(world.folder / "item/file", 4096);
    std::vector<HealthIssue> issues = {{.location = world.folder / "item"}};
    HealthSizes(world.host, wish, cancellation).fill(issues, [](const HealthIssue& issue) -> const fs::path& {
        return issue.location;
    });
    return issues[0].sizeBytes;
}

}  // namespace

TEST(HealthSizes, AreMeasuredOrLeftOut) {
    const test::HealthWorld world;
    EXPECT_EQ(filled(world, HealthSizes::Wish::measured), 4096);
    EXPECT_EQ(filled(world, HealthSizes::Wish::leftOut), 0);
}

TEST(HealthSizes, AreNotMeasuredOnceThatIsCancelled) {
    const test::HealthWorld world;
    const Cancellation cancellation;
    cancellation.cancel();
    EXPECT_EQ(filled(world, HealthSizes::Wish::measured, cancellation), 0);
}

TEST(HealthSizes, AreNotMeasuredOnASilentVolume) {
    test::HealthWorld world;
    world.host.silentVolumes = {world.folder / "item"};
    EXPECT_EQ(filled(world, HealthSizes::Wish::measured), 0);
}

}  // namespace tarvik
