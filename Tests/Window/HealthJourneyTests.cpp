// What the Health tab finds and mends when real drives and real updaters have done their work, on a practice machine
// with two drives that are real file systems; read back by tools that share nothing with it.
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Machine/TrashCan.h"
#include "Platform/Processes/CommandRunner.h"
#include "Practice/PracticeMachine.h"
#include "Records/InstallsDB.h"
#include "State/Health/HealthState.h"
#include "Support/Bundles.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/TrackingDatabase.h"
#include "Support/Tree.h"
#include "Window/HealthRows.h"
#include "Window/WindowUnderTest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Kind = HealthIssue::Kind;

/// What a shell prints; "$1" and on are the paths. @throws std::runtime_error when it fails.
std::string shell(const std::string& script, const std::vector<fs::path>& paths = {}) {
    std::vector<std::string> arguments = {"-c", script, "sh"};
    arguments.insert(arguments.end(), paths.begin(), paths.end());
    const auto result = CommandRunner::run("/bin/sh", arguments);
    if (!result.succeeded()) throw std::runtime_error(script + ": " + result.stdout + result.stderr);
    return result.stdout;
}

RealVolume makeVolume(RealVolume::Kind kind, const fs::path& parent) {
    constexpr std::int64_t size = 48 * megabyte;
    return kind == RealVolume::Kind::ext4 ? RealVolume::ext4(parent, size) : RealVolume::memory(parent, size);
}

class HealthJourney : public testing::TestWithParam<RealVolume::Kind> {
protected:
    void SetUp() override {
        TARVIK_NEEDS_VOLUMES_OF_KIND(GetParam());
        const fs::path volumes = machine.root / "Volumes";
        drive.emplace(makeVolume(GetParam(), volumes));
        otherDrive.emplace(makeVolume(GetParam(), volumes));
        host.trash = makeSystemTrashCan(machine.home);
        makeTrackingDatabase(InstallsDB::defaultPath(host));
    }

