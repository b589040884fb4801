// Uninstalls, past ones and duplicate launchers while a drive hangs.
#include "Dedupe/AppDedupeService.h"
#include "Support/Bundles.h"
#include "Support/MacVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"
#include "Uninstall/AppUninstallPlanner.h"
#include "UninstallRun/AppUninstallRunner.h"
#include "UninstallRun/UninstallHistory.h"
#include "UninstallRun/UninstallUndo.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>

namespace tarvik::test {

namespace {

using namespace std::chrono_literals;
using Habit = MacVolume::Habit;
using State = UninstallUndo::Item::State;

constexpr auto patience = 120s;

/// The application Editor, whose bundle and data are on a drive that is a volume of its own.
class HangingDriveUninstall : public testing::Test {
protected:
    void SetUp() override {
        TARVIK_NEEDS_MAC_VOLUMES();
        makeFolder(drive);
        volume.emplace(drive);
        host = Host::rootedAt(root, root / "Users/ada");
        makeBundle(copy, {{"CFBundleIdentifier", "org.example.Editor"}});
        makeLink(link, copy);
        makeFile(drive / "Data/Editor/file");
        makeLink(host.home / "Library/Caches/Editor", drive / "Data/Editor");
        app.bundlePath = link;
        app.displayName = "Editor";
        app.bundleIdentifier = "org.example.Editor";
        app.isSymlink = true;
        app.externalTargetPath = copy;
    }

    /// While the drive hangs. The test fails if the act does not end before it answers again.
    void whileItHangs(const std::function<void()>& act) {
        volume->set(Habit::hangs, true);
        auto ended = std::async(std::launch::async, act);
        EXPECT_EQ(ended.wait_for(patience), std::future_status::ready);
        volume->set(Habit::hangs, false);
        ended.get();
    }

    const TemporaryFolder folder;
    const fs::path root = folder / "root";
    const fs::path drive = root / "Volumes/Drive";
    const fs::path copy = drive / "ExternalTarvik/Apps/Editor.app";
    const fs::path link = root / "Applications/Editor.app";
    std::optional<MacVolume> volume;
    Host host;
    AppRecord app;
};

}  // namespace

TEST_F(HangingDriveUninstall, OffersTheLinkAlone) {
    AppUninstallPlan plan;
    whileItHangs([&] { plan = AppUninstallPlanner::plan(host, app, UninstallSelection::everything); });
    ASSERT_EQ(plan.candidates.size(), 1U);
    EXPECT_EQ(plan.candidates[0].path, link);
}

TEST_F(HangingDriveUninstall, TellsOfPastOnes) {
    const auto plan = AppUninstallPlanner::plan(host, app, UninstallSelection::everything);
    const auto session = AppUninstallRunner::run(host, plan, UninstallSelection::everything, false,
                                                 std::set<std::string>{copy, link}, AppUninstallReporter::silent);
    ASSERT_EQ(session.goneCount(), 2);
    std::vector<UninstallUndo::Item> items;
    whileItHangs([&] {
        const Host known = UninstallHistory::knownMachine(host);
        ASSERT_EQ(UninstallHistory::list(known).size(), 1U);
        items = UninstallUndo::look(known, session);
    });
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].state, State::waiting);
    EXPECT_EQ(items[1].reason, "Its drive does not answer.");

    whileItHangs([&] { items = UninstallUndo::putBack(host, session, AppUninstallReporter::silent); });
    EXPECT_EQ(items[0].state, State::back) << "a link is no part of the drive that it leads to";
    EXPECT_EQ(UninstallUndo::putBack(host, session, AppUninstallReporter::silent)[1].state, State::back);
}

TEST_F(HangingDriveUninstall, KeepsLaunchersThatLeadThere) {
    makeBundle(root / "Applications/Player.app", {{"CFBundleIdentifier", "org.example.Player"}});
    makeLauncher(
        host.home / "Applications/Player.app", drive / "Player.app",
        {{"CFBundleIdentifier", "org.example.Player.externallauncher"}, {"CFBundleExecutable", "ExternalAppLauncher"}});
    AppDedupePlan plan;
    whileItHangs([&] { plan = AppDedupeService::plan(host, AppDedupeService::applicationRoots(host)); });
    EXPECT_TRUE(plan.groups.empty());
    EXPECT_EQ(AppDedupeService::plan(host, AppDedupeService::applicationRoots(host)).groups.size(), 1U);
}

}  // namespace tarvik::test
