#include "CommandLine/CommandWorld.h"
#include "CommandLine/Lines.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"

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

/// The plan for some applications, which changes nothing.
test::Finished planOf(const CommandWorld& world, std::vector<std::string> arguments,
                      const std::string& drive = "Studio Drive") {
    const auto before = test::pictureOf(world.machine.root);
    arguments.insert(arguments.begin(), {"move", "app", "--drive", drive, "--dry-run"});
    auto finished = world.run(arguments);
    EXPECT_EQ(test::pictureOf(world.machine.root), before);
    return finished;
}

}  // namespace

TEST(AppMoveCommand, ShowsWhatWouldMoveAndChangesNothing) {
    const CommandWorld world;
    const auto finished = planOf(world, {"Full House", "tunnel"});
    EXPECT_EQ(finished.status, 0);
    EXPECT_EQ(finished.errors, "");
    const auto lines = linesOf(finished.output);
    EXPECT_THAT(lines.front(), ContainsRegex("^What +Size +From +To$"));
    EXPECT_THAT(lines, Contains(ContainsRegex("^Full House +[0-9]+ KB +/.*/Full House.app +/.*/Apps/Full House.app$")));
    EXPECT_THAT(lines, Contains(ContainsRegex("^Full House — .fullhouse +12 KB +~/.fullhouse +/.*/Data/.fullhouse$")));
    EXPECT_THAT(lines, Contains(ContainsRegex(
                           "^[0-9]+ items, [0-9]+ KB in all. Studio Drive has .* free now and would have .* after.$")));
    EXPECT_THAT(lines, Contains("Tunnel: Has a system extension — do not move"));
    EXPECT_EQ(lines.back(), "Nothing was changed.");
}

TEST(AppMoveCommand, TellsARefusalOnceInAPlan) {
    const CommandWorld world;
    test::makePipe(world.machine.root / "Applications/Tunnel.app/Contents/pipe");
    for (const char* format : {"human", "tsv"}) {
        const auto finished = planOf(world, {"Tunnel", "--no-data", "--format", format});
        EXPECT_EQ(finished.status, 1);
        EXPECT_THAT(finished.errors, HasSubstr("Tunnel.app can't be moved: "));
        EXPECT_THAT(finished.errors, Not(ContainsRegex("pipe(.|\n)*Tunnel.app can't be moved: ")));
        EXPECT_THAT(finished.output, Not(HasSubstr("can't be moved")));
    }
    const auto record = planOf(world, {"Tunnel", "--no-data", "--format", "toml"});
    EXPECT_THAT(record.output, HasSubstr("Tunnel.app can't be moved: ")) << "a record is complete";
}

TEST(AppMoveCommand, LeavesTheDataWhenToldSo) {
    const CommandWorld world;
    const auto tsv = planOf(world, {"Full House", "--no-data", "--format", "tsv"});
    EXPECT_EQ(tsv.status, 0);
    EXPECT_THAT(columnOf(tsv.output, "source"), ElementsAre(world.machine.root / "Applications/Full House.app"));
    EXPECT_THAT(columnOf(tsv.output, "destination"), ElementsAre(world.drive / "ExternalTarvik/Apps/Full House.app"));
}

TEST(AppMoveCommand, TakesAnApplicationOnceHoweverOftenItIsNamed) {
    const CommandWorld world;
    const auto path = (world.machine.root / "Applications/Tunnel.app").native();
    const auto tsv = planOf(world, {"Tunnel", "tunnel.app", "org.example.tunnel", path, "--format", "tsv"});
    EXPECT_THAT(columnOf(tsv.output, "label"), ElementsAre("Tunnel"));
    EXPECT_EQ(tsv.errors, "Tunnel: Has a system extension — do not move\n");
}

