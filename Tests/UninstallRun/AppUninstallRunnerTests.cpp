#include "Health/ManifestRevertDetector.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Text/LocalTime.h"
#include "Records/HealthManifest.h"
#include "Support/Bundles.h"
#include "Support/FailureOf.h"
#include "Support/Tree.h"
#include "UninstallRun/AppUninstallRunner.h"
#include "UninstallRun/UninstallLock.h"
#include "UninstallRun/UninstallRunWorld.h"
#include "UninstallRun/UninstallSessionId.h"
#include "UninstallRun/UninstallSessionStore.h"
#include "UninstallRun/UninstallUndo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class AppUninstallRunnerTest : public testing::Test {
protected:
    fs::path inTrash(const std::string& name) const { return world.home / ".Trash" / name; }
    /// A candidate for a package, which nothing stands for.
    static UninstallCandidate receipt(const std::string& identifier) {
        return {.path = identifier, .category = UninstallCategory::receipts, .isPrivileged = true};
    }

    UninstallRunWorld world;
    const fs::path data = world.library("Caches/Foo");
};

}  // namespace

TEST_F(AppUninstallRunnerTest, SendsTheBundleFirstAndRecordsIt) {
    world.addData(data);
    const auto session = world.run();
    EXPECT_FALSE(Files::itemExists(world.bundle));
    EXPECT_EQ(contentOf(inTrash("Foo")), "data");
    ASSERT_EQ(session.movedItems.size(), 2U);
    EXPECT_EQ(session.movedItems[0].originalPath, world.bundle);
    EXPECT_EQ(session.movedItems[0].trashedTo, inTrash("Foo.app"));
    EXPECT_EQ(session.movedItems[0].stashedTo, std::nullopt);
    EXPECT_TRUE(session.movedItems[0].succeeded && session.movedItems[1].succeeded);
    EXPECT_EQ(session.movedItems[1].sizeBytes, 7);
    EXPECT_EQ(session.appName, "Foo");
    EXPECT_FALSE(session.dryRun);
    EXPECT_EQ(UninstallSessionStore::find(session.id, world.sessions())->movedItems, session.movedItems);
    EXPECT_THAT(world.lines,
                ElementsAre("uninstall-start\t" + world.bundle.native() + "\tdry=false",
                            "trash\texecutable\t" + world.bundle.native(), "trash\tcaches\t" + data.native(),
                            "session\t" + session.id, "uninstall-done\titems=2\treceipts=0"));
}

TEST_F(AppUninstallRunnerTest, CallsTheRecordByTheLocalTimeOfItsEnd) {
    const auto session = world.run();
    const auto time = LocalTime::at(session.createdAt);
    char text[32];
    std::snprintf(text, sizeof text, "%04d%02d%02d_%02d%02d%02d", time.year, time.month, time.day, time.hour,
                  time.minute, time.second);
    EXPECT_EQ(session.id, text);
}

TEST_F(AppUninstallRunnerTest, RefusesAnApplicationOfTheSystemWithoutALine) {
    world.plan.app.kind = AppRecordKind::systemRisky;
    const std::string refusal = "Refusing to uninstall system app: " + world.bundle.native();
    EXPECT_EQ(failureOf([&] { world.run(); }), refusal);
    EXPECT_EQ(failureOf([&] { world.run(true, std::set<std::string>{world.bundle.native()}); }), refusal);
    EXPECT_THAT(world.lines, IsEmpty());
    EXPECT_TRUE(Files::itemExists(world.bundle));
    EXPECT_FALSE(Files::itemExists(world.sessions()));
}

TEST_F(AppUninstallRunnerTest, TakesNothingWhenNoPathIsSelected) {
    const auto session = world.run(false, std::set<std::string>{});
    EXPECT_THAT(session.movedItems, IsEmpty());
    EXPECT_THAT(session.forgottenReceipts, IsEmpty());
    EXPECT_TRUE(Files::itemExists(world.bundle));
    EXPECT_TRUE(UninstallSessionStore::find(session.id, world.sessions()).has_value());
}

