#include "Health/HealthCheck.h"
#include "Health/HealthWorld.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Records/InstallsDB.h"
#include "Records/InstallsDBConnection.h"
#include "Support/Bundles.h"
#include "Support/OrdinaryUser.h"
#include "Support/RealVolume.h"
#include "Support/TrackingDatabase.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace tarvik {

namespace {

using test::HealthWorld;
using testing::ElementsAre;
using testing::IsEmpty;
using enum HealthIssue::Kind;

HealthReport checked(const HealthWorld& world, const HealthCheck::Options& options = {}) {
    return HealthCheck::run(world.host, HealthCheck::applicationRoots(world.host), options);
}

std::vector<std::string> found(const HealthWorld& world) {
    return test::kindsAndNames(checked(world).issues);
}

/// A drive away, with nothing of ours.
struct BareWorld : test::HealthWorld {
    BareWorld() {
        fs::remove_all(appsOnDrive);
        volumes->list.clear();
    }
};

}  // namespace

TEST(HealthCheck, FindsNothingWhereNothingIs) {
    const BareWorld world;
    const HealthReport report = checked(world);
    EXPECT_EQ(report, HealthReport{.scannedAt = world.host.now()});
    EXPECT_THAT(report.problems(), IsEmpty());
}

TEST(HealthCheck, ChecksTheApplicationsFolder) {
    const HealthWorld world;
    EXPECT_THAT(HealthCheck::applicationRoots(world.host), ElementsAre(world.applications));
}

TEST(HealthCheck, CountsHealthyLinksAndAllThatItLooksAt) {
    const HealthWorld world;
    world.moveApp("A.app");
    world.moveApp("B.app");
    test::makeLink(world.applications / "Gone.app", world.appsOnDrive / "Gone.app");
    test::makeFolder(world.appsOnDrive / "Hollow.app");
    test::makeLink(world.applications / "Hollow.app", world.appsOnDrive / "Hollow.app");
    const HealthReport report = checked(world);
    EXPECT_EQ(report.scannedSymlinks, 4U);
    EXPECT_EQ(report.healthyCount, 2U);
    EXPECT_THAT(report.scannedDrives, ElementsAre(world.appsOnDrive));
    EXPECT_EQ(report.scannedAt, world.host.now());
    EXPECT_THAT(test::kindsAndNames(report.issues),
                ElementsAre("healthy A.app", "healthy B.app", "dangling Gone.app", "empty Hollow.app"));
    EXPECT_EQ(report.issues[0].sizeBytes, SizeCalculator::size(world.host, world.appsOnDrive / "A.app"));
    EXPECT_GT(report.issues[0].sizeBytes, 0);
}

TEST(HealthCheck, PutsEachStepBehindTheOneBefore) {
    HealthWorld world;
    world.signAll("broken");
    world.moveApp("Healthy.app");
    test::makeLink(world.applications / "Dangling.app", "/nowhere/Dangling.app");
    test::makeBundle(world.appsOnDrive / "Reverted.app");
    test::makeBundle(world.applications / "Reverted.app");
    test::makeBundle(world.appsOnDrive / "Suite/Mixer.app");
    test::makeLink(world.applications / "Suite", world.appsOnDrive / "Suite");
    test::makeLauncher(world.applications / "Launcher.app", "/nowhere/Launcher.app");
    test::makeLink(world.library / "Preferences/x.plist", "/nowhere");
    test::makeLink(world.library / "Containers/sandbox", world.drive / "sandbox");
    test::makeLink(world.library / "Logs/data", "/nowhere");
    test::makeBundle(world.folder / "Moved.app");
    world.remember(world.folder / "Moved.app", "/nowhere/Moved.app");
    test::makeBundle(world.appsOnDrive / "Orphan.app");
    EXPECT_THAT(found(world),
                ElementsAre("dangling Dangling.app", "healthy Healthy.app", "reverted Reverted.app",
                            "missingSpotlightLaunchers Suite", "brokenLauncher Launcher.app",
                            "signatureBroken Healthy.app", "unsafePrefsPlist x.plist", "sandboxExternalSymlink sandbox",
                            "dangling data", "reverted Moved.app", "orphan Orphan.app"));
}

TEST(HealthCheck, ReportsARevertedCopyOnce) {
    const HealthWorld world;
    test::makeBundle(world.appsOnDrive / "Foo.app");
    test::makeBundle(world.applications / "Foo.app");
    world.remember(world.applications / "Foo.app", world.appsOnDrive / "Foo.app");
    const auto issues = checked(world).issues;
    ASSERT_EQ(issues.size(), 1U);
    EXPECT_EQ(issues[0].kind, reverted);
    EXPECT_EQ(issues[0].target, world.appsOnDrive / "Foo.app");
    EXPECT_THAT(issues[0].detail, testing::StartsWith("An updater"));
}

