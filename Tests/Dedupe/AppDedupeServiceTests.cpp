#include "Dedupe/AppDedupeService.h"
#include "Platform/Files/FileError.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Support/Bundles.h"
#include "Support/OrdinaryUser.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* editor = "com.acme.edit";
constexpr const char* editorLauncher = "com.acme.edit.externallauncher";

class AppDedupeServiceTest : public testing::Test {
protected:
    static void makeApp(const fs::path& bundle, const std::string& identifier = editor) {
        test::makeBundle(bundle, {{"CFBundleIdentifier", identifier}});
    }
    static void makeLauncher(const fs::path& bundle, const fs::path& target, const char* identifier = editorLauncher) {
        test::makeLauncher(bundle, target,
                           {{"CFBundleIdentifier", identifier}, {"CFBundleExecutable", "ExternalAppLauncher"}});
    }

    AppDedupePlan plan() const {
        return AppDedupeService::plan(world.host, AppDedupeService::applicationRoots(world.host));
    }
    std::vector<fs::path> removable() const { return pathsOf(plan().removableItems()); }
    static std::vector<fs::path> pathsOf(const std::vector<AppDedupeItem>& items) {
        std::vector<fs::path> paths;
        for (const AppDedupeItem& item : items) paths.push_back(item.path);
        return paths;
    }
    /// The one item of `path` among the items of the plan's groups.
    AppDedupeItem item(const fs::path& path) const {
        for (const AppDedupeGroup& group : plan().groups)
            for (const AppDedupeItem& each : group.items)
                if (each.path == path) return each;
        ADD_FAILURE() << path << " is in no group";
        return {};
    }

    test::World world;
    fs::path applications = world.folder / "Applications";
    fs::path own = world.home / "Applications";
    fs::path real = applications / "Edit.app";
    fs::path launcher = own / "Edit.app";
    fs::path onDrive = world.drive / "ExternalTarvik/Apps/Edit.app";
};

TEST_F(AppDedupeServiceTest, FindsNothingWhereNothingIs) {
    EXPECT_THAT(plan().groups, IsEmpty());
    test::makeFolder(applications);
    EXPECT_THAT(plan().groups, IsEmpty());
    makeApp(real);
    EXPECT_THAT(plan().groups, IsEmpty());
}

TEST_F(AppDedupeServiceTest, KeepsALauncherWhoseDriveDoesNotAnswer) {
    makeApp(real);
    makeLauncher(launcher, onDrive);  // What it opens is gone, unless that cannot be told.
    EXPECT_THAT(removable(), ElementsAre(launcher));
    world.host.silentVolumes = {world.drive};
    EXPECT_THAT(removable(), IsEmpty());
}

TEST_F(AppDedupeServiceTest, PassesOverALinkIntoADriveThatDoesNotAnswer) {
    makeApp(onDrive);
    makeApp(real);
    makeLauncher(launcher, real);
    test::makeLink(applications / "Linked.app", onDrive);
    EXPECT_EQ(plan().groups.at(0).items.size(), 3U);
    world.host.silentVolumes = {world.drive};
    EXPECT_EQ(plan().groups.at(0).items.size(), 2U);
}

TEST_F(AppDedupeServiceTest, LooksInBothFoldersOfApplications) {
    EXPECT_THAT(AppDedupeService::applicationRoots(world.host), ElementsAre(applications, own));
}

TEST_F(AppDedupeServiceTest, FindsTheLauncherOfAReinstalledApplication) {
    makeApp(real);
    makeLauncher(launcher, onDrive);
    const AppDedupePlan found = plan();
    EXPECT_EQ(found.scannedAt, world.host.now());
    ASSERT_EQ(found.groups.size(), 1U);

    const AppDedupeItem kept{.path = real,
                             .displayName = "Edit",
                             .bundleIdentifier = editor,
                             .effectiveBundleIdentifier = editor,
                             .sizeBytes = SizeCalculator::size(world.host, real)};
    const AppDedupeItem going{.path = launcher,
                              .displayName = "Edit",
                              .bundleIdentifier = editorLauncher,
                              .effectiveBundleIdentifier = editor,
                              .kind = AppDedupeItemKind::tarvikLauncher,
                              .targetPath = onDrive,
                              .sizeBytes = SizeCalculator::size(world.host, launcher)};
    EXPECT_GT(going.sizeBytes, 0);
    const AppDedupeGroup& group = found.groups.at(0);
    EXPECT_EQ(group.bundleIdentifier, editor);
    EXPECT_EQ(group.displayName, "Edit");
    EXPECT_EQ(group.keep, kept);
    EXPECT_THAT(group.remove, ElementsAre(going));
    EXPECT_THAT(group.items, ElementsAre(kept, going));
    EXPECT_EQ(group.reason, "Top-level launcher duplicates a real local app with the same bundle identifier.");
}

