#include "CommandLine/CommandWorld.h"
#include "CommandLine/Lines.h"
#include "Platform/Files/Files.h"
#include "Platform/Text/PropertyList.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <toml++/toml.h>

#include <algorithm>

namespace tarvik {

namespace {

using test::columnOf;
using test::CommandWorld;
using test::linesOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

/// A practice machine with an application of which we know everything.
struct UninstallCommandWorld : CommandWorld {
    UninstallCommandWorld() {
        test::makeBundle(sweeper, {{"CFBundleIdentifier", "org.example.sweeper"},
                                   {"CFBundleName", "Sweeper"},
                                   {"CFBundleShortVersionString", "2.1"}});
        test::makeFile(support / "settings.json");
        test::makeFile(cache / "a");
        test::makeFile(preferences);
        test::makeFile(daemon);
    }

    /// The ids of all uninstalls, the newest first.
    std::vector<std::string> ids() const {
        return columnOf(run({"uninstall", "list", "--format", "tsv"}).output, "id");
    }

    fs::path sweeper = machine.root / "Applications/Sweeper.app";
    fs::path support = machine.home / "Library/Application Support/Sweeper";
    fs::path cache = machine.home / "Library/Caches/org.example.sweeper";
    fs::path preferences = machine.home / "Library/Preferences/org.example.sweeper.plist";
    fs::path daemon = machine.root / "Library/LaunchDaemons/org.example.sweeper.plist";
    fs::path trash = machine.home / ".Trash";
};

}  // namespace

TEST(UninstallCommand, ShowsThePlanInSectionsAndChangesNothing) {
    const UninstallCommandWorld world;
    const auto before = test::pictureOf(world.machine.root);
    const auto finished = world.run({"uninstall", "Sweeper", "--dry-run"});
    EXPECT_EQ(finished.status, 0) << finished.errors;
    const auto lines = linesOf(finished.output);
    EXPECT_EQ(lines.front(), "Sweeper 2.1 (org.example.sweeper)");
    EXPECT_THAT(finished.output, HasSubstr("\nExecutables (1 item · "));
    EXPECT_THAT(finished.output, HasSubstr("\nApplication Support (1 item · "));
    EXPECT_THAT(finished.output, HasSubstr("Matches app name"));
    EXPECT_THAT(finished.output, HasSubstr("Matches bundle id"));
    EXPECT_THAT(finished.output, HasSubstr("~/Library/Caches/org.example.sweeper"));
    EXPECT_THAT(finished.output, HasSubstr("[ ]"));
    EXPECT_THAT(finished.output, HasSubstr("(admin)"));
    EXPECT_THAT(lines, Contains("! Launch daemons detected; requires admin authentication."));
    EXPECT_THAT(finished.output, HasSubstr("\n4 of 5 items, "));
    EXPECT_EQ(lines.back(), "Nothing was changed.");
    EXPECT_EQ(test::pictureOf(world.machine.root), before);
}

TEST(UninstallCommand, RemovesAndPutsBack) {
    const UninstallCommandWorld world;
    const auto before = test::pictureOf(world.machine.root / "Applications");
    const auto gone = world.run({"uninstall", "org.example.sweeper", "--yes"});
    EXPECT_EQ(gone.status, 0) << gone.errors;
    EXPECT_EQ(gone.output, "Uninstalled Sweeper — 4 items.\n");
    for (const auto& path : {world.sweeper, world.support, world.cache, world.preferences})
        EXPECT_FALSE(fs::exists(path)) << path;
    EXPECT_TRUE(fs::exists(world.daemon)) << "it was not asked for";

    ASSERT_EQ(world.ids().size(), 1U);
    const auto id = world.ids().front();
    EXPECT_THAT(gone.errors, HasSubstr("To have it back: tarvik uninstall undo " + id + "\n"));
    EXPECT_THAT(world.run({"uninstall", "list"}).output, HasSubstr("4 items can be put back"));
    const auto back = world.run({"uninstall", "undo", id, "--yes"});
    EXPECT_EQ(back.status, 0) << back.errors;
    EXPECT_EQ(test::pictureOf(world.machine.root / "Applications"), before);
    EXPECT_TRUE(fs::exists(world.support / "settings.json"));
    EXPECT_TRUE(fs::exists(world.cache / "a"));
    EXPECT_TRUE(fs::exists(world.preferences));
    EXPECT_THAT(world.run({"uninstall", "list"}).output, HasSubstr("put back"));
    // What is back stays, and is no failure.
    EXPECT_EQ(world.run({"uninstall", "undo", id, "--yes"}).status, 0);
}

TEST(UninstallCommand, TakesOnlyTheApplicationAndWhatIsNamed) {
    const UninstallCommandWorld world;
    const auto gone = world.run({"uninstall", "Sweeper", "--only-app", "--with", world.cache, "--yes"});
    EXPECT_EQ(gone.status, 0) << gone.errors;
    EXPECT_FALSE(fs::exists(world.sweeper));
    EXPECT_FALSE(fs::exists(world.cache));
    EXPECT_TRUE(fs::exists(world.support));
    EXPECT_TRUE(fs::exists(world.preferences));
}

TEST(UninstallCommand, TakesLaunchDaemonsWhenToldTo) {
    const UninstallCommandWorld world;
    EXPECT_EQ(world.run({"uninstall", "Sweeper", "--with", "launch-daemons", "--yes"}).status, 0);
    EXPECT_FALSE(fs::exists(world.daemon));
}

TEST(UninstallCommand, RefusesAPathThatBelongsToSomethingElse) {
    const UninstallCommandWorld world;
    const auto refused = world.run({"uninstall", "Sweeper", "--with", world.library, "--yes"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.errors, HasSubstr(world.library.native() + " does not belong to Sweeper, as far as is known."));
    EXPECT_TRUE(fs::exists(world.sweeper));
}

TEST(UninstallCommand, TakesAPathAsThePlanShowsIt) {
    const UninstallCommandWorld world;
    const auto misspelt = world.run({"uninstall", "Sweeper", "--with", "reciepts", "--yes"});
    EXPECT_EQ(misspelt.status, 2);
    EXPECT_THAT(misspelt.errors, HasSubstr("There is no \"reciepts\" to take with it: receipts, launch-daemons, "
                                           "external-target, or a path that the plan shows."));
    EXPECT_EQ(
        world.run({"uninstall", "Sweeper", "--only-app", "--with", "~/Library/Caches/org.example.sweeper", "--yes"})
            .status,
        0);
    EXPECT_FALSE(fs::exists(world.cache));
}

TEST(UninstallCommand, LeavesWhatIsOfAnotherMachineOrOfTheTrash) {
    const UninstallCommandWorld world;
    const auto foreign = world.folder / "elsewhere/Foreign.app";
    test::makeBundle(foreign, {{"CFBundleIdentifier", "org.example.foreign"}});
    const auto refused = world.run({"uninstall", foreign, "--yes"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.errors, foreign.native() + " is not on the machine in " + world.machine.root.native() + ".\n");
    test::makeLink(world.machine.root / "Applications/Out.app", foreign);
    EXPECT_EQ(world.run({"uninstall", "Out", "--with", "external-target", "--yes"}).status, 0);
    EXPECT_TRUE(fs::exists(foreign)) << "only the link went";

    ASSERT_EQ(world.run({"uninstall", "Sweeper", "--yes"}).status, 0);
    const auto again = world.run({"uninstall", world.trash / "Sweeper.app", "--yes"});
    EXPECT_EQ(again.status, 1);
    EXPECT_EQ(again.errors, "Sweeper.app is in the Trash already.\n");
}

TEST(UninstallCommand, RefusesAnApplicationOfTheSystemByEveryWay) {
    const UninstallCommandWorld world;
    const auto chess = world.machine.root / "System/Applications/Chess.app";
    test::makeBundle(chess, {{"CFBundleIdentifier", "org.example.chess"}});
    test::makeLink(world.machine.root / "Applications/Sys", chess.parent_path());
    const auto refused = world.run({"uninstall", world.machine.root / "Applications/Sys/Chess.app", "--yes"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.errors, testing::StartsWith("Refusing to uninstall system app: "));
    EXPECT_TRUE(fs::exists(chess));
}

TEST(UninstallCommand, TakesTheCopyOfALauncherWithAnotherIdentifier) {
    const UninstallCommandWorld world;
    const auto copy = world.drive / "ExternalTarvik/Apps/Opened.app";
    test::makeBundle(copy, {{"CFBundleIdentifier", "org.example.opened"}});
    test::makeLauncher(world.machine.root / "Applications/Opened.app", copy,
                       {{"CFBundleIdentifier", "org.example.Other.externallauncher"}});
    const auto gone = world.run({"uninstall", "Opened", "--with", "external-target", "--yes"});
    EXPECT_EQ(gone.status, 0) << gone.errors;
    EXPECT_FALSE(fs::exists(copy));
}

TEST(UninstallCommand, SaysWhatAnApplicationDoesNotHave) {
    const UninstallCommandWorld world;
    const auto finished = world.run({"uninstall", "Sweeper", "--with", "external-target", "--dry-run"});
    EXPECT_EQ(finished.status, 0);
    EXPECT_EQ(finished.errors, "Sweeper has no copy on a drive.\n");
}

TEST(UninstallCommand, RefusesWhereNobodyCanBeAsked) {
    const UninstallCommandWorld world;
    const auto refused = world.run({"uninstall", "Sweeper"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(fs::exists(world.sweeper));
    EXPECT_THAT(refused.errors, HasSubstr("Matches bundle id")) << "the plan is shown before the question";
}

TEST(UninstallCommand, AsksOnATerminal) {
    const UninstallCommandWorld world;
    test::RunningProgram command(world.command, world.onMachine({"uninstall", "Sweeper"}),
                                 test::RunningProgram::Streams::terminal);
    ASSERT_TRUE(command.waitForOutput("Uninstall Sweeper?"));
    EXPECT_TRUE(command.waitForOutput("it does not permanently delete them."));
    command.type("n\n");
    EXPECT_EQ(command.finish().status, 1);
    EXPECT_TRUE(fs::exists(world.sweeper));
}

TEST(UninstallCommand, RefusesAnApplicationOfTheSystem) {
    const UninstallCommandWorld world;
    const auto chess = world.machine.root / "System/Applications/Chess.app";
    test::makeBundle(chess, {{"CFBundleIdentifier", "org.example.chess"}});
    const auto refused = world.run({"uninstall", chess, "--yes"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.errors, "Refusing to uninstall system app: " + chess.native() + "\n");
    EXPECT_TRUE(fs::exists(chess));
}

TEST(UninstallCommand, TakesABundleAnywhereByItsPathAndNothingElse) {
    const UninstallCommandWorld world;
    const auto stray = world.machine.home / "Downloads/Stray.app";
    test::makeBundle(stray, {{"CFBundleIdentifier", "org.example.stray"}});
    EXPECT_EQ(world.run({"uninstall", stray, "--yes"}).status, 0);
    EXPECT_FALSE(fs::exists(stray));
    const auto refused = world.run({"uninstall", world.library, "--yes"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.errors, HasSubstr("Not an app bundle: Logic Pro Library.bundle"));
    EXPECT_EQ(world.run({"uninstall", "Nobody", "--yes"}).status, 2);
    EXPECT_TRUE(fs::exists(world.library));
}

TEST(UninstallCommand, LeavesTheCopyOnADriveUnlessItIsNamed) {
    const UninstallCommandWorld world;
    const auto onDrive = world.drive / "ExternalTarvik/Apps/Far.app";
    const auto link = world.machine.root / "Applications/Far.app";
    test::makeBundle(onDrive, {{"CFBundleIdentifier", "org.example.far"}});
    test::makeLink(link, onDrive);
    const auto copy = test::pictureOf(onDrive);
    EXPECT_EQ(world.run({"uninstall", "Far", "--yes"}).status, 0);
    EXPECT_FALSE(Files::itemExists(link));
    EXPECT_EQ(test::pictureOf(onDrive), copy);
    ASSERT_EQ(world.ids().size(), 1U);
    EXPECT_EQ(world.run({"uninstall", "undo", world.ids().front(), "--yes"}).status, 0);
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(world.run({"uninstall", "Far", "--with", "external-target", "--yes"}).status, 0);
    EXPECT_FALSE(Files::itemExists(link));
    EXPECT_FALSE(Files::itemExists(onDrive));
}

TEST(UninstallCommand, PrintsPlansForPrograms) {
    const UninstallCommandWorld world;
    const auto tsv = world.run({"uninstall", "Sweeper", "--dry-run", "--format", "tsv"});
    const auto lines = linesOf(tsv.output);
    EXPECT_THAT(lines.front(), testing::StartsWith("plan\t" + world.sweeper.native() + "\t"));
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                            [](const std::string& line) { return line.starts_with("candidate\t"); }),
              5);
    const auto document = toml::parse(world.run({"uninstall", "Sweeper", "--dry-run", "--format", "toml"}).output);
    EXPECT_EQ(document["appPath"].value<std::string>(), world.sweeper.native());
    EXPECT_EQ(document["candidates"].as_array()->size(), 5U);
}

TEST(UninstallCommand, PrintsRecordsForPrograms) {
    const UninstallCommandWorld world;
    EXPECT_EQ(world.run({"uninstall", "list", "--format", "tsv"}).output, "session\tid\tapp\tdry\titems\n");
    EXPECT_EQ(world.run({"uninstall", "list", "--format", "toml"}).output, "sessions = []\n");
    EXPECT_EQ(world.run({"uninstall", "list"}).errors, "Nothing was uninstalled yet.\n");
    const auto gone = world.run({"uninstall", "Sweeper", "--yes", "--format", "toml"});
    const auto session = toml::parse(gone.output);
    const auto id = session["id"].value<std::string>().value_or("");
    EXPECT_THAT(id, testing::MatchesRegex("[0-9]{8}_[0-9]{6}"));
    EXPECT_EQ(session["items"].as_array()->size(), 4U);
    EXPECT_EQ(world.run({"uninstall", "list", id, "--format", "toml"}).output, gone.output);
    EXPECT_THAT(world.run({"uninstall", "list", id}).output, HasSubstr("can be put back"));
    const auto list = toml::parse(world.run({"uninstall", "list", "--format", "toml"}).output);
    EXPECT_EQ(list["sessions"][0]["waiting"].value<int>(), 4);
    const auto back = world.run({"uninstall", "undo", id, "--yes", "--format", "tsv"});
    EXPECT_THAT(columnOf(back.output, "state"), testing::Each("back"));
}

TEST(UninstallCommand, ListsWhatCanBeUninstalled) {
    const UninstallCommandWorld world;
    const auto human = world.run({"uninstall", "apps"});
    EXPECT_EQ(human.status, 0);
    EXPECT_THAT(human.output, HasSubstr("Sweeper"));
    const auto tsv = world.run({"uninstall", "apps", "--format", "tsv"});
    EXPECT_EQ(linesOf(tsv.output).front(), "app\tkind\tid\tname\tpath");
    EXPECT_THAT(linesOf(tsv.output), Contains("app\tnormal\torg.example.sweeper\tSweeper\t" + world.sweeper.native()));
    EXPECT_THAT(tsv.output, Not(HasSubstr("systemRisky")));
    EXPECT_THAT(linesOf(world.run({"uninstall", "apps", "Sweeper", "--format", "tsv"}).output),
                testing::AllOf(Contains("version\t2.1"), Contains("external-target\t-")));
    EXPECT_THAT(world.run({"uninstall", "apps", "Sweeper"}).output, HasSubstr("Version:          2.1\n"));
}

TEST(UninstallCommand, TellsWhatCannotComeBack) {
    const UninstallCommandWorld world;
    ASSERT_EQ(world.run({"uninstall", "Sweeper", "--yes"}).status, 0);
    const auto id = world.ids().front();
    test::makeFile(world.preferences, "new");
    fs::remove_all(world.trash / "org.example.sweeper");
    const auto back = world.run({"uninstall", "undo", id, "--yes"});
    EXPECT_EQ(back.status, 1);
    EXPECT_THAT(back.errors, HasSubstr("2 items could not be put back."));
    EXPECT_THAT(linesOf(back.errors), Contains(testing::StartsWith(world.preferences.native() + ": ")));
    EXPECT_TRUE(fs::exists(world.sweeper));
    EXPECT_EQ(test::contentOf(world.preferences), "new");
    const auto unknown = world.run({"uninstall", "undo", "20200101_000000", "--yes"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_THAT(unknown.errors, HasSubstr("There is no uninstall \"20200101_000000\"."));
}

TEST(UninstallCommand, IsRefusedWhileAnotherOneRemovesTheSameApplication) {
    TARVIK_NEEDS_MADE_TOOLS();
    UninstallCommandWorld world;
    const auto here = world.folder / "gate";
    world.replaceTool("pkgutil", "case $1 in --forget) touch '" + (here.native() + "-begun") + "'; until [ -e '" +
                                     (here.native() + "-go") + "' ]; do sleep 0.01; done;; *) [ -e '" + here.native() +
                                     "-go' ] || echo org.example.sweeper;; esac");
    test::RunningProgram first(world.command, world.onMachine({"uninstall", "Sweeper", "--with", "receipts", "--yes"}));
    ASSERT_TRUE(test::comesToStand(here.native() + "-begun"));
    test::makeBundle(world.sweeper, {{"CFBundleIdentifier", "org.example.sweeper"}});
    const auto second = world.run({"uninstall", "Sweeper", "--yes"});
    EXPECT_EQ(second.status, 1);
    EXPECT_THAT(second.errors, HasSubstr("Sweeper is being uninstalled or put back by another run."));
    EXPECT_TRUE(fs::exists(world.sweeper));
    test::makeFile(here.native() + "-go");
    EXPECT_EQ(first.finish().status, 0);
}

TEST(UninstallCommand, TellsOfAReceiptThatIsStillThereWhateverTheToolSays) {
    TARVIK_NEEDS_MADE_TOOLS();
    UninstallCommandWorld world;
    world.replaceTool("pkgutil", "[ \"$1\" = --forget ] || echo org.example.sweeper");
    const auto finished = world.run({"uninstall", "Sweeper", "--with", "receipts", "--yes"});
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(finished.output, "Uninstalled Sweeper — 4 items.\n");
    EXPECT_THAT(linesOf(finished.errors),
                Contains("The receipt org.example.sweeper is still there, though pkgutil has called it forgotten."));
    EXPECT_THAT(linesOf(finished.errors), Contains("1 item stayed."));
}

TEST(UninstallCommand, ForgetsReceiptsWhenToldTo) {
    const UninstallCommandWorld world;
    const auto receipts = world.machine.root / "private/var/db/receipts";
    test::makeFile(receipts / "org.example.sweeper.plist",
                   PropertyList(PropertyList::Dictionary{{"PackageIdentifier", "org.example.sweeper"}}).xml());
    test::makeFile(receipts / "org.example.sweeper.bom", "");
    EXPECT_THAT(world.run({"uninstall", "Sweeper", "--dry-run"}).output, HasSubstr("pkgutil receipt for bundle id"));
    const auto gone = world.run({"uninstall", "Sweeper", "--with", "receipts", "--yes", "--format", "toml"});
    EXPECT_EQ(gone.status, 0) << gone.errors;
    EXPECT_THAT(gone.output, HasSubstr("forgottenReceipts = [\"org.example.sweeper\"]\n"));
    EXPECT_FALSE(fs::exists(receipts / "org.example.sweeper.plist"));
}

TEST(UninstallCommand, TellsOfAReceiptThatStays) {
    TARVIK_NEEDS_MADE_TOOLS();
    UninstallCommandWorld world;
    world.replaceTool("pkgutil",
                      "case $1 in --forget) echo 'No permission.' >&2; exit 1;; *) echo org.example.sweeper;; esac");
    const auto gone = world.run({"uninstall", "Sweeper", "--with", "receipts", "--yes"});
    EXPECT_EQ(gone.status, 1);
    EXPECT_THAT(linesOf(gone.errors), Contains("The receipt org.example.sweeper was not forgotten: No permission."));
    EXPECT_FALSE(fs::exists(world.sweeper)) << "the rest went";
}

TEST(UninstallCommand, TellsWhatOnlyALinkLeavesBehind) {
    const UninstallCommandWorld world;
    const auto moved = world.drive / "ExternalTarvik/Data/Sweeper";
    fs::create_directories(moved.parent_path());
    fs::remove_all(world.support);
    test::makeFile(moved / "data");
    test::makeLink(world.support, moved);
    const auto gone = world.run({"uninstall", "Sweeper", "--yes"});
    EXPECT_EQ(gone.status, 0) << gone.errors;
    EXPECT_THAT(gone.errors, HasSubstr("Only the link " + world.support.native() +
                                       " goes. What it leads to stays: " + moved.native() + "\n"));
    EXPECT_TRUE(fs::exists(moved / "data"));
}

TEST(UninstallCommand, SurvivesHostileNames) {
    const UninstallCommandWorld world;
    const auto evil = world.machine.root / "Applications/Evil\n\x1b[31m.app";
    test::makeBundle(evil, {{"CFBundleIdentifier", "../../../etc"}, {"CFBundleName", ".."}});
    const auto plan = world.run({"uninstall", evil, "--dry-run"});
    EXPECT_EQ(plan.status, 0) << plan.errors;
    EXPECT_THAT(plan.output, Not(HasSubstr("\x1b")));
    EXPECT_THAT(plan.output, HasSubstr("1 of 1 item, "));
}

}  // namespace tarvik
