#include "CommandLine/CommandWorld.h"
#include "CommandLine/Lines.h"
#include "Platform/Files/Files.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <toml++/toml.h>

#include <chrono>
#include <csignal>
#include <thread>

namespace tarvik {

namespace {

using test::columnOf;
using test::CommandWorld;
using test::linesOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

/// A practice machine has one healthy link, one whose drive is away, a launcher that opens nothing, a folder whose
/// application has no launcher, an application that stands here and on a drive, and bundles that nothing leads to.
struct HealthCommandWorld : CommandWorld {
    fs::path applications = machine.root / "Applications";
    fs::path unplugged = applications / "Unplugged.app";
    fs::path twice = applications / "Twice.app";
    fs::path twiceOnDrive = machine.drives.front() / "ExternalTarvik/Apps/Twice.app";
};

/// The same with one finding of each kind.
struct BrokenCommandWorld : CommandWorld {
    BrokenCommandWorld() : CommandWorld(Practice::Options{.apps = 1, .broken = true, .files = 60}) {}
};

/// Waits until a tool has made a file. False when it does not for a minute.
bool comesToStand(const fs::path& file) {
    for (int turn = 0; turn < 6000 && !fs::exists(file); ++turn)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return fs::exists(file);
}

}  // namespace

TEST(HealthCommand, ShowsASectionForEachKind) {
    const BrokenCommandWorld world;
    const auto finished = world.run({"health"});
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(finished.errors, "11 problems were found.\n");
    std::vector<std::string> headings;
    for (const auto& line : linesOf(finished.output))
        if (line.find(" (1)") != std::string::npos) headings.push_back(line.substr(0, line.find(" (1)")));
    EXPECT_THAT(headings,
                testing::ElementsAre("Dangling symlinks", "Empty bundles", "Corrupted bundles", "Broken launchers",
                                     "Broken code signatures", "Sandbox path symlinked externally",
                                     "Symlinked preference plists", "Reverted by auto-updater", "Orphaned SSD bundles",
                                     "Missing tracked files", "Missing Spotlight launchers"));
    EXPECT_EQ(linesOf(finished.output).front(), "Healthy 5  Problems 11  Scanned 8  Drives 2");
}

TEST(HealthCommand, ShowsFiguresSectionsAndTheLargest) {
    const HealthCommandWorld world;
    const auto before = test::pictureOf(world.machine.root);
    const auto finished = world.run({"health"});
    EXPECT_EQ(finished.status, 1);
    EXPECT_THAT(finished.errors, testing::MatchesRegex("[0-9]+ problems were found.\n"));
    EXPECT_THAT(linesOf(finished.output).front(),
                testing::MatchesRegex("Healthy 1  Problems [0-9]+  Scanned 2  Drives 2"));
    EXPECT_THAT(finished.output, HasSubstr("\nDangling symlinks (1)\n  Unplugged.app\n    " + world.unplugged.native() +
                                           "\n    Target does not exist. The external drive may be unmounted, or the "
                                           "file was deleted.\n    → "));
    EXPECT_THAT(linesOf(finished.output), testing::AllOf(Contains("    Repair: removeDangling"),
                                                         Contains("    Repair: reclaimReverted or reSymlinkReverted")));
    EXPECT_THAT(finished.output, HasSubstr("\nReverted by auto-updater (1)  Total reclaimable: "));
    EXPECT_THAT(finished.output, HasSubstr("\nTop 10 largest healthy symlinked apps\n"));
    EXPECT_EQ(test::pictureOf(world.machine.root), before) << "it only looks";
}

TEST(HealthCommand, EndsWithStatusZeroOnlyWhenNothingIsWrong) {
    const CommandWorld world(Practice::Options{.apps = 1, .specialApps = false, .files = 0});
    const auto healthy = world.run({"health"});
    EXPECT_EQ(healthy.status, 0);
    EXPECT_EQ(healthy.output,
              "Healthy 0  Problems 0  Scanned 0  Drives 0\n\nAll moved apps are healthy. Nothing to repair.\n");
    EXPECT_EQ(healthy.errors, "");
    EXPECT_EQ(world.run({"health", "repair"}).errors, "There is nothing that can be repaired without naming it.\n");
    test::makeLink(world.machine.root / "Applications/Gone.app", "/nowhere/Gone.app");
    const auto broken = world.run({"health"});
    EXPECT_EQ(broken.status, 1);
    EXPECT_EQ(broken.errors, "1 problem was found.\n");
}

TEST(HealthCommand, TellsProgramsAllThatWasFound) {
    const HealthCommandWorld world;
    const auto tsv = world.run({"health", "--format", "tsv"});
    EXPECT_EQ(tsv.status, 1);
    EXPECT_EQ(linesOf(tsv.output).front(), "kind\tlocation\ttarget\tbytes\tdetail");
    const auto kinds = columnOf(tsv.output, "kind");
    EXPECT_EQ(kinds.front(), "healthy");
    EXPECT_THAT(kinds, Contains("brokenLauncher"));
    EXPECT_THAT(columnOf(tsv.output, "location"), Contains(world.unplugged.native()));
    const auto toml = toml::parse(world.run({"health", "--format", "toml"}).output);
    EXPECT_EQ(toml["healthy"].value<int>(), 1);
    EXPECT_EQ(toml["scanned"].value<int>(), 2);
    EXPECT_EQ(toml["drives"].as_array()->size(), 2U);
    EXPECT_EQ(toml["issues"].as_array()->size(), kinds.size());
    EXPECT_EQ(toml["problems"].value<int>(), static_cast<int>(kinds.size()) - 1);
}

TEST(HealthRepairCommand, RepairsOnItsOwnOnlyWhatDoesNoHarm) {
    const HealthCommandWorld world;
    const auto finished = world.run({"health", "repair", "--yes"});
    EXPECT_THAT(finished.output, HasSubstr("Installed/repaired 1 Spotlight launcher.\n"));
    EXPECT_TRUE(fs::is_symlink(world.unplugged)) << "its drive may only be away";
    EXPECT_TRUE(Files::exists(world.twiceOnDrive)) << "that needs a choice";
    const auto kinds = columnOf(world.run({"health", "--format", "tsv"}).output, "kind");
    EXPECT_THAT(kinds, Not(Contains("missingSpotlightLaunchers")));
    for (const char* stays : {"dangling", "reverted"}) EXPECT_THAT(kinds, Contains(stays));
}

TEST(HealthRepairCommand, EndsWithStatusOneWhenARepairOnlyTellsThatItCouldNot) {
    const HealthCommandWorld world;
    const fs::path ghost = world.applications / "Ghost.app";
    test::makeLauncher(ghost, world.machine.root / "gone/Ghost.app");
    const auto finished = world.run({"health", "repair", ghost, "--yes"});
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(finished.output, "");
    EXPECT_EQ(finished.errors,
              "Ghost.app: Could not retarget Ghost.app. Reinstall the app or remove the broken launcher.\n"
              "1 finding could not be repaired.\n");
    EXPECT_THAT(columnOf(world.run({"health", "repair", ghost, "--yes", "--format", "tsv"}).output, "state"),
                testing::ElementsAre("failed"));
}

TEST(HealthRepairCommand, EndsWithStatusZeroWhenAllThatDoesNoHarmIsMended) {
    const BrokenCommandWorld world;
    const auto finished = world.run({"health", "repair", "--yes"});
    EXPECT_EQ(finished.status, 0) << finished.errors;
    EXPECT_THAT(
        linesOf(finished.output),
        testing::ElementsAre(
            "Forgot 2 stale tracked file entries for Scorebook.app.", "Installed/repaired 1 Spotlight launcher.",
            "Retargeted Ghost.app to " + (world.machine.home / "Applications/Ghost.app").native() + "."));
    EXPECT_EQ(world.run({"health", "repair", "--yes"}).status, 0) << "nothing is left that does no harm";
    EXPECT_EQ(columnOf(world.run({"health", "--format", "tsv"}).output, "kind").size(), 5U + 8U);
}

TEST(HealthCommand, EndsAtOnceWhenItIsAskedToWhileAToolHangs) {
    TARVIK_NEEDS_MADE_TOOLS();
    HealthCommandWorld world;
    const fs::path begun = world.folder / "begun";
    const fs::path go = world.folder / "go";
    world.replaceTool("codesign", "touch '" + begun.native() + "'\n" + test::waitFor(go));
    test::RunningProgram program(world.command, world.onMachine({"health"}));
    ASSERT_TRUE(comesToStand(begun));
    program.signalGroup(SIGINT);
    const auto finished = program.finish();
    EXPECT_FALSE(fs::exists(go)) << "nobody has waited for the tool";
    EXPECT_EQ(finished.status, 128 + SIGINT);
    EXPECT_EQ(finished.output + finished.errors, "");
    test::makeFile(go);
}

TEST(HealthRepairCommand, BeginsNoFurtherRepairOnceItIsAskedToEnd) {
    TARVIK_NEEDS_MADE_TOOLS();
    BrokenCommandWorld world;
    const fs::path begun = world.folder / "begun";
    const fs::path go = world.folder / "go";
    world.replaceTool("ditto", "touch '" + begun.native() + "'\n" + test::waitFor(go));
    const fs::path container = world.machine.home / "Library/Containers/org.example.orchestra";
    const fs::path unplugged = world.machine.root / "Applications/Unplugged.app";
    test::RunningProgram program(world.command, world.onMachine({"health", "repair", container, unplugged, "--yes"}));
    ASSERT_TRUE(comesToStand(begun));
    program.signalGroup(SIGINT);
    const auto finished = program.finish();
    EXPECT_EQ(finished.status, 1);
    EXPECT_THAT(finished.errors, HasSubstr("Unplugged.app: Not started: the command was asked to end.\n"));
    EXPECT_TRUE(fs::is_symlink(container));
    EXPECT_TRUE(fs::is_symlink(unplugged));
    test::makeFile(go);
}

TEST(HealthRepairCommand, AsksFirstAndNamesWhatItDoesToEach) {
    const HealthCommandWorld world;
    const auto before = test::pictureOf(world.machine.root);
    test::RunningProgram program(world.command, world.onMachine({"health", "repair", world.unplugged}),
                                 test::RunningProgram::Streams::terminal);
    ASSERT_TRUE(program.waitForOutput("Repair? [y/N] "));
    program.type("n\n");
    const auto refused = program.finish();
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.output, HasSubstr(world.unplugged.native() + ": remove the link."));
    EXPECT_EQ(test::pictureOf(world.machine.root), before);
}