TEST_F(AppUninstallRunnerTest, TakesSelectedPathsWhateverTheirFlagsAndNoOthers) {
    makeFile(world.library("foreign"));
    world.addData(data);
    world.plan.candidates.back().defaultSelected = false;
    const auto session = world.run(false, std::set<std::string>{data.native(), world.library("foreign").native()});
    ASSERT_EQ(session.movedItems.size(), 1U);
    EXPECT_EQ(session.movedItems[0].originalPath, data);
    EXPECT_TRUE(Files::itemExists(world.bundle) && Files::itemExists(world.library("foreign")));
}

TEST_F(AppUninstallRunnerTest, LeavesWhatDoesNotGoByDefaultWithoutSelectedPaths) {
    world.addData(data);
    world.plan.candidates.back().defaultSelected = false;
    EXPECT_EQ(world.run().movedItems.size(), 1U);
    EXPECT_TRUE(Files::itemExists(data));
}

TEST_F(AppUninstallRunnerTest, TouchesNothingInARehearsal) {
    world.addData(data);
    world.plan.candidates.push_back(receipt("org.example.pkg"));
    world.plan.candidates.back().defaultSelected = true;
    const std::string before = pictureOf(world.folder.path());
    const auto session = AppUninstallRunner::run(
        world.host, world.plan, {.includeCaches = true, .includeReceipts = true}, true, std::nullopt, world.reporter());
    EXPECT_EQ(pictureOf(world.folder.path()), before);
    EXPECT_TRUE(session.dryRun);
    ASSERT_EQ(session.movedItems.size(), 2U);
    for (const auto& item : session.movedItems) EXPECT_TRUE(item.succeeded && !item.trashedTo && !item.stashedTo);
    EXPECT_THAT(session.forgottenReceipts, ElementsAre("org.example.pkg"));
    EXPECT_THAT(world.lines,
                ElementsAre("uninstall-start\t" + world.bundle.native() + "\tdry=true",
                            "dry-trash\texecutable\t" + world.bundle.native(), "dry-trash\tcaches\t" + data.native(),
                            "dry-forget-receipt\torg.example.pkg", "uninstall-done\titems=2\treceipts=1"));
}

TEST_F(AppUninstallRunnerTest, SetsAsideWhatTheTrashRefuses) {
    world.refuseAllTrash();
    const auto session = world.run();
    const fs::path stash = world.bundle.parent_path() / ".TarvikTrash";
    EXPECT_EQ(session.movedItems[0].stashedTo, stash);
    EXPECT_EQ(session.movedItems[0].trashedTo, std::nullopt);
    EXPECT_TRUE(session.movedItems[0].succeeded);
    ASSERT_EQ(Files::names(stash).size(), 1U);
    EXPECT_THAT(Files::names(stash)[0], testing::StartsWith("Foo.app-uninstall-2026-11-15T1745"));
    EXPECT_EQ(world.lines[1], "stash\texecutable\t" + world.bundle.native());
}

TEST_F(AppUninstallRunnerTest, TellsOfAnItemThatCanGoNowhereAndGoesOn) {
    world.refuseAllTrash();
    makeFile(world.bundle.parent_path() / ".TarvikTrash", "a file in the way");
    world.addData(data);
    const auto session = world.run();
    EXPECT_FALSE(session.movedItems[0].succeeded);
    EXPECT_EQ(session.movedItems[0].stashedTo, world.bundle.parent_path() / ".TarvikTrash");
    EXPECT_TRUE(Files::itemExists(world.bundle));
    EXPECT_EQ(world.lines[1], "stash\texecutable\t" + world.bundle.native());
    EXPECT_TRUE(session.movedItems[1].succeeded);
    EXPECT_FALSE(Files::itemExists(data));
}

TEST_F(AppUninstallRunnerTest, CountsWhatHasGoneByItselfAsGone) {
    world.addData(data);
    fs::remove(data);
    const auto session = world.run();
    EXPECT_TRUE(session.movedItems[1].succeeded);
    EXPECT_EQ(session.movedItems[1].stashedTo, data.parent_path() / ".TarvikTrash");
    EXPECT_FALSE(Files::itemExists(data.parent_path() / ".TarvikTrash"));
}