TEST(AppMoveCommand, WritesThePlanAsToml) {
    const CommandWorld world;
    const auto finished = planOf(world, {"Full House", "Faraway", "--format", "toml"});
    EXPECT_EQ(finished.errors, "");
    const auto toml = toml::parse(finished.output);
    std::int64_t sum = 0;
    for (const auto& job : *toml["jobs"].as_array()) sum += job.at_path("bytes").value<std::int64_t>().value();
    EXPECT_GT(sum, 0);
    EXPECT_EQ(toml["totalBytes"].value<std::int64_t>(), sum);
    EXPECT_EQ(toml["freeBytes"].value<std::int64_t>().value() - sum, toml["freeBytesAfter"].value<std::int64_t>());
    EXPECT_EQ(toml["fits"].value<bool>(), true);
    EXPECT_EQ(toml["drive"].value<std::string>(), world.drive.native());
    EXPECT_THAT(toml["remarks"][0].value<std::string>().value(), HasSubstr("Faraway stays: it has been moved already"));
}

TEST(AppMoveCommand, SaysWhyNothingWouldMove) {
    const CommandWorld world;
    const auto finished = planOf(world, {"Faraway", "Launched"});
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(finished.errors, "Selected apps are already moved. Use Move Back.\n");
    const auto drives = world.machine.drives;
    EXPECT_THAT(linesOf(finished.output),
                ElementsAre("Faraway stays: it has been moved already, to " +
                                (drives.front() / "ExternalTarvik/Apps/Faraway.app").native() + ".",
                            "Launched stays: it has been moved already, to " +
                                (drives.back() / "ExternalTarvik/Apps/Launched.app").native() + "."));
    const auto toml = planOf(world, {"Faraway", "--format", "toml"});
    EXPECT_EQ(toml.status, 1);
    EXPECT_TRUE(toml::parse(toml.output)["jobs"].as_array()->empty());
}

TEST(AppMoveCommand, SaysWhatIsInTheWay) {
    const CommandWorld world;
    test::makeFile(world.drive / "ExternalTarvik/Apps/Tunnel.app");
    const auto alone = planOf(world, {"Tunnel"});
    EXPECT_THAT(alone.output, Not(HasSubstr("Tunnel would not move: "))) << "it is told once";
    EXPECT_THAT(alone.errors, ContainsRegex("^Tunnel would not move: .*/Apps/Tunnel.app is taken already.\n$"));
    EXPECT_EQ(alone.status, 1);
    const auto two = planOf(world, {"Tunnel", "Menu Meters"});
    EXPECT_EQ(two.status, 0);
    EXPECT_THAT(two.output, HasSubstr("\nTunnel would not move: "));
}

TEST(AppMoveCommand, SaysWhenThePlanDoesNotFit) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const CommandWorld world;
    const auto volume = test::RealVolume::memory(world.machine.root / "Volumes", 2'000'000);
    test::makeFileOfSize(world.machine.root / "Applications/Tunnel.app/Contents/large", 5'000'000);
    const auto finished = planOf(world, {"Tunnel"}, volume.path().native());
    EXPECT_EQ(finished.status, 1);
    EXPECT_THAT(finished.errors, ContainsRegex("^Need 5 MB but .* has 2 MB.\n$"));
    EXPECT_THAT(finished.output, HasSubstr(" has 2 MB free now.\n"));
    EXPECT_THAT(finished.output, Not(HasSubstr("after")));
}

TEST(AppMoveCommand, CallsANameOrADriveThatFitsNothingAWrongCommandLine) {
    const CommandWorld world;
    const std::string usage =
        "\nUsage: tarvik move app NAME... --drive DRIVE [--no-data] [--quit-running] [--dry-run]\n";
    for (const auto& finished : {planOf(world, {"Tunnel", "wonder"}), planOf(world, {"Tunnel"}, "Nope")}) {
        EXPECT_EQ(finished.status, 2);
        EXPECT_EQ(finished.output, "");
        EXPECT_THAT(finished.errors, HasSubstr("There is no "));
        EXPECT_THAT(finished.errors, HasSubstr(usage));
    }
}

