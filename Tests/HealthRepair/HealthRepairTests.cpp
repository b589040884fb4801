#include "Copying/ItemLock.h"
#include "Health/HealthCheck.h"
#include "Health/HealthWorld.h"
#include "HealthRepair/HealthRepair.h"
#include "Platform/Basics/Failure.h"
#include "Records/HealthManifest.h"
#include "Records/InstallsDB.h"
#include "Records/InstallsDBWriter.h"
#include "Support/Bundles.h"
#include "Support/FailureOf.h"
#include "Support/OrdinaryUser.h"
#include "Support/TrackingDatabase.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace tarvik {

namespace {

using test::HealthWorld;
using testing::HasSubstr;
using testing::IsEmpty;
using enum HealthRepairStrategy;
using Kind = HealthIssue::Kind;

class HealthRepairs : public testing::Test {
protected:
    HealthRepairs() {
        world.withRealDitto();
        world.signAll();
        world.host.tools.externalAppLauncher = world.folder / "external-app-launcher";
        test::makeFile(world.host.tools.externalAppLauncher, "the program");
    }

    HealthReport checked() const { return HealthCheck::run(world.host, HealthCheck::applicationRoots(world.host)); }
    /// The only problem of the machine.
    HealthIssue problem() const {
        const auto problems = checked().problems();
        if (problems.size() != 1)
            throw std::runtime_error(testing::PrintToString(test::kindsAndNames(problems)) + " was found");
        return problems.front();
    }
    std::string perform(const HealthIssue& issue, HealthRepairStrategy strategy) const {
        return HealthRepair::perform(world.host, issue, strategy);
    }
    std::string refusal(const HealthIssue& issue, HealthRepairStrategy strategy) const {
        return test::failureOf([&] { perform(issue, strategy); });
    }
    /// What is refused when what was found has changed since; the whole machine stays as it is.
    void expectStale(const HealthIssue& issue, HealthRepairStrategy strategy) const {
        const auto before = test::pictureOf(world.folder.path());
        EXPECT_EQ(refusal(issue, strategy),
                  issue.location.filename().native() + " is not what it was when it was checked. Nothing was changed.");
        EXPECT_EQ(test::pictureOf(world.folder.path()), before);
    }
    /// A bundle on the internal disk where a link should be, and its copy on the drive.
    HealthIssue revertedApp() const {
        test::makeBundle(world.appsOnDrive / "Foo.app");
        test::makeBundle(world.applications / "Foo.app");
        return problem();
    }

    HealthWorld world;
};

}  // namespace

TEST_F(HealthRepairs, RemoveALinkThatLeadsNowhere) {
    test::makeLink(world.applications / "Gone.app", world.appsOnDrive / "Gone.app");
    EXPECT_EQ(perform(problem(), removeDangling), "Removed dead symlink Gone.app.");
    EXPECT_THAT(checked().issues, IsEmpty());
}

TEST_F(HealthRepairs, KnowLinksAgainThatAreRelative) {
    test::makeLink(world.applications / "Gone.app", "../Volumes/Backup/Gone.app");
    EXPECT_EQ(perform(problem(), removeDangling), "Removed dead symlink Gone.app.");
    test::makeLink(world.library / "Logs/Editor/data", "../gone");
    EXPECT_EQ(perform(problem(), removeDangling), "Removed dead symlink data.");
    test::makeLink(world.library / "Preferences/x.plist", "../elsewhere.plist");
    EXPECT_EQ(refusal(problem(), restoreUnsafePrefs), "Source path no longer exists.");
}

TEST_F(HealthRepairs, RemoveNoLinkThatLeadsSomewhereByNow) {
    test::makeLink(world.applications / "Gone.app", world.appsOnDrive / "Gone.app");
    const auto issue = problem();
    test::makeBundle(world.appsOnDrive / "Gone.app");
    expectStale(issue, removeDangling);
    fs::remove(issue.location);
    expectStale(issue, removeDangling);
    test::makeBundle(issue.location);
    expectStale(issue, removeDangling);
    fs::remove_all(issue.location);
    test::makeLink(issue.location, "/another/place");
    expectStale(issue, removeDangling);
}