TEST(HealthRepairCommand, NeedsTheStrategyOfWhatHasTwo) {
    const HealthCommandWorld world;
    const auto unnamed = world.run({"health", "repair", world.twice, "--yes"});
    EXPECT_EQ(unnamed.status, 1);
    EXPECT_EQ(unnamed.errors, "What was found at " + world.twice.native() +
                                  " has several repairs: name reclaimReverted or reSymlinkReverted with --strategy.\n");
    const auto named =
        world.run({"health", "repair", world.twice, "--strategy", "reclaimReverted", "--yes", "--format", "tsv"});
    EXPECT_EQ(named.status, 0) << named.errors;
    EXPECT_EQ(columnOf(named.output, "strategy").at(0), "reclaimReverted");
    EXPECT_EQ(columnOf(named.output, "state").at(0), "done");
    EXPECT_THAT(columnOf(named.output, "description").at(0), HasSubstr("Reclaimed stale SSD copy of Twice.app."));
    EXPECT_TRUE(fs::is_directory(world.twice));
}

TEST(HealthRepairCommand, KnowsAPathThatIsWrittenInAnotherWay) {
    const HealthCommandWorld world;
    const fs::path alias = world.folder / "alias";
    test::makeLink(alias, world.machine.root);
    const auto finished = world.run({"health", "repair", alias / "Applications/Unplugged.app", "--yes"});
    EXPECT_EQ(finished.output, "Removed dead symlink Unplugged.app.\n") << finished.errors;
    EXPECT_FALSE(fs::is_symlink(world.unplugged));
}