TEST(AppMoveCommand, MovesApplicationsWithTheirDataAndBringsThemBackByName) {
    const CommandWorld world;
    const auto app = world.machine.root / "Applications/Full House.app";
    const auto data = world.machine.home / ".fullhouse";
    const auto before = test::pictureOf(app) + test::pictureOf(data);
    const auto moved = world.run({"move", "app", "full house", "Tunnel", "--drive", "Studio Drive", "--yes"});
    EXPECT_EQ(moved.status, 0) << moved.errors;
    const auto apps = world.drive / "ExternalTarvik/Apps";
    EXPECT_EQ(fs::read_symlink(app), apps / "Full House.app");
    EXPECT_TRUE(fs::is_symlink(data));
    EXPECT_TRUE(fs::is_symlink(world.machine.root / "Applications/Tunnel.app"));
    EXPECT_THAT(linesOf(moved.output), Contains("Moved Full House to " + (apps / "Full House.app").native() + "."));

    const auto back = world.run({"move", "restore", "Full House", "Tunnel", data, "--yes", "--format", "tsv"});
    EXPECT_EQ(back.status, 0) << back.errors;
    EXPECT_THAT(columnOf(back.output, "label"), ElementsAre("Full House.app", "Tunnel.app", ".fullhouse"));
    EXPECT_THAT(columnOf(back.output, "status"), ElementsAre("done", "done", "done"));
    EXPECT_FALSE(fs::is_symlink(app));
    EXPECT_EQ(test::pictureOf(app) + test::pictureOf(data), before);
}

TEST(AppMoveCommand, GoesOnAfterAnItemThatFailsAndSaysSo) {
    const CommandWorld world;
    test::makeFile(world.drive / "ExternalTarvik/Apps/Tunnel.app");
    const auto finished = world.run({"move", "app", "Tunnel", "Menu Meters", "--drive", "Studio Drive", "--yes"});
    EXPECT_EQ(finished.status, 1);
    EXPECT_THAT(linesOf(finished.errors), Contains("Tunnel: Destination already exists."));
    EXPECT_EQ(linesOf(finished.errors).back(), "Completed with 1 failure.");
    EXPECT_THAT(finished.output, HasSubstr("Moved Menu Meters to "));
    EXPECT_FALSE(fs::is_symlink(world.machine.root / "Applications/Tunnel.app"));
}

TEST(AppMoveCommand, AsksBeforeItMoves) {
    const CommandWorld world;
    const auto before = test::pictureOf(world.machine.root);
    const auto finished = world.run({"move", "app", "Tunnel", "--drive", "Studio Drive"});
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(finished.errors, "There is no terminal to ask on: pass --yes to go ahead without a question.\n");
    EXPECT_EQ(test::pictureOf(world.machine.root), before);
    const auto record = world.run({"move", "app", "Tunnel", "--drive", "Studio Drive", "--format", "tsv"});
    EXPECT_EQ(record.status, 1);
    EXPECT_THAT(columnOf(record.output, "status"), ElementsAre("failed"));
}

TEST(AppMoveCommand, PutsNothingWhereTheDriveLeadsElsewhere) {
    const CommandWorld world;
    const auto elsewhere = world.machine.root / "Elsewhere";
    test::makeFolder(elsewhere);
    fs::rename(world.drive / "ExternalTarvik", world.drive / "Old");
    test::makeLink(world.drive / "ExternalTarvik", elsewhere);
    const auto finished = world.run({"move", "app", "Tunnel", "--drive", "Studio Drive", "--yes"});
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(finished.errors,
              "What is moved to Studio Drive would land in " + elsewhere.native() + ", which is not on that drive.\n");
    EXPECT_TRUE(fs::is_empty(elsewhere));
    EXPECT_EQ(world.run({"move", "app", "Tunnel", "--drive", "Studio Drive", "--dry-run"}).status, 1)
        << "it ends as the move would";
}

TEST(AppMoveCommand, SaysWhatCannotComeBack) {
    const CommandWorld world;
    const auto local = world.run({"move", "restore", "Tunnel", "--yes"});
    EXPECT_EQ(local.status, 1);
    EXPECT_EQ(local.errors, "No symlink found for Tunnel.\n");
    const auto unknown = world.run({"move", "restore", "wonder", "--yes"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_THAT(unknown.errors, HasSubstr("\nUsage: tarvik move restore NAME|PATH...\n"));
    const auto record = world.run({"move", "restore", "Tunnel", "--yes", "--format", "toml"});
    EXPECT_EQ(toml::parse(record.output)["status"].value<std::string>(), "failed");
}

}  // namespace tarvik
