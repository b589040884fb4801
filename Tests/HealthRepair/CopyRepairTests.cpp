// The repairs of bundles on a drive that stand for nothing any more.
#include "Copying/ItemLock.h"
#include "HealthRepair/HealthRepairTest.h"
#include "Records/HealthManifest.h"
#include "Records/InstallsDB.h"
#include "Records/InstallsDBWriter.h"
#include "Support/OrdinaryUser.h"
#include "Support/RealVolume.h"
#include "Support/TrackingDatabase.h"

namespace tarvik {

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using enum HealthRepairStrategy;
using Kind = HealthIssue::Kind;

/// Volumes of which one may be asked, and that all at once never are: on a Mac one that hangs would hold the answer.
class AskedOneByOne : public test::MadeVolumes {
public:
    explicit AskedOneByOne(const test::MadeVolumes& volumes) : test::MadeVolumes(volumes) {}
    std::vector<Volume> mounted() const override {
        ADD_FAILURE() << "all were asked";
        return list;
    }
    std::vector<fs::path> mountPaths() const override { return {list.front().mountPath, "/Volumes/Hangs"}; }
    std::optional<Volume> at(const fs::path& mountPath) const override {
        if (mountPath == list.front().mountPath) return list.front();
        return std::nullopt;
    }
};

class CopyRepairs : public test::HealthRepairTest {};

}  // namespace

TEST_F(CopyRepairs, ReclaimTheCopyOfARevertedApplication) {
    const auto issue = revertedApp();
    EXPECT_EQ(perform(issue, reclaimReverted), "Reclaimed stale SSD copy of Foo.app.");
    EXPECT_FALSE(fs::exists(world.appsOnDrive / "Foo.app"));
    EXPECT_TRUE(fs::exists(world.trash->folder / "Foo.app"));
    EXPECT_TRUE(fs::exists(world.applications / "Foo.app"));
    EXPECT_THAT(checked().issues, IsEmpty());
}

TEST_F(CopyRepairs, TellHowManyLaunchersWentWithACopy) {
    const auto issue = revertedApp();
    test::makeLauncher(world.home / "Applications/One.app", world.appsOnDrive / "Foo.app");
    EXPECT_EQ(perform(issue, reclaimReverted), "Reclaimed stale SSD copy of Foo.app. Removed 1 stale launcher shim.");
    test::makeBundle(world.appsOnDrive / "Orphan.app");
    const auto orphan = problem();
    for (const char* name : {"Two.app", "Three.app"})
        test::makeLauncher(world.home / "Applications" / name, world.appsOnDrive / "Orphan.app");
    EXPECT_EQ(perform(orphan, removeOrphan), "Trashed orphan Orphan.app. Removed 2 stale launcher shims.");
}

TEST_F(CopyRepairs, ReclaimingTellsWhenTheDriveIsAway) {
    test::makeBundle(world.applications / "Foo.app");
    world.remember(world.applications / "Foo.app", "/nowhere/Foo.app");
    const auto issue = problem();
    EXPECT_THAT(refusal(issue, reclaimReverted), HasSubstr("Could not move to the Trash"));
    EXPECT_TRUE(fs::exists(issue.location));
    EXPECT_EQ(perform({.kind = Kind::reverted, .location = issue.location}, reclaimReverted),
              "Reclaimed stale SSD copy of Foo.app.");
}

TEST_F(CopyRepairs, TouchNothingInAFolderThatADriveHasLeftBehind) {
    const auto reverted = revertedApp();
    test::makeFolder(world.appsOnDrive / "Empty.app");
    test::makeLink(world.applications / "Empty.app", world.appsOnDrive / "Empty.app");
    world.remember(world.applications / "Empty.app", world.appsOnDrive / "Empty.app");
    const HealthIssue empty{
        .kind = Kind::empty, .location = world.applications / "Empty.app", .target = world.appsOnDrive / "Empty.app"};
    const HealthIssue orphan{.kind = Kind::orphan, .location = world.appsOnDrive / "Empty.app"};
    const auto refused = [&](const HealthIssue& issue, HealthRepairStrategy strategy) {
        const auto before = test::pictureOf(world.folder.path());
        const auto sentence = refusal(issue, strategy);
        EXPECT_EQ(test::pictureOf(world.folder.path()), before);
        return sentence;
    };
    world.volumes->list.clear();
    const std::string away = "The drive of Foo.app is not connected. Nothing was changed.";
    EXPECT_EQ(refused(reverted, reclaimReverted), away);
    EXPECT_EQ(refused(reverted, reSymlinkReverted), away);
    EXPECT_EQ(refused(orphan, removeOrphan), "The drive of Empty.app is not connected. Nothing was changed.");
    EXPECT_EQ(refused(empty, removeEmpty), "The drive of Empty.app is not connected. Nothing was changed.");
    fs::remove_all(world.drive);
    EXPECT_EQ(refused(empty, removeEmpty), "The drive of Empty.app is not connected. Nothing was changed.");
}

