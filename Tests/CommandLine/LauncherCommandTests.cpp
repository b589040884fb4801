#include "CommandLine/CommandWorld.h"
#include "CommandLine/Lines.h"
#include "Platform/Files/Files.h"
#include "Support/Bundles.h"
#include "Support/EnvironmentVariable.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <toml++/toml.h>

namespace tarvik {

namespace {

using test::columnOf;
using test::CommandWorld;
using test::linesOf;
using testing::Contains;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using Streams = test::RunningProgram::Streams;

/// A practice machine has a launcher that works, one that does not, and a linked folder with an application that has
/// none.
struct LauncherWorld : CommandWorld {
    using CommandWorld::CommandWorld;

    fs::path applications = machine.root / "Applications";
    fs::path inside = applications / "Inside.app";
    fs::path firstDrive = machine.drives.front();
    fs::path targetOfInside = firstDrive / "ExternalTarvik/Folders/Linked Suite/Inside.app";
};

}  // namespace

TEST(LauncherCommand, ListsTheLaunchersForEyes) {
    const LauncherWorld world;
    const auto finished = world.run({"launchers"});
    EXPECT_EQ(finished.status, 0);
    EXPECT_EQ(finished.errors, "");
    EXPECT_THAT(linesOf(finished.output),
                ElementsAre(ContainsRegex("^State +Launcher +Opens$"),
                            ContainsRegex("^broken +/.*/Applications/Ghost.app +/.*/Apps/Ghost.app$"),
                            ContainsRegex("^missing +/.*/Applications/Inside.app +/.*/Linked Suite/Inside.app$"),
                            ContainsRegex("^ok +/.*/Applications/Launched.app +/.*/Apps/Launched.app$")));
    EXPECT_FALSE(Files::itemExists(world.inside));
}

TEST(LauncherCommand, ListsTheLaunchersForPrograms) {
    const LauncherWorld world;
    const auto tsv = world.run({"launchers", "--format", "tsv"}).output;
    EXPECT_EQ(linesOf(tsv).front(), "launcher\ttarget\tstate");
    EXPECT_THAT(columnOf(tsv, "state"), ElementsAre("broken", "missing", "ok"));
    EXPECT_EQ(columnOf(tsv, "launcher").at(1), world.inside.native());
    EXPECT_EQ(columnOf(tsv, "target").at(1), world.targetOfInside.native());
    const auto toml = toml::parse(world.run({"launchers", "--format", "toml"}).output);
    ASSERT_EQ(toml["launchers"].as_array()->size(), 3U);
    EXPECT_EQ(toml["launchers"][1]["launcher"].value<std::string>(), world.inside.native());
    EXPECT_EQ(toml["launchers"][1]["target"].value<std::string>(), world.targetOfInside.native());
    EXPECT_EQ(toml["launchers"][1]["state"].value<std::string>(), "missing");
}

TEST(LauncherCommand, SaysWhenThereAreNone) {
    const LauncherWorld world;
    for (const auto* name : {"Ghost.app", "Launched.app", "Linked Suite"}) fs::remove_all(world.applications / name);
    const auto human = world.run({"launchers"});
    EXPECT_EQ(human.status, 0);
    EXPECT_EQ(human.output, "");
    EXPECT_EQ(human.errors, "There are no launchers, and none is needed.\n");
    EXPECT_EQ(world.run({"launchers", "--format", "tsv"}).output, "launcher\ttarget\tstate\n");
    EXPECT_EQ(world.run({"launchers", "--format", "toml"}).output, "launchers = []\n");
    const auto repair = world.run({"launchers", "--repair"});
    EXPECT_EQ(repair.status, 0);
    EXPECT_EQ(repair.output, "");
    EXPECT_EQ(repair.errors, "There is no launcher to repair.\n");
    EXPECT_EQ(world.run({"launchers", "--repair", "--format", "tsv"}).output, "launcher\ttarget\tstate\tdescription\n");
}

TEST(LauncherCommand, MakesALauncherThatOpensTheApplication) {
    const LauncherWorld world;
    const auto finished = world.run({"launchers", "--repair", "--yes"});
    EXPECT_EQ(finished.status, 0);
    EXPECT_EQ(finished.output, "Installed/repaired 1 Spotlight launcher.\n");
    EXPECT_EQ(finished.errors, "Ghost.app: The application that it opens is not there.\n");
    EXPECT_EQ(test::contentOf(world.inside / "Contents/Resources/ExternalAppTarget.txt"),
              world.targetOfInside.native());
    EXPECT_THAT(columnOf(world.run({"launchers", "--format", "tsv"}).output, "state"),
                ElementsAre("broken", "ok", "ok"));
    const auto called = world.folder / "called";
    fs::remove_all(world.targetOfInside / "Contents/MacOS");
    test::makeFile(world.targetOfInside / "Contents/MacOS/Inside", "#!/bin/sh\ntouch '" + called.native() + "'\n");
    fs::permissions(world.targetOfInside / "Contents/MacOS/Inside", fs::perms::owner_all);
    EXPECT_EQ(test::runProgram(world.inside / "Contents/MacOS/ExternalAppLauncher", {}).status, 0);
    EXPECT_TRUE(Files::exists(called));
}

TEST(LauncherCommand, TellsProgramsWhatBecameOfEachLauncher) {
    const LauncherWorld world;
    const auto tsv = world.run({"launchers", "--repair", "--yes", "--format", "tsv"});
    EXPECT_EQ(tsv.status, 0);
    EXPECT_EQ(tsv.errors, "");
    EXPECT_EQ(linesOf(tsv.output).front(), "launcher\ttarget\tstate\tdescription");
    EXPECT_THAT(columnOf(tsv.output, "state"), ElementsAre("broken", "repaired"));
    EXPECT_THAT(columnOf(tsv.output, "description"), ElementsAre("The application that it opens is not there.", ""));
    fs::remove_all(world.inside);
    const auto toml = toml::parse(world.run({"launchers", "--repair", "--yes", "--format", "toml"}).output);
    EXPECT_EQ(toml["launchers"][1]["launcher"].value<std::string>(), world.inside.native());
    EXPECT_EQ(toml["launchers"][1]["state"].value<std::string>(), "repaired");
}

TEST(LauncherCommand, MendsOneOfAnEarlierVersion) {
    const LauncherWorld world;
    const auto old = world.applications / "Old.app";
    test::makeLauncher(old, world.firstDrive / "Tarvik/Folders/Linked Suite/Inside.app");
    EXPECT_THAT(linesOf(world.run({"launchers"}).output), Contains(ContainsRegex("^relocated +/.*/Old.app ")));
    EXPECT_EQ(world.run({"launchers", "--repair", "--yes"}).output, "Installed/repaired 2 Spotlight launchers.\n");
    EXPECT_EQ(test::contentOf(old / "Contents/Resources/ExternalAppTarget.txt"), world.targetOfInside.native());
    EXPECT_TRUE(Files::exists(world.machine.home / ".Trash/Old.app"));
}

TEST(LauncherCommand, AsksBeforeItChangesAnything) {
    const LauncherWorld world;
    const auto refused = world.run({"launchers", "--repair"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.errors, "There is no terminal to ask on: pass --yes to go ahead without a question.\n");
    EXPECT_FALSE(Files::itemExists(world.inside));
    for (const bool agrees : {false, true}) {
        test::RunningProgram program(world.command, world.onMachine({"launchers", "--repair"}), Streams::terminal);
        ASSERT_TRUE(program.waitForOutput("Repair? [y/N] "));
        program.type(agrees ? "y\n" : "n\n");
        const auto finished = program.finish();
        EXPECT_EQ(finished.status, agrees ? 0 : 1);
        EXPECT_THAT(finished.output, HasSubstr("Install or repair 1 launcher?\r\nInside.app. What "));
        EXPECT_THAT(finished.output, HasSubstr(agrees ? "Installed/repaired 1 " : "Cancelled. Nothing was changed."));
        EXPECT_EQ(Files::itemExists(world.inside), agrees);
    }
}

TEST(LauncherCommand, FailsWithoutTheProgramOfLaunchers) {
    const test::EnvironmentVariable none("TARVIK_LAUNCHER_BINARY", std::nullopt);
    const LauncherWorld world("exit 1");  // In a folder of its own, with nothing else beside it.
    const auto finished = world.run({"launchers", "--repair", "--yes"});
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(finished.output, "");
    EXPECT_THAT(linesOf(finished.errors),
                ElementsAre("Ghost.app: The application that it opens is not there.",
                            "Inside.app: Launcher binary is missing.", "1 launcher could not be repaired."));
    EXPECT_FALSE(Files::itemExists(world.inside));
    const auto tsv = world.run({"launchers", "--repair", "--yes", "--format", "tsv"});
    EXPECT_EQ(tsv.status, 1);
    EXPECT_THAT(columnOf(tsv.output, "state"), ElementsAre("broken", "failed"));
    EXPECT_THAT(columnOf(tsv.output, "description"), Contains("Launcher binary is missing."));
    const test::EnvironmentVariable named("TARVIK_LAUNCHER_BINARY",
                                          test::programOfThisBuild("external-app-launcher").native());
    EXPECT_EQ(world.run({"launchers", "--repair", "--yes"}).status, 0);
    EXPECT_TRUE(Files::exists(world.inside / "Contents/MacOS/ExternalAppLauncher"));
}

TEST(LauncherCommand, MovesASuiteAndBringsItBackWithItsLaunchers) {
    const LauncherWorld world;
    const auto suite = world.applications / "Studio Suite";
    ASSERT_EQ(world.run({"move", "folder", suite.native(), "--drive", "Studio Drive", "--yes"}).status, 0);
    const auto listed = world.run({"launchers", "--format", "tsv"}).output;
    EXPECT_THAT(columnOf(listed, "launcher"), testing::IsSupersetOf({(world.applications / "Mixer.app").native(),
                                                                     (world.applications / "Tuner.app").native()}));
    ASSERT_EQ(world.run({"move", "restore", suite.native(), "--yes"}).status, 0);
    EXPECT_THAT(Files::names(world.applications), Not(Contains("Mixer.app")));
    EXPECT_TRUE(Files::exists(suite / "Tools/Tuner.app"));
}

TEST(LauncherCommand, BringsAFolderBackOnceAlsoWhenALauncherOfItIsNamed) {
    for (const bool isLauncherFirst : {true, false}) {
        const LauncherWorld world;
        ASSERT_EQ(world.run({"launchers", "--repair", "--yes"}).status, 0);
        const fs::path suite = world.applications / "Linked Suite";
        std::vector<std::string> names = {suite.native(), world.inside.native()};
        if (isLauncherFirst) std::swap(names[0], names[1]);
        const auto finished = world.run({"move", "restore", names[0], names[1], "--yes", "--format", "tsv"});
        EXPECT_EQ(finished.status, 0) << finished.errors;
        EXPECT_THAT(columnOf(finished.output, "label"), ElementsAre("Linked Suite"));
        EXPECT_TRUE(Files::isFolder(suite / "Inside.app"));
        EXPECT_FALSE(Files::itemExists(world.inside));
    }
}

}  // namespace tarvik
