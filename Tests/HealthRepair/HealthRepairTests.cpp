#include "HealthRepair/HealthRepairProof.h"
#include "HealthRepair/HealthRepairTest.h"
#include "Records/InstallsDB.h"
#include "Support/OrdinaryUser.h"
#include "Support/TrackingDatabase.h"

#include <algorithm>
#include <iterator>

namespace tarvik {

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using enum HealthRepairStrategy;
using Kind = HealthIssue::Kind;

class HealthRepairs : public test::HealthRepairTest {};

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
    for (const char* rest : {"Contents", "Contents/Info.plist", "Contents/MacOS/program", "Contents/MacOS"}) {
        if (std::string_view(rest) == "Contents")
            test::makeFolder(world.appsOnDrive / "Foo.app" / rest);
        else
            test::makeFile(world.appsOnDrive / "Foo.app" / rest);
        // The program's folder can be a file too.
        if (std::string_view(rest) == "Contents/MacOS")
            test::makeFile(world.appsOnDrive / "Foo.app/Contents/Info.plist");
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

TEST_F(HealthRepairs, CleanUpNothingWhereTheLinkHasToStay) {
    test::makeFolder(world.appsOnDrive / "Foo.app");
    test::makeLink(world.applications / "Foo.app", world.appsOnDrive / "Foo.app");
    const auto issue = problem();
    fs::permissions(world.applications, fs::perms(0555));
    {
        const test::OrdinaryUser user(world.folder.path());
        EXPECT_EQ(refusal(issue, removeEmpty), "Could not remove what is in " + world.applications.native() + ": " +
                                                   test::wordsFor(EACCES) + ". Nothing was changed.");
    }
    fs::permissions(world.applications, fs::perms::owner_all);
    EXPECT_TRUE(fs::exists(*issue.target));
    EXPECT_EQ(perform(issue, removeEmpty), "Cleaned up Foo.app. Reinstall the app.");
}

TEST_F(HealthRepairs, NeverTrashAVolumeOrTheHomeBehindALink) {
    const fs::path stick = world.folder / "elsewhere/stick";
    world.volumes->list.push_back({.mountPath = stick});
    for (const fs::path& folder : {stick, world.folder / "Library"}) test::makeFolder(folder);
    for (const fs::path& target :
         {world.drive, world.home, world.folder / "Users", stick, stick.parent_path(), world.folder / "Library"}) {
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
    fs::remove_all(launcher);
    expectStale(issue, repairBrokenLauncher);
}

TEST_F(HealthRepairs, WriteIntoNoLauncherThatALinkLeadsTo) {
    const fs::path launcher = world.folder / "elsewhere.app";
    test::makeLauncher(launcher, "/nowhere/Foo.app");
    test::makeLink(world.applications / "Foo.app", "../elsewhere.app");
    const auto problems = checked().problems();
    ASSERT_THAT(test::kindsAndNames(problems), testing::Contains("brokenLauncher Foo.app"));
    const auto issue = std::find_if(problems.begin(), problems.end(),
                                    [](const HealthIssue& each) { return each.kind == Kind::brokenLauncher; });
    EXPECT_EQ(refusal(*issue, repairBrokenLauncher), "Foo.app is only a link to a launcher, at " + launcher.native() +
                                                         ": remove the link, or reinstall the app. Nothing was "
                                                         "changed.");
}

TEST_F(HealthRepairs, RemoveTheLinkToABundleThatIsNoneWhereNoneIsNamed) {
    test::makeFolder(world.appsOnDrive / "Foo.app");
    test::makeLink(world.applications / "Foo.app", world.appsOnDrive / "Foo.app");
    const HealthIssue issue{.kind = Kind::empty, .location = world.applications / "Foo.app"};
    EXPECT_EQ(HealthRepair::intent(world.host, issue, removeEmpty), "remove the link");
    EXPECT_EQ(perform(issue, removeEmpty), "Cleaned up Foo.app. Reinstall the app.");
    EXPECT_FALSE(fs::is_symlink(issue.location));
    EXPECT_TRUE(fs::exists(world.appsOnDrive / "Foo.app"));
    EXPECT_TRUE(HealthRepairProof::isMended(world.host, issue, removeEmpty));
    world.moveApp("Bar.app");
    expectStale({.kind = Kind::empty, .location = world.applications / "Bar.app"}, removeEmpty);
}

TEST_F(HealthRepairs, AskForTheDriveOfALauncherThatIsOnlyAway) {
    const fs::path launcher = world.applications / "Foo.app";
    test::makeLauncher(launcher, world.folder / "Volumes/Away/ExternalTarvik/Apps/Foo.app",
                       {{"CFBundleIdentifier", "org.example.Foo.externallauncher"}});
    EXPECT_EQ(refusal(problem(), repairBrokenLauncher),
              "Foo.app opens an app on the drive Away, which is not connected: connect it, and the launcher works "
              "again. Nothing was changed.");
    test::makeBundle(world.home / "Applications/Foo.app", {{"CFBundleIdentifier", "org.example.Foo"}});
    EXPECT_THAT(perform(problem(), repairBrokenLauncher), testing::StartsWith("Retargeted Foo.app"));
}

TEST_F(HealthRepairs, KeepTheMachineAwake) {
    test::makeLink(world.applications / "Gone.app", "/nowhere");
    perform(problem(), removeDangling);
    EXPECT_THAT(world.sleepBlocker->reasons, testing::ElementsAre("What has drifted is being repaired"));
    EXPECT_EQ(world.sleepBlocker->holds, 0);
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

TEST_F(HealthRepairs, ForgetNoTrackedFilesOfADriveThatIsAway) {
    const fs::path link = world.moveApp("Foo.app");
    const fs::path database = InstallsDB::defaultPath(world.host);
    test::makeTrackingDatabase(database);
    test::askDatabase(database,
                      "INSERT INTO installs (install_id, app_name) VALUES ('one', 'Foo.app');"
                      "INSERT INTO tracked_files (install_id, file_path) VALUES ('one', '/nowhere/1');");
    const auto issue = problem();
    world.volumes->list.clear();
    EXPECT_EQ(refusal(issue, forgetMissingTrackedFiles), "The drive of Foo.app is not connected. Nothing was changed.");
    EXPECT_EQ(InstallsDB::trackedFiles(database, "one").size(), 1U);
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

TEST_F(HealthRepairs, CallNothingMissingThatMayNotBeLookedAt) {
    world.moveApp("Foo.app");
    fs::permissions(world.appsOnDrive / "Foo.app/Contents", fs::perms::none);
    EXPECT_THAT(checked().problems(), IsEmpty());
    const test::OrdinaryUser user(world.folder.path());
    EXPECT_THAT(checked().problems(), IsEmpty());
    const HealthIssue issue{
        .kind = Kind::corrupted, .location = world.applications / "Foo.app", .target = world.appsOnDrive / "Foo.app"};
    EXPECT_EQ(refusal(issue, removeEmpty),
              issue.target->native() + " can't be read and may be whole. Nothing was changed.");
    EXPECT_TRUE(fs::is_symlink(issue.location));
}

TEST_F(HealthRepairs, TrashNoBundleWhoseProgramsCannotBeListed) {
    world.moveApp("Foo.app");
    fs::permissions(world.appsOnDrive / "Foo.app/Contents/MacOS", fs::perms::none);
    const test::OrdinaryUser user(world.folder.path());
    const auto problems = checked().problems();
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_EQ(problems.front().kind, Kind::corrupted);
    EXPECT_EQ(refusal(problems.front(), removeEmpty),
              problems.front().target->native() + " can't be read and may be whole. Nothing was changed.");
}

}  // namespace tarvik