TEST_F(AppUninstallRunnerTest, CountsNothingAsGoneOfWhichThatIsNotCertain) {
    const fs::path copy = world.drive / "ExternalTarvik/Apps/Foo.app";
    makeBundle(copy, {{"CFBundleIdentifier", "org.example.Foo"}});
    world.plan.candidates.push_back(world.candidate(copy, UninstallCategory::executable));
    world.addData(data);
    fs::remove_all(data.parent_path());
    // The drive is away, and has left folders behind.
    fs::remove_all(copy);
    world.volumes->list.clear();
    const auto session = world.run();
    EXPECT_TRUE(session.movedItems[0].succeeded);
    EXPECT_FALSE(session.movedItems[1].succeeded);
    EXPECT_FALSE(session.movedItems[2].succeeded);
}

TEST_F(AppUninstallRunnerTest, SetsNothingAsideWhenOnlyItsReporterFails) {
    const AppUninstallReporter reporter{[&](const std::string& line) {
        world.lines.push_back(line);
        if (line.starts_with("trash\t")) throw FileError("write", "log", ENOSPC);
    }};
    EXPECT_THROW(
        AppUninstallRunner::run(world.host, world.plan, UninstallSelection::everything, false, std::nullopt, reporter),
        FileError);
    EXPECT_THAT(world.lines.back(), testing::StartsWith("trash\t"));
}

TEST_F(AppUninstallRunnerTest, LeavesTheRecordsOfThisProgram) {
    const fs::path own = AppStorageNames::supportRoot(world.host);
    const fs::path session = AppStorageNames::sessionRoot(world.host) / "20261115_174543";
    makeFile(session / "session.json");
    const fs::path way = world.home / "way";
    makeLink(way, own);
    makeFile(own / "config.json");
    world.plan = world.planWith({own.parent_path(), own, way / "config.json", session, way});
    const auto past = world.run();
    for (const std::size_t number : {1U, 2U, 3U}) {
        EXPECT_FALSE(past.movedItems[number].succeeded);
        EXPECT_EQ(world.lines[number + 1], "stays\tapplicationSupport\t" +
                                               past.movedItems[number].originalPath.native() +
                                               "\tit holds the records of this program");
    }
    EXPECT_TRUE(past.movedItems[4].succeeded && past.movedItems[5].succeeded);
}

TEST_F(AppUninstallRunnerTest, KeepsNoMachineAwakeForARehearsal) {
    world.run(true);
    EXPECT_THAT(world.sleepBlocker->reasons, IsEmpty());
    world.run();
    EXPECT_THAT(world.sleepBlocker->reasons, ElementsAre("An application is being uninstalled"));
}

TEST_F(AppUninstallRunnerTest, IsRefusedWhileTheCopyThatItLeadsToIsBeingUninstalled) {
    const fs::path copy = world.drive / "ExternalTarvik/Apps/Foo.app";
    world.plan.app.externalTargetPath = copy;
    {
        const auto lock = UninstallLock::take(world.sessions(), copy, "Foo");
        EXPECT_THAT(failureOf([&] { world.run(); }), HasSubstr(" by another run."));
    }
    EXPECT_TRUE(Files::itemExists(world.bundle));
    // Both ways to the application may be one.
    world.plan.app.externalTargetPath = world.bundle / "";
    EXPECT_EQ(failureOf([&] { world.run(); }), "done");
}