TEST_F(HealthRepairs, CleanUpABundleThatIsNone) {
    for (const char* rest : {"Contents", "Contents/Info.plist", "Contents/MacOS/program"}) {
        if (std::string_view(rest) == "Contents")
            test::makeFolder(world.appsOnDrive / "Foo.app" / rest);
        else
            test::makeFile(world.appsOnDrive / "Foo.app" / rest);
        test::makeLink(world.applications / "Foo.app", world.appsOnDrive / "Foo.app");
        EXPECT_EQ(perform(problem(), removeEmpty), "Cleaned up Foo.app. Reinstall the app.");
        EXPECT_FALSE(fs::exists(world.appsOnDrive / "Foo.app"));
        EXPECT_TRUE(fs::exists(world.trash->folder / "Foo.app" / rest));
        EXPECT_THAT(checked().issues, IsEmpty());
        fs::remove_all(world.trash->folder);
    }
}

TEST_F(HealthRepairs, CleanUpIsSilentWhenTheTrashRefuses) {
    test::makeFolder(world.appsOnDrive / "Foo.app");
    test::makeLink(world.applications / "Foo.app", world.appsOnDrive / "Foo.app");
    world.trash->refuses = true;
    EXPECT_EQ(perform(problem(), removeEmpty), "Cleaned up Foo.app. Reinstall the app.");
    EXPECT_TRUE(fs::exists(world.appsOnDrive / "Foo.app"));
}

TEST_F(HealthRepairs, NeverTrashAVolumeOrTheHomeBehindALink) {
    for (const fs::path& target : {world.drive, world.home, world.folder / "Users"}) {
        test::makeLink(world.applications / "Foo.app", target);
        const auto issue = problem();
        EXPECT_EQ(issue.kind, Kind::empty);
        EXPECT_EQ(refusal(issue, removeEmpty), target.native() + " must stay where it is. Nothing was changed.");
        EXPECT_TRUE(fs::is_symlink(issue.location));
        fs::remove(issue.location);
    }
}

TEST_F(HealthRepairs, NeverTrashWhatAnotherLinkOnTheWayLeadsTo) {
    test::makeLink(world.folder / "way", world.home);
    test::makeLink(world.applications / "Foo.app", world.folder / "way");
    EXPECT_EQ(refusal(problem(), removeEmpty), world.home.native() + " must stay where it is. Nothing was changed.");
}

TEST_F(HealthRepairs, CleanUpNoBundleThatWasInstalledAnew) {
    test::makeFolder(world.appsOnDrive / "Foo.app");
    test::makeLink(world.applications / "Foo.app", world.appsOnDrive / "Foo.app");
    const auto issue = problem();
    test::makeBundle(world.appsOnDrive / "Foo.app");
    expectStale(issue, removeEmpty);
    fs::remove_all(world.appsOnDrive / "Foo.app");
    test::makeFolder(world.appsOnDrive / "Foo.app");
    fs::remove(issue.location);
    test::makeLink(issue.location, world.appsOnDrive / "Bar.app");
    expectStale(issue, removeEmpty);
}

TEST_F(HealthRepairs, RetargetNoLauncherThatHasChanged) {
    const fs::path launcher = world.applications / "Foo.app";
    const fs::path target = world.folder / "gone/Foo.app";
    test::makeLauncher(launcher, target);
    const auto issue = problem();
    test::makeBundle(target);
    expectStale(issue, repairBrokenLauncher);
    fs::remove_all(target);
    test::makeFile(launcher / "Contents/Resources/ExternalAppTarget.txt", "/nowhere/Other.app");
    expectStale(issue, repairBrokenLauncher);
    test::makeFile(launcher / "Contents/Resources/ExternalAppTarget.txt", target.native());
    fs::rename(launcher, world.folder / "elsewhere.app");
    test::makeLink(launcher, world.folder / "elsewhere.app");
    expectStale(issue, repairBrokenLauncher);
}

