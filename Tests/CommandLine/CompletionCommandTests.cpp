#include "CommandLine/CommandWorld.h"
#include "CommandLine/Lines.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {

namespace {

using test::columnOf;
using test::CommandWorld;
using test::linesOf;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::StartsWith;
using Words = std::vector<std::string>;

/// The answer to what a shell asks: its lines without notes.
Words answer(const CommandWorld& world, const Words& words, const std::string& shell = "fish") {
    Words arguments = {"--complete", shell, "--root", world.machine.root.native()};
    arguments.insert(arguments.end(), words.begin(), words.end());
    const auto finished = test::runProgram(world.command, arguments);
    EXPECT_EQ(finished.status, 0);
    EXPECT_EQ(finished.errors, "");
    auto lines = linesOf(finished.output);
    for (auto& line : lines) line = line.substr(0, line.find('\t'));
    return lines;
}

Words bashAnswer(const CommandWorld& world, const std::string& line) {
    const auto whole = "tarvik --root '" + world.machine.root.native() + "' " + line;
    const auto finished = test::runProgram(world.command, {"--complete", "bash", whole, " \t\n\"'@><=;|&(:"});
    EXPECT_EQ(finished.status, 0);
    return linesOf(finished.output);
}

}  // namespace

TEST(CompletionCommand, OffersTheDrivesThatCanBeMeant) {
    const CommandWorld world;
    EXPECT_THAT(answer(world, {"move", "app", "DAW", "--drive", ""}), ElementsAre("nothing", "Backup", "Studio Drive"));
    EXPECT_THAT(answer(world, {"backup", "list", "--drive=S"}),
                ElementsAre("nothing", "--drive=Backup", "--drive=Studio Drive"));
    EXPECT_EQ(answer(world, {"backup", "list", "--drive", "/"}).front(), "folders");
}

TEST(CompletionCommand, OffersTheUninstallsThatCanBePutBack) {
    const CommandWorld world;
    ASSERT_EQ(world.run({"uninstall", "Full House", "--yes"}).status, 0);
    const auto ids = columnOf(world.run({"uninstall", "list", "--format", "tsv"}).output, "id");
    ASSERT_EQ(ids.size(), 1U);
    EXPECT_THAT(answer(world, {"uninstall", "undo", ""}), Contains(ids[0]));
    ASSERT_EQ(world.run({"uninstall", "undo", ids[0], "--yes"}).status, 0);
    EXPECT_THAT(answer(world, {"uninstall", "undo", ""}), Not(Contains(ids[0])));
    EXPECT_THAT(answer(world, {"uninstall", "list", ""}), Contains(ids[0]));
}

TEST(CompletionCommand, OffersTheApplicationsThatCanBeMeant) {
    const CommandWorld world;
    EXPECT_THAT(answer(world, {"apps", ""}), AllOf(Contains("写真館"), Contains("Faraway")));
    EXPECT_THAT(answer(world, {"move", "app", ""}), AllOf(Contains("Full House"), Not(Contains("Faraway"))));
    EXPECT_THAT(answer(world, {"move", "app", "Full House", ""}),
                AllOf(Contains("写真館"), Not(Contains("Full House"))));
    const auto back = answer(world, {"move", "restore", ""});
    EXPECT_THAT(back, AllOf(Contains("Faraway"), Contains("Launched"), Not(Contains("Full House"))));
    EXPECT_EQ(back.front(), "files");
}

TEST(CompletionCommand, LeavesPathsToTheShell) {
    const CommandWorld world;
    EXPECT_THAT(answer(world, {"move", "folder", ""}), ElementsAre("folders"));
    EXPECT_THAT(answer(world, {"backup", "create", "/"}), ElementsAre("files"));
    EXPECT_EQ(answer(world, {"apps", "/Appl"}).front(), "files");
    EXPECT_EQ(answer(world, {"apps", "App"}).front(), "nothing");
}

TEST(CompletionCommand, OffersAPathForANameThatTwoHave) {
    const CommandWorld world;
    const auto applications = world.machine.root / "Applications";
    fs::copy(applications / "Tunnel.app", applications / "Utilities/Tunnel.app", fs::copy_options::recursive);
    EXPECT_THAT(answer(world, {"apps", ""}),
                AllOf(Contains((applications / "Tunnel.app").native()),
                      Contains((applications / "Utilities/Tunnel.app").native()), Not(Contains("Tunnel"))));
}

TEST(CompletionCommand, OffersNoNameThatNoShellCouldType) {
    const CommandWorld world;
    test::makeFolder(world.machine.root / "Volumes/two\nlines");
    test::makeFolder(world.machine.root / "Volumes/tab\there");
    EXPECT_THAT(answer(world, {"backup", "list", "--drive", ""}), ElementsAre("nothing", "Backup", "Studio Drive"));
}

TEST(CompletionCommand, SaysNothingOfAMachineThatIsNotThere) {
    const CommandWorld world;
    EXPECT_THAT(answer(world, {"--root", "/nowhere", "backup", "list", "--drive", ""}), ElementsAre("nothing"));
}

TEST(CompletionCommand, GivesBashOnlyWhatFitsAndQuotesIt) {
    const CommandWorld world;
    EXPECT_THAT(bashAnswer(world, "move app DAW --drive S"), ElementsAre("nothing", "Studio\\ Drive"));
    EXPECT_THAT(bashAnswer(world, "move app DAW --drive \"stu"), ElementsAre("nothing", "Studio Drive"));
    EXPECT_THAT(bashAnswer(world, "move app DAW --drive=S"), ElementsAre("nothing", "Studio\\ Drive"));
    EXPECT_THAT(bashAnswer(world, "mo"), ElementsAre("nothing", "move"));
}

TEST(CompletionCommand, PrintsAScriptForEachShell) {
    const CommandWorld world;
    for (const auto* shell : {"bash", "zsh", "fish"}) {
        const auto script = test::runProgram(world.command, {"completion", shell});
        EXPECT_EQ(script.status, 0);
        EXPECT_THAT(script.output, testing::HasSubstr(std::string("--complete ") + shell));
    }
    const auto none = test::runProgram(world.command, {"completion"});
    EXPECT_EQ(none.status, 2);
    EXPECT_THAT(none.errors, StartsWith("Name the shell, one of: bash, zsh, fish.\n"));
    const auto unknown = test::runProgram(world.command, {"completion", "csh"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_THAT(unknown.errors,
                StartsWith("\"csh\" is no shell that can be completed in. There is: bash, zsh, fish.\n"));
}

}  // namespace tarvik