TEST(HealthRepairCommand, RepairsOnceWhatIsNamedTwice) {
    const HealthCommandWorld world;
    const auto finished = world.run({"health", "repair", world.unplugged, world.unplugged, "--yes"});
    EXPECT_EQ(finished.status, 0) << finished.errors;
    EXPECT_EQ(finished.output, "Removed dead symlink Unplugged.app.\n");
}

TEST(HealthRepairCommand, RepairsNothingWhenOneOfItsPathsIsWrong) {
    const HealthCommandWorld world;
    const fs::path nowhere = world.folder / "nowhere";
    const auto finished = world.run({"health", "repair", world.unplugged, nowhere, "--yes"});
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(finished.errors, "Nothing stands at " + nowhere.native() + ".\n");
    EXPECT_TRUE(fs::is_symlink(world.unplugged));
}

TEST(HealthRepairCommand, GoesOnBesideWhatIsHealthy) {
    const HealthCommandWorld world;
    const fs::path healthy = world.applications / "Faraway.app";
    const auto finished = world.run({"health", "repair", healthy, world.unplugged, "--yes"});
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(finished.output, "Removed dead symlink Unplugged.app.\n");
    EXPECT_EQ(finished.errors,
              "Nothing was found wrong with " + healthy.native() + ".\nThere was nothing to repair at 1 path.\n");
    const auto both = world.run({"health", "repair", healthy, world.machine.root / "Applications", "--yes"});
    EXPECT_EQ(both.status, 1);
    EXPECT_EQ(both.errors, "Nothing was found wrong with " + healthy.native() + ".\nNothing was found wrong with " +
                               (world.machine.root / "Applications").native() + ".\n");
}

