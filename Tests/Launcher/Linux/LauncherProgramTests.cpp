// The program out of a launcher that was really made, run as the system would run it.
#include "Launchers/LauncherAppBuilder.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"
#include "Platform/Text/PropertyList.h"
#include "Support/Bundles.h"
#include "Support/OrdinaryUser.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace tarvik {

namespace {

PropertyList listNaming(const char* program) {
    return PropertyList::Dictionary{{"CFBundleExecutable", program}};
}

/// A world with an application on the drive, whose program writes down how it was called, and a launcher for it.
class LauncherProgram : public testing::Test {
protected:
    LauncherProgram() {
        world.host.tools.externalAppLauncher = test::programOfThisBuild("external-app-launcher");
        test::makeFile(app / "Contents/Info.plist", listNaming("the editor").xml());
        makeProgram(app / "Contents/MacOS/the editor");
    }

    void makeProgram(const fs::path& path) const {
        test::makeFile(path, "#!/bin/sh\nfor word in \"$0\" \"$@\"; do printf '<%s>' \"$word\" >> '" + calls.native() +
                                 "'; done\nexit 7\n");
        fs::permissions(path, fs::perms::owner_all);
    }

    void install(const fs::path& place, const fs::path& target) const {
        LauncherAppBuilder::install(world.host, target, place, target, InstallerRunReporter::silent);
    }

    CommandResult open(const fs::path& bundle, const std::vector<std::string>& arguments = {}) const {
        return CommandRunner::run(bundle / "Contents/MacOS/ExternalAppLauncher", arguments, std::chrono::seconds(20));
    }

    /// The one sentence of a launcher that opens nothing.
    std::string complaintOf(const fs::path& bundle) const {
        const auto result = open(bundle);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.stdout, "");
        EXPECT_FALSE(Files::exists(calls));
        return result.stderr;
    }

    test::World world;
    fs::path calls = world.folder / "calls";
    fs::path app = world.drive / "Apps/Far Editor.app";
    fs::path launcher = world.folder / "Applications/Far Editor.app";
    fs::path targetFile = launcher / "Contents/Resources/ExternalAppTarget.txt";
};

}  // namespace

TEST_F(LauncherProgram, RunsTheApplicationWithItsArguments) {
    install(launcher, app);
    const auto result = open(launcher, {"a b", "--flag", "", "\"'"});
    EXPECT_EQ(result.status, 7);
    EXPECT_EQ(result.stderr, "");
    EXPECT_EQ(test::contentOf(calls), "<" + (app / "Contents/MacOS/the editor").native() + "><a b><--flag><><\"'>");
}

TEST_F(LauncherProgram, RunsTheProgramThatTheListNames) {
    const fs::path named = app / "Contents/MacOS/a <b> & 'c' \"d\" &lt;";
    makeProgram(app / "Contents/MacOS/Far Editor");
    makeProgram(named);
    install(launcher, app);
    for (const std::string& list :
         {listNaming("a <b> & 'c' \"d\" &lt;").xml(),
          std::string("<plist><dict><key>CFBundleExecutable</key>\n\t<string>a &lt;b&gt; &amp; &apos;c&apos; "
                      "&quot;d&quot; &amp;lt;</string></dict></plist>")}) {
        fs::remove(calls);
        test::makeFile(app / "Contents/Info.plist", list);
        EXPECT_EQ(open(launcher).status, 7);
        EXPECT_EQ(test::contentOf(calls), "<" + named.native() + ">") << list;
    }
}

TEST_F(LauncherProgram, TakesWhiteSpaceAroundThePathAway) {
    install(launcher, app);
    test::makeFile(targetFile, " \t" + app.native() + "\r\n\n");
    EXPECT_EQ(open(launcher).status, 7);
}

TEST_F(LauncherProgram, RunsTheProgramOfTheBundlesNameWithoutAListThatNamesOne) {
    makeProgram(app / "Contents/MacOS/Far Editor");
    makeProgram(app / "run me not");
    install(launcher, app);
    for (const std::string& list :
         {listNaming("the editor").binary(), PropertyList().xml(), std::string("no list"),
          std::string("<key>CFBundleExecutable</key>"), std::string("<key>CFBundleExecutable</key><string>the ed"),
          listNaming("missing").xml(), listNaming("../../run me not").xml()}) {
        fs::remove(calls);
        test::makeFile(app / "Contents/Info.plist", list);
        EXPECT_EQ(open(launcher).status, 7) << list;
        EXPECT_EQ(test::contentOf(calls), "<" + (app / "Contents/MacOS/Far Editor").native() + ">") << list;
    }
}

TEST_F(LauncherProgram, RunsTheOnlyProgramOfABundle) {
    fs::remove(app / "Contents/Info.plist");
    test::makeFile(app / "Contents/MacOS/.hidden");
    test::makeFile(app / "Contents/MacOS/folder/file");
    install(launcher, app);
    EXPECT_EQ(open(launcher).status, 7);
    fs::remove(calls);
    test::makeFile(app / "Contents/MacOS/another");
    EXPECT_EQ(complaintOf(launcher),
              "Far Editor cannot be opened because " + app.native() + " has no program that could be run.\n");
}

TEST_F(LauncherProgram, RunsATargetThatIsAProgramItself) {
    makeProgram(world.drive / "tool");
    install(launcher, world.drive / "tool");
    EXPECT_EQ(open(launcher).status, 7);
    EXPECT_EQ(test::contentOf(calls), "<" + (world.drive / "tool").native() + ">");
}

TEST_F(LauncherProgram, FollowsALauncherToAnotherOne) {
    install(world.drive / "Apps/Second.app", app);
    install(launcher, world.drive / "Apps/Second.app");
    EXPECT_EQ(open(launcher).status, 7);
}

