// An application that has been moved to a real drive with its data is removed with everything that belongs to it, and
// put back, by the window; looked for by tools that share nothing with it.
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Machine/TrashCan.h"
#include "Platform/Processes/CommandRunner.h"
#include "Practice/PracticeMachine.h"
#include "State/Uninstall/UninstallState.h"
#include "Support/Bundles.h"
#include "Support/ExtendedAttributes.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"
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

/// What a shell prints; "$1" and on are the paths. @throws std::runtime_error when it fails.
std::string printed(const std::string& script, const std::vector<fs::path>& paths) {
    std::vector<std::string> arguments = {"-c", script, "sh"};
    arguments.insert(arguments.end(), paths.begin(), paths.end());
    const auto result = CommandRunner::run("/bin/sh", arguments);
    if (!result.succeeded()) throw std::runtime_error(script + ": " + result.stdout + result.stderr);
    return result.stdout;
}

class UninstallJourney : public testing::TestWithParam<RealVolume::Kind> {
protected:
    void SetUp() override {
        TARVIK_NEEDS_VOLUMES_OF_KIND(GetParam());
        constexpr std::int64_t size = 48 * megabyte;
        const fs::path volumes = machine.root / "Volumes";
        drive.emplace(GetParam() == RealVolume::Kind::ext4 ? RealVolume::ext4(volumes, size)
                                                           : RealVolume::memory(volumes, size));
        host.trash = makeSystemTrashCan(machine.home);
        makeApp();
    }

