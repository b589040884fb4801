#include "Copying/CopyPlace.h"
#include "Copying/HiddenName.h"
#include "Installers/Install/AppInstallEngine.h"
#include "Installers/Install/AppSourceInstaller.h"
#include "Installers/Install/InstallWorld.h"
#include "Platform/Files/Files.h"
#include "Support/FailureOf.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tarvik::test {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

/// Something happens when the space is asked for.
struct EventfulVolumes : MadeVolumes {
    std::optional<std::int64_t> availableBytes(const fs::path& path) const override {
        event();
        return MadeVolumes::availableBytes(path);
    }
    std::function<void()> event;
};

class AppInstallEngineTest : public testing::Test {
protected:
    std::string installOn(InstallWorld& machine, const fs::path& app) {
        result.clear();
        return machine.outcomeOf([&] {
            const auto terms = machine.terms();
            result = AppInstallEngine::install(machine.host, app, terms.option, terms.drive, terms.reporter,
                                               terms.cancellation);
        });
    }
    std::string install() { return installOn(world, source); }
    std::string install(const fs::path& app) { return installOn(world, app); }
    /// Between the look at what stands on the drive and the first change.
    std::string installWhile(const std::function<void()>& event) {
        auto volumes = std::make_shared<EventfulVolumes>();
        volumes->list = world.volumes->list;
        volumes->event = event;
        world.host.volumes = volumes;
        return install();
    }
    std::vector<std::string> tags() const {
        std::vector<std::string> found;
        for (const auto& line : *world.lines) found.push_back(line.substr(0, line.find('\t')));
        return found;
    }
    /// What stands on the drive beside applications, hidden things too.
    std::vector<std::string> namesOnDrive() const { return Files::names(dest.parent_path()); }

    InstallWorld world;
    fs::path source = world.makeApp(world.folder / "Downloads/Editor.app");
    fs::path dest = world.onDrive("Editor.app");
    fs::path launcher = world.launcher("Editor.app");
    std::string result;
};

}  // namespace

TEST_F(AppInstallEngineTest, PutsTheBundleOnTheDriveAndALauncherAtTheLinkRoot) {
    const std::string before = pictureOf(source);
    EXPECT_EQ(install(), "done");
    EXPECT_EQ(result, "installed-app\t" + launcher.native() + "\t" + dest.native());
    EXPECT_EQ(pictureOf(dest), before);
    EXPECT_EQ(pictureOf(source), before) << "the source stays";
    EXPECT_TRUE(world.isLauncherGood("Editor.app"));
    EXPECT_THAT(namesOnDrive(), ElementsAre("Editor.app"));
    EXPECT_EQ(world.lines->at(0), "copy-app\t" + source.native() + "\t" + dest.native());
    EXPECT_EQ(world.lines->at(1), "verify-app\t" + dest.native());
    EXPECT_THAT(world.lines->at(2), StartsWith("launcher-app\t"));
    EXPECT_EQ(world.lines->back(), result);
    EXPECT_EQ(world.sleepBlocker->holds, 0);
    EXPECT_THAT(world.sleepBlocker->reasons, ElementsAre("An application is being installed"));
}

TEST_F(AppInstallEngineTest, UsesTheSameApplicationAgainAndMakesItsLauncherAnew) {
    install();
    fs::remove_all(launcher);
    EXPECT_EQ(install(), "done");
    EXPECT_EQ(world.lines->front(), "reuse-app\t" + dest.native());
    EXPECT_THAT(tags(), testing::Not(Contains("copy-app")));
    EXPECT_TRUE(world.isLauncherGood("Editor.app"));
    EXPECT_FALSE(Files::exists(world.trash->folder));
}

TEST_F(AppInstallEngineTest, SetsAnotherVersionAsideWithTheReason) {
    world.makeApp(dest, "an older version");
    EXPECT_EQ(install(), "done");
    EXPECT_EQ(world.lines->at(0),
              "stash-existing-app\t" + dest.native() + "\tContents/Resources/data copied with a different file size.");
    EXPECT_THAT(world.lines->at(1), StartsWith("copy-app\t"));
    EXPECT_EQ(contentOf(world.trash->folder / "Editor.app/Contents/Resources/data"), "an older version");
    EXPECT_EQ(pictureOf(dest), pictureOf(source));
}