TEST_F(AppUninstallRunnerTest, ForgetsReceiptsAndTellsWhyNot) {
    world.host.tools.pkgutil = world.tool("pkgutil", R"(
        [ "$1 $2" = "--forget org.example.good" ] && exit 0
        echo " No receipt for '$2' found. " >&2; exit 1)");
    for (const char* identifier : {"org.example.good", "org.example.bad"})
        world.plan.candidates.push_back(receipt(identifier));
    const auto session = world.run(false, std::set<std::string>{"org.example.good", "org.example.bad"});
    EXPECT_THAT(session.forgottenReceipts, ElementsAre("org.example.good"));
    EXPECT_THAT(session.movedItems, IsEmpty());
    EXPECT_EQ(world.lines[1], "forget-receipt\torg.example.good");
    EXPECT_EQ(world.lines[2], "forget-receipt-fail\torg.example.bad\tNo receipt for 'org.example.bad' found.");
    EXPECT_EQ(world.lines.back(), "uninstall-done\titems=0\treceipts=1");
}

TEST_F(AppUninstallRunnerTest, TellsOfAReceiptThatIsStillThereWhateverTheToolSays) {
    world.host.tools.pkgutil = world.tool("pkgutil", R"(
        [ "$1" = "--forget" ] && { echo "Forgot package '$2' on '/'."; exit 0; }
        echo org.example.stubborn)");
    world.plan.candidates.push_back(receipt("org.example.stubborn"));
    const auto session = world.run(false, std::set<std::string>{"org.example.stubborn"});
    EXPECT_THAT(session.forgottenReceipts, ElementsAre("org.example.stubborn"));
    EXPECT_EQ(world.lines[1], "forget-receipt\torg.example.stubborn");
    EXPECT_EQ(world.lines[2], "receipt-stays\torg.example.stubborn");
}

TEST_F(AppUninstallRunnerTest, EndsWhenTheReceiptToolEnds) {
    // It has no limit of time: a large machine's may take long.
    world.host.tools.pkgutil = world.tool("pkgutil", R"([ "$1" = "--forget" ] && sleep 1; exit 1)");
    world.plan.candidates.push_back(receipt("org.example.slow"));
    const auto session = world.run(false, std::set<std::string>{"org.example.slow"});
    EXPECT_THAT(session.forgottenReceipts, IsEmpty());
    EXPECT_EQ(world.lines[1], "forget-receipt-fail\torg.example.slow\t");
}

TEST_F(AppUninstallRunnerTest, TrashesALinkAndNeverWhatItLeadsTo) {
    const fs::path copy = world.drive / "ExternalTarvik/Apps/Foo.app";
    makeBundle(copy, {{"CFBundleIdentifier", "org.example.Foo"}});
    fs::remove_all(world.bundle);
    makeLink(world.bundle, copy);
    const std::string before = pictureOf(copy);
    world.plan = world.planWith({});
    // With a slash at its end the path leads through the link.
    world.plan.candidates[0].path = world.bundle.native() + "/";
    world.plan.app.bundlePath = world.plan.candidates[0].path;
    EXPECT_TRUE(world.run().movedItems[0].succeeded);
    EXPECT_EQ(Files::linkText(inTrash("Foo.app")), copy);
    EXPECT_FALSE(Files::itemExists(world.bundle));
    EXPECT_EQ(pictureOf(copy), before);
}

TEST_F(AppUninstallRunnerTest, StashesALinkAndNeverWhatItLeadsTo) {
    world.refuseAllTrash();
    makeFile(world.drive / "Data/file");
    makeLink(data, world.drive / "Data");
    world.plan.candidates.push_back(world.candidate(data));
    EXPECT_TRUE(world.run().movedItems[1].succeeded);
    EXPECT_FALSE(Files::itemExists(data));
    EXPECT_TRUE(Files::exists(world.drive / "Data/file"));
}

TEST_F(AppUninstallRunnerTest, LeavesWhatHasBecomeSomethingElse) {
    const fs::path linked = world.library("Logs/Foo");
    for (const fs::path& path : {data, linked}) world.addData(path);
    fs::rename(data, world.home / "elsewhere");
    makeFile(data, "another one");
    fs::rename(linked, world.home / "logs");
    makeLink(linked, world.home / "logs");
    const auto session = world.run();
    EXPECT_EQ(contentOf(data), "another one");
    EXPECT_TRUE(Files::isSymbolicLink(linked));
    EXPECT_FALSE(session.movedItems[1].succeeded || session.movedItems[2].succeeded);
    EXPECT_EQ(session.movedItems[1].stashedTo, std::nullopt);
    EXPECT_EQ(session.movedItems[1].error, std::nullopt);
    EXPECT_EQ(world.lines[2], "stays\tcaches\t" + data.native() + "\tsomething else stands there by now");
    EXPECT_EQ(world.lines[3], "stays\tlogs\t" + linked.native() + "\tit has become a link");
}

