#include "Backups/BackupService.h"
#include "CommandLine/CommandWorld.h"
#include "CommandLine/Lines.h"
#include "Platform/Files/Files.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <toml++/toml.h>

#include <csignal>
#include <set>
#include <unistd.h>

namespace tarvik {

namespace {

using test::cellsOf;
using test::columnOf;
using test::CommandWorld;
using test::linesOf;
using test::RunningProgram;
using testing::HasSubstr;
using testing::MatchesRegex;
using Arguments = std::vector<std::string>;
using Streams = RunningProgram::Streams;

Arguments backupOf(const std::vector<fs::path>& paths, const Arguments& more = {"--yes"},
                   const std::string& drive = "Studio Drive") {
    Arguments arguments = {"backup", "create", "--drive", drive};
    for (const auto& path : paths) arguments.push_back(path);
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

fs::path backupsOn(const fs::path& drive) {
    return drive / "TarvikBackups";
}

/// The folders of the backups on a drive, whole or not.
std::vector<fs::path> foldersOn(const fs::path& drive) {
    std::vector<fs::path> folders;
    if (fs::exists(backupsOn(drive)))
        for (const auto& entry : fs::directory_iterator(backupsOn(drive))) folders.push_back(entry.path());
    return folders;
}

/// Stands in the middle of its work until it is ended.
constexpr auto stuckDitto = R"(mkdir -p "$3"; echo part > "$3/part"; echo caught > "${0%/*}/caught"; exec sleep 600)";

}  // namespace

TEST(BackupCommand, CopiesAndLists) {
    const CommandWorld world;
    const auto before = test::pictureOf(world.library);
    test::makeFile(world.machine.home / "notes.txt", "notes");
    const auto made = world.run(backupOf({world.library, world.machine.home / "notes.txt"}));
    EXPECT_EQ(made.status, 0);
    EXPECT_EQ(made.errors, "backing up\n");
    const auto folders = foldersOn(world.drive);
    ASSERT_EQ(folders.size(), 1U);
    EXPECT_EQ(made.output, "Backed up 2 items to " + folders.front().native() + "\n");
    EXPECT_EQ(test::pictureOf(folders.front() / world.library.filename()), before);
    EXPECT_EQ(test::pictureOf(world.library), before);
    EXPECT_EQ(test::contentOf(folders.front() / "notes.txt"), "notes");

    const auto listed = world.run({"backup", "list", "--drive", "Studio Drive"});
    EXPECT_EQ(listed.status, 0);
    EXPECT_EQ(listed.errors, "");
    const auto lines = linesOf(listed.output);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_THAT(lines[0], testing::ContainsRegex("^Backup +Complete since +Files in folders +Where$"));
    EXPECT_THAT(lines[1], testing::StartsWith(folders.front().filename().native() + "  20"));
    EXPECT_THAT(lines[1], testing::EndsWith("  " + folders.front().native()));
}

TEST(BackupCommand, WritesForPrograms) {
    const CommandWorld world;
    const auto made = world.run(backupOf({world.library}, {"--yes", "--format", "toml"}));
    EXPECT_EQ(made.errors, "");
    const auto record = toml::parse(made.output);
    EXPECT_EQ(record["status"].value<std::string>(), "done");
    EXPECT_EQ(record["path"].value<std::string>(), foldersOn(world.drive).front().native());
    EXPECT_EQ(record["id"].value<std::string>(), foldersOn(world.drive).front().filename());
    EXPECT_GT(record["bytes"].value<std::int64_t>(), 0);
    const auto files = BackupService::countFiles(world.library);
    EXPECT_EQ(record["sourceFileCount"].value<std::int64_t>(), files);
    EXPECT_EQ(record["backupFileCount"].value<std::int64_t>(), files);

    const auto tsv = linesOf(world.run({"backup", "list", "--drive", "Studio Drive", "--format", "tsv"}).output);
    ASSERT_EQ(tsv.size(), 2U);
    EXPECT_EQ(tsv[0], "id\tpath\tcreatedAt\tsourceFileCount\tbackupFileCount");
    const auto cells = cellsOf(tsv[1]);
    EXPECT_EQ(cells[1], foldersOn(world.drive).front().native());
    EXPECT_EQ(cells[2], record["createdAt"].value<std::string>());
    EXPECT_EQ(cells[3], std::to_string(files));

    const auto toml = toml::parse(world.run({"backup", "list", "--drive", "Studio Drive", "--format", "toml"}).output);
    ASSERT_EQ(toml["backups"].as_array()->size(), 1U);
    EXPECT_EQ(toml["backups"][0]["backupFileCount"].value<std::int64_t>(), files);
}

TEST(BackupCommand, ListsNothingAsNothing) {
    const CommandWorld world;
    const auto before = test::pictureOf(world.machine.root);
    const auto human = world.run({"backup", "list", "--drive", "Studio Drive"});
    EXPECT_EQ(human.output, "");
    EXPECT_EQ(human.errors, "There are no backups on Studio Drive.\n");
    EXPECT_EQ(human.status, 0);
    EXPECT_EQ(linesOf(world.run({"backup", "list", "--drive", "Studio Drive", "--format", "tsv"}).output).size(), 1U);
    EXPECT_EQ(world.run({"backup", "list", "--drive", "Studio Drive", "--format", "toml"}).output, "backups = []\n");
    EXPECT_EQ(test::pictureOf(world.machine.root), before);
}

TEST(BackupCommand, GivesEachBackupAFolderOfItsOwn) {
    const CommandWorld world;
    for (int turn = 0; turn < 3; ++turn) ASSERT_EQ(world.run(backupOf({world.library})).status, 0);
    EXPECT_EQ(foldersOn(world.drive).size(), 3U);
    const auto tsv = world.run({"backup", "list", "--drive", "Studio Drive", "--format", "tsv"}).output;
    const auto ids = columnOf(tsv, "id");
    EXPECT_EQ(std::set<std::string>(ids.begin(), ids.end()).size(), 3U);
    EXPECT_TRUE(std::is_sorted(ids.rbegin(), ids.rend())) << "the newest first";
}

TEST(BackupCommand, TellsWhereADriveIsMountedNow) {
    const CommandWorld world;
    ASSERT_EQ(world.run(backupOf({world.library})).status, 0);
    const auto moved = world.drive.parent_path() / "Renamed";
    fs::rename(world.drive, moved);
    const auto tsv = world.run({"backup", "list", "--drive", "Renamed", "--format", "tsv"}).output;
    EXPECT_EQ(columnOf(tsv, "path"), Arguments{foldersOn(moved).front()});
}

TEST(BackupCommand, SaysWhyABackupIsRefusedAndChangesNothing) {
    const CommandWorld world;
    const auto home = world.machine.home;
    for (const auto* app : {"One.app/x", "Two.app/x"}) test::makeFile(home / app);
    const auto picture = test::pictureOf(world.machine.root);
    const auto errorsOf = [&](const std::vector<fs::path>& paths) {
        const auto finished = world.run(backupOf(paths));
        EXPECT_EQ(finished.status, 1);
        EXPECT_EQ(finished.output, "");
        EXPECT_EQ(linesOf(finished.errors).size(), 1U) << finished.errors;
        return finished.errors;
    };
    EXPECT_EQ(errorsOf({home / "Nothing"}), "Nothing stands at " + (home / "Nothing").native() + ".\n");
    EXPECT_THAT(errorsOf({home / "One.app", home / "Two.app"}),
                HasSubstr("would both bear the name InstalledApp.app."));
    EXPECT_THAT(errorsOf({world.drive}), HasSubstr("holds the backups themselves"));
    EXPECT_EQ(test::pictureOf(world.machine.root), picture);
}

TEST(BackupCommand, CallsAWrongUseByItsName) {
    const CommandWorld world;
    const auto errorsOf = [&](const Arguments& arguments) {
        const auto finished = world.run(arguments);
        EXPECT_EQ(finished.status, 2);
        EXPECT_EQ(finished.output, "");
        return finished.errors;
    };
    EXPECT_THAT(errorsOf(backupOf({world.library}, {}, "Nope")), HasSubstr("There is no drive \"Nope\". There is: "));
    EXPECT_THAT(errorsOf({"backup", "list", "--drive", "Nope"}),
                HasSubstr("\nUsage: tarvik backup list --drive DRIVE\n"));
    EXPECT_EQ(errorsOf({"backup", "create", "--drive", "Studio Drive"}),
              "Name what shall be backed up: a PATH is missing.\n"
              "Usage: tarvik backup create PATH... --drive DRIVE\n");
    EXPECT_TRUE(foldersOn(world.drive).empty());
}

TEST(BackupCommand, AsksAndShowsItsProgressOnATerminal) {
    const CommandWorld world;
    RunningProgram refused(world.command, world.onMachine(backupOf({world.library}, {})), Streams::terminal);
    ASSERT_TRUE(refused.waitForOutput("Back Up? [y/N] "));
    refused.type("n\n");
    const auto no = refused.finish();
    EXPECT_EQ(no.status, 1);
    EXPECT_THAT(no.output, HasSubstr("Cancelled. Nothing was changed."));
    EXPECT_TRUE(foldersOn(world.drive).empty());

    RunningProgram program(world.command, world.onMachine(backupOf({world.library}, {})), Streams::terminal);
    ASSERT_TRUE(program.waitForOutput("Back Up? [y/N] "));
    EXPECT_TRUE(foldersOn(world.drive).empty());
    program.type("y\n");
    const auto yes = program.finish();
    EXPECT_EQ(yes.status, 0);
    EXPECT_THAT(yes.output, HasSubstr("Back up 1 item to Studio Drive?"));
    EXPECT_THAT(yes.output, HasSubstr("The originals stay as they are."));
    EXPECT_THAT(yes.output, HasSubstr("backing up Logic Pro Library.bundle  ["));
    EXPECT_THAT(yes.output, HasSubstr("Backed up 1 item to "));
    EXPECT_EQ(foldersOn(world.drive).size(), 1U);
}

TEST(BackupCommand, RefusesToActUnaskedWithoutATerminal) {
    const CommandWorld world;
    const auto finished = world.run(backupOf({world.library}, {}));
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(finished.errors, "There is no terminal to ask on: pass --yes to go ahead without a question.\n");
    EXPECT_TRUE(foldersOn(world.drive).empty());
}

TEST(BackupCommand, TakesOddNames) {
    TARVIK_NEEDS_NAMES_OF_ANY_BYTES();
    const CommandWorld world;
    std::vector<fs::path> paths;
    for (const std::string name : {" ", "-x", "a\nb", "写真 \xF0\x9F\x8E\xB9",
                                   "bad\xFF"
                                   "bytes",
                                   "100% {} \\n", "\x1B[2J", "[x]"}) {
        paths.push_back(world.machine.home / "odd" / name);
        test::makeFile(paths.back() / "file", name);
    }
    const auto finished = world.run(backupOf(paths));
    EXPECT_EQ(finished.status, 0) << finished.errors;
    ASSERT_EQ(foldersOn(world.drive).size(), 1U);
    for (const auto& path : paths)
        EXPECT_EQ(test::pictureOf(foldersOn(world.drive).front() / path.filename()), test::pictureOf(path));
    RunningProgram asked(world.command, world.onMachine(backupOf({world.machine.home / "odd/\x1B[2J"}, {})),
                         Streams::terminal);
    ASSERT_TRUE(asked.waitForOutput("[y/N] "));
    asked.type("y\n");
    EXPECT_EQ(asked.finish().output.find("\x1B[2J"), std::string::npos) << "no name steers the terminal";
}

TEST(BackupCommand, KeepsALineForEachSentenceWhateverANameHolds) {
    const CommandWorld world;
    const auto odd = world.machine.home / "one\nBacked up 9 items";
    test::makeFile(odd / "file");
    test::makePipe(odd / "pipe");
    fs::rename(world.drive, world.drive.parent_path() / "two\nlines");
    const auto made = world.run(backupOf({odd}, {"--yes"}, world.drive.parent_path() / "two\nlines"));
    EXPECT_EQ(made.status, 0) << made.errors;
    EXPECT_EQ(linesOf(made.output).size(), 1U) << made.output;
    const auto said = linesOf(made.errors);
    EXPECT_EQ(said.size(), 3U) << "what is left out, the step, and that the copy lacks a file: " << made.errors;
    EXPECT_THAT(said.front(), HasSubstr(" is backed up without "));
    const auto refused = world.run(backupOf({world.machine.home / "no\nsuch"}, {"--yes"}, "nowhere\nat all"));
    EXPECT_EQ(linesOf(refused.errors).size(), 2U) << refused.errors;
}

TEST(BackupCommand, SaysThatCopiesLackFiles) {
    const CommandWorld world;
    test::makeFile(world.machine.home / "Docs/Tarvik notes");
    test::makeFile(world.machine.home / "Docs/App notes");
    const auto finished = world.run(backupOf({world.machine.home / "Docs"}));
    EXPECT_EQ(finished.status, 0);
    EXPECT_EQ(finished.errors, "backing up\nThe folders held 2 files, their copies hold 1.\n");
}

TEST(BackupCommand, TellsAFailureAndWhereTheCopiesStay) {
    TARVIK_NEEDS_MADE_TOOLS();
    const CommandWorld world(
        R"(case $2 in */Docs) mkdir "$3"; echo half > "$3/half"; echo 'no room' >&2; exit 1;; esac; cp -aT "$2" "$3")");
    const auto docs = world.machine.home / "Docs";
    test::makeFile(docs / "note");
    const auto human = world.run(backupOf({world.library, docs}));
    EXPECT_EQ(human.status, 1);
    EXPECT_EQ(human.output, "");
    ASSERT_EQ(foldersOn(world.drive).size(), 1U);
    const auto left = foldersOn(world.drive).front();
    EXPECT_EQ(Files::names(left), std::vector{world.library.filename().native()}) << "half a copy does not";
    EXPECT_EQ(human.errors, "backing up\nWhat was copied so far stays in " + left.native() +
                                ".\nCopy failed: ditto failed: no room\n");
    const auto list = world.run({"backup", "list", "--drive", "Studio Drive"});
    EXPECT_EQ(list.errors, "No complete backup, in " + backupsOn(world.drive).native() + ": " +
                               left.filename().native() + ".\nThere are no backups on Studio Drive.\n");

