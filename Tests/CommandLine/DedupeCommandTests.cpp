#include "CommandLine/CommandWorld.h"
#include "CommandLine/Lines.h"
#include "Dedupe/AppDedupeService.h"
#include "Platform/Files/Files.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Support/Bundles.h"
#include "Support/OrdinaryUser.h"
#include "Support/Tree.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <toml++/toml.h>

namespace tarvik {

namespace {

using test::columnOf;
using test::CommandWorld;
using test::linesOf;
using testing::ElementsAre;
using testing::HasSubstr;
using Streams = test::RunningProgram::Streams;

/// A practice machine has an application with two duplicate launchers, one with a single one, and much that looks like
/// them.
struct DedupeWorld : CommandWorld {
    using CommandWorld::CommandWorld;

    fs::path compass = machine.root / "Applications/Compass.app";
    fs::path launchers = machine.home / "Applications/Old Launchers";
    fs::path trash = machine.home / ".Trash";
    std::vector<fs::path> duplicates = {launchers / "Compass Launcher.app", launchers / "Compass.app",
                                        launchers / "Sextant.app"};
};

/// A machine with one application and nothing else.
struct PlainWorld : DedupeWorld {
    PlainWorld() : DedupeWorld(Practice::Options{.apps = 1, .specialApps = false, .files = 0}) {}