TEST_F(AppDedupeServiceTest, FindsLaunchersTwoFoldersDown) {
    makeApp(applications / "Suite/Tools/Edit.app");
    makeLauncher(applications / "Old/Launchers/Edit.app", onDrive);
    makeLauncher(applications / "Too/Far/Down/Edit.app", onDrive);
    EXPECT_THAT(removable(), ElementsAre(applications / "Old/Launchers/Edit.app"));
}

TEST_F(AppDedupeServiceTest, LeavesAloneWhatOpensAnApplicationUnderALinkedFolder) {
    makeApp(world.drive / "Suite/Edit.app");
    test::makeLink(applications / "Suite", world.drive / "Suite");
    makeLauncher(launcher, applications / "Suite/Edit.app");
    EXPECT_THAT(plan().groups, IsEmpty());
}

TEST_F(AppDedupeServiceTest, LeavesAloneWhatIsInAFolderOfApplicationsThatIsALink) {
    makeApp(world.drive / "Applications/Edit.app");
    makeLauncher(world.drive / "Applications/Old.app", onDrive);
    test::makeLink(applications, world.drive / "Applications");
    EXPECT_THAT(plan().groups, IsEmpty());
}

TEST_F(AppDedupeServiceTest, LooksNoFurtherUpThanTheFolderOfApplications) {
    // Such as a system's own /var, which is a link too.
    test::makeFolder(world.folder / "machine/home");
    test::makeLink(world.folder / "linked", world.folder / "machine");
    world.host = Host::rootedAt(world.folder / "linked", world.folder / "linked/home");
    makeApp(world.folder / "linked/Applications/Edit.app");
    makeLauncher(world.folder / "linked/home/Applications/Edit.app", onDrive);
    EXPECT_THAT(removable(), ElementsAre(world.folder / "linked/home/Applications/Edit.app"));
}

TEST_F(AppDedupeServiceTest, KeepsLaunchersWithoutARealApplication) {
    makeLauncher(real, onDrive);
    makeLauncher(launcher, onDrive);
    EXPECT_THAT(plan().groups, IsEmpty());
}

TEST_F(AppDedupeServiceTest, KeepsALauncherThatOpensAnotherLiveBundle) {
    makeApp(real);
    makeApp(onDrive);
    makeLauncher(launcher, onDrive);
    EXPECT_THAT(plan().groups, IsEmpty());

    fs::remove_all(onDrive);
    EXPECT_THAT(removable(), ElementsAre(launcher));
    test::makeLink(onDrive, "nowhere");
    EXPECT_THAT(removable(), ElementsAre(launcher)) << "a link that leads nowhere is nothing";
}

TEST_F(AppDedupeServiceTest, RemovesALauncherThatOpensWhatStays) {
    makeApp(real);
    makeLauncher(launcher, real);
    EXPECT_THAT(removable(), ElementsAre(launcher));
    makeLauncher(launcher, applications / "./Edit.app/");
    EXPECT_THAT(removable(), ElementsAre(launcher));
    // What a volume that folds names has as a second spelling is here a second way to one bundle.
    test::makeLink(world.drive / "spelling", applications);
    makeLauncher(launcher, world.drive / "spelling/Edit.app");
    EXPECT_THAT(removable(), ElementsAre(launcher));
}

TEST_F(AppDedupeServiceTest, KeepsALauncherWhoseTargetMayNotBeLookedAt) {
    makeApp(real);
    makeApp(world.drive / "locked/Edit.app");
    makeLauncher(launcher, world.drive / "locked/Edit.app");
    fs::permissions(world.drive / "locked", fs::perms::none);
    {
        const test::OrdinaryUser user(world.folder.path());
        EXPECT_THAT(plan().groups, IsEmpty());
    }
    fs::permissions(world.drive / "locked", fs::perms::all);
}

