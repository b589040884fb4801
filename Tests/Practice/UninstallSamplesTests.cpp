#include "Discovery/InstalledAppsScanner.h"
#include "Platform/Machine/Host.h"
#include "Practice/PracticeMachine.h"
#include "Support/EnvironmentVariable.h"
#include "Support/TemporaryFolder.h"
#include "Uninstall/AppGrouper.h"
#include "Uninstall/AppUninstallPlanner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <string>
#include <vector>

namespace tarvik {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Pair;
using testing::UnorderedElementsAre;

class UninstallSamples : public testing::Test {
protected:
    AppUninstallPlan planOf(const std::string& name) const {
        return AppUninstallPlanner::plan(
            host, *InstalledAppsScanner::inspect(host, machine.root / "Applications" / (name + ".app")),
            UninstallSelection::everything);
    }
    std::vector<std::string> pathsOf(const AppUninstallPlan& plan) const {
        std::vector<std::string> paths;
        for (const auto& candidate : plan.candidates)
            paths.push_back(candidate.path.is_absolute() ? candidate.path.lexically_relative(machine.root).native()
                                                         : candidate.path.native());
        return paths;
    }

    test::TemporaryFolder folder;
    const Practice::Machine machine = Practice::build(folder / "machine", {.apps = 0, .files = 0});
    const Host host = Host::rootedAt(machine.root, machine.home);
    const test::EnvironmentVariable root{"TARVIK_ROOT", machine.root.native()};
};

TEST_F(UninstallSamples, HaveSomethingAtEveryPlace) {
    const auto plan = planOf("Loom");
    std::map<std::string, int> reasons;
    for (const auto& candidate : plan.candidates) ++reasons[candidate.reason];
    EXPECT_THAT(reasons, UnorderedElementsAre(
                             Pair("App bundle", 1), Pair("Matches app name", 3), Pair("Matches bundle id", 7),
                             Pair("Preferences plist", 1), Pair("ByHost preferences", 2),
                             Pair("Saved application state", 1), Pair("User launch agent", 1),
                             Pair("Dotfile install matching app name", 5), Pair("Node CLI cache", 3),
                             Pair("System path matches bundle id", 4), Pair("pkgutil receipt for bundle id", 1)));
    EXPECT_EQ(plan.grouped().size(), 13U) << "all sections but that of installer sessions";
    EXPECT_THAT(plan.warnings, ElementsAre("Launch daemons detected; requires admin authentication."));
    EXPECT_EQ(plan.candidates.back().path, "net.practicecraft.loom");
}

TEST_F(UninstallSamples, HaveANeighbourWhoseIdentifierBeginsAlike) {
    const std::string file =
        "Users/robin/Library/Preferences/ByHost/net.practicecraft.loom2.00000000-0000-5000-8000-000000000000.plist";
    EXPECT_THAT(pathsOf(planOf("Loom")), Contains(file));
    EXPECT_THAT(pathsOf(planOf("Loom Two")),
                ElementsAre("Applications/Loom Two.app",
                            "Users/robin/Library/Preferences/net.practicecraft.loom2.plist", file));
}

TEST_F(UninstallSamples, HaveLittleDataAndNone) {
    EXPECT_THAT(pathsOf(planOf("Spindle")),
                ElementsAre("Applications/Spindle.app", "Users/robin/Library/Application Support/Spindle"));
    EXPECT_THAT(pathsOf(planOf("Bobbin")), ElementsAre("Applications/Bobbin.app"));
}

TEST_F(UninstallSamples, StandBesideAnApplicationOnADriveWithItsData) {
    const auto plan = planOf("Faraway");
    EXPECT_THAT(pathsOf(plan), ElementsAre("Applications/Faraway.app", "Volumes/Backup/ExternalTarvik/Apps/Faraway.app",
                                           "Users/robin/Library/Application Support/Faraway"));
    EXPECT_TRUE(plan.candidates[0].isSymlink);
    EXPECT_FALSE(plan.candidates[1].defaultSelected);
}

TEST_F(UninstallSamples, AreOneVendorsAndUnusedForLong) {
    std::vector<std::string> labels;
    for (const auto& group : AppGrouper::group(InstalledAppsScanner::discover(host))) {
        labels.push_back(group.label);
        if (group.key != "net.practicecraft") continue;
        EXPECT_EQ(group.developer, "2026 Practice Craft");
        EXPECT_EQ(group.totalApps(), 4U);
        for (const AppRecord& app : group.apps)
            EXPECT_LT(app.modifiedAt, std::chrono::sys_days{std::chrono::year{2026} / 1 / 2}) << app.displayName;
    }
    EXPECT_THAT(labels, Contains("Practicecraft Group"));
    EXPECT_THAT(labels, Contains("Practicesounds Group"));
}

}  // namespace
}  // namespace tarvik