TEST_F(AppInstallEngineTest, SetsAsideBesideItWhereTheTrashRefuses) {
    world.trash->refuses = true;
    world.makeApp(dest, "an older version");
    EXPECT_EQ(install(), "done");
    const auto stashed = Files::names(dest.parent_path() / ".TarvikTrash");
    ASSERT_THAT(stashed, ElementsAre(StartsWith("Editor.app-install-conflict-")));
    EXPECT_EQ(contentOf(dest.parent_path() / ".TarvikTrash" / stashed[0] / "Contents/Resources/data"),
              "an older version");
}

TEST_F(AppInstallEngineTest, SetsADanglingLinkAside) {
    makeFolder(dest.parent_path());
    makeLink(dest, "nowhere");
    EXPECT_EQ(install(), "done");
    EXPECT_EQ(world.lines->at(0), "stash-existing-app\t" + dest.native() + "\tsymlink destination");
    EXPECT_TRUE(Files::isSymbolicLink(world.trash->folder / "Editor.app"));
    EXPECT_EQ(pictureOf(dest), pictureOf(source));
}

TEST_F(AppInstallEngineTest, NeverWritesThroughALinkToTheSameApplication) {
    const fs::path other = world.makeApp(world.folder / "Elsewhere/Editor.app");
    makeFolder(dest.parent_path());
    makeLink(dest, other);
    EXPECT_EQ(install(), "done");
    EXPECT_FALSE(Files::isSymbolicLink(dest));
    EXPECT_TRUE(Files::exists(other));
}

TEST_F(AppInstallEngineTest, TellsWhereTheOldOneIsWhenTheCopyFails) {
    world.makeApp(dest, "an older version");
    world.withDitto("mkdir -p \"$3/Contents\"; echo 'no luck' >&2; exit 3");
    EXPECT_EQ(install(), "FileCopier 3: ditto failed: no luck. The Editor.app that stood there is in the Trash.");
    EXPECT_THAT(namesOnDrive(), IsEmpty()) << "half a copy is no application";
    EXPECT_EQ(contentOf(world.trash->folder / "Editor.app/Contents/Resources/data"), "an older version");
    EXPECT_FALSE(Files::itemExists(launcher));
}

TEST_F(AppInstallEngineTest, KeepsTheOldOneWhereNothingTakesIt) {
    world.trash->refuses = true;
    world.makeApp(dest, "an older version");
    makeFile(dest.parent_path() / ".TarvikTrash", "no folder");
    EXPECT_EQ(install(), "Files 17: Could not replace " + dest.native() + ": " + wordsFor(EEXIST));
    EXPECT_EQ(contentOf(dest / "Contents/Resources/data"), "an older version");
    EXPECT_THAT(tags(), ElementsAre("stash-existing-app"));
}

TEST_F(AppInstallEngineTest, SetsACopyAsideThatIsNotTheSame) {
    world.withDitto(R"(cp -aT "$2" "$3"; echo more >> "$3/Contents/Resources/data")");
    EXPECT_EQ(install(), "install-app 2: Contents/Resources/data copied with a different file size.");
    EXPECT_THAT(namesOnDrive(), IsEmpty());
    EXPECT_EQ(contentOf(world.trash->folder / "Editor.app/Contents/Resources/data"), "contentmore\n");
    EXPECT_THAT(tags(), ElementsAre("copy-app", "verify-app"));
}

TEST_F(AppInstallEngineTest, NamesABadCopyByItsReasonWhereTheTrashRefuses) {
    world.trash->refuses = true;
    world.withDitto(R"(cp -aT "$2" "$3"; rm "$3/Contents/Resources/data")");
    EXPECT_THAT(install(), StartsWith("install-app 2: Editor.app copied with "));
    EXPECT_THAT(namesOnDrive(), ElementsAre(".TarvikTrash"));
    EXPECT_THAT(Files::names(dest.parent_path() / ".TarvikTrash"),
                ElementsAre(StartsWith("Editor.app-verify-failed-")));
}

TEST_F(AppInstallEngineTest, BelievesNoCopyOfWhatChangedMeanwhile) {
    world.withDitto(R"(cp -aT "$2" "$3"; printf CONTENT > "$2/Contents/Resources/data")");
    EXPECT_EQ(install(), "install-app 2: Editor.app/Contents/Resources/data was changed while it was copied.");
    EXPECT_THAT(namesOnDrive(), IsEmpty());
}

