#include "CommandLine/CommandWorld.h"
#include "CommandLine/Lines.h"
#include "Support/EnvironmentVariable.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <toml++/toml.h>

namespace tarvik {

namespace {

using test::CommandWorld;
using test::TemporaryFolder;
using testing::HasSubstr;
using Streams = test::RunningProgram::Streams;

/// An act that is refused before it begins, and changes nothing.
class Refusal : public testing::Test {
protected:
    std::string refusalOf(const std::vector<std::string>& arguments) const {
        const auto before = test::pictureOf(world.machine.root);
        const auto finished = world.run(arguments);
        EXPECT_EQ(finished.status, 1);
        EXPECT_EQ(finished.output, "");
        EXPECT_EQ(test::pictureOf(world.machine.root), before);
        return finished.errors;
    }
    std::string ofMove(const fs::path& folder) const {
        return refusalOf({"move", "folder", folder.native(), "--drive", "Studio Drive", "--yes"});
    }
    std::string ofRestore(const fs::path& link) const { return refusalOf({"move", "restore", link.native(), "--yes"}); }

    CommandWorld world;
    const fs::path home = world.machine.home;
    const fs::path root = world.machine.root;
};

}  // namespace

TEST_F(Refusal, OfMovesThatCouldOnlyDoHarm) {
    EXPECT_EQ(ofMove(home / "Nothing"), "Source folder doesn't exist.\n");
    EXPECT_EQ(ofMove(home), "The home folder can't be moved.\n");
    EXPECT_EQ(ofMove(home / "Music/.."), "The home folder can't be moved.\n");
    EXPECT_EQ(ofMove("/"), "/ holds the home folder and can't be moved.\n");
    EXPECT_EQ(ofMove(root), root.native() + " holds the home folder and can't be moved.\n");
    for (const char* name : {"Library", "Volumes"})
        EXPECT_EQ(ofMove(root / name), (root / name).native() + " belongs to the system and can't be moved.\n");
    EXPECT_EQ(ofMove("/usr"), "/usr belongs to the system and can't be moved.\n");
    EXPECT_EQ(ofMove(world.drive), "Studio Drive is the target drive itself and can't be moved to it.\n");
    EXPECT_EQ(ofMove(world.drive / "Sessions"), "Sessions is on Studio Drive already.\n");
}

TEST_F(Refusal, OfPathsThatMayMeanTwoPlaces) {
    test::makeFolder(home / "Music/Here");
    test::makeLink(home / "there", root / "Library");
    const auto written = home / "there/../Music/Here";
    const std::string sentence = "With \"..\" behind a symlink, " + written.native() + " may mean " +
                                 (root / "Music/Here").native() + " or " + (home / "Music/Here").native() +
                                 ". Name the one that is meant.\n";
    EXPECT_EQ(ofMove(written), sentence);
    EXPECT_EQ(ofRestore(written), sentence);
    const auto drive = world.run(
        {"move", "folder", world.library.native(), "--yes", "--drive", (home / "there/../Volumes/Backup").native()});
    EXPECT_EQ(drive.status, 2);
    EXPECT_THAT(drive.errors, HasSubstr("With \"..\" behind a symlink, "));
}

TEST_F(Refusal, OfFoldersThatAreNotOnTheMachine) {
    const TemporaryFolder outside;
    test::makeFolder(outside / "Music");
    EXPECT_EQ(ofMove(outside / "Music"),
              (outside / "Music").native() + " is not on the machine in " + root.native() + ".\n");
    EXPECT_TRUE(fs::is_directory(fs::symlink_status(outside / "Music")));
}

TEST_F(Refusal, OfALinkThatNoMoveHasLeft) {
    test::makeFile(home / "Projects/one");
    test::makeLink(home / "Work", home / "Projects");
    EXPECT_EQ(
        ofRestore(home / "Work"),
        "Work is not a symlink that Tarvik has left. Leave out --yes and answer the question to bring back what it "
        "leads to.\n");
    test::makeLink(home / "Near", "Projects");
    EXPECT_THAT(ofRestore(home / "Near"), HasSubstr("Near is a relative symlink, to Projects: "));

    test::RunningProgram program(world.command, world.onMachine({"move", "restore", (home / "Work").native()}),
                                 Streams::terminal);
    ASSERT_TRUE(program.waitForOutput("Move Back? [y/N] "));
    program.type("y\n");
    const auto finished = program.finish();
    EXPECT_THAT(finished.output, HasSubstr("Work is not a symlink that Tarvik has left."));
    EXPECT_EQ(finished.status, 0);
    EXPECT_EQ(test::contentOf(home / "Work/one"), "content");
    EXPECT_FALSE(fs::exists(home / "Projects"));
}

TEST_F(Refusal, OfALinkWhoseDriveIsNotConnected) {
    ASSERT_EQ(test::runProgram(world.command, world.moveOfLibrary({"--yes"})).status, 0);
    fs::rename(world.drive, root / "unplugged");
    EXPECT_EQ(ofRestore(world.library), "Logic Pro Library.bundle is on a drive that is not connected: " +
                                            world.moved.native() + ". Connect it and try again.\n");
}

TEST_F(Refusal, IsARecordForPrograms) {
    const std::string name = "Not here";
    const auto folder = (home / name).native();
    const auto away = world.run({"move", "folder", folder + "/", "--drive", "Backup", "--yes", "--format", "toml"});
    EXPECT_EQ(away.status, 1);
    EXPECT_EQ(away.errors, "Source folder doesn't exist.\n");
    const auto record = toml::parse(away.output);
    EXPECT_EQ(record["label"].value<std::string>(), name);
    EXPECT_EQ(record["source"].value<std::string>(), folder);
    EXPECT_EQ(record["bytes"].value<std::int64_t>(), 0);
    EXPECT_EQ(record["status"].value<std::string>(), "failed");
    EXPECT_EQ(record["description"].value<std::string>(), "Source folder doesn't exist.");

    const auto back = world.run({"move", "restore", folder, "--format", "tsv"});
    EXPECT_EQ(back.status, 1);
    const std::string sentence = "Nothing stands at " + folder + ".";
    EXPECT_EQ(back.errors, sentence + "\n");
    EXPECT_EQ(back.output, "label\tsource\tdestination\tbytes\tstatus\tdescription\n" + name + "\t\t" + folder +
                               "\t0\tfailed\t" + sentence + "\n");

    const auto unasked = test::runProgram(world.command, world.moveOfLibrary({"--format", "tsv"}));
    const auto cells = test::cellsOf(test::linesOf(unasked.output).at(1));
    EXPECT_EQ(cells[2], world.moved.native());
    EXPECT_EQ(cells[4], "failed");
    EXPECT_THAT(cells[5], HasSubstr("There is no terminal to ask on"));
}

TEST_F(Refusal, OfAHomeThatIsNotThere) {
    const TemporaryFolder empty;
    const test::EnvironmentVariable variable("HOME", (empty / "home").native());
    const auto finished = test::runProgram(world.command, {"drives"});
    EXPECT_EQ(finished.status, 2);
    EXPECT_EQ(finished.output, "");
    EXPECT_THAT(finished.errors, HasSubstr("The home folder " + (empty / "home").native() + " does not exist.\n"));
    EXPECT_TRUE(fs::is_empty(empty.path()));
}

}  // namespace tarvik