    void addDuplicate() const {
        test::makeBundle(compass, {{"CFBundleIdentifier", "org.example.compass"}});
        test::makeLauncher(launchers / "Compass.app", compass,
                           {{"CFBundleIdentifier", "org.example.compass.externallauncher"}});
    }
};

}  // namespace

TEST(DedupeCommand, ShowsWhatStaysAndWhatGoes) {
    const DedupeWorld world;
    const auto before = test::pictureOf(world.machine.root);
    const Host host = Host::rootedAt(world.machine.root, world.machine.home);
    const auto size = [&](const fs::path& path) { return SizeCalculator::format(SizeCalculator::size(host, path)); };
    const auto line = [&](const char* verb, const fs::path& path) {
        return fmt::format("  {:<6}  {}  ({})", verb, path.native(), size(path));
    };
    const auto finished = world.run({"dedupe"});
    EXPECT_EQ(finished.status, 0);
    EXPECT_EQ(finished.errors, "");
    const fs::path missing = world.machine.root / "Volumes/Unplugged/ExternalTarvik/Apps";
    const fs::path sextant = world.machine.root / "Applications/Sextant.app";
    const char* const reason = "  Top-level launcher duplicates a real local app with the same bundle identifier.";
    EXPECT_THAT(linesOf(finished.output),
                ElementsAre(testing::StartsWith("Groups 2  Remove 3  Space "), "", "Compass  (2 duplicates)",
                            line("Keep", world.compass), line("Remove", world.duplicates[0]),
                            "          target: " + world.compass.native(), line("Remove", world.duplicates[1]),
                            "          target: " + (missing / "Compass.app").native(), reason, "",
                            "Sextant  (1 duplicate)", line("Keep", sextant), line("Remove", world.duplicates[2]),
                            "          target: " + (missing / "Sextant.app").native(), reason));
    EXPECT_EQ(test::pictureOf(world.machine.root), before) << "it only looks";
}

TEST(DedupeCommand, TellsProgramsEveryField) {
    const DedupeWorld world;
    const auto tsv = world.run({"dedupe", "--format", "tsv"});
    EXPECT_EQ(tsv.status, 0);
    EXPECT_EQ(linesOf(tsv.output).front(),
              "group\tgroupName\taction\tpath\tbytes\ttarget\tkind\tname\tbundleIdentifier\t"
              "effectiveBundleIdentifier\tinsideSymlinkedFolder\treason");
    EXPECT_THAT(columnOf(tsv.output, "action"), ElementsAre("keep", "remove", "remove", "keep", "remove"));
    EXPECT_THAT(columnOf(tsv.output, "path"),
                ElementsAre(world.compass, world.duplicates[0], world.duplicates[1],
                            world.machine.root / "Applications/Sextant.app", world.duplicates[2]));
    EXPECT_EQ(columnOf(tsv.output, "kind").at(0), "realApp");
    EXPECT_EQ(columnOf(tsv.output, "kind").at(1), "tarvikLauncher");
    EXPECT_EQ(columnOf(tsv.output, "target").at(1), world.compass);
    EXPECT_EQ(columnOf(tsv.output, "bundleIdentifier").at(1), "org.example.compass.externallauncher");
    EXPECT_EQ(columnOf(tsv.output, "effectiveBundleIdentifier").at(1), "org.example.compass");

    const auto toml = toml::parse(world.run({"dedupe", "--format", "toml"}).output);
    EXPECT_EQ(toml["groups"].value<int>(), 2);
    EXPECT_EQ(toml["remove"].value<int>(), 3);
    EXPECT_TRUE(toml["scannedAt"].is_string());
    ASSERT_EQ(toml["items"].as_array()->size(), 5U);
    std::int64_t bytes = 0;
    for (const int item : {1, 2, 4}) bytes += toml["items"][item]["bytes"].value<std::int64_t>().value_or(0);
    EXPECT_GT(bytes, 0);
    EXPECT_EQ(toml["bytes"].value<std::int64_t>(), bytes);
    EXPECT_EQ(toml["items"][1]["insideSymlinkedFolder"].value<bool>(), false);
    EXPECT_EQ(toml["items"][1]["groupName"].value<std::string>(), "Compass");
}

TEST(DedupeCommand, LeavesALinkInAGroupAlone) {
    const PlainWorld world;
    world.addDuplicate();
    test::makeLink(world.launchers / "Link.app", world.compass);
    const auto output = world.run({"dedupe", "--format", "tsv"}).output;
    EXPECT_THAT(columnOf(output, "action"), ElementsAre("keep", "remove", "leave"));
}

TEST(DedupeCommand, SaysWhenThereIsNothing) {
    const PlainWorld world;
    const auto listed = world.run({"dedupe"});
    EXPECT_EQ(listed.status, 0);
    EXPECT_EQ(listed.output, "");
    EXPECT_EQ(listed.errors, "No duplicate launchers found.\n");
    const auto removed = world.run({"dedupe", "--remove"});
    EXPECT_EQ(removed.status, 0) << "nobody needs to be asked";
    EXPECT_EQ(removed.output, "");
    EXPECT_EQ(removed.errors, "No duplicate launchers to remove.\n");
    EXPECT_EQ(linesOf(world.run({"dedupe", "--format", "tsv"}).output).size(), 1U);
    EXPECT_EQ(world.run({"dedupe", "--remove", "--format", "tsv"}).output,
              "path\tbytes\tstate\ttrashedTo\tdescription\n");
    EXPECT_EQ(world.run({"dedupe", "--remove", "--format", "toml"}).output, "removed = []\n");
    EXPECT_EQ(toml::parse(world.run({"dedupe", "--format", "toml"}).output)["groups"].value<int>(), 0);
}

TEST(DedupeCommand, MovesDuplicatesToTheTrashAndTellsWhere) {
    const DedupeWorld world;
    const auto finished = world.run({"dedupe", "--remove", "--yes"});
    EXPECT_EQ(finished.status, 0) << finished.errors;
    EXPECT_EQ(finished.errors, "");
    std::vector<std::string> lines;
    for (const fs::path& path : world.duplicates)
        lines.push_back(path.native() + " → " + (world.trash / path.filename()).native());
    lines.emplace_back("Removed 3 duplicate launchers.");
    EXPECT_EQ(linesOf(finished.output), lines);
    for (const fs::path& path : world.duplicates) {
        EXPECT_FALSE(Files::itemExists(path)) << path;
        EXPECT_TRUE(Files::isFolder(world.trash / path.filename())) << path;
    }
    EXPECT_THAT(Files::names(world.launchers), ElementsAre("Anonymous.app", "Astrolabe.app", "Barometer Link.app",
                                                           "Barometer.app", "Ghostly 2.app", "Ghostly.app"));
    EXPECT_EQ(world.run({"dedupe"}).errors, "No duplicate launchers found.\n");
}

TEST(DedupeCommand, CountsOne) {
    const PlainWorld world;
    world.addDuplicate();
    EXPECT_EQ(linesOf(world.run({"dedupe", "--remove", "--yes"}).output).back(), "Removed 1 duplicate launcher.");
}

TEST(DedupeCommand, TellsProgramsWhatBecameOfEach) {
    for (const std::string format : {"tsv", "toml"}) {
        const PlainWorld world;
        world.addDuplicate();
        const auto finished = world.run({"dedupe", "--remove", "--yes", "--format", format});
        EXPECT_EQ(finished.status, 0);
        EXPECT_EQ(finished.errors, "");
        const fs::path gone = world.launchers / "Compass.app";
        if (format == "tsv") {
            EXPECT_THAT(columnOf(finished.output, "path"), ElementsAre(gone));
            EXPECT_THAT(columnOf(finished.output, "state"), ElementsAre("done"));
            EXPECT_THAT(columnOf(finished.output, "trashedTo"), ElementsAre(world.trash / "Compass.app"));
        } else {
            const auto toml = toml::parse(finished.output);
            EXPECT_EQ(toml["removed"][0]["path"].value<std::string>(), gone);
            EXPECT_EQ(toml["removed"][0]["description"].value<std::string>(), "");
        }
    }
}

TEST(DedupeCommand, AsksBeforeAnythingGoes) {
    const PlainWorld world;
    world.addDuplicate();
    const fs::path launcher = world.launchers / "Compass.app";
    const auto refused = world.run({"dedupe", "--remove"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.errors, "There is no terminal to ask on: pass --yes to go ahead without a question.\n");
    EXPECT_TRUE(Files::itemExists(launcher));
    for (const bool agrees : {false, true}) {
        test::RunningProgram program(world.command, world.onMachine({"dedupe", "--remove"}), Streams::terminal);
        ASSERT_TRUE(program.waitForOutput("Remove? [y/N] "));
        program.type(agrees ? "y\n" : "n\n");
        const auto finished = program.finish();
        EXPECT_EQ(finished.status, agrees ? 0 : 1);
        EXPECT_THAT(finished.output, HasSubstr("Remove 1 duplicate launcher?\r\n" + launcher.native() + " (stays: " +
                                               world.compass.native() + ")\r\nCompass.app. They go to the Trash"));
        EXPECT_THAT(finished.output, HasSubstr(agrees ? "Removed 1 " : "Cancelled. Nothing was changed."));
        EXPECT_EQ(Files::itemExists(launcher), !agrees);
    }
}

TEST(DedupeCommand, FailsWhenSomethingStays) {
    const DedupeWorld world;
    // No Trash can be made where a file bears its name.
    fs::remove_all(world.trash);
    test::makeFile(world.trash);
    const auto finished = world.run({"dedupe", "--remove", "--yes"});
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(finished.output, "");
    EXPECT_EQ(linesOf(finished.errors).size(), 4U);
    EXPECT_EQ(linesOf(finished.errors).back(), "Dedupe completed with 3 failures.");
    for (const fs::path& path : world.duplicates) EXPECT_TRUE(Files::itemExists(path)) << path;

    const auto tsv = world.run({"dedupe", "--remove", "--yes", "--format", "tsv"});
    EXPECT_EQ(tsv.status, 1);
    EXPECT_THAT(columnOf(tsv.output, "state"), ElementsAre("failed", "failed", "failed"));
    EXPECT_THAT(columnOf(tsv.output, "description"), testing::Each(HasSubstr("Trash")));
}

TEST(DedupeCommand, CannotBeUsedWrongly) {
    const PlainWorld world;
    world.addDuplicate();
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {"dedupe", "Compass"}, {"dedupe", "--remove", "--all"}, {"dedupe", "remove"}, {"links", "--remove"}}) {
        const auto finished = world.run(arguments);
        EXPECT_EQ(finished.status, 2);
        EXPECT_EQ(finished.output, "");
        EXPECT_THAT(finished.errors, HasSubstr("Usage: "));
    }
    EXPECT_TRUE(Files::itemExists(world.launchers / "Compass.app"));
}

TEST(DedupeCommand, WritesNamesThatCanSteerNoTerminal) {
    const PlainWorld world;
    test::makeBundle(world.compass, {{"CFBundleIdentifier", "org.example.compass"},
                                     {"CFBundleName", "Compass\nRemoved 9 launchers."}});
    test::makeLauncher(world.launchers / "New\nline\x1b[2J.app", "/gone\nRemoved 9 launchers.",
                       {{"CFBundleIdentifier", "org.example.compass"}});
    for (const auto& arguments : std::vector<std::vector<std::string>>{{"dedupe"}, {"dedupe", "--remove", "--yes"}}) {
        const auto finished = world.run(arguments);
        EXPECT_EQ(finished.status, 0);
        EXPECT_EQ(finished.output.find('\x1b'), std::string::npos);
        for (const auto& line : linesOf(finished.output)) EXPECT_FALSE(line.starts_with("Removed 9")) << line;
    }
}

}  // namespace tarvik