TEST_F(AppInstallEngineTest, BelievesNoCopyOfWhatWasReplacedMeanwhile) {
    world.withDitto(R"(cp -aT "$2" "$3"; mv "$2" "$2.old"; cp -a "$2.old" "$2")");
    EXPECT_EQ(install(), "install-app 2: Editor.app was changed while it was copied.");
}

TEST_F(AppInstallEngineTest, TakesWhatBearsATimeOfTheFuture) {
    const auto future = fs::file_time_type::clock::now() + std::chrono::hours(5);
    fs::last_write_time(source / "Contents/Resources/data", future);
    fs::last_write_time(source, future);
    EXPECT_EQ(install(), "done");
}

TEST_F(AppInstallEngineTest, LetsTheLauncherTakeTheSourcesPlace) {
    world.makeApp(launcher);
    const std::string before = pictureOf(launcher);
    EXPECT_EQ(install(launcher), "done");
    EXPECT_EQ(pictureOf(dest), before);
    EXPECT_TRUE(world.isLauncherGood("Editor.app"));
    EXPECT_EQ(pictureOf(world.trash->folder / "Editor.app"), before);
}

TEST_F(AppInstallEngineTest, LeavesTheCopyWhenTheLauncherFails) {
    fs::remove(world.host.tools.externalAppLauncher);
    EXPECT_EQ(install(), "launcher 1: Launcher binary is missing.");
    EXPECT_EQ(pictureOf(dest), pictureOf(source));
    EXPECT_THAT(world.lines->back(), StartsWith("verify-app"));
}

TEST_F(AppInstallEngineTest, InstallsNothingThatOnlyLeadsToAnApplication) {
    install();
    const std::string onDrive = pictureOf(dest);
    EXPECT_EQ(install(launcher), "install-app 1: Editor.app only leads to " + dest.native() + ".");
    const fs::path link = world.folder / "Desktop/Editor.app";
    makeFolder(link.parent_path());
    makeLink(link, dest);
    EXPECT_EQ(install(link), "install-app 1: Editor.app only leads to " + dest.native() + ".");
    EXPECT_EQ(pictureOf(dest), onDrive);
    EXPECT_THAT(*world.lines, IsEmpty());
}

TEST_F(AppInstallEngineTest, InstallsNothingIntoItself) {
    world.makeApp(dest / "Contents/Helpers/Editor.app", "inner");
    EXPECT_EQ(install(dest / "Contents/Helpers/Editor.app"),
              "install-app 1: Editor.app cannot be installed into itself.");
    EXPECT_EQ(contentOf(dest / "Contents/Helpers/Editor.app/Contents/Resources/data"), "inner");
}

TEST_F(AppInstallEngineTest, MakesALauncherOfWhatIsOnTheDriveAlready) {
    world.makeApp(dest);
    EXPECT_EQ(install(dest), "done");
    EXPECT_THAT(tags().front(), "reuse-app");
    EXPECT_TRUE(world.isLauncherGood("Editor.app"));
}

TEST_F(AppInstallEngineTest, PutsNoLauncherInTheApplicationsOwnPlace) {
    world.option.applicationLinkRoot = "/Volumes/Backup/ExternalTarvik/Apps";
    EXPECT_EQ(install(), "install-app 1: The launcher of Editor.app would take the place of the application itself.");
    EXPECT_FALSE(Files::exists(dest));
}

TEST_F(AppInstallEngineTest, TellsThatASourceIsMissing) {
    EXPECT_EQ(install(world.folder / "None.app"),
              "Files 2: Could not install " + (world.folder / "None.app").native() + ": " + wordsFor(ENOENT));
    EXPECT_FALSE(Files::exists(dest.parent_path()));
}

TEST_F(AppInstallEngineTest, TakesTheNameOfAFolderWrittenWithASlash) {
    EXPECT_EQ(install(source.native() + "/"), "done");
    EXPECT_EQ(pictureOf(dest), pictureOf(source));
}

TEST_F(AppInstallEngineTest, AsksForSpaceBeforeAnythingIsTouched) {
    world.makeApp(dest, "an older version");
    makeFileOfSize(source / "Contents/large", 3'000'000);
    world.volumes->available = 1'000'000;
    EXPECT_THAT(install(), HasSubstr("Not enough space. Need 3"));
    EXPECT_EQ(contentOf(dest / "Contents/Resources/data"), "an older version");
    EXPECT_THAT(*world.lines, IsEmpty());
}