TEST(HealthRepairCommand, SaysThatWhatWasFoundHasNoRepair) {
    const BrokenCommandWorld world;
    const fs::path altered = world.machine.root / "Applications/Altered.app";
    EXPECT_EQ(world.run({"health", "repair", altered, "--yes"}).errors,
              "What was found at " + altered.native() + " has no repair.\n");
    EXPECT_THAT(world.run({"health"}).output, HasSubstr("\n    No repair\n"));
}

TEST(HealthRepairCommand, KeepsUnaskedTheLinksOfADriveThatIsOnlyAway) {
    const HealthCommandWorld world;
    const fs::path gone = world.applications / "Gone.app";
    test::makeLink(gone, world.machine.drives.front() / "Gone.app");
    const std::vector<std::string> words = {"health", "repair", "--strategy", "removeDangling", "--yes"};
    const std::string told = world.unplugged.native() +
                             " stays: it is right again once the drive Unplugged is connected. Name it to remove it.\n";
    auto finished = world.run(words);
    EXPECT_EQ(finished.status, 0);
    EXPECT_EQ(finished.output, "Removed dead symlink Gone.app.\n");
    EXPECT_EQ(finished.errors, told);
    EXPECT_TRUE(fs::is_symlink(world.unplugged));
    finished = world.run(words);
    EXPECT_EQ(finished.status, 0);
    EXPECT_EQ(finished.errors, told) << "and nothing else";
    EXPECT_EQ(world.run({"health", "repair", world.unplugged, "--yes"}).output,
              "Removed dead symlink Unplugged.app.\n");
}