TEST_F(LauncherProgram, GoesInNoCircle) {
    const fs::path other = world.drive / "Apps/Other.app";
    test::makeFolder(other);
    install(launcher, other);
    fs::remove(other);
    install(other, launcher);
    EXPECT_EQ(complaintOf(launcher), "Far Editor cannot be opened because its launchers lead in a circle.\n");
    test::makeFile(targetFile, launcher.native());
    EXPECT_EQ(complaintOf(launcher), "Far Editor cannot be opened because its launchers lead in a circle.\n");
}

TEST_F(LauncherProgram, SaysThatTheApplicationIsGone) {
    install(launcher, app);
    fs::rename(world.drive, world.folder / "unplugged");
    EXPECT_EQ(complaintOf(launcher), "Far Editor cannot be opened because " + app.native() +
                                         " is not there; connect the drive that it is on.\n");
}

TEST_F(LauncherProgram, SaysThatItDoesNotKnowWhatToOpen) {
    install(launcher, app);
    for (const std::string text : {"", " \n\t ", "Apps/Far Editor.app", "."}) {
        test::makeFile(targetFile, text);
        EXPECT_EQ(complaintOf(launcher),
                  "Far Editor cannot be opened because " + targetFile.native() + " names no application.\n");
    }
    test::makeFile(targetFile, std::string("/\0/", 3));
    EXPECT_EQ(complaintOf(launcher),
              "Far Editor cannot be opened because " + targetFile.native() + " names no application.\n");
}

TEST_F(LauncherProgram, SaysThatItCannotReadWhatToOpen) {
    install(launcher, app);
    const std::string start = "Far Editor cannot be opened because " + targetFile.native() + " cannot be read: ";
    fs::remove(targetFile);
    EXPECT_EQ(complaintOf(launcher), start + "No such file or directory.\n");
    test::makePipe(targetFile);
    EXPECT_EQ(complaintOf(launcher), start + "Operation not supported.\n");
    fs::remove(targetFile);
    test::makeFolder(targetFile);
    EXPECT_EQ(complaintOf(launcher), start + "Is a directory.\n");
    fs::remove(targetFile);
    test::makeFile(targetFile, std::string(2'000'000, '/'));
    EXPECT_EQ(complaintOf(launcher), start + "File too large.\n");
}

TEST_F(LauncherProgram, SaysThatItMayNotReadWhatToOpen) {
    install(launcher, app);
    fs::permissions(targetFile, fs::perms::none);
    const test::OrdinaryUser user(world.folder.path());
    EXPECT_THAT(complaintOf(launcher),
                testing::StartsWith("Far Editor cannot be opened because " + targetFile.native() +
                                    " cannot be read: Permission denied.\n"));
}

TEST_F(LauncherProgram, SaysThatItMayNotReachTheApplication) {
    install(launcher, app);
    fs::permissions(world.drive, fs::perms::none);
    const test::OrdinaryUser user(world.folder.path());
    EXPECT_THAT(complaintOf(launcher), testing::StartsWith("Far Editor cannot be opened because " + app.native() +
                                                           " cannot be reached: Permission denied.\n"));
}

TEST_F(LauncherProgram, SaysThatTheApplicationDoesNotRun) {
    install(launcher, app);
    const fs::path program = app / "Contents/MacOS/the editor";
    fs::permissions(program, fs::perms::owner_read);
    EXPECT_EQ(complaintOf(launcher),
              "Far Editor cannot be opened because " + program.native() + " cannot be run: Permission denied.\n");
    fs::permissions(program, fs::perms::owner_all);
    test::makeFile(program, "\xCF\xFA\xED\xFE is for another system");
    EXPECT_EQ(complaintOf(launcher),
              "Far Editor cannot be opened because " + program.native() + " cannot be run: Exec format error.\n");
    fs::remove_all(app);
    test::makeFolder(app);
    EXPECT_EQ(complaintOf(launcher),
              "Far Editor cannot be opened because " + app.native() + " has no program that could be run.\n");
}

TEST_F(LauncherProgram, ServesNamesOfEveryKindAndComplainsOnOneLine) {
    const std::vector<std::string> names = {"line\nbreak.app", "\xFF\xFE.app", "<&> \"x\" 'y'.app",
                                            "\x1B[31m.app",    "写真館.app",   std::string(251, 'n') + ".app"};
    for (const std::string& name : names) {
        const fs::path target = world.drive / name;
        const fs::path place = world.folder / "Applications" / name;
        makeProgram(target / "Contents/MacOS" / target.stem());
        install(place, target);
        EXPECT_EQ(open(place).status, 7) << name;
        fs::remove(calls);
        fs::remove_all(target);
        // The runner passes on nothing that is no text.
        const auto complaint = name.starts_with('\xFF') ? std::string("\n") : complaintOf(place);
        EXPECT_EQ(std::count(complaint.begin(), complaint.end(), '\n'), 1) << complaint;
        EXPECT_EQ(complaint.find('\x1B'), std::string::npos);
    }
}

TEST_F(LauncherProgram, WorksFromWhereverItsBundleIsMovedTo) {
    install(launcher, app);
    fs::rename(launcher, world.home / "Renamed.app");
    EXPECT_EQ(open(world.home / "Renamed.app").status, 7);
    fs::remove_all(app);
    fs::remove(calls);
    EXPECT_EQ(complaintOf(world.home / "Renamed.app"),
              "Renamed cannot be opened because " + app.native() + " is not there; connect the drive that it is on.\n");
}

TEST_F(LauncherProgram, OpensNothingOutsideOfABundle) {
    const auto result = CommandRunner::run(test::programOfThisBuild("external-app-launcher"), {});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.stderr, "external-app-launcher works only inside of a launcher's bundle.\n");
}

}  // namespace tarvik