TEST_F(CopyRepairs, TrashNothingThatIsNoApplication) {
    for (const fs::path& folder : {world.home / "Documents", world.appsOnDrive}) {
        test::makeFile(folder / "Letter.txt");
        test::makeLink(world.applications / "Docs.app", folder);
        const HealthIssue issue{.kind = Kind::empty, .location = world.applications / "Docs.app", .target = folder};
        EXPECT_EQ(refusal(issue, removeEmpty), folder.native() + " is no application, and stays: remove the link " +
                                                   issue.location.native() +
                                                   " if nothing needs it. Nothing was changed.");
        EXPECT_TRUE(fs::exists(folder / "Letter.txt"));
        EXPECT_TRUE(fs::is_symlink(issue.location));
        fs::remove(issue.location);
    }
}

TEST_F(CopyRepairs, CleanUpNothingThatHasGone) {
    test::makeFolder(world.appsOnDrive / "Foo.app");
    test::makeLink(world.applications / "Foo.app", world.appsOnDrive / "Foo.app");
    const auto issue = problem();
    fs::remove_all(world.appsOnDrive / "Foo.app");
    expectStale(issue, removeEmpty);
}

TEST_F(CopyRepairs, TrashNoCopyThatAnotherApplicationLeadsTo) {
    const auto issue = revertedApp();
    for (const fs::path& other : {world.applications / "Foo 2.app", world.applications / "Utilities/Foo.app",
                                  world.home / "Applications/Foo.app"}) {
        test::makeLink(other, *issue.target);
        const auto before = test::pictureOf(world.folder.path());
        for (const auto strategy : {reclaimReverted, reSymlinkReverted})
            EXPECT_EQ(refusal(issue, strategy),
                      "Another link leads to " + issue.target->native() + ". Nothing was changed.");
        EXPECT_EQ(test::pictureOf(world.folder.path()), before);
        fs::remove(other);
    }
}