TEST(HealthCheck, KeepsTheSignatureToolsAwayFromLinksThatAreNotClean) {
    HealthWorld world;
    world.signAll("broken");
    world.moveApp("Tracked.app");
    world.moveApp("Clean.app");
    const fs::path database = InstallsDB::defaultPath(world.host);
    test::makeTrackingDatabase(database);
    test::askDatabase(database,
                      "INSERT INTO installs (install_id, app_name) VALUES ('one', 'Tracked.app');"
                      "INSERT INTO tracked_files (install_id, file_path) VALUES ('one', '/nowhere');");
    EXPECT_THAT(found(world), ElementsAre("healthy Clean.app", "healthy Tracked.app", "missingTrackedFiles Tracked.app",
                                          "signatureBroken Clean.app"));
    EXPECT_EQ(checked(world).healthyCount, 2U);
}

TEST(HealthCheck, GroupsMissingLaunchersByTheirLink) {
    const HealthWorld world;
    for (const char* app : {"B/Two.app", "A/One.app", "B/Three.app"}) test::makeBundle(world.drive / app);
    test::makeLink(world.applications / "Suite B", world.drive / "B");
    test::makeLink(world.applications / "Suite A", world.drive / "A");
    const auto issues = checked(world).issues;
    ASSERT_THAT(test::kindsAndNames(issues),
                ElementsAre("missingSpotlightLaunchers Suite A", "missingSpotlightLaunchers Suite B"));
    EXPECT_EQ(issues[1].target, world.drive / "B");
    EXPECT_EQ(issues[1].detail, "Nested apps need top-level launchers for Spotlight: Three.app, Two.app");
    EXPECT_EQ(issues[1].sizeBytes, 0);
}

TEST(HealthCheck, LooksAtFurtherFoldersOfApplications) {
    const BareWorld world;
    test::makeBundle(world.folder / "more/Orphan.app");
    const auto report = checked(world, {.extraDriveRoots = {world.folder / "more"}});
    EXPECT_THAT(test::kindsAndNames(report.issues), ElementsAre("orphan Orphan.app"));
    EXPECT_THAT(report.scannedDrives, ElementsAre(world.folder / "more"));
}

TEST(HealthCheck, LeavesSizesOutOnDemand) {
    const HealthWorld world;
    world.moveApp("A.app");
    EXPECT_EQ(checked(world, {.sizes = HealthSizes::Wish::leftOut}).issues.at(0).sizeBytes, 0);
}

TEST(HealthCheck, YieldsWhatItCanAmongBadInput) {
    const HealthWorld world;
    test::makeFolder(world.appsOnDrive / "Folder.app/Contents/Info.plist");
    test::makeFile(world.appsOnDrive / "Folder.app/Contents/MacOS/program");
    test::makeLink(world.applications / "Folder.app", world.appsOnDrive / "Folder.app");
    test::makePipe(world.appsOnDrive / "Pipe.app");
    test::makeLink(world.applications / "Pipe.app", world.appsOnDrive / "Pipe.app");
    test::makeLink(world.applications / "Loop.app", "Loop.app");
    test::makeLink(world.applications / "Suite", "Suite");
    test::makePipe(world.library / "Preferences/pipe.plist");
    test::makeFile(world.library / "Application Support/Tarvik/health-manifest.json", "[{\"sourcePath\":");
    const fs::path database = InstallsDB::defaultPath(world.host);
    test::makeTrackingDatabase(database);
    test::askDatabase(database,
                      "INSERT INTO installs (install_id, app_name) VALUES ('one', 'Folder.app');"
                      "INSERT INTO tracked_files (install_id, file_path) VALUES ('one', '/nowhere');");
    const auto withoutDatabase = ElementsAre("healthy Folder.app", "dangling Loop.app", "empty Pipe.app");
    {
        auto other = InstallsDBConnection::open(database, InstallsDBConnection::Access::readWrite);
        ASSERT_TRUE(other->prepare("BEGIN EXCLUSIVE;")->run());
        EXPECT_THAT(found(world), withoutDatabase) << "somebody else holds the database";
        ASSERT_TRUE(other->prepare("COMMIT;")->run());
    }
    EXPECT_THAT(found(world), testing::Contains("missingTrackedFiles Folder.app"));
    test::makeFile(database, "no database");
    EXPECT_THAT(found(world), withoutDatabase);
}

