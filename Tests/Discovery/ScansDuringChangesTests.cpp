#include "Discovery/AppScanner.h"
#include "Discovery/InstalledAppsScanner.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace tarvik {
namespace {

using testing::Contains;

/// A machine with one application that stays, while a bundle, a link, a launcher and the folder of another bundle come
/// and go all the time.
class ScansDuringChanges : public testing::Test {
protected:
    ScansDuringChanges() {
        test::makeBundle(applications / "Stays.app", {{"CFBundleIdentifier", "com.acme.stays"}});
        test::makeBundle(world.drive / "Linked.app", {{"CFBundleIdentifier", "com.acme.linked"}});
        m_thread = std::thread([this] { change(); });
    }
    ~ScansDuringChanges() override {
        m_isOver = true;
        m_thread.join();
    }

    /// Looks on until the changing items have come and gone often enough.
    template <typename Look>
    void whileTheyChange(const Look& look) const {
        do look();
        while (m_rounds < 100 && !HasFatalFailure());
    }

    test::World world;
    fs::path applications = world.folder / "Applications";

private:
    void change() {
        while (!m_isOver) {
            test::makeBundle(applications / "Bundle.app", {{"CFBundleIdentifier", "com.acme.bundle"}});
            test::makeLink(applications / "Linked.app", world.drive / "Linked.app");
            test::makeLauncher(applications / "Launcher.app", world.drive / "Linked.app");
            test::makeBundle(applications / "Suite/Tool.app", {{"CFBundleIdentifier", "com.acme.tool"}});
            for (const char* name : {"Bundle.app", "Linked.app", "Launcher.app", "Suite"})
                fs::remove_all(applications / name);
            ++m_rounds;
        }
    }

    std::atomic<bool> m_isOver = false;
    std::atomic<int> m_rounds = 0;
    std::thread m_thread;
};

TEST_F(ScansDuringChanges, FindWhatStaysAmongAllApplications) {
    const auto stays = InstalledAppsScanner::inspect(world.host, applications / "Stays.app");
    ASSERT_TRUE(stays);
    whileTheyChange([&] { ASSERT_THAT(InstalledAppsScanner::discover(world.host), Contains(*stays)); });
}

TEST_F(ScansDuringChanges, FindWhatStaysAmongTheMovable) {
    const auto stays = AppScanner::metadataEntry(world.host, applications / "Stays.app");
    ASSERT_TRUE(stays);
    whileTheyChange([&] {
        const auto entries = AppScanner::discoverMetadata(world.host);
        ASSERT_THAT(entries, Contains(*stays));
        for (const AppEntry& entry : entries) AppScanner::computeSizes(world.host, entry);
    });
}

}  // namespace
}  // namespace tarvik