    /// An application with data at many places, one of them with an attribute of its own.
    void makeApp() const {
        makeBundle(atlas, {{"CFBundleIdentifier", id}, {"CFBundleName", "Atlas"}, {"CFBundleExecutable", "program"}});
        makeFileOfSize(atlas / "Contents/Resources/Assets.car", 50'000, 3);
        makeFileOfSize(library / "Application Support/Atlas/maps", 300'000, 4);
        makeLink(library / "Application Support/Atlas/latest", "maps");
        makeFile(library / "Caches" / id / "tile", "tile");
        makeFile(library / "Preferences" / (id + ".plist"), "<plist/>");
        makeFile(library / "Logs/Atlas/today.log", "log");
        makeFile(library / "LaunchAgents" / (id + ".plist"), "<plist/>");
        makeFile(machine.root / "Library/LaunchDaemons" / (id + ".plist"), "<plist/>");
        fs::permissions(library / "Caches" / id / "tile", fs::perms::owner_read);
        makeFolder(machine.home / ".local/share");  // Where the Trash will be.
        setAttribute(library / "Application Support/Atlas/maps", "user.tag", "green");
        printed("find \"$1\" \"$2\" -exec touch -h -d '2020-02-02 02:02:02.123456789' {} +",
                {atlas, library / "Application Support/Atlas"});
    }
    void settle() const {
        EXPECT_TRUE(window->waitUntil([&] { return window->state().isIdle(); }));
    }
    void expectInfo(const QString& text) const {
        EXPECT_TRUE(window->waitForText("infoToast/toastText", text))
            << window->state().lastInfo().toStdString() << window->state().lastError().toStdString();
        settle();
    }
    void moveToDrive() const {
        for (const DriveInfo& each : window->state().drives())
            if (each.mountPath == drive->path()) window->state().selectDrive(QString::fromStdString(each.id));
        window->openTab("apps");
        window->click("viewPicker-local");
        window->click("app-Atlas/appBox");
        ASSERT_TRUE(window->waitUntil([&] { return window->isEnabled("moveAppsButton"); }));
        window->click("moveAppsButton");
        window->click("alertButton-0");
        ASSERT_TRUE(window->waitUntil([&] { return window->state().lastInfo().startsWith("Moved "); }));
        settle();
    }
    UninstallState& tab() const { return window->state().tab<UninstallState>(); }
    void remove(const QString& told) const {
        window->click("removeButton");
        window->click("alertButton-0");
        expectInfo(told);
        EXPECT_EQ(window->state().lastError(), "");
    }
    void putBack(const QString& told) const {
        EXPECT_TRUE(window->waitUntilShown("past-Atlas/putBackButton"));
        window->click("past-Atlas/putBackButton");
        window->click("alertButton-0");
        expectInfo(told);
    }

    /// Every item of the machine but the Trash and the program's own records: kind, permissions, owner, size, link and,
    /// except of the folders that have held what went, time; the bytes of files and their attributes.
    std::string fingerprint() const {
        const std::string notOurs =
            "\\( -name '.Trash*' -o -path '*/Application Support/Tarvik' -o -path '*/.local/share' \\) -prune -o ";
        std::string parents;
        for (const char* name : {"Applications", "Library", "Application Support", "Caches", "Preferences", "Logs",
                                 "LaunchAgents", "LaunchDaemons", "Apps", "ExternalTarvik", ".local", "volume-*"})
            parents += std::string(parents.empty() ? "" : " -o ") + "-name '" + name + "'";
        const std::vector<fs::path> roots = {machine.root, drive->path()};
        return printed("find \"$1\" \"$2\" -mindepth 1 " + notOurs + "\\( " + parents +
                           " \\) -printf '%p %y %m %U %l\\n' -o -printf '%p %y %m %U %l %T@\\n' | sort -u",
                       roots) +
               printed("find \"$1\" \"$2\" -mindepth 1 " + notOurs + "-type f -exec sha256sum {} + | sort -u", roots) +
               printed("find \"$1\" \"$2\" -mindepth 1 " + notOurs +
                           "-type f -exec getfattr --absolute-names -d -m '^user' {} + | sort -u",
                       roots);
    }
    /// What still bears its name or its identifier.
    std::string left() const {
        return printed(
            "find \"$1\" \"$2\" -mindepth 1 \\( -name '.Trash*' -o -path '*/Application Support/Tarvik' -o "
            "-path '*/.local/share' \\) -prune -o \\( -name '*Atlas*' -o -name '*" +
                id + "*' \\) -prune -print | sort -u",
            {machine.root, drive->path()});
    }

    const std::string id = "org.atlas.viewer";
    TemporaryFolder folder;
    Practice::Machine machine = Practice::build(folder / "machine", {.apps = 0, .specialApps = false, .files = 10});
    Host host = Host::rootedAt(machine.root, machine.home);
    fs::path atlas = SystemFolders::applications(host) / "Atlas.app";
    fs::path library = machine.home / "Library";
    std::optional<RealVolume> drive;
    std::unique_ptr<WindowUnderTest> window;
};

INSTANTIATE_TEST_SUITE_P(Kinds, UninstallJourney, testing::Values(RealVolume::Kind::ext4, RealVolume::Kind::memory),
                         [](const auto& kind) { return kind.param == RealVolume::Kind::ext4 ? "Ext4" : "Memory"; });

TEST_P(UninstallJourney, RemovesAnApplicationAndPutsItBackAsItWas) {
    const std::string before = fingerprint();
    window = std::make_unique<WindowUnderTest>(host);
    window->openTab("uninstall");
    window->click("app-Atlas");
    EXPECT_TRUE(window->waitUntilShown("uninstallPlan"));
    settle();
    EXPECT_EQ(window->text("checkedCountFigure/figureValue"), "6");
    remove("Uninstalled Atlas — 6 items.");
    const fs::path daemon = machine.root / "Library/LaunchDaemons" / (id + ".plist");
    EXPECT_EQ(left(), daemon.native() + "\n") << "which was not ticked";
    putBack("Put back 6 items.");
    EXPECT_EQ(fingerprint(), before);
    EXPECT_TRUE(window->waitUntilShown("app-Atlas"));
}

TEST_P(UninstallJourney, RemovesAnApplicationFromTheDiskAndFromTheDrive) {
    window = std::make_unique<WindowUnderTest>(host);
    moveToDrive();
    const std::string before = fingerprint();
    ASSERT_TRUE(fs::is_symlink(atlas));
    window->openTab("uninstall");
    settle();
    window->drop(atlas, "heroTitle");
    EXPECT_TRUE(window->waitUntilShown("uninstallPlan"));
    settle();
    for (const UninstallCandidate& candidate : tab().uninstallPlan()->candidates)
        if (!tab().uninstallChecked().contains(candidate.path.native())) tab().toggleChecked(candidate.path.native());
    remove("Uninstalled Atlas — 8 items.");
    // Copies of data on a drive belong to no application that a plan knows of.
    const std::string remains = left();
    EXPECT_THAT(remains, testing::Not(testing::HasSubstr("Atlas.app")));
    EXPECT_THAT(remains, testing::Not(testing::HasSubstr(machine.home.native() + "/Library")));
    EXPECT_THAT(remains, testing::Not(testing::HasSubstr(machine.root.native() + "/Library")));
    putBack("Put back 8 items.");
    EXPECT_EQ(fingerprint(), before);
    EXPECT_TRUE(fs::is_symlink(atlas));
    EXPECT_TRUE(fs::exists(atlas / "Contents/Info.plist"));
}

}  // namespace

}  // namespace tarvik::test