TEST_F(AppDedupeServiceTest, TakesATextThatIsNoWholePathForNoTarget) {
    makeApp(real);
    for (const char* text : {"Edit.app", "../Edit.app", "~/Edit.app", "."}) {
        makeLauncher(launcher, text);
        EXPECT_THAT(removable(), ElementsAre(launcher)) << text;
    }
}

TEST_F(AppDedupeServiceTest, KeepsALinkBesideARealApplication) {
    makeApp(real);
    makeApp(onDrive);
    test::makeLink(launcher, onDrive);
    EXPECT_THAT(plan().groups, IsEmpty());
    makeLauncher(own / "Old.app", world.drive / "gone");
    EXPECT_THAT(removable(), ElementsAre(own / "Old.app"));
    EXPECT_EQ(item(launcher).kind, AppDedupeItemKind::symlink);
}

TEST_F(AppDedupeServiceTest, TakesALauncherBehindALinkForALauncher) {
    makeApp(real);
    makeLauncher(world.drive / "Old.app", onDrive);
    test::makeLink(launcher, world.drive / "Old.app");
    EXPECT_THAT(removable(), ElementsAre(launcher));

    const auto moved = AppDedupeService::run(world.host, plan(), false).movedItems;
    ASSERT_EQ(moved.size(), 1U);
    EXPECT_TRUE(moved.at(0).succeeded);
    EXPECT_TRUE(fs::is_symlink(*moved.at(0).trashedTo));
    EXPECT_TRUE(fs::exists(world.drive / "Old.app/Contents/Info.plist")) << "what a link leads to stays";
}

TEST_F(AppDedupeServiceTest, CountsALauncherOnceThatIsReachedByTwoPaths) {
    makeApp(real);
    makeLauncher(applications / "Launchers/Edit.app", onDrive);
    test::makeLink(own / "Launchers", applications / "Launchers");
    EXPECT_THAT(removable(), ElementsAre(applications / "Launchers/Edit.app"));
    EXPECT_EQ(plan().groups.at(0).items.size(), 3U);
}

TEST_F(AppDedupeServiceTest, PassesOverWhatHasNoIdentifier) {
    test::makeBundle(real, {{"CFBundleName", "Edit"}});
    makeLauncher(launcher, real, "");
    makeLauncher(own / "Second.app", real, "");
    EXPECT_THAT(plan().groups, IsEmpty());
    test::makeBundle(real, {{"CFBundleIdentifier", 7}});
    test::makeFile(own / "Broken.app/Contents/Info.plist", "no list");
    test::makePipe(own / "Pipe.app/Contents/Info.plist");
    test::makeFolder(own / "Empty.app");
    test::makeFile(own / "File.app");
    EXPECT_THAT(plan().groups, IsEmpty());
}

TEST_F(AppDedupeServiceTest, KnowsALauncherByAnyOfThreeMarks) {
    makeApp(real);
    const auto isLauncher = [&] { return item(launcher).kind == AppDedupeItemKind::tarvikLauncher; };
    test::makeBundle(launcher, {{"CFBundleIdentifier", editorLauncher}});
    EXPECT_TRUE(isLauncher());
    test::makeBundle(launcher, {{"CFBundleIdentifier", editor}, {"CFBundleExecutable", "ExternalAppLauncher"}});
    EXPECT_TRUE(isLauncher());
    EXPECT_EQ(item(launcher).targetPath, std::nullopt);
    test::makeLauncher(launcher, " \n" + onDrive.native() + "\n\n", {{"CFBundleIdentifier", editor}});
    EXPECT_TRUE(isLauncher());
    EXPECT_EQ(item(launcher).targetPath, onDrive);

    for (const char* name : {"ExternalAppLauncher2", "externalapplauncher", ""}) {
        test::makeLauncher(launcher, " \n", {{"CFBundleIdentifier", editor}, {"CFBundleExecutable", name}});
        EXPECT_THAT(plan().groups, IsEmpty()) << name;
    }
}

