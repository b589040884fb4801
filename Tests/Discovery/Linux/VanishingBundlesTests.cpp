#include "Discovery/AppScanner.h"
#include "Discovery/InstalledAppsScanner.h"
#include "Support/Bundles.h"
#include "Support/Linux/FolderGate.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>

namespace tarvik {
namespace {

using testing::Contains;
using testing::SizeIs;

/// A machine whose scan is held up when it has listed all bundles and looks into the first, while the others vanish.
class VanishingBundles : public testing::Test {
protected:
    void SetUp() override {
        if (!test::FolderGate::isPossible()) TARVIK_SKIP_BECAUSE("Only the administrator may hold up a scan.");
        test::makeBundle(first, {{"CFBundleIdentifier", "com.acme.first"}});
        test::makeFile(loginItems / "Helper.app/x");
        test::makeBundle(applications / "Bundle.app", {{"CFBundleIdentifier", "com.acme.bundle"}});
        test::makeBundle(world.drive / "Linked.app", {{"CFBundleIdentifier", "com.acme.linked"}});
        test::makeLink(applications / "Linked.app", world.drive / "Linked.app");
        test::makeLauncher(applications / "Launcher.app", world.drive / "Linked.app",
                           {{"CFBundleIdentifier", "com.acme.linked.externallauncher"}});
    }

    /// What `scan` gives when all but the first bundle vanish in the middle of it.
    template <typename Scan>
    auto whileTheyVanish(const Scan& scan) const {
        std::atomic<bool> haveVanished = false;
        const test::FolderGate gate({loginItems}, [&](std::size_t) {
            for (const char* name : {"Bundle.app", "Linked.app", "Launcher.app"}) fs::remove_all(applications / name);
            fs::remove_all(world.drive / "Linked.app");
            haveVanished = true;
        });
        const auto found = scan();
        EXPECT_TRUE(haveVanished);
        return found;
    }

    test::World world;
    fs::path applications = world.folder / "Applications";
    fs::path first = applications / "A.app";
    fs::path loginItems = first / "Contents/Library/LoginItems";
};

TEST_F(VanishingBundles, DoNotDisturbAScanOfAllApplications) {
    const auto kept = InstalledAppsScanner::inspect(world.host, first);
    const auto records = whileTheyVanish([&] { return InstalledAppsScanner::discover(world.host); });
    EXPECT_THAT(records, Contains(*kept));
    EXPECT_THAT(records, SizeIs(4)) << "the others had been listed by then";
    for (const AppRecord& record : records)
        EXPECT_EQ(record.bundleIdentifier, record.bundlePath == first ? kept->bundleIdentifier : std::nullopt);
    EXPECT_THAT(InstalledAppsScanner::discover(world.host), SizeIs(1));
}

TEST_F(VanishingBundles, DoNotDisturbAScanOfTheMovable) {
    const auto kept = AppScanner::metadataEntry(world.host, first);
    const auto entries = whileTheyVanish([&] { return AppScanner::discoverMetadata(world.host); });
    EXPECT_THAT(entries, Contains(*kept));
    EXPECT_THAT(entries, SizeIs(4)) << "the others had been listed by then";
    for (const AppEntry& entry : entries) {
        if (entry.bundlePath == first) continue;
        EXPECT_EQ(entry.bundleIdentifier, std::nullopt) << entry.bundlePath;
        EXPECT_EQ(AppScanner::computeSizes(world.host, entry).totalSize(), 0) << entry.bundlePath;
    }
    EXPECT_THAT(AppScanner::discoverMetadata(world.host), SizeIs(1));
}

}  // namespace
}  // namespace tarvik