TEST_F(AppUninstallRunnerTest, LeavesAFolderThatNowHoldsAnotherApplication) {
    makeBundle(world.bundle, {{"CFBundleIdentifier", "org.example.Other"}});
    const auto session = world.run();
    EXPECT_TRUE(Files::itemExists(world.bundle));
    EXPECT_FALSE(session.movedItems[0].succeeded);
    EXPECT_EQ(world.lines[1], "stays\texecutable\t" + world.bundle.native() + "\tit is another application by now");
}

TEST_F(AppUninstallRunnerTest, TakesTheCopyThatALauncherLeadsToUnlessItIsAnotherOne) {
    const fs::path copy = world.drive / "ExternalTarvik/Apps/Foo.app";
    for (const char* identifier : {"org.example.Foo", "org.example.Other"}) {
        world.lines.clear();
        makeLauncher(world.bundle, copy, {{"CFBundleIdentifier", "org.example.Foo.externallauncher"}});
        makeBundle(copy, {{"CFBundleIdentifier", identifier}});
        world.plan = world.planWith({});
        world.plan.app.bundleIdentifier = "org.example.Foo.externallauncher";
        world.plan.app.externalTargetPath = copy;
        world.plan.candidates.push_back(world.candidate(copy, UninstallCategory::executable));
        // A launcher may bear another identifier: what counts is what the plan has seen.
        world.plan.candidates.back().seenIdentifier = "org.example.Foo";
        const bool isOwn = std::string(identifier) == "org.example.Foo";
        EXPECT_EQ(world.run(false, std::set<std::string>{copy.native()}).movedItems[0].succeeded, isOwn);
        EXPECT_NE(Files::itemExists(copy), isOwn);
    }
}

TEST_F(AppUninstallRunnerTest, EndsBeforeItsNextItemWhenItIsStopped) {
    world.addData(world.library("Caches/Foo"));
    Cancellation stop;
    const AppUninstallReporter reporter{[&](const std::string& line) {
        if (line.starts_with("trash\t")) stop.cancel();
    }};
    const auto session = AppUninstallRunner::run(world.host, world.plan, UninstallSelection::everything, false,
                                                 std::nullopt, reporter, stop);
    ASSERT_EQ(session.movedItems.size(), 1U);
    EXPECT_FALSE(Files::itemExists(world.bundle));
    EXPECT_TRUE(Files::itemExists(world.library("Caches/Foo")));
    EXPECT_TRUE(UninstallSessionStore::find(session.id, AppStorageNames::uninstallSessionRoot(world.host)));
}

TEST_F(AppUninstallRunnerTest, GivesTwoRunsInOneSecondARecordEach) {
    const auto first = world.run();
    makeBundle(world.bundle, {{"CFBundleIdentifier", "org.example.Foo"}});
    world.plan = world.planWith({});
    const auto second = world.run();
    EXPECT_NE(first.id, second.id);
    EXPECT_EQ(UninstallSessionStore::list(world.sessions()).size(), 2U);
}

