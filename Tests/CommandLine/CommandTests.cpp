#include "CommandLine/CommandWorld.h"
#include "CommandLine/Grammar/Verbs.h"
#include "CommandLine/Lines.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <toml++/toml.h>

namespace tarvik {

namespace {

using test::cellsOf;
using test::CommandWorld;
using test::linesOf;
using testing::HasSubstr;
using testing::StartsWith;
using Streams = test::RunningProgram::Streams;

}  // namespace

TEST(Command, ListsTheDrivesForEyes) {
    const CommandWorld world;
    const auto finished = world.run({"drives"});
    EXPECT_EQ(finished.status, 0);
    EXPECT_EQ(finished.errors, "");
    const auto lines = linesOf(finished.output);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_THAT(lines[0], testing::ContainsRegex("^Name +Size +Free +Format +Kind +Writable +Mounted at$"));
    EXPECT_THAT(lines[1], StartsWith("Backup "));
    EXPECT_THAT(lines[2], StartsWith("Studio Drive "));
    for (const auto& line : lines) EXPECT_EQ(line.find("external") == std::string::npos, &line == &lines[0]);
    EXPECT_EQ(lines[1].find((world.machine.root / "Volumes/Backup").native()), lines[0].find("Mounted at"));
    EXPECT_EQ(lines[2].find(world.drive.native()), lines[0].find("Mounted at"));
}

TEST(Command, ListsTheDrivesForPrograms) {
    const CommandWorld world;
    const auto tsv = linesOf(world.run({"drives", "--format", "tsv"}).output);
    ASSERT_EQ(tsv.size(), 3U);
    EXPECT_EQ(tsv[0], "name\tmountPath\ttotalBytes\tfreeBytes\tformat\tkind\twritable");
    const auto cells = cellsOf(tsv[2]);
    ASSERT_EQ(cells.size(), 7U);
    EXPECT_EQ(cells[0], "Studio Drive");
    EXPECT_EQ(cells[1], world.drive.native());
    EXPECT_GT(std::stoll(cells[2]), std::stoll(cells[3]));

    const auto toml = toml::parse(world.run({"drives", "--format", "toml"}).output);
    ASSERT_EQ(toml["drives"].as_array()->size(), 2U);
    EXPECT_EQ(toml["drives"][1]["mountPath"].value<std::string>(), world.drive.native());
    EXPECT_EQ(toml["drives"][1]["totalBytes"].value<std::string>(), std::nullopt);
    EXPECT_GT(toml["drives"][1]["totalBytes"].value<std::int64_t>(), 0);
}

TEST(Command, KeepsOddNamesOfDrivesInTheirCells) {
    const CommandWorld world;
    const std::string name = "tab\there\nand\\there\x1B[2J" + std::string(180, 'x');
    test::makeFolder(world.machine.root / "Volumes" / name);
    const auto tsv = linesOf(world.run({"drives", "--format", "tsv"}).output);
    ASSERT_EQ(tsv.size(), 4U);
    EXPECT_THAT(tsv[3], StartsWith("tab\\there\\nand\\\\there\x1B[2Jxxx"));
    EXPECT_EQ(cellsOf(tsv[3]).size(), 7U);
    const auto toml = toml::parse(world.run({"drives", "--format", "toml"}).output);
    EXPECT_EQ(toml["drives"][2]["name"].value<std::string>(), name);
    const auto human = linesOf(world.run({"drives"}).output);
    ASSERT_EQ(human.size(), 4U);
    EXPECT_EQ(human[3].find('\x1B'), std::string::npos);
    EXPECT_EQ(human[1].find("/"), human[0].find("Mounted at"));
}

TEST(Command, SaysWhenThereAreNoDrives) {
    const CommandWorld world;
    fs::remove_all(world.machine.root / "Volumes");
    world.expectEmptyList("drives", "No drives are mounted.");
}

TEST(Command, MovesAFolderAndBringsItBack) {
    const CommandWorld world;
    const auto before = test::pictureOf(world.library);
    const auto away = test::runProgram(world.command, world.moveOfLibrary({"--yes"}));
    EXPECT_EQ(away.output, "Moved Logic Pro Library.bundle to " + world.moved.native() + ".\n");
    EXPECT_EQ(away.errors, "copying\nverifying\nlinking\n");
    EXPECT_EQ(away.status, 0);
    EXPECT_EQ(fs::read_symlink(world.library), world.moved);
    EXPECT_EQ(test::pictureOf(world.moved), before);

    const auto back = world.run({"move", "restore", world.library.native() + "/", "--yes"});
    EXPECT_EQ(back.output, "Moved Logic Pro Library.bundle back to " + world.library.native() + ".\n");
    EXPECT_EQ(back.status, 0);
    EXPECT_FALSE(fs::is_symlink(world.library));
    EXPECT_EQ(test::pictureOf(world.library), before);
    EXPECT_FALSE(fs::exists(world.moved));
}

TEST(Command, MovesToADriveGivenByItsMountPath) {
    const CommandWorld world;
    const auto finished =
        world.run({"move", "folder", world.library.native(), "--yes", "--drive", world.drive.native() + "/"});
    EXPECT_EQ(finished.status, 0) << finished.errors;
    EXPECT_TRUE(fs::is_symlink(world.library));
}

TEST(Command, WritesTheOutcomeForPrograms) {
    const CommandWorld world;
    const auto away = test::runProgram(world.command, world.moveOfLibrary({"--yes", "--format", "toml"}));
    EXPECT_EQ(away.errors, "");
    const auto record = toml::parse(away.output);
    EXPECT_EQ(record["label"].value<std::string>(), "Logic Pro Library.bundle");
    EXPECT_EQ(record["source"].value<std::string>(), world.library.native());
    EXPECT_EQ(record["destination"].value<std::string>(), world.moved.native());
    EXPECT_GT(record["bytes"].value<std::int64_t>(), 0);
    EXPECT_EQ(record["status"].value<std::string>(), "done");
    EXPECT_EQ(record["description"].value<std::string>(),
              "Moved Logic Pro Library.bundle to " + world.moved.native() + ".");

    const auto back =
        linesOf(world.run({"move", "restore", world.library.native(), "--yes", "--format", "tsv"}).output);
    ASSERT_EQ(back.size(), 2U);
    EXPECT_EQ(back[0], "label\tsource\tdestination\tbytes\tstatus\tdescription");
    const auto cells = cellsOf(back[1]);
    EXPECT_EQ(cells[1], world.moved.native());
    EXPECT_EQ(cells[2], world.library.native());
    EXPECT_EQ(cells[3], std::to_string(record["bytes"].value<std::int64_t>().value()));
    EXPECT_EQ(cells[4], "done");
}

TEST(Command, RefusesToActTwice) {
    const CommandWorld world;
    ASSERT_EQ(test::runProgram(world.command, world.moveOfLibrary({"--yes"})).status, 0);
    const auto picture = test::pictureOf(world.machine.root);
    const auto again = test::runProgram(world.command, world.moveOfLibrary({"--yes"}));
    EXPECT_EQ(again.status, 1);
    EXPECT_EQ(again.output, "");
    EXPECT_EQ(again.errors, "Logic Pro Library.bundle is already a symlink to " + world.moved.native() + ".\n");
    EXPECT_EQ(test::pictureOf(world.machine.root), picture);

    ASSERT_EQ(world.run({"move", "restore", world.library.native(), "--yes"}).status, 0);
    const auto restoredTwice = world.run({"move", "restore", world.library.native(), "--yes"});
    EXPECT_EQ(restoredTwice.status, 1);
    EXPECT_THAT(restoredTwice.errors, HasSubstr("is not a symlink"));
}

TEST(Command, TellsAFailedMoveInItsRecordToo) {
    const CommandWorld world;
    test::makeFile(world.moved / "in the way");
    const auto finished = test::runProgram(world.command, world.moveOfLibrary({"--yes", "--format", "toml"}));
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(finished.errors, "Destination already exists.\n");
    const auto record = toml::parse(finished.output);
    EXPECT_EQ(record["status"].value<std::string>(), "failed");
    EXPECT_EQ(record["description"].value<std::string>(), "Destination already exists.");
    EXPECT_FALSE(fs::is_symlink(world.library));
}

TEST(Command, CallsADriveThatIsNotThereAWrongCommandLine) {
    const CommandWorld world;
    for (const std::string drive : {"Nope", "/Volumes/Nope", "."}) {
        const auto finished = world.run({"move", "folder", world.library.native(), "--yes", "--drive", drive});
        EXPECT_EQ(finished.status, 2);
        EXPECT_THAT(finished.errors, HasSubstr("There is no drive \"" + drive + "\". There is: Backup ("));
        EXPECT_THAT(finished.errors, HasSubstr("\nUsage: tarvik move folder PATH --drive DRIVE\n"));
    }
    const auto inside =
        world.run({"move", "folder", world.library.native(), "--yes", "--drive", (world.drive / "Sessions").native()});
    EXPECT_EQ(inside.status, 2);
    EXPECT_THAT(inside.errors, HasSubstr("is a place on the drive Studio Drive, not the drive itself."));
}

TEST(Command, CallsAMachineThatIsNotThereAWrongCommandLine) {
    const test::TemporaryFolder folder;
    const CommandWorld world;
    for (const auto& root : {folder / "nothing", folder.path()})
        EXPECT_EQ(test::runProgram(world.command, {"drives", "--root", root.native()}).status, 2);
}

TEST(Command, EndsWithStatusTwoForEveryWrongUse) {
    const CommandWorld world;
    const std::vector<std::vector<std::string>> wrong = {{},
                                                         {"frobnicate"},
                                                         {"move"},
                                                         {"move", "folder"},
                                                         {"move", "restore"},
                                                         {"move", "app"},
                                                         {"apps", "a", "b"},
                                                         {"links", "x"},
                                                         {"backup"},
                                                         {"backup", "create", "x"},
                                                         {"backup", "list", "x"},
                                                         {"drives", "--format", "xml"},
                                                         {"drives", "x"},
                                                         {"--nope"},
                                                         {"move", "folder", "", "--drive", "Backup", "--yes"},
                                                         {"move", "restore", "", "--yes"}};
    for (const auto& arguments : wrong) {
        const auto finished = test::runProgram(world.command, arguments);
        EXPECT_EQ(finished.status, 2);
        EXPECT_EQ(finished.output, "");
        EXPECT_THAT(finished.errors, HasSubstr(".\nUsage: tarvik "));
        EXPECT_LE(linesOf(finished.errors).size(), 1 + CommandLine::Verbs::beginningWith({}).size()) << finished.errors;
    }
}

TEST(Command, GivesHelpAndVersionOnStandardOutput) {
    const CommandWorld world;
    const auto help = test::runProgram(world.command, {"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, HasSubstr("move"));
    EXPECT_EQ(help.errors, "");
    EXPECT_EQ(test::runProgram(world.command, {"--version"}).output, "tarvik " TARVIK_VERSION "\n");
}

TEST(Command, RefusesToActUnaskedWithoutATerminal) {
    const CommandWorld world;
    const auto picture = test::pictureOf(world.machine.root);
    const auto finished = test::runProgram(world.command, world.moveOfLibrary());
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(finished.errors, "There is no terminal to ask on: pass --yes to go ahead without a question.\n");
    EXPECT_EQ(test::pictureOf(world.machine.root), picture);
}

TEST(Command, MovesFoldersWithOddNames) {
    TARVIK_NEEDS_NAMES_OF_ANY_BYTES();
    const CommandWorld world;
    for (const std::string name : {" ", "-x", "a\nb", "写真 \xF0\x9F\x8E\xB9",
                                   "bad\xFF"
                                   "bytes",
                                   "100% {} \\n", "\x1B[2J"}) {
        const auto folder = world.machine.home / name;
        test::makeFile(folder / "file", name);
        const auto away = world.run({"move", "folder", folder.native(), "--drive", "Backup", "--yes"});
        EXPECT_EQ(away.status, 0) << away.errors;
        EXPECT_TRUE(fs::is_symlink(folder));
        EXPECT_EQ(test::contentOf(folder / "file"), name);
        const auto back = world.run({"move", "restore", folder.native(), "--yes"});
        EXPECT_EQ(back.status, 0) << back.errors;
        EXPECT_EQ(back.output.find('\x1B'), std::string::npos);
        EXPECT_FALSE(fs::is_symlink(folder));
        EXPECT_EQ(test::contentOf(folder / "file"), name);
    }
}

}  // namespace tarvik