TEST_F(AppInstallEngineTest, TakesNoSpaceForWhatIsThereAlready) {
    install();
    world.volumes->available = 1;
    EXPECT_EQ(install(), "done");
}

TEST_F(AppInstallEngineTest, ClearsWhatAKilledInstallHasLeft) {
    makeFolder(dest.parent_path());
    world.makeApp(HiddenName::forCopyTo(dest) / "Editor.app", "half");
    EXPECT_EQ(install(), "done");
    EXPECT_THAT(namesOnDrive(), ElementsAre("Editor.app"));
    EXPECT_THAT(Files::names(world.trash->folder), ElementsAre("Editor.app (left by an interrupted move)"));
}

TEST_F(AppInstallEngineTest, StopsTheCopyWhenItIsAskedTo) {
    world.withDitto("mkdir -p \"$3\"; touch " + (world.folder / "begun").native() + "; exec sleep 100");
    std::thread asker([&] {
        EXPECT_TRUE(comesToStand(world.folder / "begun"));
        world.cancellation.cancel();
    });
    EXPECT_EQ(install(), "install " + std::to_string(ECANCELED) + ": The install was stopped.");
    asker.join();
    EXPECT_THAT(namesOnDrive(), IsEmpty());
    EXPECT_FALSE(Files::itemExists(launcher));
}

TEST_F(AppInstallEngineTest, RefusesWhatAnotherOneIsInstalling) {
    world.withDitto(waitFor(world.folder / "go") + R"(cp -aT "$2" "$3")");
    std::string first;
    InstallWorld& machine = world;
    std::thread other([&] {
        const auto terms = machine.terms();
        AppInstallEngine::install(machine.host, source, terms.option, terms.drive, InstallerRunReporter::silent);
        first = "done";
    });
    while (namesOnDrive().empty()) std::this_thread::yield();
    EXPECT_EQ(install(), "install-app " + std::to_string(EBUSY) + ": Editor.app is being installed already.");
    makeFile(world.folder / "go");
    other.join();
    EXPECT_EQ(first, "done");
    EXPECT_EQ(pictureOf(dest), pictureOf(source));
}

TEST_F(AppInstallEngineTest, UsesWhatAnotherOneHasInstalledMeanwhile) {
    world.makeApp(dest, "an older version");
    EXPECT_EQ(installWhile([&] {
                  fs::remove_all(dest);
                  fs::copy(source, dest, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
              }),
              "done");
    EXPECT_THAT(world.lines->front(), StartsWith("reuse-app\t"));
    EXPECT_FALSE(Files::exists(world.trash->folder));
}

TEST_F(AppInstallEngineTest, RefusesWhatAnotherOneHasBegunMeanwhile) {
    world.makeApp(dest, "an older version");
    std::optional<CopyPlace> other;
    EXPECT_EQ(installWhile([&] { other.emplace(dest); }),
              "install-app " + std::to_string(EBUSY) + ": Editor.app is being installed already.");
    EXPECT_EQ(contentOf(dest / "Contents/Resources/data"), "an older version");
}

TEST_F(AppInstallEngineTest, RefusesANameThatWouldBreakTheRecord) {
    const fs::path forged = world.makeApp(world.folder / "Downloads/Safari.app\tX.app");
    EXPECT_EQ(install(forged),
              "install " + std::to_string(EINVAL) + ": Safari.app?X.app has a name that cannot be used.");
    EXPECT_THAT(*world.lines, IsEmpty());
    EXPECT_FALSE(Files::exists(dest.parent_path()));
}

TEST_F(AppInstallEngineTest, WritesNothingWhereNoDriveIsMounted) {
    world.volumes->list.clear();
    EXPECT_THAT(install(), HasSubstr("Target drive disconnected"));
    EXPECT_THAT(Files::names(world.drive), IsEmpty());
}

TEST_F(AppInstallEngineTest, TakesAnotherDriveForNone) {
    EXPECT_EQ(failureOf([&] { TargetDrive(world.host, world.drive, "another mark"); }),
              "Target drive disconnected. Another drive is at " + world.drive.native() + " now.");
}

TEST_F(AppInstallEngineTest, WritesNothingThroughALinkThatLeavesTheDrive) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const auto volume = RealVolume::memory(world.folder.path(), 5 * megabyte);
    InstallWorld machine(volume.path());
    const fs::path inside = machine.folder / "inside";
    makeFolder(inside);
    makeLink(volume / "ExternalTarvik", inside);
    EXPECT_THAT(installOn(machine, source), HasSubstr("Target drive disconnected"));
    EXPECT_THAT(Files::names(inside), IsEmpty());
}