    const auto tsv = linesOf(world.run(backupOf({world.library, docs}, {"--yes", "--format", "tsv"})).output);
    ASSERT_EQ(tsv.size(), 2U);
    EXPECT_EQ(tsv[0], "id\tpath\tcreatedAt\tsourceFileCount\tbackupFileCount\tbytes\tstatus\tdescription");
    const auto cells = cellsOf(tsv[1]);
    EXPECT_EQ(cells[0], "");
    EXPECT_EQ(cells[2], "");
    EXPECT_EQ(cells[6], "failed");
    EXPECT_EQ(cells[7], "Copy failed: ditto failed: no room");
}

TEST(BackupCommand, StoppedOrKilledInTheMiddleLeavesNoBackup) {
    TARVIK_NEEDS_MADE_TOOLS();
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGKILL}) {
        const CommandWorld world(stuckDitto);
        const auto before = test::pictureOf(world.library);
        RunningProgram program(world.command, world.onMachine(backupOf({world.library})));
        const auto sign = world.command.parent_path() / "stand-ins/caught";
        for (int tenths = 0; tenths < 600 && !fs::exists(sign); ++tenths) ::usleep(100000);
        ASSERT_TRUE(fs::exists(sign));
        program.signalGroup(signal);
        const auto finished = program.finish();
        EXPECT_EQ(finished.status, signal == SIGKILL ? 128 + SIGKILL : 1);
        if (signal != SIGKILL) {
            EXPECT_THAT(finished.errors, HasSubstr("Copy failed: ditto failed: exit " + std::to_string(signal)));
        }
        EXPECT_EQ(test::pictureOf(world.library), before);
        EXPECT_THAT(world.run({"backup", "list", "--drive", "Studio Drive"}).errors,
                    HasSubstr("There are no backups on Studio Drive."));
    }
}

