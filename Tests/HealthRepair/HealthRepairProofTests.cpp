#include "Health/HealthCheck.h"
#include "Health/HealthWorld.h"
#include "HealthRepair/HealthRepair.h"
#include "HealthRepair/HealthRepairProof.h"
#include "Practice/PracticeMachine.h"
#include "Records/InstallsDB.h"
#include "Support/Bundles.h"
#include "Support/TrackingDatabase.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <map>
#include <stdexcept>

namespace tarvik {

namespace {

using test::HealthWorld;
using enum HealthRepairStrategy;
using Kind = HealthIssue::Kind;

class HealthRepairProofs : public testing::Test {
protected:
    HealthIssue problem() const {
        const auto problems = HealthCheck::run(world.host, HealthCheck::applicationRoots(world.host)).problems();
        if (problems.size() != 1) throw std::runtime_error("not one problem");
        return problems.front();
    }
    bool isMended(const HealthIssue& issue, HealthRepairStrategy strategy) const {
        return HealthRepairProof::isMended(world.host, issue, strategy);
    }
    /// What the repair says, which the test has seen not to be done.
    std::string sayingOf(const HealthIssue& issue, HealthRepairStrategy strategy) const {
        std::string sentence = HealthRepair::perform(world.host, issue, strategy);
        EXPECT_FALSE(isMended(issue, strategy));
        return sentence;
    }