TEST_F(AppUninstallRunnerTest, IsRefusedWhileTheSameApplicationIsBeingUninstalled) {
    world.addData(data);
    std::string ofTheSame;
    std::string ofAnother;
    AppUninstallRunner::run(
        world.host, world.plan, UninstallSelection::everything, false, std::nullopt, {[&](const std::string& line) {
            if (!line.starts_with("trash\texecutable")) return;
            ofTheSame = failureOf([&] { world.run(); });
            auto another = world.plan;
            another.app.bundlePath = world.bundle.parent_path() / "Bar.app";
            another.app.displayName = "Bar";
            ofAnother = failureOf([&] {
                AppUninstallRunner::run(world.host, another, UninstallSelection::executableOnly, false,
                                        std::set<std::string>{}, AppUninstallReporter::silent);
            });
        }});
    EXPECT_EQ(ofTheSame, "Foo is being uninstalled or put back by another run. Wait until that has ended.");
    EXPECT_EQ(ofAnother, "done");
    EXPECT_THAT(world.lines, IsEmpty());
    EXPECT_EQ(UninstallSessionStore::list(world.sessions()).size(), 2U);
}

TEST_F(AppUninstallRunnerTest, LeavesTheMemoryOfMovesToTheHealthCheck) {
    const fs::path copy = world.drive / "ExternalTarvik/Apps/Foo.app";
    makeBundle(copy, {{"CFBundleIdentifier", "org.example.Foo"}});
    fs::remove_all(world.bundle);
    makeLink(world.bundle, copy);
    world.plan = world.planWith({});
    HealthManifest::record(world.host, {world.bundle, copy, "org.example.Foo", 1, world.host.now()});
    const std::string memory = contentOf(HealthManifest::file(world.host));
    const auto session = world.run();
    EXPECT_THAT(ManifestRevertDetector::detect(world.host, {}, {}, HealthSizes(world.host)), IsEmpty());
    UninstallUndo::putBack(world.host, session, AppUninstallReporter::silent);
    EXPECT_THAT(ManifestRevertDetector::detect(world.host, {}, {}, HealthSizes(world.host)), IsEmpty());
    EXPECT_EQ(contentOf(HealthManifest::file(world.host)), memory);
}

TEST_F(AppUninstallRunnerTest, LeavesNoJournalBehindItsRecord) {
    const auto session = world.run();
    EXPECT_THAT(world.journals(), IsEmpty());
    EXPECT_THAT(Files::names(world.sessions() / session.id), ElementsAre("items.tsv", "session.json"));
    EXPECT_THAT(Files::names(world.sessions() / ".locks"), IsEmpty());
}

TEST_F(AppUninstallRunnerTest, TouchesNothingWithoutAPlaceForItsJournal) {
    makeFile(world.sessions(), "a file in the way");
    EXPECT_THAT(failureOf([&] { world.run(); }), HasSubstr("Could not create the folder "));
    EXPECT_TRUE(Files::itemExists(world.bundle));
    EXPECT_THAT(world.lines, IsEmpty());
}

TEST_F(AppUninstallRunnerTest, TellsWhereTheItemsAreWhenTheRecordCannotBeWritten) {
    world.host.now = [] { return std::chrono::system_clock::time_point(std::chrono::seconds(madeNow)); };
    makeFile(world.sessions() / UninstallSessionId::at(world.host.now()), "in the way");
    const std::string failure = failureOf([&] { world.run(); });
    EXPECT_THAT(failure, HasSubstr("1 item was removed, but there is no record of it: Could not create "));
    EXPECT_THAT(failure, testing::EndsWith(" shows it as interrupted, and what went can be put back."));
    EXPECT_FALSE(Files::itemExists(world.bundle));
    EXPECT_EQ(world.journals().size(), 1U);
}

TEST_F(AppUninstallRunnerTest, PromisesNothingWithoutAJournal) {
    world.host.now = [] { return std::chrono::system_clock::time_point(std::chrono::seconds(madeNow)); };
    const std::string failure = failureOf([&] {
        AppUninstallRunner::run(world.host, world.plan, UninstallSelection::everything, false, std::nullopt,
                                {[&](const std::string& line) {
                                    if (!line.starts_with("trash\t")) return;
                                    fs::remove_all(world.sessions());
                                    makeFile(world.sessions(), "in the way");
                                }});
    });
    EXPECT_THAT(failure, HasSubstr("1 item was removed, but there is no record of it: "));
    EXPECT_THAT(failure, testing::Not(HasSubstr("interrupted")));
}

}  // namespace tarvik::test
