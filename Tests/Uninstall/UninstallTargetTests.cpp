#include "Discovery/InstalledAppsScanner.h"
#include "Support/Bundles.h"
#include "Support/FailureOf.h"
#include "Support/HostOf.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"
#include "Uninstall/UninstallTarget.h"

#include <gtest/gtest.h>

namespace tarvik {
namespace {

class UninstallTargets : public testing::Test {
protected:
    UninstallTargets() {
        test::makeFolder(home);
        test::makeBundle(onDrive, {{"CFBundleIdentifier", "com.acme.far"}});
    }
    AppRecord recordOf(const fs::path& bundle) const { return InstalledAppsScanner::inspect(host, bundle).value(); }

    const test::TemporaryFolder folder;
    const fs::path home = folder / "Users/ada";
    const fs::path applications = folder / "Applications";
    const fs::path onDrive = folder / "Volumes/Drive/ExternalTarvik/Apps/Far.app";
    const Host host = Host::rootedAt(folder.path(), home);
};

TEST_F(UninstallTargets, AreTheLinkThatStandsForABundleOnADrive) {
    EXPECT_EQ(UninstallTarget::entryFor(host, recordOf(onDrive)).bundlePath, onDrive);
    test::makeLink(applications / "Tools/Far.app", onDrive);
    const AppRecord entry = UninstallTarget::entryFor(host, recordOf(onDrive));
    EXPECT_EQ(entry.bundlePath, applications / "Tools/Far.app");
    EXPECT_TRUE(entry.isSymlink);
    EXPECT_EQ(UninstallTarget::named(host, "Far").bundlePath, applications / "Tools/Far.app");
    // A path is meant as it is written.
    EXPECT_EQ(UninstallTarget::named(host, onDrive.native()).bundlePath, onDrive);
}

TEST_F(UninstallTargets, AreTheLauncherThatStandsForABundleOnADrive) {
    test::makeLauncher(applications / "Far.app", onDrive);
    EXPECT_EQ(UninstallTarget::entryFor(host, recordOf(onDrive)).bundlePath, applications / "Far.app");
}

TEST_F(UninstallTargets, AreTheBundleItselfAmongTheApplications) {
    test::makeBundle(applications / "Near.app", {{"CFBundleIdentifier", "com.acme.near"}});
    test::makeLink(applications / "Other.app", applications / "Near.app");
    EXPECT_EQ(UninstallTarget::entryFor(host, recordOf(applications / "Near.app")).bundlePath,
              applications / "Near.app");
}

TEST_F(UninstallTargets, AreLaunchersThatOpenNothingToo) {
    test::makeLauncher(applications / "Gone.app", "/nowhere/Gone.app");
    EXPECT_EQ(UninstallTarget::named(host, "Gone").bundlePath, applications / "Gone.app");
}

TEST_F(UninstallTargets, AreNothingButBundles) {
    test::makeFile(folder / "note.app");
    test::makeFolder(folder / "folder");
    for (const auto& path : {folder / "note.app", folder / "folder", folder / "gone.app"}) {
        EXPECT_FALSE(UninstallTarget::atPath(host, path)) << path;
        EXPECT_EQ(test::failureOf([&] { UninstallTarget::named(host, path.native()); }),
                  "Not an app bundle: " + path.filename().native());
    }
    EXPECT_EQ(test::failureOf([&] { UninstallTarget::named(host, "Nobody"); }), "There is no application \"Nobody\".");
    EXPECT_TRUE(UninstallTarget::atPath(host, onDrive / ""));
}

}  // namespace
}  // namespace tarvik
