// What a user does who installs an application anew that a launcher stands for: the window finds the launcher and takes
// it away. Read back by tools that share nothing with it.
#include "Applications/LauncherLayout.h"
#include "Launchers/LauncherAppBuilder.h"
#include "Platform/Machine/TrashCan.h"
#include "Platform/Processes/CommandRunner.h"
#include "Practice/PracticeMachine.h"
#include "Support/Bundles.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"
#include "Window/WindowUnderTest.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace tarvik::test {

namespace {

std::string outputOf(const std::string& script, const std::vector<fs::path>& paths) {
    std::vector<std::string> arguments = {"-c", script, "sh"};
    arguments.insert(arguments.end(), paths.begin(), paths.end());
    const auto result = CommandRunner::run("/bin/sh", arguments);
    EXPECT_TRUE(result.succeeded()) << script << result.stderr;
    return result.stdout;
}

class DedupeJourney : public testing::Test {
protected:
    void SetUp() override {
        TARVIK_NEEDS_VOLUMES_OF_KIND(RealVolume::Kind::ext4);
        drive.emplace(RealVolume::ext4(machine.root / "Volumes", 48 * megabyte));
        host.trash = makeSystemTrashCan(machine.home);
    }

    TemporaryFolder folder;
    Practice::Machine machine = Practice::build(folder / "machine", {.apps = 2, .specialApps = false, .files = 10});
    Host host = Host::rootedAt(machine.root, machine.home);
    fs::path applications = machine.root / "Applications";
    fs::path own = machine.home / "Applications";
    std::optional<RealVolume> drive;
};

TEST_F(DedupeJourney, TakesAwayTheLauncherOfAnApplicationThatWasInstalledAnew) {
    // A launcher as moves make them, for an application on the drive.
    const PropertyList::Dictionary info = {{"CFBundleIdentifier", "org.example.mixer"}, {"CFBundleName", "Mixer"}};
    const fs::path onDrive = drive->path() / "ExternalTarvik/Folders/Suite/Mixer.app";
    makeBundle(onDrive, info);
    const fs::path launcher = own / "Mixer.app";
    makeFolder(own);
    LauncherAppBuilder::install(host, onDrive, launcher, onDrive, InstallerRunReporter::silent);
    // Another one, which opens what is still there.
    makeBundle(drive->path() / "Tuner.app", {{"CFBundleIdentifier", "org.example.tuner"}});
    LauncherAppBuilder::install(host, drive->path() / "Tuner.app", own / "Tuner.app", drive->path() / "Tuner.app",
                                InstallerRunReporter::silent);

    WindowUnderTest window(host);
    window.openTab("dedupe");
    EXPECT_TRUE(window.waitUntilShown("noDuplicates")) << "no real application stands here yet";

    // The user throws the one on the drive away and installs both anew.
    outputOf("rm -r \"$1\"", {onDrive});
    makeBundle(applications / "Mixer.app", info);
    makeBundle(applications / "Tuner.app", {{"CFBundleIdentifier", "org.example.tuner"}});
    outputOf("cp -a \"$1\" \"$2\"", {launcher, folder / "launcher"});
    outputOf("cp -a \"$1\" \"$2\"", {machine.root, folder / "before"});

    window.click("dedupeScanButton");
    EXPECT_TRUE(window.waitUntilShown("dedupeGroup-Mixer"));
    EXPECT_FALSE(window.isShown("dedupeGroup-Tuner")) << "its launcher opens another copy";
    EXPECT_EQ(window.text("dedupeGroup-Mixer/dedupeRemove-0/dedupePath").toStdString(), launcher.native());
    EXPECT_EQ(window.text("dedupeGroup-Mixer/dedupeRemove-0/dedupeTarget").toStdString(),
              "target: " + onDrive.native());
    window.click("removeDuplicatesButton");
    EXPECT_TRUE(window.waitForText("infoToast/toastText", "Removed 1 duplicate launcher."));
    EXPECT_TRUE(window.waitUntilShown("noDuplicates"));

    EXPECT_EQ(outputOf("[ -e \"$1\" ] || printf gone", {launcher}), "gone");
    const std::string trashed =
        outputOf("find \"$1\" -path '*Trash*' -name Mixer.app -prune | tr -d '\\n'", {machine.home});
    EXPECT_EQ(outputOf("diff -r \"$1\" \"$2\"", {folder / "launcher", trashed}), "") << "it can be put back whole";
    // But for the launcher and the Trash, the machine is what it was.
    EXPECT_EQ(outputOf("mv \"$3\" \"$2\" && rm -r \"$1\"/Users/*/.local && "
                       "diff -r --no-dereference \"$4\" \"$1\"",
                       {machine.root, own, trashed, folder / "before"}),
              "");
}

}  // namespace

}  // namespace tarvik::test