    /// An application, signed as its maker does it.
    void makeApp(const fs::path& bundle, const std::string& version) const {
        const std::string name = bundle.stem();
        makeBundle(
            bundle,
            {{"CFBundleIdentifier", "org.example." + name}, {"CFBundleName", name}, {"CFBundleExecutable", "program"}});
        makeFile(bundle / "Contents/Resources/Version", version);
        makeFileOfSize(bundle / "Contents/Resources/Assets.car", 50'000, 3);
        const auto signing =
            CommandRunner::run(host.tools.codesign, {"--force", "--sign", "-", "--timestamp=none", bundle.native()});
        ASSERT_TRUE(signing.succeeded()) << signing.stderr;
    }
    /// The same; a copy of it stays aside, to compare.
    void addApp(const fs::path& bundle) const {
        makeApp(bundle, "1");
        shell("mkdir -p \"$2\" && cp -a \"$1\" \"$2\"", {bundle, aside});
    }
    void openWindow() { window = std::make_unique<WindowUnderTest>(host); }

    void chooseDrive(const RealVolume& volume) const {
        for (const DriveInfo& each : window->state().drives())
            if (each.mountPath == volume.path()) window->state().selectDrive(QString::fromStdString(each.id));
        ASSERT_TRUE(window->state().selectedDrive());
        ASSERT_EQ(window->state().selectedDrive()->mountPath, volume.path());
    }
    void settle() const {
        EXPECT_TRUE(window->waitUntil([&] { return window->state().isIdle(); }));
    }
    void expectInfo(const QString& text) const {
        EXPECT_TRUE(window->waitForText("infoToast/toastText", text))
            << window->state().lastInfo().toStdString() << window->state().lastError().toStdString();
        settle();
    }
    /// Moves applications to a drive, as a user does.
    void move(const std::vector<std::string>& names, const RealVolume& volume) const {
        chooseDrive(volume);
        window->openTab("apps");
        window->click("viewPicker-local");
        for (const std::string& name : names) window->click("app-" + QString::fromStdString(name) + "/appBox");
        ASSERT_TRUE(window->waitUntil([&] { return window->isEnabled("moveAppsButton"); }));
        window->click("moveAppsButton");
        window->click("alertButton-0");
        expectInfo(names.size() == 1 ? "Moved 1 item." : QString("Moved %1 items.").arg(names.size()));
    }
    void moveFolder(const fs::path& path, const RealVolume& volume) const {
        chooseDrive(volume);
        window->chooseFolder(path);
        ASSERT_TRUE(window->waitUntil([&] { return window->isEnabled("moveButton"); }));
        window->click("moveButton");
        window->click("alertButton-0");
        expectInfo("Moved 1 item.");
    }
    /// "kind name" of each finding that the tab shows after a scan.
    std::vector<std::string> scan() const {
        window->openTab("health");
        window->click("scanButton");
        settle();
        const QAbstractItemModel& problems = *window->state().tab<HealthState>().problemsModel();
        const auto text = [&](int row, const char* role) {
            return problems.index(row, 0).data(problems.roleNames().key(role)).toString().toStdString();
        };
        std::vector<std::string> found;
        for (int row = 0; row < problems.rowCount(); ++row)
            found.push_back(text(row, "kind") + " " + text(row, "name"));
        return found;
    }
    void repair(Kind kind, const std::string& name, const QString& message, int button = 0) const {
        HealthRows::repair(*window, kind, name, button);
        expectInfo(message);
    }

    fs::path onDrive(const std::string& name) const { return drive->path() / "ExternalTarvik/Apps" / name; }
    /// What was thrown away and bears that name, as `find` finds it.
    fs::path inTrash(const std::string& name) const {
        const auto found =
            shell("find \"$1\" \"$2\" -path '*Trash*' -name '" + name + "' -prune", {machine.root, drive->path()});
        return found.substr(0, found.find('\n'));
    }
    void expectSame(const fs::path& one, const fs::path& other) const {
        EXPECT_NO_THROW(shell("diff -r \"$1\" \"$2\"", {one, other}));
    }

    TemporaryFolder folder;
    Practice::Machine machine = Practice::build(folder / "machine", {.apps = 0, .specialApps = false, .files = 10});
    Host host = Host::rootedAt(machine.root, machine.home);
    fs::path applications = SystemFolders::applications(host);
    fs::path library = machine.home / "Library";
    fs::path aside = folder / "aside";
    std::optional<RealVolume> drive, otherDrive;
    std::unique_ptr<WindowUnderTest> window;
};

INSTANTIATE_TEST_SUITE_P(Kinds, HealthJourney, testing::Values(RealVolume::Kind::ext4, RealVolume::Kind::memory),
                         [](const auto& kind) { return kind.param == RealVolume::Kind::ext4 ? "Ext4" : "Memory"; });

TEST_P(HealthJourney, FindsThreeApplicationsWholeAgainWhenTheirDriveIsBack) {
    for (const char* name : {"Atlas.app", "Brush.app", "Canvas.app"}) addApp(applications / name);
    openWindow();
    move({"Atlas", "Brush", "Canvas"}, *drive);
    EXPECT_THAT(scan(), IsEmpty());
    EXPECT_EQ(window->text("healthyTile/tileValue"), "3");
    const fs::path elsewhere = folder / "elsewhere";
    shell("mkdir \"$2\" && cp -a \"$1\" \"$2\"", {drive->path() / "ExternalTarvik", elsewhere});
    const fs::path place = drive->path();
    drive->detach();
    EXPECT_THAT(scan(), ElementsAre("dangling Atlas.app", "dangling Brush.app", "dangling Canvas.app"));
    EXPECT_EQ(window->text("drivesTile/tileValue"), "0");
    shell("mkdir \"$2\" && cp -a \"$1\" \"$2\"", {elsewhere / "ExternalTarvik", place});
    EXPECT_THAT(scan(), IsEmpty());
    EXPECT_TRUE(window->isShown("allHealthy"));
    for (const char* name : {"Atlas.app", "Brush.app", "Canvas.app"}) expectSame(applications / name, aside / name);
}

TEST_P(HealthJourney, MendsWhatRealLifeHasBroken) {
    for (const char* name :
         {"Gone.app", "Reverted.app", "Engineless.app", "Listless.app", "Altered.app", "Unlinked.app", "Tracked.app"})
        addApp(applications / name);
    for (const char* name : {"Mixer.app", "Tuner.app"}) addApp(applications / "Suite" / name);
    addApp(machine.home / "Applications/Mixer.app");
    makeFile(library / "Containers/org.example.Tracked/Data/notes", "kept");
    makeFile(library / "Preferences/org.example.Tracked.plist", "settings");
    openWindow();
    move({"Gone"}, *otherDrive);
    move({"Reverted", "Engineless", "Listless", "Altered", "Unlinked", "Tracked"}, *drive);
    moveFolder(applications / "Suite", *drive);
    EXPECT_THAT(scan(), IsEmpty());

    // A drive is unplugged, an updater writes over a link, files on the drive are deleted, a byte flips.
    otherDrive->detach();
    makeApp(folder / "update/Reverted.app", "2");
    shell("rm \"$1\" && cp -a \"$2\" \"$1\"", {applications / "Reverted.app", folder / "update/Reverted.app"});
    shell("rm \"$1\"/Contents/MacOS/*", {onDrive("Engineless.app")});
    shell("rm \"$1\"/Contents/Info.plist", {onDrive("Listless.app")});
    shell("printf X | dd of=\"$1\" bs=1 seek=777 conv=notrunc 2>&1",
          {onDrive("Altered.app/Contents/Resources/Assets.car")});
    shell("rm \"$1\"", {applications / "Unlinked.app"});
    const fs::path suite = drive->path() / "ExternalTarvik/Folders/Suite";
    shell("rm -r \"$1\" && rm -r \"$2\"", {suite / "Mixer.app", applications / "Tuner.app"});
    askDatabase(InstallsDB::defaultPath(host),
                "INSERT INTO tracked_files SELECT install_id, '/nowhere/fonts', 'data', 'high' FROM installs "
                "WHERE app_name = 'Tracked.app'");
    for (const char* item : {"Containers/org.example.Tracked", "Preferences/org.example.Tracked.plist"})
        shell("mkdir -p \"$2\" && mv \"$1\" \"$2\"/ && ln -s \"$2\"/\"${1##*/}\" \"$1\"",
              {library / item, drive->path() / "by hand"});

    EXPECT_THAT(
        scan(),
        ElementsAre("dangling Gone.app", "empty Listless.app", "corrupted Engineless.app", "brokenLauncher Mixer.app",
                    "signatureBroken Altered.app", "sandboxExternalSymlink org.example.Tracked",
                    "unsafePrefsPlist org.example.Tracked.plist", "reverted Reverted.app", "orphan Unlinked.app",
                    "missingTrackedFiles Tracked.app", "missingSpotlightLaunchers Suite"));

    repair(Kind::dangling, "Gone.app", "Removed dead symlink Gone.app.");
    repair(Kind::empty, "Listless.app", "Cleaned up Listless.app. Reinstall the app.");
    repair(Kind::corrupted, "Engineless.app", "Cleaned up Engineless.app. Reinstall the app.");
    const std::string otherMixer = machine.home / "Applications/Mixer.app";
    repair(Kind::brokenLauncher, "Mixer.app", QString::fromStdString("Retargeted Mixer.app to " + otherMixer + "."));
    HealthRows::repair(*window, Kind::sandboxExternalSymlink, "org.example.Tracked");
    settle();
    EXPECT_TRUE(window->state().lastInfo().startsWith("Restored org.example.Tracked to internal disk. (External copy"));
    repair(Kind::unsafePrefsPlist, "org.example.Tracked.plist", "Restored org.example.Tracked.plist to internal disk.");
    repair(Kind::reverted, "Reverted.app", "Re-symlinked Reverted.app to SSD.", 1);
    repair(Kind::orphan, "Unlinked.app", "Trashed orphan Unlinked.app.");
    repair(Kind::missingTrackedFiles, "Tracked.app", "Forgot 1 stale tracked file entry for Tracked.app.");
    repair(Kind::missingSpotlightLaunchers, "Suite", "Installed/repaired 1 Spotlight launcher.");

    EXPECT_THAT(scan(), ElementsAre("signatureBroken Altered.app")) << "which only its maker can mend";
    shell("cp \"$1\" \"$2\"",
          {aside / "Altered.app/Contents/Resources/Assets.car", onDrive("Altered.app/Contents/Resources/Assets.car")});
    EXPECT_THAT(scan(), IsEmpty());
    EXPECT_TRUE(window->isShown("allHealthy"));

    // Nothing is lost: what was thrown away is whole in the Trash, what is used is whole in its place.
    for (const char* name : {"Gone.app", "Listless.app", "Engineless.app", "Unlinked.app"})
        EXPECT_EQ(shell("[ -L \"$1\" ] || [ -e \"$1\" ] || printf gone", {applications / name}), "gone") << name;
    for (const char* name : {"Listless.app", "Engineless.app", "Unlinked.app"}) {
        EXPECT_FALSE(fs::exists(onDrive(name)));
        EXPECT_EQ(shell("cmp \"$1/$3\" \"$2/$3\" && printf same",
                        {inTrash(name), aside / name, "Contents/Resources/Assets.car"}),
                  "same");
    }
    expectSame(inTrash("Unlinked.app"), aside / "Unlinked.app");
    expectSame(inTrash("Reverted.app"), aside / "Reverted.app");
    EXPECT_EQ(shell("readlink \"$1\"", {applications / "Reverted.app"}), onDrive("Reverted.app").native() + "\n");
    expectSame(onDrive("Reverted.app"), folder / "update/Reverted.app");
    expectSame(applications / "Altered.app", aside / "Altered.app");
    EXPECT_EQ(shell("cat \"$1\"", {applications / "Mixer.app/Contents/Resources/ExternalAppTarget.txt"}), otherMixer);
    EXPECT_EQ(shell("cat \"$1\"", {applications / "Tuner.app/Contents/Resources/ExternalAppTarget.txt"}),
              (suite / "Tuner.app").native());
    for (const char* item : {"Containers/org.example.Tracked/Data/notes", "Preferences/org.example.Tracked.plist"})
        EXPECT_NO_THROW(shell("[ ! -L \"$1\" ] && [ -s \"$1\" ]", {library / item})) << item;
    EXPECT_EQ(shell("find \"$1\" \"$2\" -name '.tarvik-*'", {machine.root, drive->path()}), "");
    EXPECT_EQ(askDatabase(InstallsDB::defaultPath(host), "SELECT * FROM tracked_files WHERE file_path LIKE '%fonts'"),
              "");
}

}  // namespace

}  // namespace tarvik::test
