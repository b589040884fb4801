// Every changing system call of a move and of a restore is made to fail, and the program is killed at every one of
// them. Whatever happens, the tree stands whole at home or on the drive, and no link leads to half of it.
#include "Faults/FaultWorld.h"
#include "Platform/Files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>
#include <string>

namespace tarvik::test {

namespace {

constexpr const char* failures[] = {"error=EIO", "error=ENOSPC", "error=EACCES"};
constexpr const char* kill = "signal=KILL";

/// What a user may be told, by the beginning of the sentence. Paths in it may hold line breaks.
const char* statedMessage(Act act) {
    return act == Act::move ? "(^|\n)(Copy failed: |Verification failed: |Could not remove original after copy: |"
                              "Symlink creation failed: |Could not create the folder )."
                            : "(^|\n)(ditto failed: |Verification failed: |Could not ).";
}

/// What must hold after every run, however it ended.
void expectNothingLost(const FaultWorld& world, const Fault& fault) {
    EXPECT_TRUE(world.isWholeAtHome() || world.isWholeOnDrive()) << fault.text() << "\n" << world.picture();
    EXPECT_TRUE(!world.isLinkAtHome() || world.isLinkGood()) << fault.text() << "\n" << world.picture();
}

void expectKnownState(const FaultWorld& world, Act act, const Fault& fault, const CommandResult& result) {
    const bool isDone = act == Act::move ? world.isLinkGood() : world.isWholeAtHome();
    if (result.status == 0) {
        EXPECT_TRUE(isDone) << fault.text() << "\n" << world.picture();
    } else {
        EXPECT_EQ(result.status, 1) << fault.text();
        EXPECT_THAT(result.stderr, testing::ContainsRegex(statedMessage(act))) << fault.text();
        // A link that could not be made is rolled back.
        EXPECT_TRUE(fault.call != "symlink" || act == Act::restore || world.isWholeAtHome()) << world.picture();
    }
}

void tryEveryPoint(Act act, Victim victim) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    if (!Files::exists("/usr/bin/strace")) TARVIK_SKIP_BECAUSE("strace is not installed");
    const FaultWorld world(act, victim);
    const std::vector<Fault> points = world.points();
    ASSERT_GT(points.size(), 5U);
    for (Fault point : points) {
        for (const char* effect : failures) {
            point.effect = effect;
            const CommandResult result = world.run(point);
            EXPECT_TRUE(world.hasStruck()) << point.text();
            expectNothingLost(world, point);
            expectKnownState(world, act, point, result);
        }
        point.effect = kill;
        world.run(point);
        expectNothingLost(world, point);
        if (testing::Test::HasFailure()) return;  // One point tells enough.
    }
    testing::Test::RecordProperty("points", std::to_string(points.size()));
    std::cout << points.size() << " points, " << points.size() * 4 << " runs\n";
}

}  // namespace

TEST(FaultMatrix, AMoveLosesNothingWhenTheEngineFails) {
    tryEveryPoint(Act::move, Victim::engine);
}
TEST(FaultMatrix, AMoveLosesNothingWhenTheCopierFails) {
    tryEveryPoint(Act::move, Victim::copier);
}
TEST(FaultMatrix, ARestoreLosesNothingWhenTheEngineFails) {
    tryEveryPoint(Act::restore, Victim::engine);
}
TEST(FaultMatrix, ARestoreLosesNothingWhenTheCopierFails) {
    tryEveryPoint(Act::restore, Victim::copier);
}

}  // namespace tarvik::test
