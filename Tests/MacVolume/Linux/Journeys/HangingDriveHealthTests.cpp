// The check of what was moved, and its repairs, while the drive hangs.
#include "Health/HealthCheck.h"
#include "HealthRepair/HealthRepair.h"
#include "Platform/Files/Files.h"
#include "Records/HealthManifest.h"
#include "Records/InstallsDB.h"
#include "Support/Bundles.h"
#include "Support/FailureOf.h"
#include "Support/MacVolume.h"
#include "Support/TrackingDatabase.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <thread>

namespace tarvik::test {

namespace {

using namespace std::chrono_literals;
using Habit = MacVolume::Habit;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

constexpr auto longEnough = 120s;

std::size_t threads() {
    return Files::names("/proc/self/task").size();
}

/// A machine with an application and data on a drive that is a volume of its own, and one application on another drive.
class HangingDrive : public testing::Test {
protected:
    void SetUp() override {
        TARVIK_NEEDS_MAC_VOLUMES();
        makeFolder(drive);
        volume.emplace(drive);
        host = Host::rootedAt(root, root / "Users/ada");
        host.tools.codesign = script("codesign", "exit 1");
        host.tools.xcrun = "/nowhere/xcrun";

        moveApp("Away.app", drive);
        moveApp("Here.app", root / "Volumes/Other");
        makeBundle(drive / "Suite/Mixer.app");
        makeLink(applications / "Suite", drive / "Suite");
        makeLauncher(applications / "Launcher.app", drive / "ExternalTarvik/Apps/Away.app");
        makeLink(host.home / "Library/Logs/data", drive);
        makeLink(host.home / "Library/WebKit", drive);
        makeLink(host.home / "Library/Group Containers", drive);
        makeLink(host.home / "Library/Preferences/x.plist", drive / "x.plist");
        HealthManifest::record(
            host, {applications / "Away.app", drive / "ExternalTarvik/Apps/Away.app", std::nullopt, 1, host.now()});
        makeTrackingDatabase(InstallsDB::defaultPath(host));
        askDatabase(InstallsDB::defaultPath(host),
                    "INSERT INTO installs (install_id, app_name) VALUES ('one', 'Here.app');"
                    "INSERT INTO tracked_files (install_id, file_path) VALUES ('one', '" +
                        (drive / "tracked").native() + "');");
    }

    fs::path script(const std::string& name, const std::string& lines) const {
        makeFile(folder / name, "#!/bin/sh\n" + lines + "\n");
        fs::permissions(folder / name, fs::perms::owner_all);
        return folder / name;
    }
    void moveApp(const std::string& name, const fs::path& to) const {
        makeBundle(to / "ExternalTarvik/Apps" / name);
        makeLink(applications / name, to / "ExternalTarvik/Apps" / name);
    }
    std::future<HealthReport> beginCheck() const {
        return std::async(std::launch::async,
                          [this] { return HealthCheck::run(host, HealthCheck::applicationRoots(host)); });
    }
    /// What it finds although the drive hangs; "kind name" of each.
    std::vector<std::string> resultOf(std::future<HealthReport>& check) {
        const bool hasEnded = check.wait_for(longEnough) == std::future_status::ready;
        EXPECT_TRUE(hasEnded);
        if (!hasEnded) volume->set(Habit::hangs, false);
        std::vector<std::string> found;
        for (const HealthIssue& issue : check.get().issues)
            found.push_back(std::string(HealthIssueKind::rawValue(issue.kind)) + " " +
                            issue.location.filename().native());
        return found;
    }

    const TemporaryFolder folder;
    const fs::path root = folder / "root";
    const fs::path applications = root / "Applications";
    const fs::path drive = root / "Volumes/Drive";
    std::optional<MacVolume> volume;
    Host host;
};

const auto asIfItWereAway = ElementsAre("dangling Away.app", "healthy Here.app", "brokenLauncher Launcher.app",
                                        "unsafePrefsPlist x.plist", "dangling data");

}  // namespace

TEST_F(HangingDrive, CountsAsAway) {
    volume->set(Habit::hangs, true);
    auto check = beginCheck();
    EXPECT_THAT(resultOf(check), asIfItWereAway);
    volume->set(Habit::hangs, false);
    auto again = beginCheck();
    EXPECT_THAT(resultOf(again), Not(Contains("dangling Away.app")));
}

TEST_F(HangingDrive, CountsAsAwayWhenItHangsInTheMiddle) {
    // The tool that looks at signatures waits until the drive hangs; the check then goes to the drive again.
    host.tools.codesign = script("codesign", "touch '" + (folder / "asked").native() + "'; while [ ! -e '" +
                                                 (folder / "hangs").native() + "' ]; do sleep 0.01; done; exit 1");
    const std::size_t before = threads();
    auto check = beginCheck();
    while (!Files::exists(folder / "asked")) std::this_thread::sleep_for(1ms);
    volume->set(Habit::hangs, true);
    makeFile(folder / "hangs");
    EXPECT_THAT(resultOf(check), asIfItWereAway);
    EXPECT_GT(threads(), before) << "one is stuck on the drive";
    volume->set(Habit::hangs, false);
    while (threads() > before) std::this_thread::sleep_for(1ms);
}

TEST_F(HangingDrive, IsTouchedByNoRepair) {
    const HealthIssue link{.kind = HealthIssue::Kind::dangling,
                           .location = applications / "Away.app",
                           .target = drive / "ExternalTarvik/Apps/Away.app"};
    volume->set(Habit::hangs, true);
    auto repair = std::async(std::launch::async, [&] {
        return failureOf([&] { HealthRepair::perform(host, link, HealthRepairStrategy::removeDangling); });
    });
    const bool hasEnded = repair.wait_for(longEnough) == std::future_status::ready;
    volume->set(Habit::hangs, false);
    EXPECT_TRUE(hasEnded);
    EXPECT_EQ(repair.get(), "Away.app leads to a drive that does not answer. Nothing was changed.");
    EXPECT_TRUE(Files::isSymbolicLink(link.location));
}

}  // namespace tarvik::test
