// Every changing system call of each repair is made to fail, and the program is killed at every one of them. Whatever
// happens, all data is whole in one place, the memory of moves is true, and another check with its repairs comes to the
// end that the first one was to have.
#include "Faults/RepairFaultWorld.h"
#include "Platform/Files/Files.h"
#include "Support/RealVolume.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>

namespace tarvik::test {

namespace {

using enum HealthRepairStrategy;

class RepairTrial {
public:
    explicit RepairTrial(HealthRepairStrategy strategy) : m_world(strategy) {}

    void tryEveryPoint() {
        const auto points = m_world.points();
        ASSERT_TRUE(m_world.repair().isDone(m_world)) << m_world.picture();
        EXPECT_TRUE(m_world.isMemoryTrue() && m_world.isNothingLost() && !m_world.hasLeftovers()) << m_world.picture();
        EXPECT_THAT(m_world.mended(), testing::IsEmpty());
        ASSERT_FALSE(points.empty());
        for (std::size_t number = 0; number < points.size(); ++number) {
            tryError(points[number], false);
            // A disk that fails goes on failing.
            if (number % 4 == 0) tryError(points[number], true);
            tryKill(points[number]);
            if (testing::Test::HasFailure()) return;  // One point tells enough.
        }
        std::cout << points.size() << " points, " << m_runs << " runs\n";
    }

private:
    CommandResult run(const Fault& fault) {
        ++m_runs;
        return m_world.run(fault);
    }

    void tryError(Fault fault, bool isForGood) {
        fault.effect = "error=EIO";
        fault.isForGood = isForGood;
        const CommandResult result = run(fault);
        SCOPED_TRACE(fault.text() + (isForGood ? "+" : "") + "\n" + result.stdout + result.stderr + m_world.picture());
        EXPECT_TRUE(m_world.hasStruck());
        EXPECT_TRUE(m_world.isNothingLost());
        if (result.status == 0 && !m_world.hasStruckRecords()) {
            EXPECT_TRUE(m_world.isMemoryTrue());
        }
        EXPECT_TRUE(result.status == 0 ? m_world.repair().isDone(m_world) : m_world.repair().isKnown(m_world));
        EXPECT_TRUE(result.status == 0 || result.status == 1) << result.status;
        // When every call to write fails, nothing can be said any more.
        EXPECT_TRUE(fault.call == "write" || !(result.status == 0 ? result.stdout : result.stderr).empty());
        if (!isForGood) expectMended();
    }

    void tryKill(Fault fault) {
        fault.effect = "signal=KILL";
        const CommandResult result = run(fault);
        SCOPED_TRACE(fault.text() + "\n" + result.stderr + m_world.picture());
        EXPECT_TRUE(m_world.isNothingLost());
        expectMended();
    }

    void expectMended() const {
        EXPECT_THAT(m_world.mended(), testing::IsEmpty());
        EXPECT_TRUE(m_world.isNothingLost()) << m_world.picture();
        EXPECT_TRUE(m_world.isMemoryTrue()) << m_world.picture();
    }

    const RepairFaultWorld m_world;
    int m_runs = 0;
};

class RepairFaults : public testing::TestWithParam<HealthRepairStrategy> {};

}  // namespace

TEST_P(RepairFaults, LoseNothing) {
    if (const auto reason = RepairFaultWorld::unavailableReason()) TARVIK_SKIP_BECAUSE(*reason);
    RepairTrial(GetParam()).tryEveryPoint();
}

INSTANTIATE_TEST_SUITE_P(Of, RepairFaults,
                         testing::Values(removeDangling, removeEmpty, reclaimReverted, reSymlinkReverted, removeOrphan,
                                         forgetMissingTrackedFiles, repairSpotlightLaunchers, repairBrokenLauncher,
                                         restoreUnsafePrefs, restoreSandboxExternal, repointDangling),
                         [](const auto& test) { return std::string(HealthRepairStrategies::name(test.param)); });

}  // namespace tarvik::test