TEST_F(HealthRepairs, ReclaimTheCopyOfARevertedApplication) {
    const auto issue = revertedApp();
    EXPECT_EQ(perform(issue, reclaimReverted), "Reclaimed stale SSD copy of Foo.app.");
    EXPECT_FALSE(fs::exists(world.appsOnDrive / "Foo.app"));
    EXPECT_TRUE(fs::exists(world.trash->folder / "Foo.app"));
    EXPECT_TRUE(fs::exists(world.applications / "Foo.app"));
    EXPECT_THAT(checked().issues, IsEmpty());
}

TEST_F(HealthRepairs, TellHowManyLaunchersWentWithACopy) {
    const auto issue = revertedApp();
    test::makeLauncher(world.home / "Applications/One.app", world.appsOnDrive / "Foo.app");
    EXPECT_EQ(perform(issue, reclaimReverted), "Reclaimed stale SSD copy of Foo.app. Removed 1 stale launcher shim.");
    test::makeBundle(world.appsOnDrive / "Orphan.app");
    const auto orphan = problem();
    for (const char* name : {"Two.app", "Three.app"})
        test::makeLauncher(world.home / "Applications" / name, world.appsOnDrive / "Orphan.app");
    EXPECT_EQ(perform(orphan, removeOrphan), "Trashed orphan Orphan.app. Removed 2 stale launcher shims.");
}

TEST_F(HealthRepairs, ReclaimingTellsWhenTheDriveIsAway) {
    test::makeBundle(world.applications / "Foo.app");
    world.remember(world.applications / "Foo.app", "/nowhere/Foo.app");
    const auto issue = problem();
    EXPECT_THAT(refusal(issue, reclaimReverted), HasSubstr("Could not move to the Trash"));
    EXPECT_TRUE(fs::exists(issue.location));
    EXPECT_EQ(perform({.kind = Kind::reverted, .location = issue.location}, reclaimReverted),
              "Reclaimed stale SSD copy of Foo.app.");
}

TEST_F(HealthRepairs, ForgetTheMovesToACopyThatTheyTrash) {
    const fs::path database = InstallsDB::defaultPath(world.host);
    test::makeTrackingDatabase(database);
    InstallsDBWriter::recordMove(
        world.host,
        {.source = world.applications / "Foo.app", .destination = world.appsOnDrive / "Foo.app", .trackedFiles = {}},
        database);
    ASSERT_TRUE(InstallsDB::entryForAppName(database, "Foo.app"));
    world.remember(world.folder / "Other", world.drive / "Other");
    const auto isRemembered = [&] { return HealthManifest::load(world.host).size() == 2; };
    world.remember(world.applications / "Foo.app", world.appsOnDrive / "Foo.app");
    perform(revertedApp(), reclaimReverted);
    EXPECT_FALSE(isRemembered());
    EXPECT_FALSE(InstallsDB::entryForAppName(database, "Foo.app"));
    EXPECT_THAT(checked().problems(), IsEmpty());
    fs::remove_all(world.applications / "Foo.app");
    fs::remove_all(world.trash->folder);

    world.remember(world.applications / "Foo.app", world.appsOnDrive / "Foo.app");
    test::makeBundle(world.appsOnDrive / "Foo.app");
    perform(problem(), removeOrphan);
    EXPECT_FALSE(isRemembered());
    fs::remove_all(world.trash->folder);

    world.remember(world.applications / "Foo.app", world.appsOnDrive / "Foo.app");
    test::makeFolder(world.appsOnDrive / "Foo.app");
    test::makeLink(world.applications / "Foo.app", world.appsOnDrive / "Foo.app");
    world.trash->refuses = true;
    perform(problem(), removeEmpty);
    EXPECT_TRUE(isRemembered()) << "the copy is still there";
    test::makeLink(world.applications / "Foo.app", world.appsOnDrive / "Foo.app");
    world.trash->refuses = false;
    perform(problem(), removeEmpty);
    EXPECT_FALSE(isRemembered());
    EXPECT_EQ(HealthManifest::load(world.host).size(), 1U) << "what was moved elsewhere stays remembered";
}