TEST(HealthCheck, TakesWhatIsOnASilentVolumeForAway) {
    HealthWorld world;
    world.moveApp("Away.app");
    test::makeLauncher(world.appsOnDrive / "Odd.app", "/nowhere");
    test::makeLink(world.applications / "Odd.app", world.appsOnDrive / "Odd.app");
    test::makeBundle(world.appsOnDrive / "Suite/Mixer.app");
    test::makeLink(world.applications / "Suite", world.appsOnDrive / "Suite");
    test::makeLauncher(world.applications / "Launcher.app", world.appsOnDrive / "Away.app");
    for (const char* folder : {"Group Containers", "WebKit"}) {
        test::makeLink(world.drive / folder / "link", world.drive / "nothing");
        test::makeLink(world.library / folder, world.drive / folder);
    }
    test::makeLink(world.library / "Logs/data", world.drive);
    test::makeLink(world.drive / "Preferences/x.plist", "/nowhere");
    test::makeLink(world.library / "Preferences", world.drive / "Preferences");
    world.remember(world.drive / "Moved", "/nowhere");
    test::makeFile(world.drive / "Moved");
    world.host.silentVolumes = {world.drive};
    EXPECT_THAT(found(world),
                ElementsAre("dangling Away.app", "dangling Odd.app", "brokenLauncher Launcher.app", "dangling data"));
}

TEST(HealthCheck, CallsNothingAnOrphanWhereLinksCannotBeSeen) {
    const HealthWorld world;
    test::makeBundle(world.appsOnDrive / "Foo.app");
    fs::permissions(world.applications, fs::perms::none);
    {
        const test::OrdinaryUser user(world.folder.path());
        EXPECT_THAT(found(world), IsEmpty());
    }
    fs::remove(world.applications);
    EXPECT_THAT(found(world), ElementsAre("orphan Foo.app"));
}

TEST(HealthCheck, KnowsALinkHoweverItsFolderIsWritten) {
    HealthWorld world;
    world.signAll("broken");
    test::makeFolder(world.appsOnDrive / "Hollow.app");
    test::makeLink(world.applications / "Hollow.app", world.appsOnDrive / "Hollow.app");
    const auto report = HealthCheck::run(world.host, {world.applications / "../Applications"});
    EXPECT_THAT(test::kindsAndNames(report.issues), ElementsAre("empty Hollow.app"));
}

TEST(HealthCheck, EndsAtOnceWhenItIsCancelled) {
    HealthWorld world;
    world.moveApp("A.app");
    const fs::path asked = world.folder / "asked";
    world.host.tools.codesign = world.tool("codesign", "touch '" + asked.native() + "'; exec sleep 100");
    const Cancellation cancellation;
    std::thread user([&] {
        EXPECT_TRUE(test::comesToStand(asked));
        cancellation.cancel();
    });
    const auto start = std::chrono::steady_clock::now();
    const auto report = checked(world, {.cancellation = cancellation});
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20)) << "the tool's own limit";
    user.join();
    EXPECT_THAT(test::kindsAndNames(report.issues), ElementsAre("healthy A.app"));
}

TEST(HealthCheck, WalksThroughNoDataOnceItIsCancelled) {
    const HealthWorld world;
    test::makeLink(world.library / "Logs/data", "/nowhere");
    const Cancellation cancellation;
    cancellation.cancel();
    EXPECT_THAT(checked(world, {.cancellation = cancellation}).issues, IsEmpty());
}

TEST(HealthCheck, YieldsWhatItCanOfADriveThatGoesAwayMeanwhile) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    HealthWorld world;
    const auto volume = test::RealVolume::memory(world.folder / "Volumes", test::megabyte);
    world.volumes->list = {{.mountPath = volume.path(), .isBrowsable = true}};
    const fs::path apps = volume / "ExternalTarvik/Apps";
    for (const char* name : {"A.app", "Reverted.app", "Orphan.app"}) test::makeBundle(apps / name);
    test::makeLink(world.applications / "A.app", apps / "A.app");
    test::makeBundle(world.applications / "Reverted.app");
    test::makeFile(volume / "data");
    test::makeLink(world.library / "Logs/data", volume / "data");
    // The tool that looks at the signature of the first one pulls the plug.
    world.host.tools.codesign = world.tool("codesign", test::RealVolume::unplugging(volume.path()) + "\nexit 1");
    const auto report = checked(world);
    EXPECT_THAT(test::kindsAndNames(report.issues),
                ElementsAre("healthy A.app", "reverted Reverted.app", "dangling data"));
    EXPECT_THAT(report.scannedDrives, testing::Contains(apps));
    world.volumes->list.clear();
    EXPECT_THAT(found(world), ElementsAre("dangling A.app", "dangling data"));
}

TEST(HealthCheck, FindsEveryLinkOfADriveThatIsAwayDangling) {
    const HealthWorld world;
    world.moveApp("A.app");
    world.moveApp("B.app");
    fs::remove_all(world.drive);
    EXPECT_THAT(found(world), ElementsAre("dangling A.app", "dangling B.app"));
}

}  // namespace tarvik
