#include "Installers/Install/InstallWorld.h"
#include "Installers/Install/SourceInstaller.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Processes/ProcessTable.h"
#include "Support/FailureOf.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace tarvik::test {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

/// A machine whose tools are scripts that note how they are called, in `said`.
class SourceInstallerTest : public testing::Test {
protected:
    SourceInstallerTest() {
        world.host.tools.pkgutil = noting("pkgutil", "echo 'Status: signed by somebody'");
        world.host.tools.xar = noting("xar", "exit 1");
        world.host.tools.installer = noting("installer", "");
        world.host.tools.bash = noting("bash", "exec /bin/sh \"$@\"");
        world.option.allowUntrustedScripts = true;
    }

    fs::path noting(const std::string& name, const std::string& lines) {
        return world.tool(name, "echo " + name + " \"$@\" >> '" + said.native() + "'\n" + lines);
    }
    /// An attach that shows the folders, which are out of sight until then, and a detach that succeeds for `goes`.
    void mountBy(const std::vector<fs::path>& volumes, const std::string& goes = "*") {
        const fs::path contents = world.folder / "in the image";
        makeFolder(contents);
        std::string list = "<plist version=\"1.0\"><dict><key>system-entities</key><array>";
        for (const auto& volume : volumes) {
            list += "<dict><key>mount-point</key><string>" + volume.native() + "</string></dict>";
            fs::rename(volume, contents / volume.filename());
        }
        list += "<dict><key>dev-entry</key><string>/dev/disk9</string></dict></array></dict></plist>";
        makeFile(world.folder / "answer", list);
        const std::string attach = "cp -a '" + contents.native() + "/.' '" + (world.folder / "Volumes").native() +
                                   "'; cat '" + (world.folder / "answer").native() + "'";
        world.host.tools.hdiutil = noting("hdiutil", "case $1 in attach) " + attach + ";; detach) case $2 in " + goes +
                                                         ") exit 0;; esac; exit 1;; esac");
    }
    /// A ditto that expands every archive to what lies in `contents`, and copies as before.
    void expandTo(const fs::path& contents) {
        world.withDitto("if [ \"$1\" = -x ]; then cp -a '" + contents.native() +
                        "/.' \"$4\"; else cp -aT \"$2\" \"$3\"; fi");
    }

    std::string install(const fs::path& source) {
        actions.clear();
        fs::remove(said);
        return world.outcomeOf([&] { actions = SourceInstaller::install(world.host, source, world.terms()); });
    }
    std::string saidByTools() const { return Files::exists(said) ? contentOf(said) : std::string(); }
    std::string actionFor(const std::string& name) const {
        return "installed-app\t" + world.launcher(name).native() + "\t" + world.onDrive(name).native();
    }
    fs::path script(const std::string& lines, mode_t permissions = 0644) {
        const fs::path path = world.folder / "Downloads/setup.sh";
        makeFile(path, lines);
        ::chmod(path.c_str(), permissions);
        return path;
    }

    InstallWorld world;
    fs::path said = world.folder / "said";
    fs::path pkg = world.folder / "Downloads/Some.pkg";
    fs::path image = world.folder / "Downloads/Some.dmg";
    fs::path archive = world.folder / "Downloads/Some.zip";
    std::vector<std::string> actions;
};

const std::string stopped = "install " + std::to_string(ECANCELED) + ": The install was stopped.";

}  // namespace

TEST_F(SourceInstallerTest, InstallsAnApplication) {
    EXPECT_EQ(install(world.makeApp(world.folder / "Editor.app")), "done");
    EXPECT_THAT(actions, ElementsAre(actionFor("Editor.app")));
    EXPECT_THAT(world.lines->front(), StartsWith("source\tapp\t"));
}

TEST_F(SourceInstallerTest, RefusesWhatItDoesNotKnow) {
    makeFile(world.folder / "notes.txt", "text");
    EXPECT_EQ(install(world.folder / "notes.txt"), "install 1: Unsupported source type.");
}