TEST_F(HealthRepairs, GoOnWhereAKilledOneHasTrashedTheCopy) {
    for (const auto strategy : {reclaimReverted, reSymlinkReverted}) {
        test::makeBundle(world.applications / "Foo.app");
        world.remember(world.applications / "Foo.app", world.appsOnDrive / "Foo.app");
        const auto issue = problem();
        EXPECT_THAT(issue.detail, testing::StartsWith("Manifest says"));
        perform(issue, strategy);
        EXPECT_THAT(checked().problems(), IsEmpty());
        EXPECT_EQ(fs::is_symlink(world.applications / "Foo.app"), strategy == reSymlinkReverted);
    }
}

TEST_F(HealthRepairs, LeaveALauncherThatHasTakenTheApplicationsPlace) {
    const auto issue = revertedApp();
    fs::remove_all(issue.location);
    test::makeLauncher(issue.location, *issue.target);
    expectStale(issue, reclaimReverted);
    expectStale(issue, reSymlinkReverted);
}

TEST_F(HealthRepairs, MoveNoApplicationThatRuns) {
    const auto issue = revertedApp();
    world.World::applications->inUse = {issue.location};
    EXPECT_EQ(refusal(issue, reSymlinkReverted), "App is running: Foo.app. Quit it first, or pass --quit-running.");
    EXPECT_TRUE(fs::exists(*issue.target));
}

TEST_F(HealthRepairs, SayNoMoreThanTheMoveWhereNothingWentToTheTrash) {
    const auto issue = revertedApp();
    world.withDitto("echo 'no room' >&2; exit 1");
    fs::remove_all(*issue.target);
    EXPECT_EQ(refusal(issue, reSymlinkReverted), "Copy failed: ditto failed: no room");
}

TEST_F(HealthRepairs, KeepTheMachineAwake) {
    test::makeLink(world.applications / "Gone.app", "/nowhere");
    perform(problem(), removeDangling);
    EXPECT_THAT(world.sleepBlocker->reasons, testing::ElementsAre("What has drifted is being repaired"));
    EXPECT_EQ(world.sleepBlocker->holds, 0);
}

TEST_F(HealthRepairs, ReclaimNoCopyThatALinkLeadsToAgain) {
    const auto issue = revertedApp();
    fs::remove_all(issue.location);
    test::makeLink(issue.location, *issue.target);
    expectStale(issue, reclaimReverted);
    fs::remove(issue.location);
    expectStale(issue, reSymlinkReverted);
}

TEST_F(HealthRepairs, MoveARevertedApplicationAgain) {
    const auto issue = revertedApp();
    test::makeFile(issue.location / "Contents/new");
    const auto picture = test::pictureOf(issue.location);
    EXPECT_EQ(perform(issue, reSymlinkReverted), "Re-symlinked Foo.app to SSD.");
    EXPECT_EQ(fs::read_symlink(issue.location), world.appsOnDrive / "Foo.app");
    EXPECT_EQ(test::pictureOf(world.appsOnDrive / "Foo.app"), picture);
    EXPECT_TRUE(fs::exists(world.trash->folder / "Foo.app"));
    EXPECT_EQ(checked().healthyCount, 1U);
}

TEST_F(HealthRepairs, TellWhereBothAreWhenTheSecondMoveFails) {
    const auto issue = revertedApp();
    world.withDitto("echo 'no room' >&2; exit 1");
    const auto sentence = refusal(issue, reSymlinkReverted);
    EXPECT_EQ(sentence, "Copy failed: ditto failed: no room Foo.app stays at " + issue.location.native() +
                            "; the old copy from the drive is in the Trash, at " +
                            (world.trash->folder / "Foo.app").native() + ".");
    EXPECT_TRUE(fs::is_directory(issue.location));
    EXPECT_TRUE(fs::exists(world.trash->folder / "Foo.app/Contents/Info.plist"));
}