TEST_F(AppInstallEngineTest, LeavesNothingOnAFullDrive) {
    TARVIK_NEEDS_REAL_VOLUMES();
    const auto volume = RealVolume::ext4(world.folder.path(), 8 * megabyte);
    InstallWorld machine(volume.path());
    makeFileOfSize(source / "Contents/large", 20 * megabyte);
    EXPECT_THAT(installOn(machine, source), HasSubstr("No space left on device"));
    EXPECT_THAT(Files::names(volume / "ExternalTarvik/Apps"), IsEmpty());
    EXPECT_FALSE(Files::itemExists(machine.launcher("Editor.app")));
}

TEST_F(AppInstallEngineTest, InstallsOnARealDriveAgainAndOverAChangedCopy) {
    TARVIK_NEEDS_REAL_VOLUMES();
    const auto volume = RealVolume::ext4(world.folder.path(), 30 * megabyte);
    InstallWorld machine(volume.path());
    machine.withRealDitto();
    makeFileOfSize(source / "Contents/large", 2 * megabyte);
    EXPECT_EQ(installOn(machine, source), "done");
    EXPECT_EQ(pictureOf(machine.onDrive("Editor.app")), pictureOf(source));
    EXPECT_EQ(installOn(machine, source), "done");
    EXPECT_THAT(*machine.lines, Contains(StartsWith("reuse-app\t")));
    machine.trash->folder = volume / ".Trashes";
    makeFile(machine.onDrive("Editor.app") / "Contents/Resources/data", "changed");
    fs::remove(machine.onDrive("Editor.app") / "Contents/MacOS/program");
    EXPECT_EQ(installOn(machine, source), "done");
    EXPECT_THAT(machine.lines->front(), StartsWith("stash-existing-app\t"));
    EXPECT_EQ(contentOf(volume / ".Trashes/Editor.app/Contents/Resources/data"), "changed");
    EXPECT_EQ(pictureOf(machine.onDrive("Editor.app")), pictureOf(source));
}

TEST_F(AppInstallEngineTest, FailsWhenTheDriveIsTornOutMeanwhile) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const auto volume = RealVolume::memory(world.folder.path(), 5 * megabyte);
    InstallWorld machine(volume.path());
    machine.withDitto(RealVolume::unplugging(volume.path()) + R"(
mkdir -p "${3%/*}"
cp -aT "$2" "$3")");
    const std::string told = installOn(machine, source);
    EXPECT_THAT(told, HasSubstr("The target drive was disconnected while it was written to."));
    EXPECT_FALSE(Files::itemExists(machine.launcher("Editor.app")));
    EXPECT_FALSE(Files::itemExists(volume / "ExternalTarvik/Apps/Editor.app"));
}

TEST_F(AppInstallEngineTest, FailsWhenAnotherDriveComesToItsPlace) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const auto volume = RealVolume::memory(world.folder.path(), 5 * megabyte);
    InstallWorld machine(volume.path());
    machine.withDitto(RealVolume::unplugging(volume.path()) + "\n" + RealVolume::plugging(volume.path(), 5 * megabyte) +
                      R"(
mkdir -p "${3%/*}"
cp -aT "$2" "$3")");
    EXPECT_THAT(installOn(machine, source), HasSubstr("The target drive was disconnected while it was written to."));
    EXPECT_FALSE(Files::itemExists(volume / "ExternalTarvik/Apps/Editor.app"));
    EXPECT_FALSE(Files::itemExists(machine.launcher("Editor.app")));
}

TEST(AppSourceInstallerTest, GivesTheOneLineBehindTheSource) {
    InstallWorld world;
    const fs::path app = world.makeApp(world.folder / "Editor.app");
    std::vector<std::string> actions;
    EXPECT_EQ(world.outcomeOf([&] { actions = AppSourceInstaller::install(world.host, app, world.terms()); }), "done");
    EXPECT_EQ(world.lines->front(), "source\tapp\t" + app.native());
    EXPECT_THAT(actions, ElementsAre("installed-app\t" + world.launcher("Editor.app").native() + "\t" +
                                     world.onDrive("Editor.app").native()));
}

}  // namespace tarvik::test