TEST_F(SourceInstallerTest, UsesNoOptionThatLeadsElsewhere) {
    world.option.externalRootName = "../other";
    EXPECT_THAT(install(pkg), HasSubstr("The option \"test\" cannot be used"));
    EXPECT_EQ(saidByTools(), "");
}

TEST_F(SourceInstallerTest, HandsAPackageToTheSystem) {
    EXPECT_EQ(install(pkg), "done");
    EXPECT_THAT(actions, ElementsAre("installed-pkg\t" + pkg.native()));
    EXPECT_THAT(*world.lines,
                ElementsAre("source\tpkg\t" + pkg.native(),
                            "run-pkg\t" + world.host.tools.installer.native() + "\t" + pkg.native(), actions[0]));
    EXPECT_THAT(saidByTools(), HasSubstr("\ninstaller -pkg " + pkg.native() + " -target /\n"));
    EXPECT_THAT(world.sleepBlocker->reasons, ElementsAre("A package is being installed"));
}

TEST_F(SourceInstallerTest, TakesAMetaPackageForAPackage) {
    EXPECT_EQ(install(world.folder / "All.MPKG"), "done");
    EXPECT_THAT(world.lines->front(), StartsWith("source\tpkg\t"));
}

TEST_F(SourceInstallerTest, BlocksAPackageThatIsNotTrusted) {
    world.host.tools.pkgutil = noting("pkgutil", "echo 'Status: no signature'");
    EXPECT_EQ(install(pkg), "pkg-install 10: Untrusted package blocked.");
    EXPECT_THAT(saidByTools(), testing::Not(HasSubstr("installer")));
    EXPECT_THAT(*world.lines, ElementsAre("source\tpkg\t" + pkg.native()));
    world.option.allowUntrustedPackages = true;
    EXPECT_EQ(install(pkg), "done");
}

TEST_F(SourceInstallerTest, TellsWhatTheInstallerSays) {
    world.host.tools.installer = noting("installer", "echo out; printf 'err' >&2; exit 3");
    EXPECT_EQ(install(pkg), "pkg-install 3: errout\n");
    EXPECT_THAT(world.lines->back(), StartsWith("run-pkg\t"));
    world.host.tools.installer = world.folder / "missing";
    EXPECT_THAT(install(pkg), StartsWith("pkg-install 127: Could not start "));
}

TEST_F(SourceInstallerTest, InstallsAPackageAsRootOnlyWhenAsked) {
    world.useRootferry = true;
    world.host.tools.rootferry = noting("rootferry", "");
    EXPECT_EQ(install(pkg), "done");
    EXPECT_THAT(saidByTools(), HasSubstr("rootferry installer -pkg " + pkg.native() + " -target /\n"));
    EXPECT_THAT(*world.lines, Contains("run-pkg\t" + world.host.tools.rootferry.native() + "\t" + pkg.native()));
}

TEST_F(SourceInstallerTest, FailsWithoutTheToolOfRoot) {
    world.useRootferry = true;
    world.host.tools.rootferry = world.folder / "missing";
    EXPECT_EQ(install(pkg),
              "pkg-install 127: Could not start " + (world.folder / "missing").native() + ": " + wordsFor(ENOENT));
    EXPECT_THAT(saidByTools(), testing::Not(HasSubstr("installer"))) << "nothing falls back to the other way";
}

TEST_F(SourceInstallerTest, ClearsTheWayForAPackageFirst) {
    const fs::path copy = world.makeApp(world.drive / "ExternalTarvik/Apps/X.app");
    makeLink(world.launcher("X.app"), copy);
    world.host.tools.xar = world.tool("xar", "printf /Applications/X.app > \"$4/PackageInfo\"");
    world.host.tools.installer = noting("installer", "ls -A " + world.launcher("").native() + " >> " + said.native());
    EXPECT_EQ(install(pkg), "done");
    EXPECT_THAT(world.lines->at(1), StartsWith("pre-install-clear-symlink\t"));
    EXPECT_THAT(saidByTools(), testing::Not(HasSubstr("X.app"))) << "it has gone before the installer starts";
    EXPECT_FALSE(Files::exists(copy));
}