TEST_F(HealthRepairs, TrashNothingWhenTheApplicationCannotMove) {
    const auto issue = revertedApp();
    test::makeSocket(issue.location / "Contents/socket");
    const auto before = test::pictureOf(world.folder.path());
    EXPECT_THAT(refusal(issue, reSymlinkReverted), HasSubstr("socket"));
    EXPECT_EQ(test::pictureOf(world.folder.path()), before);
}

TEST_F(HealthRepairs, GoToTheUsualDriveOnlyWhenItIsThere) {
    test::makeBundle(world.applications / "Foo.app");
    const HealthIssue issue{.kind = Kind::reverted, .location = world.applications / "Foo.app"};
    const fs::path usual = world.folder / "Volumes/Crucial X9";
    test::makeFolder(usual);
    EXPECT_EQ(refusal(issue, reSymlinkReverted), "The drive Crucial X9 is not connected. Nothing was changed.");
    EXPECT_TRUE(fs::is_empty(usual));
    world.volumes->list.push_back({.mountPath = usual, .name = "Crucial X9"});
    EXPECT_EQ(perform(issue, reSymlinkReverted), "Re-symlinked Foo.app to SSD.");
    EXPECT_EQ(fs::read_symlink(issue.location), usual / "ExternalTarvik/Apps/Foo.app");
}

TEST_F(HealthRepairs, TrashAnOrphan) {
    test::makeBundle(world.appsOnDrive / "Foo.app");
    EXPECT_EQ(perform(problem(), removeOrphan), "Trashed orphan Foo.app.");
    EXPECT_TRUE(fs::exists(world.trash->folder / "Foo.app"));
    EXPECT_THAT(checked().issues, IsEmpty());
}

TEST_F(HealthRepairs, TrashNoOrphanThatALinkLeadsToByNow) {
    test::makeBundle(world.appsOnDrive / "Foo.app");
    const auto issue = problem();
    test::makeLink(world.applications / "Foo.app", issue.location);
    expectStale(issue, removeOrphan);
    fs::remove_all(issue.location);
    expectStale(issue, removeOrphan);
}

TEST_F(HealthRepairs, PassOnWhatTheTrashSays) {
    test::makeBundle(world.appsOnDrive / "Foo.app");
    const auto issue = problem();
    world.trash->refuses = true;
    EXPECT_THAT(refusal(issue, removeOrphan), HasSubstr("Could not move to the Trash"));
    EXPECT_TRUE(fs::exists(issue.location));
}

TEST_F(HealthRepairs, ForgetTrackedFilesByTheNumber) {
    const fs::path link = world.moveApp("Foo.app");
    const HealthIssue issue{
        .kind = Kind::missingTrackedFiles, .location = link, .target = world.appsOnDrive / "Foo.app"};
    EXPECT_EQ(perform(issue, forgetMissingTrackedFiles), "No setupbook entry found for Foo.app; nothing to forget.");
    const fs::path database = InstallsDB::defaultPath(world.host);
    test::makeTrackingDatabase(database);
    test::askDatabase(database, "INSERT INTO installs (install_id, app_name) VALUES ('one', 'Foo.app');");
    EXPECT_EQ(perform(issue, forgetMissingTrackedFiles), "Forgot 0 stale tracked file entries for Foo.app.");
    for (const int count : {1, 2}) {
        for (int number = 0; number < count; ++number)
            test::askDatabase(database, "INSERT INTO tracked_files (install_id, file_path) VALUES ('one', '/nowhere/" +
                                            std::to_string(number) + "');");
        EXPECT_EQ(problem().kind, Kind::missingTrackedFiles);
        EXPECT_EQ(perform(problem(), forgetMissingTrackedFiles),
                  count == 1 ? "Forgot 1 stale tracked file entry for Foo.app."
                             : "Forgot 2 stale tracked file entries for Foo.app.");
        EXPECT_THAT(checked().problems(), IsEmpty());
    }
    EXPECT_EQ(perform({.kind = Kind::missingTrackedFiles, .location = link}, forgetMissingTrackedFiles),
              "No setupbook entry found for Foo.app; nothing to forget.");
}