    HealthWorld world;
};

}  // namespace

TEST(HealthRepairProof, SeesEachRepairOfABrokenMachine) {
    const test::TemporaryFolder folder;
    const auto machine = Practice::build(folder / "machine", {.apps = 0, .broken = true, .files = 0});
    const Host host = Host::rootedAt(machine.root, machine.home);
    const std::map<Kind, HealthRepairStrategy> repairs = {
        {Kind::dangling, removeDangling},
        {Kind::empty, removeEmpty},
        {Kind::corrupted, removeEmpty},
        {Kind::reverted, reSymlinkReverted},
        {Kind::orphan, removeOrphan},
        {Kind::missingTrackedFiles, forgetMissingTrackedFiles},
        {Kind::missingSpotlightLaunchers, repairSpotlightLaunchers},
        {Kind::brokenLauncher, repairBrokenLauncher},
        {Kind::unsafePrefsPlist, restoreUnsafePrefs},
        {Kind::sandboxExternalSymlink, restoreSandboxExternal},
    };
    for (const HealthIssue& issue : HealthCheck::run(host, HealthCheck::applicationRoots(host)).problems()) {
        const auto repair = repairs.find(issue.kind);
        if (repair == repairs.end()) continue;
        SCOPED_TRACE(HealthRepairStrategies::name(repair->second));
        EXPECT_FALSE(HealthRepairProof::isMended(host, issue, repair->second));
        HealthRepair::perform(host, issue, repair->second);
        EXPECT_TRUE(HealthRepairProof::isMended(host, issue, repair->second));
    }
    const auto left = HealthCheck::run(host, HealthCheck::applicationRoots(host)).problems();
    ASSERT_EQ(left.size(), 1U) << testing::PrintToString(test::kindsAndNames(left));
    EXPECT_EQ(left.front().kind, Kind::signatureBroken) << "which has no repair";
}

TEST_F(HealthRepairProofs, SeeThatALauncherOpensNothingStill) {
    test::makeLauncher(world.applications / "Foo.app", "/nowhere/Foo.app");
    EXPECT_EQ(sayingOf(problem(), repairBrokenLauncher),
              "Could not retarget Foo.app. Reinstall the app or remove the broken launcher.");
}

TEST_F(HealthRepairProofs, SeeThatAnEmptyBundleStays) {
    test::makeFolder(world.appsOnDrive / "Foo.app");
    test::makeLink(world.applications / "Foo.app", world.appsOnDrive / "Foo.app");
    const auto issue = problem();
    world.trash->refuses = true;
    EXPECT_EQ(sayingOf(issue, removeEmpty), "Cleaned up Foo.app. Reinstall the app.");
}

TEST_F(HealthRepairProofs, SeeThatAFailedCopyLeavesTheLink) {
    test::makeFile(world.drive / "Containers/org.example.foo/data");
    test::makeLink(world.library / "Containers/org.example.foo", world.drive / "Containers/org.example.foo");
    const auto issue = problem();
    world.withDitto("exit 1");
    EXPECT_EQ(sayingOf(issue, restoreSandboxExternal), "ditto failed restoring org.example.foo; reverted.");
}

TEST_F(HealthRepairProofs, SeeThatOnlyRootMendsWhatBelongsToRoot) {
    test::makeFile(world.drive / "foo.plist");
    test::makeLink(world.folder / "Library/Preferences/foo.plist", world.drive / "foo.plist");
    sayingOf(problem(), restoreUnsafePrefs);
}

TEST_F(HealthRepairProofs, TakeNoOtherItemThatALinkLeadsToForMended) {
    const fs::path launcher = world.applications / "Foo.app";
    const fs::path copy = world.appsOnDrive / "Foo.app";
    test::makeBundle(world.folder / "Real.app");
    test::makeLauncher(world.folder / "Other.app", world.folder / "Real.app");
    test::makeLink(launcher, world.folder / "Other.app");
    EXPECT_FALSE(isMended({.kind = Kind::brokenLauncher, .location = launcher}, repairBrokenLauncher));
    const HealthIssue reverted{.kind = Kind::reverted, .location = launcher, .target = copy};
    EXPECT_FALSE(isMended(reverted, reSymlinkReverted));
    fs::remove(launcher);
    test::makeBundle(copy);
    test::makeLink(launcher, copy);
    EXPECT_TRUE(isMended(reverted, reSymlinkReverted));
}

TEST_F(HealthRepairProofs, ReadATargetFromWhereItsLinkStands) {
    const HealthIssue empty{.kind = Kind::empty, .location = world.applications / "Foo.app", .target = "../Foo.app"};
    EXPECT_TRUE(isMended(empty, removeEmpty));
    test::makeFolder(world.folder / "Foo.app");
    EXPECT_FALSE(isMended(empty, removeEmpty));
}

TEST_F(HealthRepairProofs, SeeNothingForgottenInADatabaseThatCannotBeRead) {
    const HealthIssue issue{.kind = Kind::missingTrackedFiles,
                            .location = world.moveApp("Foo.app"),
                            .target = world.appsOnDrive / "Foo.app"};
    const fs::path database = InstallsDB::defaultPath(world.host);
    test::makeFile(database, "no database");
    EXPECT_FALSE(isMended(issue, forgetMissingTrackedFiles));
    fs::remove(database);
    test::makeTrackingDatabase(database);
    test::askDatabase(database, "INSERT INTO installs (install_id, app_name) VALUES ('one', 'Foo.app');");
    EXPECT_TRUE(isMended(issue, forgetMissingTrackedFiles));
}

TEST_F(HealthRepairProofs, SeeNothingReclaimedWhereNoCopyIsKnown) {
    EXPECT_FALSE(isMended({.kind = Kind::reverted, .location = world.applications / "Foo.app"}, reclaimReverted));
}

TEST_F(HealthRepairProofs, SeeALinkThatLeadsToTheCopyThatWasFound) {
    const fs::path link = world.library / "Application Support/Foo";
    const fs::path copy = world.drive / "ExternalTarvik/Data/Foo";
    test::makeFile(copy / "data");
    test::makeLink(link, world.drive / "Tarvik/Data/Foo");
    const auto issue = problem();
    EXPECT_FALSE(isMended(issue, repointDangling));
    HealthRepair::perform(world.host, issue, repointDangling);
    EXPECT_TRUE(isMended(issue, repointDangling));
    test::makeFolder(copy.parent_path() / "Bar");
    fs::remove(link);
    test::makeFolder(link);
    EXPECT_FALSE(isMended(issue, repointDangling)) << "that is no link";
}

}  // namespace tarvik