TEST_F(SourceInstallerTest, LetsThePackageArriveOnceACopyHasGone) {
    const fs::path copy = world.makeApp(world.drive / "ExternalTarvik/Apps/X.app");
    makeLink(world.launcher("X.app"), copy);
    world.host.tools.xar = world.tool("xar", "printf /Applications/X.app > \"$4/PackageInfo\"");
    world.host.tools.installer =
        noting("installer", "touch " + (world.folder / "begun").native() + "\n" + waitFor(world.folder / "go") +
                                "echo arrived >> " + said.native());
    std::thread asker([&] {
        EXPECT_TRUE(comesToStand(world.folder / "begun"));
        world.cancellation.cancel();
        makeFile(world.folder / "go");
    });
    EXPECT_EQ(install(pkg), "done");
    asker.join();
    EXPECT_FALSE(Files::exists(copy));
    EXPECT_THAT(saidByTools(), HasSubstr("arrived"));
}

TEST_F(SourceInstallerTest, RefusesAPathThatWouldBreakTheRecord) {
    for (const char* name : {"a\tb.pkg", "a\nb.sh", "a\nb.app", "a\tb/C.pkg"}) {
        makeFile(world.folder / name);
        EXPECT_THAT(install(world.folder / name), HasSubstr(" has a name that cannot be used.")) << name;
        EXPECT_THAT(*world.lines, IsEmpty());
    }
    EXPECT_EQ(saidByTools(), "");
}

TEST_F(SourceInstallerTest, RunsAScriptWhereThatIsAllowed) {
    const fs::path setup = script("echo ran > '" + (world.folder / "proof").native() + "'\n");
    EXPECT_EQ(install(setup), "done");
    EXPECT_THAT(actions, ElementsAre("ran-script\t" + setup.native()));
    EXPECT_THAT(*world.lines,
                ElementsAre("source\tscript\t" + setup.native(),
                            "run-script\t" + world.host.tools.bash.native() + "\t" + setup.native(), actions[0]));
    EXPECT_EQ(contentOf(world.folder / "proof"), "ran\n");
    world.option.allowUntrustedScripts = false;
    EXPECT_EQ(install(setup),
              "script-install 20: Shell scripts are blocked by this install option. Use an option with "
              "allowUntrustedScripts = true (e.g. tracked-script-external).");
    EXPECT_EQ(saidByTools(), "");
}

TEST_F(SourceInstallerTest, MakesAScriptExecutableThatIsSoForNobody) {
    install(script("exit 0\n", 0640));
    EXPECT_EQ(statusOf(script("exit 0\n", 0640)).st_mode & 0777U, 0640U);
    install(world.folder / "Downloads/setup.sh");
    EXPECT_EQ(statusOf(world.folder / "Downloads/setup.sh").st_mode & 07777U, 0751U);
    install(script("exit 0\n", 0744));
    EXPECT_EQ(statusOf(world.folder / "Downloads/setup.sh").st_mode & 07777U, 0744U);
}

TEST_F(SourceInstallerTest, TellsWhatAScriptSays) {
    EXPECT_EQ(install(script("echo out; echo err >&2; exit 9\n")), "script-install 9: err\nout\n");
    world.useRootferry = true;
    world.host.tools.rootferry = noting("rootferry", "exit 4");
    EXPECT_EQ(install(script("exit 0\n")), "script-install 4: ");
    EXPECT_EQ(saidByTools(), "rootferry bash " + (world.folder / "Downloads/setup.sh").native() + "\n");
}

TEST_F(SourceInstallerTest, KeepsLittleOfWhatAToolGoesOnAbout) {
    const std::string told = install(script("head -c 20000000 /dev/zero | tr '\\0' x; exit 1\n"));
    EXPECT_THAT(told, StartsWith("script-install 1: xxxx"));
    EXPECT_LT(told.size(), 2'000'000U);
}