TEST_F(HealthRepairs, InstallLaunchersByTheNumber) {
    const fs::path suite = world.drive / "Suite";
    test::makeLink(world.applications / "Suite", suite);
    const HealthIssue issue{
        .kind = Kind::missingSpotlightLaunchers, .location = world.applications / "Suite", .target = suite};
    test::makeFolder(suite);
    EXPECT_EQ(perform(issue, repairSpotlightLaunchers), "Installed/repaired 0 Spotlight launchers.");
    test::makeBundle(suite / "One.app");
    EXPECT_EQ(perform(problem(), repairSpotlightLaunchers), "Installed/repaired 1 Spotlight launcher.");
    test::makeBundle(suite / "Two.app");
    test::makeBundle(suite / "Three.app");
    EXPECT_EQ(perform(problem(), repairSpotlightLaunchers), "Installed/repaired 2 Spotlight launchers.");
    EXPECT_THAT(checked().issues, IsEmpty());
}

TEST_F(HealthRepairs, BringAPreferenceFileBack) {
    const fs::path file = world.library / "Preferences/x.plist";
    test::makeFile(world.drive / "x.plist", "preferences");
    test::makeLink(file, world.drive / "x.plist");
    EXPECT_EQ(perform(problem(), restoreUnsafePrefs), "Restored x.plist to internal disk.");
    EXPECT_FALSE(fs::is_symlink(file));
    EXPECT_EQ(test::contentOf(file), "preferences");
}

TEST_F(HealthRepairs, TellHowAPreferenceFileOfTheSystemComesBack) {
    const fs::path file = world.folder / "Library/Preferences/x.plist";
    test::makeFile(world.drive / "x.plist");
    test::makeLink(file, world.drive / "x.plist");
    const auto before = test::pictureOf(world.folder.path());
    EXPECT_EQ(perform(problem(), restoreUnsafePrefs),
              file.native() +
                  " is root-owned. Run:\n  ~/.claude/skills/rootferry/rootferry \"$(which tarvik)\" move "
                  "restore \"" +
                  file.native() + "\"");
    EXPECT_EQ(test::pictureOf(world.folder.path()), before);
}

TEST_F(HealthRepairs, BringAPreferenceFileBackToAFolderThatIsOnlyCalledAlike) {
    const fs::path file = world.folder / "Library of Ada/Preferences/x.plist";
    test::makeFile(world.drive / "x.plist", "preferences");
    test::makeLink(file, world.drive / "x.plist");
    EXPECT_EQ(perform({.kind = Kind::unsafePrefsPlist, .location = file, .target = world.drive / "x.plist"},
                      restoreUnsafePrefs),
              "Restored x.plist to internal disk.");
}

TEST_F(HealthRepairs, LetADataLinkLeadToTheCopyThatWasFound) {
    const fs::path link = world.library / "Logs/data";
    test::makeFile(world.drive / "ExternalTarvik/Data/data/file");
    test::makeLink(link, world.drive / "Tarvik/Data/data");
    const auto issue = problem();
    EXPECT_EQ(HealthRepair::safeRepair(world.host, issue), repointDangling);
    EXPECT_EQ(perform(issue, repointDangling),
              "Repointed data to " + (world.drive / "ExternalTarvik/Data/data").native() + ".");
    EXPECT_EQ(fs::read_symlink(link), world.drive / "ExternalTarvik/Data/data");
    EXPECT_EQ(std::distance(fs::directory_iterator(link.parent_path()), {}), 1);
    EXPECT_THAT(checked().issues, IsEmpty());
}

