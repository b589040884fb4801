#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"
#include "StandIns/MadePackages.h"
#include "StandIns/StandInRun.h"
#include "Support/EnvironmentVariable.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace tarvik::test {
namespace {

using testing::HasSubstr;
using testing::Not;

class MachineShell : public testing::Test {
protected:
    void SetUp() override {
        TARVIK_NEEDS_SCRIPTS();
        makeFolder(machine / "Users/me");
        makeFolder(machine / "Applications");
    }

    CommandResult script(const std::string& text) const {
        makeFile(machine / "Users/me/script", text);
        return runStandIn("bash", {machine / "Users/me/script"});
    }
    CommandResult ferry(const std::vector<std::string>& words) const { return runStandIn("rootferry", words); }

    TemporaryFolder folder;
    const fs::path machine = folder / "machine";
    const EnvironmentVariable root{"TARVIK_ROOT", machine.native()};
};

TEST_F(MachineShell, RunsAScriptOnTheMachine) {
    const auto result = script(
        "echo \"$HOME $1\"; echo wrong >&2; mkdir /Library/New; echo x > /Applications/file\n"
        "ls /; exit 7");
    EXPECT_EQ(result.status, 7);
    EXPECT_THAT(result.stdout, HasSubstr("/Users/me \n"));
    EXPECT_THAT(result.stdout, HasSubstr("Applications\n"));
    EXPECT_EQ(result.stderr, "wrong\n");
    EXPECT_EQ(contentOf(machine / "Applications/file"), "x\n");
    EXPECT_TRUE(Files::isFolder(machine / "Library/New"));
    // What a Mac always has goes again where nothing has come into it.
    EXPECT_THAT(Files::names(machine), testing::ElementsAre("Applications", "Library", "Users"));
}

TEST_F(MachineShell, FindsAScriptByEitherOfItsPathsAndOutsideOfTheMachine) {
    makeFile(machine / "Users/me/a b.sh", "echo \"inside $0 $1\"");
    makeFile(folder / "out.sh", "echo outside");
    EXPECT_EQ(runStandIn("bash", {machine / "Users/me/a b.sh", "word"}).stdout,
              "inside " + (machine / "Users/me/a b.sh").native() + " word\n");
    EXPECT_EQ(runStandIn("bash", {"/Users/me/a b.sh"}).stdout, "inside /Users/me/a b.sh \n");
    EXPECT_EQ(runStandIn("bash", {folder / "out.sh"}).stdout, "outside\n");
    EXPECT_EQ(runStandIn("bash", {folder / "missing.sh"}).status, 127);
}

TEST_F(MachineShell, ShowsNothingOfTheMachineThatRuns) {
    makeFile(folder / "secret", "secret");
    const auto result =
        script("cat '" + (folder / "secret").native() + "'; ls /root /home /work; cat /etc/passwd; echo done");
    EXPECT_EQ(result.stdout, "done\n");
}

TEST_F(MachineShell, LetsNothingBeChangedOutsideOfTheMachine) {
    makeFile(folder / "out.sh", "echo changed > \"$0\"; rm -f \"$0\"");
    EXPECT_NE(runStandIn("bash", {folder / "out.sh"}).status, 0);
    EXPECT_THAT(contentOf(folder / "out.sh"), HasSubstr("rm -f"));
    makeFile(folder / "beside/victim", "safe");
    for (const std::string& line :
         {std::string("touch /usr/x"), std::string("touch /x"), std::string("touch /bin/x"),
          "rm -r '" + (folder / "beside").native() + "'", std::string("mount -o remount,rw /usr"),
          std::string("mount -o remount,rw /"), std::string("umount /usr"),
          std::string("mknod /Applications/disk b 8 0"), std::string("echo x > /proc/sys/kernel/core_pattern"),
          std::string("unshare -m mount -o remount,rw,bind /usr"), std::string("chroot /proc/1/root touch /usr/x"),
          std::string("ls /proc/1/root/Users /proc/1/fd/3"), std::string("exec 3<>/dev/tcp/127.0.0.1/22"),
          std::string("kill -0 " + std::to_string(::getpid()))}) {
        const auto result = script(line);
        EXPECT_NE(result.status, 0) << line << result.stdout;
    }
    EXPECT_EQ(contentOf(folder / "beside/victim"), "safe");
    EXPECT_FALSE(Files::itemExists("/usr/x"));
    EXPECT_FALSE(Files::itemExists("/x"));
}

TEST_F(MachineShell, TakesLinksOutOfTheMachineForNothing) {
    makeFile(folder / "beside/victim", "safe");
    makeLink(machine / "Users/me/out", folder / "beside");
    makeLink(machine / "Users/me/up", "../../../beside");
    EXPECT_NE(script("echo x > /Users/me/out/victim").status, 0);
    EXPECT_NE(script("echo x > /Users/me/up/victim").status, 0);
    EXPECT_NE(ferry({"rm", machine / "Users/me/out/victim"}).status, 0);
    EXPECT_EQ(contentOf(folder / "beside/victim"), "safe");
}

TEST_F(MachineShell, FollowsTheLinksThatMovesLeave) {
    makeFile(machine / "Volumes/Drive/Editor.app/file", "moved");
    makeLink(machine / "Applications/Editor.app", machine / "Volumes/Drive/Editor.app");
    EXPECT_EQ(script("cat /Applications/Editor.app/file").stdout, "moved");
    EXPECT_EQ(script("cp -r /Applications/Editor.app/ /Users/me/copy; ls /Users/me/copy").stdout, "file\n");
}

TEST_F(MachineShell, EndsWhatAScriptLeavesRunning) {
    const auto result = script(
        "(while :; do echo x >> /Users/me/log; sleep 0.05; done) >/dev/null 2>&1 &\n"
        "while ! test -s /Users/me/log; do sleep 0.05; done; echo ready");
    EXPECT_EQ(result.stdout, "ready\n");
    const auto size = statusOf(machine / "Users/me/log").st_size;
    // It can write only while the process that has ended lives: the namespaces are gone.
    EXPECT_EQ(script("ls /proc | grep -c '^[0-9]'").status, 0);
    EXPECT_EQ(statusOf(machine / "Users/me/log").st_size, size);
}

TEST_F(MachineShell, TellsTheSignalThatEndedAScript) {
    EXPECT_EQ(script("kill -9 $$").status, 128 + 9);
}

TEST_F(MachineShell, FindsTheUsualProgramsAndTheStandIns) {
    EXPECT_EQ(script("echo a b | awk '{print $2}'; cat <(echo pipe); : > /tmp/x && echo tmp").stdout, "b\npipe\ntmp\n");
    makeFile(machine / "Users/me/from/file", "x");
    EXPECT_EQ(script("ditto /Users/me/from /Users/me/to; cat /Users/me/to/file").stdout, "x");
}

TEST_F(MachineShell, RunsCommandsWithRootsRightsInTheMachine) {
    makeFile(machine / "Applications/Old.app/file");
    makeLink(machine / "Applications/link", "Old.app");
    EXPECT_EQ(ferry({"rm", "-f", machine / "Applications/link"}).status, 0);
    EXPECT_FALSE(Files::itemExists(machine / "Applications/link"));
    EXPECT_EQ(ferry({"rm", "-rf", "/Applications/Old.app"}).status, 0);
    EXPECT_FALSE(Files::itemExists(machine / "Applications/Old.app"));
    EXPECT_EQ(ferry({"id", "-u"}).stdout, "0\n");
    EXPECT_EQ(ferry({"sh", "-c", "exit 3"}).status, 3);
    EXPECT_EQ(ferry({"no-such-command"}).status, 127);
    EXPECT_EQ(ferry({}).status, 2);
    makeFile(folder / "source/file", "given");
    EXPECT_EQ(ferry({"ditto", folder / "source", machine / "Library/Goal"}).status, 0);
    EXPECT_EQ(contentOf(machine / "Library/Goal/file"), "given");
    EXPECT_NE(ferry({"rm", "-rf", folder / "source"}).status, 0);
    EXPECT_TRUE(Files::exists(folder / "source/file"));
}

TEST_F(MachineShell, RunsTheStandInsOfInstallerAndBash) {
    const auto package = makePackage(folder / "Editor.pkg", Practice::PackageWriter::component(editorComponent()));
    const auto result = ferry({"installer", "-pkg", package, "-target", "/"});
    EXPECT_EQ(result.status, 0) << result.stderr;
    EXPECT_TRUE(Files::exists(machine / "Applications/Editor.app"));
    makeFile(machine / "Users/me/s", "exit 5");
    EXPECT_EQ(ferry({"bash", machine / "Users/me/s"}).status, 5);
}

TEST_F(MachineShell, GivesAnOrdinaryUserNoMoreThanItsOwnRights) {
    if (::geteuid() != 0) GTEST_SKIP() << "Only root can become somebody else.";
    makeFile(machine / "Users/me/closed", "closed");
    fs::permissions(machine / "Users/me/closed", fs::perms(0600));
    makeFile(machine / "Users/me/script", "id -u; cat /Users/me/closed; touch /Users/me/open/new");
    makeFolder(machine / "Users/me/open");
    fs::permissions(machine / "Users/me/open", fs::perms(0777));
    fs::permissions(folder.path(), fs::perms(0755));
    const auto asNobody = [&](const std::string& standIn, const std::vector<std::string>& words) {
        std::vector<std::string> all{"--reuid=65534", "--regid=65534", "--clear-groups",
                                     programOfThisBuild("stand-ins/" + standIn)};
        all.insert(all.end(), words.begin(), words.end());
        return CommandRunner::run("/usr/bin/setpriv", all);
    };
    if (asNobody("rootferry", {"true"}).status != 0) GTEST_SKIP() << "This system gives ordinary users no namespaces.";
    EXPECT_EQ(asNobody("rootferry", {"id", "-u"}).stdout, "0\n");
    const auto result = asNobody("bash", {machine / "Users/me/script"});
    EXPECT_EQ(result.stdout, "65534\n");
    EXPECT_THAT(result.stderr, HasSubstr("Permission denied"));
    EXPECT_EQ(statusOf(machine / "Users/me/open/new").st_uid, 65534U);
}

TEST_F(MachineShell, RunsNothingWithoutAMachineInAFolder) {
    makeFile(folder / "s", "touch '" + (folder / "ran").native() + "'");
    for (const std::optional<std::string>& place : {std::optional<std::string>(), {"/"}, {"/nowhere"}, {""}}) {
        const EnvironmentVariable other("TARVIK_ROOT", place);
        EXPECT_EQ(runStandIn("bash", {folder / "s"}).stderr, "bash: Scripts run only on a machine in a folder.\n");
        EXPECT_EQ(ferry({"touch", folder / "ran"}).stderr, "rootferry: Commands run only on a machine in a folder.\n");
    }
    EXPECT_FALSE(Files::itemExists(folder / "ran"));
}

/// Packages with scripts.
class InstallerScripts : public MachineShell {
protected:
    CommandResult install(const std::map<std::string, std::string>& scripts,
                          const fs::path& name = "Editor.pkg") const {
        auto component = editorComponent();
        component.place = "/Library/Acme";
        component.scripts = scripts;
        makePackage(folder / name, Practice::PackageWriter::component(component));
        return runStandIn("installer", {"-pkg", folder / name, "-target", "/"});
    }
};

TEST_F(InstallerScripts, RunAroundThePayloadWithAMacsArgumentsAndEnvironment) {
    const auto result = install(
        {{"preinstall",
          "#!/bin/bash\ntest ! -e /Library/Acme/Applications || exit 1\n"
          "printf '%s\\n' \"$0\" \"$1\" \"$2\" \"$3\" \"$4\" \"$#\" > /Users/me/pre\ncat beside > /Users/me/beside\n"},
         {"beside", "a file beside"},
         {"postinstall",
          "#!/bin/bash\ntest -e /Library/Acme/Applications/Editor.app || exit 1\n"
          "test -f \"$PACKAGE_PATH\" || exit 1; test -d \"$INSTALLER_TEMP\" || exit 1\n"
          "echo \"$SCRIPT_NAME $USER $HOME $COMMAND_LINE_INSTALL $INSTALL_PKG_SESSION_ID $(id -u)\" > /Users/me/post\n"
          "echo said\n"}});
    EXPECT_EQ(result.status, 0) << result.stderr << contentOf(machine / "private/var/log/install.log");
    EXPECT_THAT(contentOf(machine / "Users/me/pre"),
                testing::MatchesRegex("/private/tmp/PKInstallSandbox\\.[0-9A-F]+/Scripts/preinstall\n" +
                                      (folder / "Editor.pkg").native() + "\n/Library/Acme\n/\n/\n4\n"));
    EXPECT_EQ(contentOf(machine / "Users/me/beside"), "a file beside");
    EXPECT_EQ(contentOf(machine / "Users/me/post"), "postinstall root /Users/me 1 com.acme.editor 0\n");
    EXPECT_EQ(contentOf(machine / "private/var/log/install.log"), "said\n");
    EXPECT_THAT(Files::names(machine / "private/tmp"), testing::IsEmpty());
}

TEST_F(InstallerScripts, ThatFailFailTheInstall) {
    const auto result = install({{"postinstall", "#!/bin/sh\nexit 1\n"}});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(
        result.stderr,
        "installer: The install failed. (The Installer encountered an error that caused the installation to fail. "
        "Contact the software manufacturer for assistance. An error occurred while running scripts from the package "
        "\u201CEditor\u201D.)\n");
    EXPECT_THAT(result.stdout, Not(HasSubstr("successful")));
    EXPECT_EQ(runStandIn("pkgutil", {"--pkgs"}).stdout, "");
    EXPECT_THAT(Files::names(machine / "private/tmp"), testing::IsEmpty());
    EXPECT_EQ(install({{"preinstall", "#!/no/such/program\n"}}).status, 1);
}

TEST_F(InstallerScripts, OfAKilledInstallAreClearedByTheNext) {
    makeFile(machine / "private/tmp/PKInstallSandbox.DEAD/Scripts/preinstall");
    makeFile(machine / "private/tmp/mine");
    EXPECT_EQ(install({{"preinstall", "#!/bin/sh\n"}}).status, 0);
    EXPECT_THAT(Files::names(machine / "private/tmp"), testing::ElementsAre("mine"));
}

}  // namespace
}  // namespace tarvik::test