TEST_F(SourceInstallerTest, EndsAScriptWithAllThatItHasStartedWhenAskedTo) {
    const fs::path begun = world.folder / "begun";
    std::thread asker([&] {
        EXPECT_TRUE(comesToStand(begun));
        world.cancellation.cancel();
    });
    const std::string told = install(script("sh -c 'echo $$ > " + (world.folder / "inner").native() + "; touch " +
                                            begun.native() + "; while :; do sleep 0.05; done'\n"));
    asker.join();
    EXPECT_EQ(told, stopped);
    const pid_t inner = std::stoi(contentOf(world.folder / "inner"));
    EXPECT_TRUE(ProcessTable::programOf(inner).empty()) << "the shell inside has ended";
    EXPECT_THAT(actions, IsEmpty());
}

TEST_F(SourceInstallerTest, BeginsNothingOnceItIsAskedToStop) {
    world.cancellation.cancel();
    for (const fs::path& source : {pkg, image, archive, script("exit 0\n")}) EXPECT_EQ(install(source), stopped);
    EXPECT_EQ(saidByTools(), "");
}

TEST_F(SourceInstallerTest, InstallsAllThatIsInAnImage) {
    const fs::path one = world.folder / "Volumes/One";
    const fs::path two = world.folder / "Volumes/Two";
    world.makeApp(one / "Sub/B.app");
    world.makeApp(one / "A.app");
    makeFile(one / "read me.txt");
    makeFile(two / "C.pkg");
    mountBy({one, two});
    EXPECT_EQ(install(image), "done");
    EXPECT_THAT(actions,
                ElementsAre(actionFor("A.app"), actionFor("B.app"), "installed-pkg\t" + (two / "C.pkg").native()));
    EXPECT_EQ(world.lines->at(0), "source\tdmg\t" + image.native());
    EXPECT_EQ(world.lines->at(1), "dmg-mounted\t2");
    EXPECT_EQ(world.lines->at(2), "source\tapp\t" + (one / "A.app").native());
    EXPECT_THAT(saidByTools(), StartsWith("hdiutil attach " + image.native() + " -plist -nobrowse -readonly\n"));
    EXPECT_THAT(saidByTools(), testing::EndsWith("hdiutil detach " + one.native() + " -quiet\n"))
        << "the first that goes is enough";
}

TEST_F(SourceInstallerTest, DetachesAnImageWhateverGoesFirst) {
    const fs::path one = world.folder / "Volumes/One";
    makeFolder(one);
    mountBy({one}, "/dev/*");
    EXPECT_EQ(install(image), "done");
    EXPECT_THAT(actions, IsEmpty());
    EXPECT_THAT(saidByTools(),
                testing::EndsWith("hdiutil detach " + one.native() + " -quiet\nhdiutil detach /dev/disk9 -quiet\n"));
}

TEST_F(SourceInstallerTest, EndsAtTheFirstItemThatFailsAndDetaches) {
    const fs::path one = world.folder / "Volumes/One";
    world.makeApp(one / "A.app");
    makeFile(one / "B.pkg");
    world.makeApp(one / "C.app");
    mountBy({one});
    world.host.tools.installer = noting("installer", "exit 1");
    EXPECT_EQ(install(image), "pkg-install 1: ");
    EXPECT_TRUE(world.isLauncherGood("A.app")) << "what was installed stays";
    EXPECT_FALSE(Files::exists(world.onDrive("C.app")));
    EXPECT_THAT(saidByTools(), testing::EndsWith("hdiutil detach " + one.native() + " -quiet\n"));
}

TEST_F(SourceInstallerTest, DetachesNothingThatWasNotAttached) {
    world.host.tools.hdiutil = noting("hdiutil", "echo 'attach failed' >&2; exit 1");
    EXPECT_EQ(install(image), "hdiutil 1: attach failed\n");
    EXPECT_EQ(saidByTools(), "hdiutil attach " + image.native() + " -plist -nobrowse -readonly\n");
    EXPECT_THAT(*world.lines, ElementsAre("source\tdmg\t" + image.native()));
}