TEST(HealthRepairCommand, NamesTheDrivesThatAreAwayBeforeItRemovesLinksToThem) {
    const HealthCommandWorld world;
    const auto run = [&](const std::string& answer) {
        test::RunningProgram program(world.command,
                                     world.onMachine({"health", "repair", "--strategy", "removeDangling"}),
                                     test::RunningProgram::Streams::terminal);
        EXPECT_TRUE(program.waitForOutput("Repair? [y/N] "));
        program.type(answer + "\n");
        return program.finish().output;
    };
    EXPECT_THAT(run("n"), HasSubstr("The drive Unplugged is not connected: links to it would be right again once it "
                                    "is."));
    EXPECT_TRUE(fs::is_symlink(world.unplugged));
    test::makeLink(world.applications / "Away.app", world.machine.root / "Volumes/Away/Away.app");
    EXPECT_THAT(run("y"), HasSubstr("The drives Away, Unplugged are not connected: links to them would be right again "
                                    "once they are."));
    EXPECT_FALSE(fs::is_symlink(world.unplugged));
}

TEST(HealthRepairCommand, AsksNobodyWhereNobodyIs) {
    const HealthCommandWorld world;
    const auto finished = world.run({"health", "repair", world.unplugged});
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(finished.errors, "There is no terminal to ask on: pass --yes to go ahead without a question.\n");
    EXPECT_EQ(world.run({"health", "repair", world.unplugged}, test::RunningProgram::Streams::none).status, 1);
    EXPECT_TRUE(fs::is_symlink(world.unplugged));
}

TEST(HealthRepairCommand, LeavesOneOutcomeOfTwoThatRepairTheSameAtOnce) {
    for (const char* strategy : {"removeOrphan", "reSymlinkReverted", "restoreSandboxExternal"}) {
        SCOPED_TRACE(strategy);
        const BrokenCommandWorld world;
        const std::vector<std::string> arguments = {"health", "repair",   "--strategy", strategy,
                                                    "--yes",  "--format", "tsv"};
        test::RunningProgram one(world.command, world.onMachine(arguments));
        test::RunningProgram other(world.command, world.onMachine(arguments));
        std::vector<std::string> states;
        for (test::RunningProgram* program : {&one, &other}) {
            const auto finished = program->finish();
            const auto some = columnOf(finished.output, "state");
            states.insert(states.end(), some.begin(), some.end());
            EXPECT_EQ(finished.status, some == std::vector<std::string>{"failed"} ? 1 : 0) << finished.errors;
            for (const auto& sentence : columnOf(finished.output, "description")) EXPECT_THAT(sentence, Not(""));
        }
        EXPECT_THAT(states, Contains("done").Times(1));
        // What one of them has done holds: no finding of that kind is left, and nothing half-way.
        EXPECT_EQ(world.run({"health"}).errors, "10 problems were found.\n");
        for (const auto& entry : fs::recursive_directory_iterator(world.machine.root))
            EXPECT_THAT(entry.path().filename().native(), Not(testing::StartsWith(".tarvik-"))) << entry.path();
    }
}

TEST(HealthRepairCommand, SaysWhenAStrategyHasNothingToDo) {
    const HealthCommandWorld world;
    const auto finished = world.run({"health", "repair", "--strategy", "restoreUnsafePrefs", "--yes"});
    EXPECT_EQ(finished.status, 0);
    EXPECT_EQ(finished.errors, "There is nothing that restoreUnsafePrefs can repair.\n");
}

TEST(HealthRepairCommand, SaysWhatIsWrongWithItsArguments) {
    const HealthCommandWorld world;
    const auto fine = world.applications / "Faraway.app";
    EXPECT_EQ(world.run({"health", "repair", fine, "--yes"}).errors,
              "Nothing was found wrong with " + fine.native() + ".\n");
    const auto unknown = world.run({"health", "repair", "--strategy", "magic"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_THAT(unknown.errors, HasSubstr("There is no strategy \"magic\". There is: removeDangling, "));
    EXPECT_THAT(world.run({"health", "frob"}).errors,
                HasSubstr("\nUsage: tarvik health\n       tarvik health repair [PATH...]"));
    EXPECT_EQ(world.run({"health", "repair", world.unplugged, "--strategy", "removeOrphan", "--yes"}).errors,
              "What was found at " + world.unplugged.native() + " has no repair removeOrphan.\n");
}

}  // namespace tarvik
