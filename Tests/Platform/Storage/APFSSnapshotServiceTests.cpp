#include "Platform/Storage/APFSSnapshotService.h"
#include "Support/EnvironmentVariable.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

namespace tarvik {
namespace {

using APFSSnapshotService::timestamp;
using Instant = std::chrono::system_clock::time_point;

// tmutil(8) names the verbs and no form of their answers. These are the ones of sessions on macOS 11 that
// administrators have published: "Created local snapshot with date: " with the local time, and names with that time in
// them.
constexpr Instant autumn{std::chrono::seconds(test::madeNow)};

class APFSSnapshots : public testing::Test {
protected:
    /// The same machine with a snapshot tool that is a shell script.
    const Host& withTool(const std::string& script) {
        world.host.tools.tmutil = world.tool("tmutil", script);
        return world.host;
    }
    APFSSnapshotService::CreateResult createWith(const std::string& script) {
        return APFSSnapshotService::create(withTool(script));
    }

    const test::EnvironmentVariable zone{"TZ", "UTC0"};
    test::World world;
};

TEST_F(APFSSnapshots, AreTakenAndNamed) {
    const auto result = createWith(
        "[ \"$#:$1\" = 1:localsnapshot ] || exit 9\n"
        "echo 'NOTE: local snapshots are considered purgeable.'; echo; echo careful >&2\n"
        "echo 'Created local snapshot with date: 2026-11-15-174543  '");
    EXPECT_TRUE(result.succeeded);
    ASSERT_TRUE(result.snapshot);
    EXPECT_EQ(result.snapshot->name, "com.apple.TimeMachine.2026-11-15-174543.local");
    EXPECT_EQ(result.snapshot->createdAt, autumn);
    EXPECT_EQ(result.stdout,
              "NOTE: local snapshots are considered purgeable.\n\n"
              "Created local snapshot with date: 2026-11-15-174543  \n");
    EXPECT_EQ(result.stderr, "careful\n");
}

TEST_F(APFSSnapshots, TakeALabelAndDoNotUseIt) {
    const auto& host = withTool("echo \"$*\"; echo \"date: 2026-11-15-174543\"");
    EXPECT_EQ(APFSSnapshotService::create(host, "before the move").stdout, "localsnapshot\ndate: 2026-11-15-174543\n");
}

TEST_F(APFSSnapshots, SucceedWithoutANameWhenTheToolTellsNone) {
    const auto result = createWith("echo 'Created local snapshot'");
    EXPECT_TRUE(result.succeeded);
    EXPECT_FALSE(result.snapshot);
    EXPECT_EQ(result.stdout, "Created local snapshot\n");
}

TEST_F(APFSSnapshots, AreNamedByTheFirstLineWithADate) {
    const auto result =
        createWith("printf 'no date:here\\nfirst date: one date: two\\nsecond date: 2026-11-15-174543'");
    ASSERT_TRUE(result.snapshot);
    EXPECT_EQ(result.snapshot->name, "com.apple.TimeMachine.one date: two.local");
    EXPECT_FALSE(result.snapshot->createdAt);
}

TEST_F(APFSSnapshots, FailWithTheToolsOwnWords) {
    const auto result = createWith("echo 'date: 2026-11-15-174543'; echo 'no room' >&2; exit 3");
    EXPECT_FALSE(result.succeeded);
    EXPECT_TRUE(result.snapshot);
    EXPECT_EQ(result.stderr, "no room\n");
}

TEST_F(APFSSnapshots, AreNotSupportedWithoutTheTool) {
    for (const auto& tool : {fs::path(), world.folder / "missing"}) {
        world.host.tools.tmutil = tool;
        EXPECT_FALSE(APFSSnapshotService::isSupported(world.host));
        const APFSSnapshotService::CreateResult absent{std::nullopt, "", "tmutil not present", false};
        EXPECT_EQ(APFSSnapshotService::create(world.host), absent);
        EXPECT_TRUE(APFSSnapshotService::list(world.host).empty());
    }
    EXPECT_TRUE(APFSSnapshotService::isSupported(withTool("")));
}

TEST_F(APFSSnapshots, AreNeverTakenForAHostInAFolder) {
    const auto host = Host::rootedAt(world.folder.path(), world.home);
    EXPECT_TRUE(host.tools.tmutil.empty()) << "also where the system has it";
    EXPECT_FALSE(APFSSnapshotService::isSupported(host));
}

TEST_F(APFSSnapshots, ThatCannotBeTakenAtAllAreAFailure) {
    world.host.tools.tmutil = world.folder / "tmutil";
    test::makeFile(world.host.tools.tmutil, "no program");
    const auto result = APFSSnapshotService::create(world.host);
    EXPECT_FALSE(result.succeeded);
    EXPECT_FALSE(result.stderr.empty());
    EXPECT_TRUE(APFSSnapshotService::list(world.host).empty());
}

TEST_F(APFSSnapshots, AreListedByWholeLinesWithoutADate) {
    const auto& host = withTool(
        "[ \"$#:$1:$2\" = 2:listlocalsnapshots:/ ] || exit 9\n"
        "echo 'Snapshots for disk /:'; echo; echo com.apple.TimeMachine.2026-11-15-174543.local\n"
        "echo com.apple.os.update-1; echo ' com.apple.TimeMachine.2026-11-16-080000.local (dataless)'");
    const std::vector<APFSSnapshotService::Snapshot> expected = {
        {"com.apple.TimeMachine.2026-11-15-174543.local", std::nullopt},
        {" com.apple.TimeMachine.2026-11-16-080000.local (dataless)", std::nullopt}};
    EXPECT_EQ(APFSSnapshotService::list(host), expected);
}

TEST_F(APFSSnapshots, HaveADateOnlyInItsShortForm) {
    EXPECT_EQ(timestamp("2026-11-15-174543"), autumn);
    EXPECT_EQ(timestamp("com.apple.TimeMachine.2026-11-15-174543.local"), std::nullopt);
    EXPECT_EQ(timestamp("a.2026-11-15-174543xx.b"), std::nullopt) << "19 characters";
    for (const auto* text : {"", ".", "...", "2026-11-15", "2026-11-15-1745", "2026-11-15-1745430", "2026-02-30-174543",
                             "2026-11-15-250000", "2026_11_15_174543", "-026-11-15-174543", " 2026-11-15-174543",
                             "2026-11-15-17454é", "\xFF\xFF\xFF\xFF-11-15-174543"})
        EXPECT_EQ(timestamp(text), std::nullopt) << text;
}

TEST_F(APFSSnapshots, AreDatedInTheUsersTime) {
    const test::EnvironmentVariable here("TZ", "EST5");
    EXPECT_EQ(timestamp("2026-11-15-124543"), autumn);
}

}  // namespace
}  // namespace tarvik