TEST_F(SourceInstallerTest, StopsBetweenTheItemsOfAnImageAndDetaches) {
    const fs::path one = world.folder / "Volumes/One";
    makeFile(one / "A.pkg");
    makeFile(one / "B.pkg");
    mountBy({one});
    const fs::path begun = world.folder / "begun";
    world.host.tools.installer = noting("installer", "touch " + begun.native() + "; exec sleep 100");
    std::thread asker([&] {
        EXPECT_TRUE(comesToStand(begun));
        world.cancellation.cancel();
    });
    EXPECT_EQ(install(image), stopped);
    asker.join();
    EXPECT_THAT(saidByTools(), testing::Not(HasSubstr("B.pkg")));
    EXPECT_THAT(saidByTools(), testing::EndsWith("hdiutil detach " + one.native() + " -quiet\n"));
}

TEST_F(SourceInstallerTest, InstallsAllThatIsInAnArchive) {
    const fs::path contents = world.folder / "contents";
    world.makeApp(contents / "A.app");
    makeFile(contents / "B.pkg");
    expandTo(contents);
    makeFile(archive, "an archive of no entries that can be listed");
    EXPECT_EQ(install(archive), "done");
    ASSERT_EQ(actions.size(), 2U);
    EXPECT_EQ(actions[0], actionFor("A.app"));
    EXPECT_THAT(actions[1], testing::MatchesRegex("installed-pkg\t.*/tmp/TarvikZip-[0-9A-F-]+/B.pkg"));
    EXPECT_EQ(world.lines->front(), "source\tzip\t" + archive.native());
    EXPECT_EQ(pictureOf(world.onDrive("A.app")), pictureOf(contents / "A.app"));
    EXPECT_THAT(Files::names(world.host.temporary), IsEmpty());
    EXPECT_THAT(Files::names(world.trash->folder), ElementsAre(StartsWith("TarvikZip-")));
}

TEST_F(SourceInstallerTest, DisposesOfWhatAnArchiveHeldAfterAFailure) {
    const fs::path contents = world.folder / "contents";
    makeFile(contents / "B.pkg");
    expandTo(contents);
    makeFile(archive, "an archive of no entries that can be listed");
    world.host.tools.installer = noting("installer", "exit 1");
    EXPECT_EQ(install(archive), "pkg-install 1: ");
    EXPECT_THAT(Files::names(world.host.temporary), IsEmpty());
    // Where nothing takes it, it is removed.
    world.trash->refuses = true;
    makeFile(world.host.temporary / ".TarvikTrash", "no folder");
    EXPECT_EQ(install(archive), "pkg-install 1: ");
    EXPECT_THAT(Files::names(world.host.temporary), ElementsAre(".TarvikTrash"));
}

TEST_F(SourceInstallerTest, TellsTheFirstFailureWhenTheDisposalFailsToo) {
    const fs::path contents = world.folder / "contents";
    makeFile(contents / "B.pkg");
    expandTo(contents);
    makeFile(archive, "an archive of no entries that can be listed");
    const fs::path begun = world.folder / "begun";
    world.host.tools.installer = noting("installer", "touch " + begun.native() + "; exit 1");
    world.host.now = [begun, now = world.host.now] {
        if (Files::exists(begun)) throw Failure("clock", 1, "no time");
        return now();
    };
    EXPECT_EQ(install(archive), "pkg-install 1: ");
    EXPECT_THAT(Files::names(world.host.temporary), IsEmpty());
}

TEST_F(SourceInstallerTest, InstallsWhatIsInAnArchiveAgainWithoutAnotherCopy) {
    const fs::path contents = world.folder / "contents";
    world.makeApp(contents / "A.app");
    expandTo(contents);
    makeFile(archive, "an archive of no entries that can be listed");
    install(archive);
    EXPECT_EQ(install(archive), "done");
    EXPECT_THAT(*world.lines, Contains("reuse-app\t" + world.onDrive("A.app").native()));
    EXPECT_THAT(*world.lines, Contains("reuse-launcher\t" + world.launcher("A.app").native()));
}

}  // namespace tarvik::test