TEST(BackupCommand, StoppedBetweenTwoCopiesBeginsNoOther) {
    TARVIK_NEEDS_MADE_TOOLS();
    for (const std::string signal : {"INT", "TERM", "HUP"}) {
        const CommandWorld world("trap '' INT TERM HUP; cp -aT \"$2\" \"$3\" && kill -" + signal + " $PPID");
        test::makeFile(world.machine.home / "Docs/letter");
        const auto stopped = world.run(backupOf({world.library, world.machine.home / "Docs"}));
        EXPECT_EQ(stopped.status, 1);
        EXPECT_EQ(stopped.output, "");
        ASSERT_EQ(foldersOn(world.drive).size(), 1U);
        const auto left = foldersOn(world.drive).front();
        EXPECT_EQ(stopped.errors, "backing up\nWhat was copied so far stays in " + left.native() +
                                      ".\nThe backup was stopped after 1 of 2 items. It is not complete.\n");
        EXPECT_EQ(test::pictureOf(left / world.library.filename()), test::pictureOf(world.library));
        EXPECT_FALSE(fs::exists(left / "Docs"));
        EXPECT_THAT(world.run({"backup", "list", "--drive", "Studio Drive"}).errors,
                    HasSubstr("There are no backups on Studio Drive."));
    }
}