TEST_F(HealthRepairs, AreNoneForFindingsOfAnotherKind) {
    test::makeBundle(world.appsOnDrive / "Foo.app");
    EXPECT_EQ(refusal(problem(), reclaimReverted), "reclaimReverted is no repair for Foo.app.");
    EXPECT_EQ(refusal(problem(), repointDangling), "repointDangling is no repair for Foo.app.");
}

TEST_F(HealthRepairs, TrashNothingThatAMoveStillHolds) {
    const auto issue = revertedApp();
    const FileDescriptor held = ItemLock::hold(*issue.target);
    EXPECT_EQ(refusal(issue, reclaimReverted), "Foo.app is being moved. Nothing was changed.");
    EXPECT_EQ(refusal(issue, reSymlinkReverted), "Foo.app is being moved. Nothing was changed.");
    EXPECT_TRUE(fs::exists(*issue.target));
    fs::remove_all(issue.location);
    EXPECT_EQ(refusal(problem(), removeOrphan), "Foo.app is being moved. Nothing was changed.");
}

TEST_F(HealthRepairs, TrashNothingThatALinkElsewhereLeadsTo) {
    test::makeBundle(world.appsOnDrive / "Foo.app");
    const auto issue = problem();
    EXPECT_EQ(issue.kind, Kind::orphan);
    const fs::path link = world.home / "Applications/Foo.app";
    test::makeLink(link, issue.location);
    world.remember(link, issue.location);
    expectStale(issue, removeOrphan);
    EXPECT_THAT(checked().issues, IsEmpty());
}

TEST_F(HealthRepairs, CallNothingMissingThatMayNotBeLookedAt) {
    world.moveApp("Foo.app");
    fs::permissions(world.appsOnDrive / "Foo.app/Contents", fs::perms::none);
    EXPECT_THAT(checked().problems(), IsEmpty());
    const test::OrdinaryUser user(world.folder.path());
    // Whether it holds a program cannot be seen: that is told, and nothing is done about it.
    const auto issue = problem();
    EXPECT_EQ(issue.kind, Kind::corrupted);
    EXPECT_THAT(refusal(issue, removeEmpty), HasSubstr("Nothing was changed."));
    EXPECT_TRUE(fs::is_symlink(issue.location));
}

TEST_F(HealthRepairs, AreSafeWhereTheyRemoveNothing) {
    const auto safe = [&](Kind kind) { return HealthRepair::safeRepair(world.host, {.kind = kind, .target = "/x"}); };
    EXPECT_EQ(safe(Kind::brokenLauncher), repairBrokenLauncher);
    EXPECT_EQ(safe(Kind::missingSpotlightLaunchers), repairSpotlightLaunchers);
    EXPECT_EQ(safe(Kind::missingTrackedFiles), forgetMissingTrackedFiles);
    for (const Kind kind : {Kind::dangling, Kind::empty, Kind::corrupted, Kind::orphan, Kind::unsafePrefsPlist,
                            Kind::sandboxExternalSymlink})
        EXPECT_EQ(safe(kind), std::nullopt);
    EXPECT_EQ(safe(Kind::reverted), std::nullopt);
    EXPECT_EQ(safe(Kind::signatureBroken), std::nullopt);
    EXPECT_EQ(safe(Kind::healthy), std::nullopt);
}

TEST_F(HealthRepairs, RepointNothingButDanglingLinks) {
    test::makeFolder(world.drive / "ExternalTarvik/Apps/Foo.app");
    const fs::path former = world.drive / "Tarvik/Apps/Foo.app";
    EXPECT_EQ(HealthRepair::safeRepair(world.host, {.kind = Kind::dangling, .target = former}), repointDangling);
    EXPECT_EQ(HealthRepair::safeRepair(world.host, {.kind = Kind::brokenLauncher, .target = former}),
              repairBrokenLauncher);
}