TEST_F(AppDedupeServiceTest, NeverWaitsForATargetFileNorReadsAllOfIt) {
    makeApp(real);
    const fs::path file = launcher / "Contents/Resources/ExternalAppTarget.txt";
    test::makeBundle(launcher, {{"CFBundleIdentifier", editorLauncher}});
    test::makePipe(file);
    EXPECT_EQ(item(launcher).targetPath, std::nullopt);
    fs::remove(file);
    test::makeFile(file, "/x");
    fs::resize_file(file, 1'000'000'000);
    EXPECT_EQ(item(launcher).targetPath, std::nullopt);
    fs::remove(file);
    test::makeFolder(file);
    EXPECT_EQ(item(launcher).targetPath, std::nullopt);
}

TEST_F(AppDedupeServiceTest, TakesBytesThatAreNoTextForATargetOnlyWhenTheyLeadSomewhere) {
    TARVIK_NEEDS_NAMES_OF_ANY_BYTES();
    makeApp(real);
    const fs::path odd = world.drive / "\xFF\xFE.app";
    test::makeLauncher(launcher, odd, {{"CFBundleIdentifier", editor}});
    EXPECT_THAT(plan().groups, IsEmpty()) << "no launcher, but a second copy";
    makeLauncher(launcher, odd);
    EXPECT_THAT(removable(), ElementsAre(launcher));
    EXPECT_EQ(item(launcher).targetPath, std::nullopt);
    makeApp(odd);
    EXPECT_THAT(plan().groups, IsEmpty());
}

TEST_F(AppDedupeServiceTest, TakesTheSuffixOutOfAnIdentifierWhereverItStands) {
    makeApp(real, "com.externallauncher.acme.externallauncherx");
    makeLauncher(launcher, onDrive, "com.acmex.externallauncher.externallauncher");
    EXPECT_EQ(plan().groups.at(0).bundleIdentifier, "com.acmex");
    EXPECT_EQ(plan().groups.at(0).keep.bundleIdentifier, "com.externallauncher.acme.externallauncherx");
}

TEST_F(AppDedupeServiceTest, TellsIdentifiersApartByEveryLetter) {
    makeApp(real, "com.acme.Edit");
    makeLauncher(launcher, onDrive);
    EXPECT_THAT(plan().groups, IsEmpty());
}

TEST_F(AppDedupeServiceTest, NamesAnItemByItsListOrElseByItsFile) {
    makeApp(applications / "Other.app");
    makeLauncher(launcher, onDrive);
    const auto nameOf = [&](const PropertyList::Dictionary& names) {
        PropertyList::Dictionary info = names;
        info["CFBundleIdentifier"] = editor;
        test::makeBundle(real, info);
        return item(real).displayName;
    };
    EXPECT_EQ(nameOf({{"CFBundleDisplayName", "Acme Edit"}, {"CFBundleName", "AEdit"}}), "Acme Edit");
    EXPECT_EQ(nameOf({{"CFBundleDisplayName", ""}, {"CFBundleName", "AEdit"}}), "AEdit");
    EXPECT_EQ(nameOf({{"CFBundleDisplayName", 7}, {"CFBundleName", ""}}), "Edit");
}

TEST_F(AppDedupeServiceTest, SortsGroupsByNameAndItemsByPath) {
    for (const auto& [name, identifier] :
         {std::pair("b.app", "com.acme.1"), {"a.app", "com.acme.2"}, {"C.app", "com.acme.3"}}) {
        makeApp(applications / name, identifier);
        for (const char* folder : {"z", "y"}) makeLauncher(own / folder / name, onDrive, identifier);
    }
    EXPECT_THAT(removable(), ElementsAre(own / "y/C.app", own / "z/C.app", own / "y/a.app", own / "z/a.app",
                                         own / "y/b.app", own / "z/b.app"));
    EXPECT_THAT(pathsOf(plan().groups.at(0).items),
                ElementsAre(applications / "C.app", own / "y/C.app", own / "z/C.app"));
}

TEST_F(AppDedupeServiceTest, ScoresByKindAndPlace) {
    const auto score = [&](AppDedupeItemKind kind, const fs::path& path, bool isInsideLink = false) {
        return AppDedupeService::score(world.host, {.path = path, .kind = kind, .insideSymlinkedFolder = isInsideLink});
    };
    using enum AppDedupeItemKind;
    const fs::path volume = world.folder / "Volumes/T/Edit.app";
    EXPECT_EQ(score(realApp, real), 110);
    EXPECT_EQ(score(realApp, launcher), 100);
    EXPECT_EQ(score(realApp, real, true), -30);
    EXPECT_EQ(score(realApp, volume), 70);
    EXPECT_EQ(score(realApp, volume, true), -70);
    EXPECT_EQ(score(tarvikLauncher, real), 60);
    EXPECT_EQ(score(tarvikLauncher, launcher), 50);
    EXPECT_EQ(score(tarvikLauncher, real, true), 20);
    EXPECT_EQ(score(tarvikLauncher, volume), 20);
    EXPECT_EQ(score(symlink, real), 10);
    EXPECT_EQ(score(symlink, launcher), 0);
    EXPECT_EQ(score(symlink, volume, true), -70);
    EXPECT_EQ(score(symlink, world.folder / "Applications2/Edit.app"), 0);
}

TEST_F(AppDedupeServiceTest, PrefersTheFirstOfEqualItems) {
    const AppDedupeItem link{.path = own / "a.app", .kind = AppDedupeItemKind::symlink};
    const AppDedupeItem first{.path = own / "b.app"};
    const AppDedupeItem second{.path = own / "c.app"};
    EXPECT_EQ(AppDedupeService::preferredKeepItem(world.host, {link, first, second}).path, first.path);
    EXPECT_EQ(AppDedupeService::preferredKeepItem(world.host, {second, first, link}).path, second.path);
}

TEST_F(AppDedupeServiceTest, EndsSoonWhenItIsCancelled) {
    makeApp(real);
    makeLauncher(launcher, onDrive);
    const Cancellation cancelled;
    cancelled.cancel();
    const auto roots = AppDedupeService::applicationRoots(world.host);
    EXPECT_THAT(AppDedupeService::plan(world.host, roots, cancelled).groups, IsEmpty());
}

TEST_F(AppDedupeServiceTest, RehearsesWithoutTouchingAnything) {
    makeApp(real);
    makeLauncher(launcher, onDrive);
    makeLauncher(own / "Old.app", onDrive);
    const auto before = test::pictureOf(world.folder.path());
    const AppDedupePlan found = plan();
    const auto result = AppDedupeService::run(world.host, found, true);
    EXPECT_TRUE(result.dryRun);
    EXPECT_EQ(result.plan, found);
    ASSERT_EQ(result.movedItems.size(), 2U);
    for (const auto& moved : result.movedItems) {
        EXPECT_TRUE(moved.succeeded);
        EXPECT_EQ(moved.trashedTo, std::nullopt);
        EXPECT_EQ(moved.error, std::nullopt);
    }
    EXPECT_EQ(test::pictureOf(world.folder.path()), before);
}

TEST_F(AppDedupeServiceTest, MovesLaunchersToTheTrashAndTellsWhere) {
    makeApp(real);
    makeLauncher(launcher, onDrive);
    const auto kept = test::pictureOf(real);
    const auto gone = test::pictureOf(launcher);
    const auto result = AppDedupeService::run(world.host, std::nullopt, false);
    EXPECT_FALSE(result.dryRun);
    ASSERT_EQ(result.movedItems.size(), 1U);
    const AppUninstallSession::MovedItem expected{.originalPath = launcher,
                                                  .sizeBytes = result.plan.removableBytes(),
                                                  .trashedTo = world.trash->folder / "Edit.app",
                                                  .succeeded = true};
    EXPECT_EQ(result.movedItems.at(0), expected);
    EXPECT_FALSE(fs::exists(launcher));
    EXPECT_EQ(test::pictureOf(world.trash->folder / "Edit.app"), gone);
    EXPECT_EQ(test::pictureOf(real), kept);
    EXPECT_THAT(plan().groups, IsEmpty());
}

TEST_F(AppDedupeServiceTest, GoesOnAfterALauncherThatWasDeletedByHand) {
    makeApp(real);
    makeLauncher(launcher, onDrive);
    makeLauncher(own / "Old.app", onDrive);
    const AppDedupePlan found = plan();
    fs::remove_all(launcher);
    const auto moved = AppDedupeService::run(world.host, found, false).movedItems;
    ASSERT_EQ(moved.size(), 2U);
    EXPECT_FALSE(moved[0].succeeded);
    EXPECT_EQ(moved[0].trashedTo, std::nullopt);
    EXPECT_EQ(moved[0].error, FileError("move to the Trash", launcher, ENOENT).description());
    EXPECT_TRUE(moved[1].succeeded);
    EXPECT_FALSE(fs::exists(own / "Old.app"));
}

TEST_F(AppDedupeServiceTest, TellsWhatTheTrashRefuses) {
    makeApp(real);
    makeLauncher(launcher, onDrive);
    world.trash->refuses = true;
    const auto moved = AppDedupeService::run(world.host, std::nullopt, false).movedItems;
    ASSERT_EQ(moved.size(), 1U);
    EXPECT_FALSE(moved[0].succeeded);
    EXPECT_EQ(moved[0].trashedTo, std::nullopt);
    EXPECT_TRUE(moved[0].error);
    EXPECT_THAT(removable(), ElementsAre(launcher));
}

TEST_F(AppDedupeServiceTest, BeginsWithNothingAnyMoreWhenItIsCancelled) {
    makeApp(real);
    makeLauncher(launcher, onDrive);
    const Cancellation cancelled;
    cancelled.cancel();
    const auto moved = AppDedupeService::run(world.host, plan(), false, cancelled).movedItems;
    ASSERT_EQ(moved.size(), 1U);
    EXPECT_EQ(moved[0].error, launcher.native() + " stays: the run was stopped before.");
    EXPECT_TRUE(fs::exists(launcher));
}

/// A machine that has changed between the plan and the run.
class ChangedDuplicateTest : public AppDedupeServiceTest {
protected:
    ChangedDuplicateTest() {
        makeApp(real);
        makeLauncher(launcher, onDrive);
        makeLauncher(own / "Old.app", onDrive);
        planned = plan();
    }
    /// Runs the plan, in which the first launcher must stay whole. @returns why it did.
    std::string reasonToStay() const {
        const auto before = test::pictureOf(launcher);
        const auto moved = AppDedupeService::run(world.host, planned, false).movedItems;
        EXPECT_EQ(moved.size(), 2U);
        EXPECT_FALSE(moved.at(0).succeeded);
        EXPECT_EQ(test::pictureOf(launcher), before);
        return moved.at(0).error.value_or("");
    }

    AppDedupePlan planned;
};

TEST_F(ChangedDuplicateTest, StaysWhenAnUpdaterHasPutAnApplicationThere) {
    fs::remove_all(launcher);
    makeApp(launcher);
    EXPECT_EQ(reasonToStay(), launcher.native() + " is not a launcher any more.");
    EXPECT_FALSE(fs::exists(own / "Old.app")) << "the other one goes";
}

TEST_F(ChangedDuplicateTest, StaysWhenItIsNoBundleAnyMore) {
    fs::remove_all(launcher);
    test::makeFile(launcher / "notes.txt", "mine");
    EXPECT_EQ(reasonToStay(), launcher.native() + " is not a launcher any more.");
}

TEST_F(ChangedDuplicateTest, StaysWhenTheRealApplicationHasGone) {
    const std::string sentence =
        launcher.native() + " stays: the application that it duplicates is not at " + real.native() + " any more.";
    fs::remove_all(real);
    EXPECT_EQ(reasonToStay(), sentence);
    EXPECT_TRUE(fs::exists(own / "Old.app"));
    makeLauncher(real, onDrive);
    EXPECT_EQ(reasonToStay(), sentence);
    fs::remove_all(real);
    makeApp(onDrive);
    test::makeLink(real, onDrive);
    EXPECT_EQ(reasonToStay(), sentence);
    fs::remove_all(real);
    makeApp(real, "com.acme.other");
    EXPECT_EQ(reasonToStay(), sentence);
}

TEST_F(ChangedDuplicateTest, StaysWhenItOpensAnotherApplicationNow) {
    makeApp(onDrive);
    EXPECT_EQ(reasonToStay(), launcher.native() + " opens another application now.");
    fs::remove_all(onDrive);
    makeLauncher(launcher, onDrive, "com.acme.other.externallauncher");
    EXPECT_EQ(reasonToStay(), launcher.native() + " opens another application now.");
}

}  // namespace
}  // namespace tarvik