TEST(BackupCommand, SaysWhatAFullDriveOrAReadOnlyOneLacks) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const CommandWorld world;
    auto volume = test::RealVolume::memory(world.machine.root / "Volumes", 4'000'000);
    const auto drive = volume.path().native();
    ASSERT_EQ(world.run(backupOf({world.machine.home / "Documents"}, {"--yes"}, drive)).status, 0);

    test::makeFileOfSize(world.library / "large", 8'000'000);
    EXPECT_THAT(world.run(backupOf({world.library}, {"--yes"}, drive)).errors,
                MatchesRegex("Need [0-9.]+ MB but .* has [0-9.]+ [KM]B\\.\n"));
    // What is hidden is not measured: it shows only in the middle.
    fs::rename(world.library / "large", world.library / ".large");
    const auto full = world.run(backupOf({world.library}, {"--yes"}, drive));
    EXPECT_EQ(full.status, 1);
    EXPECT_THAT(full.errors, HasSubstr("No space left on device"));
    EXPECT_EQ(columnOf(world.run({"backup", "list", "--drive", drive, "--format", "tsv"}).output, "id").size(), 1U);

    volume.remountReadOnly();
    const auto readOnly = world.run(backupOf({world.library}, {"--yes"}, drive));
    EXPECT_EQ(readOnly.status, 1);
    EXPECT_THAT(readOnly.errors, MatchesRegex(".* is read-only. Choose another drive.\n"));
    EXPECT_EQ(columnOf(world.run({"backup", "list", "--drive", drive, "--format", "tsv"}).output, "id").size(), 1U)
        << "what cannot be written to can be read";
}

}  // namespace tarvik