TEST_F(CopyRepairs, ForgetTheMovesToACopyThatTheyTrash) {
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

TEST_F(CopyRepairs, GoOnWhereAKilledOneHasTrashedTheCopy) {
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

TEST_F(CopyRepairs, LeaveALauncherThatHasTakenTheApplicationsPlace) {
    const auto issue = revertedApp();
    fs::remove_all(issue.location);
    test::makeLauncher(issue.location, *issue.target);
    for (const auto strategy : {reclaimReverted, reSymlinkReverted})
        EXPECT_EQ(refusal(issue, strategy),
                  "Foo.app is a launcher, which opens " + issue.target->native() + ". Nothing was changed.");
}

TEST_F(CopyRepairs, KeepTheCopyBesideALauncherThatOpensNothing) {
    test::makeBundle(world.appsOnDrive / "Foo.app");
    for (const char* text : {"/nowhere/Foo.app", " \n"}) {
        test::makeLauncher(world.applications / "Foo.app", text);
        const auto problems = checked().problems();
        ASSERT_EQ(problems.front().kind, Kind::reverted);
        for (const auto strategy : {reclaimReverted, reSymlinkReverted})
            EXPECT_EQ(refusal(problems.front(), strategy),
                      "Foo.app is a launcher that opens nothing, and " + (world.appsOnDrive / "Foo.app").native() +
                          " may be the only copy of its application: move the launcher to the Trash and check again. "
                          "Nothing was changed.");
    }
    fs::remove_all(world.applications / "Foo.app");
    EXPECT_EQ(perform(problem(), removeOrphan), "Trashed orphan Foo.app.") << "which the user has been told of by now";
}

TEST_F(CopyRepairs, TrashAnOrphanThatIsALinkAndNotWhatItLeadsTo) {
    const fs::path link = world.appsOnDrive / "Foo.app";
    for (const fs::path& target : {world.folder / "elsewhere/Foo.app", world.home, fs::path("/nowhere/Foo.app")}) {
        if (target != "/nowhere/Foo.app") test::makeBundle(target);
        test::makeLink(link, target);
        EXPECT_EQ(perform(problem(), removeOrphan), "Trashed orphan Foo.app.");
        EXPECT_FALSE(fs::is_symlink(link));
        EXPECT_EQ(fs::read_symlink(world.trash->folder / "Foo.app"), target);
        EXPECT_EQ(fs::exists(target / "Contents/Info.plist"), target != "/nowhere/Foo.app");
        fs::remove_all(world.trash->folder);
        EXPECT_THAT(checked().problems(), IsEmpty());
    }
}

TEST_F(CopyRepairs, TrashAnOrphanThatIsALinkFromAnotherVolume) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const auto volume = test::RealVolume::memory(world.folder / "Volumes", test::megabyte);
    world.volumes->list = {{.mountPath = volume.path()}};
    const fs::path link = volume / "ExternalTarvik/Apps/Foo.app";
    test::makeLink(link, world.home);
    const auto issue = problem();
    EXPECT_EQ(issue.drive->mountPath, volume.path());
    world.trash->folder = volume / "Trash";
    EXPECT_EQ(perform(issue, removeOrphan), "Trashed orphan Foo.app.");
}

TEST_F(CopyRepairs, MoveNoApplicationThatRuns) {
    const auto issue = revertedApp();
    world.World::applications->inUse = {issue.location};
    EXPECT_EQ(refusal(issue, reSymlinkReverted), "App is running: Foo.app. Quit it first, or pass --quit-running.");
    EXPECT_TRUE(fs::exists(*issue.target));
}

TEST_F(CopyRepairs, SayNoMoreThanTheMoveWhereNothingWentToTheTrash) {
    const auto issue = revertedApp();
    world.withDitto("echo 'no room' >&2; exit 1");
    fs::remove_all(*issue.target);
    EXPECT_EQ(refusal(issue, reSymlinkReverted), "Copy failed: ditto failed: no room");
}

TEST_F(CopyRepairs, ReclaimNoCopyThatALinkLeadsToAgain) {
    const auto issue = revertedApp();
    fs::remove_all(issue.location);
    test::makeLink(issue.location, *issue.target);
    expectStale(issue, reclaimReverted);
    fs::remove(issue.location);
    expectStale(issue, reSymlinkReverted);
}

TEST_F(CopyRepairs, MoveARevertedApplicationAgain) {
    const auto issue = revertedApp();
    test::makeFile(issue.location / "Contents/new");
    const auto picture = test::pictureOf(issue.location);
    EXPECT_EQ(perform(issue, reSymlinkReverted), "Re-symlinked Foo.app to SSD.");
    EXPECT_EQ(fs::read_symlink(issue.location), world.appsOnDrive / "Foo.app");
    EXPECT_EQ(test::pictureOf(world.appsOnDrive / "Foo.app"), picture);
    EXPECT_TRUE(fs::exists(world.trash->folder / "Foo.app"));
    EXPECT_EQ(checked().healthyCount, 1U);
}

TEST_F(CopyRepairs, TellWhereBothAreWhenTheSecondMoveFails) {
    const auto issue = revertedApp();
    world.withDitto("echo 'no room' >&2; exit 1");
    const auto sentence = refusal(issue, reSymlinkReverted);
    EXPECT_EQ(sentence, "Copy failed: ditto failed: no room Foo.app stays at " + issue.location.native() +
                            "; the old copy from the drive is in the Trash, at " +
                            (world.trash->folder / "Foo.app").native() + ".");
    EXPECT_TRUE(fs::is_directory(issue.location));
    EXPECT_TRUE(fs::exists(world.trash->folder / "Foo.app/Contents/Info.plist"));
}

TEST_F(CopyRepairs, TrashNothingWhenTheApplicationCannotMove) {
    const auto issue = revertedApp();
    test::makeSocket(issue.location / "Contents/socket");
    const auto before = test::pictureOf(world.folder.path());
    EXPECT_THAT(refusal(issue, reSymlinkReverted), HasSubstr("socket"));
    EXPECT_EQ(test::pictureOf(world.folder.path()), before);
}

TEST_F(CopyRepairs, GoToTheUsualDriveOnlyWhenItIsThere) {
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

TEST_F(CopyRepairs, TrashAnOrphan) {
    test::makeBundle(world.appsOnDrive / "Foo.app");
    EXPECT_EQ(perform(problem(), removeOrphan), "Trashed orphan Foo.app.");
    EXPECT_TRUE(fs::exists(world.trash->folder / "Foo.app"));
    EXPECT_THAT(checked().issues, IsEmpty());
}

TEST_F(CopyRepairs, TrashNoOrphanThatALinkLeadsToByNow) {
    test::makeBundle(world.appsOnDrive / "Foo.app");
    const auto issue = problem();
    test::makeLink(world.applications / "Foo.app", issue.location);
    EXPECT_EQ(refusal(issue, removeOrphan), "A link leads to " + issue.location.native() + ". Nothing was changed.");
    fs::remove_all(issue.location);
    expectStale(issue, removeOrphan);
}

TEST_F(CopyRepairs, AskNoVolumeButTheirOwn) {
    const auto reverted = revertedApp();
    world.host.volumes = std::make_shared<AskedOneByOne>(*world.volumes);
    EXPECT_EQ(perform(reverted, reclaimReverted), "Reclaimed stale SSD copy of Foo.app.");
    EXPECT_EQ(refusal({.kind = Kind::reverted, .location = reverted.location}, reSymlinkReverted),
              "The drive Crucial X9 is not connected. Nothing was changed.");
}

TEST_F(CopyRepairs, PassOnWhatTheTrashSays) {
    test::makeBundle(world.appsOnDrive / "Foo.app");
    const auto issue = problem();
    world.trash->refuses = true;
    EXPECT_THAT(refusal(issue, removeOrphan), HasSubstr("Could not move to the Trash"));
    EXPECT_TRUE(fs::exists(issue.location));
}

TEST_F(CopyRepairs, TrashNothingThatAMoveStillHolds) {
    const auto issue = revertedApp();
    const FileDescriptor held = ItemLock::hold(*issue.target);
    EXPECT_EQ(refusal(issue, reclaimReverted), "Foo.app is being moved. Nothing was changed.");
    EXPECT_EQ(refusal(issue, reSymlinkReverted), "Foo.app is being moved. Nothing was changed.");
    EXPECT_TRUE(fs::exists(*issue.target));
    fs::remove_all(issue.location);
    EXPECT_EQ(refusal(problem(), removeOrphan), "Foo.app is being moved. Nothing was changed.");
}

TEST_F(CopyRepairs, TrashNothingThatALinkElsewhereLeadsTo) {
    test::makeBundle(world.appsOnDrive / "Foo.app");
    const auto issue = problem();
    EXPECT_EQ(issue.kind, Kind::orphan);
    const fs::path way = world.folder / "way";
    test::makeLink(way, world.appsOnDrive);
    const auto expectKept = [&](const fs::path& link) {
        SCOPED_TRACE(link);
        EXPECT_THAT(checked().issues, IsEmpty());
        EXPECT_EQ(refusal(issue, removeOrphan),
                  "A link leads to " + issue.location.native() + ". Nothing was changed.");
        fs::remove(link);
    };
    for (const fs::path& root : {world.applications, world.home / "Applications"})
        for (const char* place : {"Utilities/Foo.app", "More/Utilities/Foo.app", "Utilities/Foo"}) {
            test::makeLink(root / place, issue.location);
            expectKept(root / place);
            test::makeLink(root / place, way / "Foo.app");
            expectKept(root / place);
        }
    const fs::path link = world.home / "Desktop/Foo.app";
    test::makeLink(link, issue.location);
    world.remember(link, issue.location);
    expectKept(link);
    // So deep no application is looked for, by the check neither.
    test::makeLink(world.applications / "One/Two/Three/Foo.app", issue.location);
    EXPECT_EQ(perform(problem(), removeOrphan), "Trashed orphan Foo.app.");
}

TEST_F(CopyRepairs, TrashNothingThatALinkMayLeadToThatCannotBeSeen) {
    const auto reverted = revertedApp();
    test::makeBundle(world.appsOnDrive / "Orphan.app");
    const HealthIssue orphan{.kind = Kind::orphan, .location = world.appsOnDrive / "Orphan.app"};
    const fs::path folder = world.applications / "Private";
    test::makeFolder(folder);
    fs::permissions(folder, fs::perms::none);
    const test::OrdinaryUser user(world.folder.path());
    EXPECT_THAT(test::kindsAndNames(checked().problems()), testing::ElementsAre("reverted Foo.app"));
    const std::string reason = folder.native() + " cannot be read, so a link in it may lead to ";
    EXPECT_EQ(refusal(orphan, removeOrphan), reason + "Orphan.app. Nothing was changed.");
    for (const auto strategy : {reclaimReverted, reSymlinkReverted})
        EXPECT_EQ(refusal(reverted, strategy), reason + "Foo.app. Nothing was changed.");
}

}  // namespace tarvik