TEST_F(HealthRepairs, AreMeantWhereThereIsOneAlone) {
    const auto only = [&](Kind kind) { return HealthRepair::onlyRepair(world.host, {.kind = kind}); };
    EXPECT_EQ(only(Kind::dangling), removeDangling);
    EXPECT_EQ(only(Kind::brokenLauncher), repairBrokenLauncher);
    EXPECT_EQ(only(Kind::reverted), std::nullopt);
    EXPECT_EQ(only(Kind::signatureBroken), std::nullopt);
}

TEST(HealthRepairIntent, SaysWhatWillBeDone) {
    const HealthIssue issue{.location = "/Applications/Foo.app", .target = "/drive/Foo.app"};
    const std::vector<std::pair<HealthRepairStrategy, std::string>> intents = {
        {removeDangling, "remove the link"},
        {removeEmpty, "remove the link and move /drive/Foo.app to the Trash"},
        {reclaimReverted, "move /drive/Foo.app to the Trash"},
        {reSymlinkReverted, "move it to the drive again, and the old copy there to the Trash"},
        {removeOrphan, "move it to the Trash"},
        {forgetMissingTrackedFiles, "forget the tracked files that are missing"},
        {repairSpotlightLaunchers, "install the launchers that are missing"},
        {repairBrokenLauncher, "let it open another copy of its app"},
        {restoreUnsafePrefs, "bring /drive/Foo.app back to its place"},
        {restoreSandboxExternal, "copy /drive/Foo.app back to its place"},
        {repointDangling, "let it lead to the copy that was found"}};
    for (const auto& [strategy, text] : intents) EXPECT_EQ(HealthRepair::intent(issue, strategy), text);
}

TEST(HealthRepairStrategies, AreOfferedByTheirLabels) {
    const auto label = [](Kind kind) { return HealthRepairStrategies::offers(kind).at(0).label; };
    EXPECT_EQ(label(Kind::dangling), "Remove dead symlink");
    EXPECT_EQ(label(Kind::empty), "Clean up (must reinstall)");
    EXPECT_EQ(label(Kind::corrupted), "Clean up (must reinstall)");
    EXPECT_EQ(label(Kind::orphan), "Delete from SSD");
    EXPECT_EQ(label(Kind::missingTrackedFiles), "Forget stale DB entries");
    EXPECT_EQ(label(Kind::missingSpotlightLaunchers), "Repair Spotlight launchers");
    EXPECT_EQ(label(Kind::brokenLauncher), "Retarget launcher");
    EXPECT_EQ(label(Kind::unsafePrefsPlist), "Restore plist to internal");
    EXPECT_EQ(label(Kind::sandboxExternalSymlink), "Restore to internal disk");
}

TEST(HealthRepairStrategies, EachHasANameByWhichItIsFound) {
    for (int number = 0; number <= static_cast<int>(repointDangling); ++number) {
        const auto strategy = static_cast<HealthRepairStrategy>(number);
        EXPECT_EQ(HealthRepairStrategies::named(HealthRepairStrategies::name(strategy)), strategy);
    }
    EXPECT_EQ(HealthRepairStrategies::name(restoreSandboxExternal), "restoreSandboxExternal");
    EXPECT_EQ(HealthRepairStrategies::named("nonsense"), std::nullopt);
}

TEST(HealthRepairStrategies, RevertedApplicationsHaveTwo) {
    const auto& offers = HealthRepairStrategies::offers(Kind::reverted);
    ASSERT_EQ(offers.size(), 2U);
    EXPECT_EQ(offers[0].label, "Reclaim SSD space");
    EXPECT_EQ(offers[0].strategy, reclaimReverted);
    EXPECT_EQ(offers[1].label, "Re-symlink to SSD");
    EXPECT_EQ(offers[1].strategy, reSymlinkReverted);
    EXPECT_THAT(HealthRepairStrategies::offers(Kind::signatureBroken), IsEmpty());
}

}  // namespace tarvik
