#include "Dedupe/AppDedupeService.h"
#include "Practice/PracticeMachine.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarvik {

namespace {

class Duplicates : public testing::Test {
protected:
    static std::vector<std::string> namesOf(const std::vector<AppDedupeItem>& items) {
        std::vector<std::string> names;
        for (const AppDedupeItem& item : items) names.push_back(item.path.filename());
        return names;
    }
    AppDedupePlan plan() const {
        return AppDedupeService::plan(host, {machine.root / "Applications", machine.home / "Applications"});
    }

    test::TemporaryFolder folder;
    Practice::Machine machine = Practice::build(folder / "machine", {.apps = 1, .files = 0});
    Host host = Host::rootedAt(machine.root, machine.home);
};

}  // namespace

TEST_F(Duplicates, AreLaunchersBesideApplicationsThatWereInstalledAnew) {
    const auto groups = plan().groups;
    ASSERT_EQ(groups.size(), 2U);
    EXPECT_EQ(groups[0].displayName, "Compass");
    EXPECT_THAT(namesOf(groups[0].remove), testing::ElementsAre("Compass Launcher.app", "Compass.app"));
    EXPECT_EQ(groups[1].displayName, "Sextant");
    EXPECT_THAT(namesOf(groups[1].remove), testing::ElementsAre("Sextant.app"));
}

TEST_F(Duplicates, AreOnlySomeOfTheOldLaunchers) {
    const auto going = [&] { return namesOf(plan().removableItems()); };
    const std::vector<std::string> duplicates = {"Compass Launcher.app", "Compass.app", "Sextant.app"};
    EXPECT_EQ(going(), duplicates);

    // Two of the others would be some but for a single thing.
    fs::remove_all(machine.drives.back() / "Other Versions");
    EXPECT_THAT(going(), testing::Contains("Barometer.app")) << "the copy that it opens has gone";
    fs::remove(machine.home / "Applications/Instruments");
    fs::rename(machine.drives.back() / "Instruments", machine.home / "Applications/Instruments");
    EXPECT_THAT(going(), testing::Contains("Astrolabe.app")) << "its folder is no link any more";

    const fs::path launchers = machine.home / "Applications/Old Launchers";
    for (const char* name : {"Ghostly.app", "Ghostly 2.app", "Anonymous.app"}) {
        EXPECT_TRUE(fs::exists(launchers / name / "Contents/Resources/ExternalAppTarget.txt")) << name;
        EXPECT_THAT(going(), testing::Not(testing::Contains(name)));
    }
}

}  // namespace tarvik
