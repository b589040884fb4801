#include "State/Apps/ShownApps.h"
#include "State/EventLoop.h"
#include "State/StateWorld.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <vector>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Scope = ShownApps::Scope;
using SortKey = ShownApps::SortKey;

AppRow row(const std::string& name, std::int64_t size, bool isMoved = false) {
    return {.entry = {.id = name,
                      .name = name,
                      .bundlePath = "/Applications/" + name,
                      .appSize = size,
                      .isAlreadySymlinked = isMoved}};
}

std::vector<std::string> names(const std::vector<AppRow>& rows) {
    std::vector<std::string> names;
    for (const AppRow& each : rows) names.push_back(each.entry.name);
    return names;
}

std::vector<std::string> filtered(const std::vector<AppRow>& rows, Scope scope, const QString& search = {},
                                  bool hideRisky = false, SortKey key = SortKey::size) {
    return names(ShownApps::filtered(rows, scope, search, hideRisky, key));
}

class ShownAppsTest : public StateWorld {
protected:
    ShownAppsTest() {
        for (const auto* name : {"Editor", "Player"})
            makeBundle(world.folder / "Applications" / (std::string(name) + ".app"));
        makeBundle(world.drive / "ExternalTarvik/Apps/Far.app");
        makeLink(world.folder / "Applications/Far.app", world.drive / "ExternalTarvik/Apps/Far.app");
        makeFileOfSize(world.folder / "Applications/Player.app/filling", 100'000);
        shown.setState(&appsTab());
        begin();
    }

    ShownApps shown;
};

}  // namespace

TEST(ShownAppsRule, KeepsTheScope) {
    const std::vector rows = {row("Local", 1), row("Far", 1, true)};
    EXPECT_THAT(filtered(rows, Scope::onDrive), ElementsAre("Far"));
    EXPECT_THAT(filtered(rows, Scope::local), ElementsAre("Local"));
    EXPECT_THAT(filtered(rows, Scope::all), ElementsAre("Local", "Far"));
}

TEST(ShownAppsRule, SearchesNamesWithoutRegardToCaseAndAccents) {
    const std::vector rows = {row("Éditeur", 1), row("Player", 1)};
    EXPECT_THAT(filtered(rows, Scope::all, "edit"), ElementsAre("Éditeur"));
    EXPECT_THAT(filtered(rows, Scope::all, "x"), IsEmpty());
}

TEST(ShownAppsRule, HidesEveryRiskyOneEvenWhenItIsSearchedFor) {
    std::vector rows = {row("Store", 1), row("Login", 1), row("Extension", 1), row("Plain", 1)};
    rows[0].entry.isMacAppStore = true;
    rows[1].entry.hasLoginItems = true;
    rows[2].entry.hasSystemExtension = true;
    EXPECT_THAT(filtered(rows, Scope::all, {}, true), ElementsAre("Plain"));
    EXPECT_THAT(filtered(rows, Scope::all, "Store", true), IsEmpty());
    EXPECT_THAT(filtered(rows, Scope::all, {}, false, SortKey::risk),
                ElementsAre("Extension", "Store", "Login", "Plain"));
}

TEST(ShownAppsRule, SortsBySizeWithDataAndKeepsTheOrderOfEquals) {
    std::vector rows = {row("b", 2), row("a", 2), row("c", 1)};
    EXPECT_THAT(filtered(rows, Scope::all), ElementsAre("b", "a", "c"));
    rows[2].entry.dataSize = 5;
    EXPECT_THAT(filtered(rows, Scope::all), ElementsAre("c", "b", "a"));
    EXPECT_THAT(filtered(rows, Scope::all, {}, false, SortKey::name), ElementsAre("a", "b", "c"));
}

TEST(ShownAppsRule, KeepsTheOrderOfManyEquals) {
    std::vector<AppRow> rows;
    std::vector<std::string> expected;
    for (int number = 60; number > 0; --number) {
        expected.push_back(std::to_string(number));
        rows.push_back(row(expected.back(), 7));
    }
    EXPECT_THAT(filtered(rows, Scope::all), testing::ElementsAreArray(expected));
    EXPECT_THAT(filtered(rows, Scope::all, {}, false, SortKey::risk), testing::ElementsAreArray(expected));
}

TEST_F(ShownAppsTest, BeginsWithWhatIsOnADrive) {
    EXPECT_THAT(names(shown.rows()), ElementsAre("Far"));
    EXPECT_EQ(shown.totalCount(), 3);
    EXPECT_EQ(shown.onDriveCount(), 1);
    EXPECT_EQ(shown.localCount(), 2);
}

TEST_F(ShownAppsTest, CountsScopesWhateverTheSearchIs) {
    shown.setScope(Scope::local);
    shown.setSearch("play");
    EXPECT_EQ(shown.count(), 1);
    EXPECT_EQ(shown.localCount(), 2);
    EXPECT_EQ(shown.onDriveCount(), 1);
}

TEST_F(ShownAppsTest, TicksAllThatAreToBeSeenAndUnticksThem) {
    shown.setScope(Scope::local);
    EXPECT_FALSE(shown.areAllSelected());
    shown.toggleAll();
    EXPECT_TRUE(shown.areAllSelected());
    EXPECT_EQ(appsTab().selectedMovableCount(), 2);
    EXPECT_EQ(appsTab().selectedRestorableCount(), 0);
    shown.setSearch("play");
    shown.toggleAll();
    EXPECT_EQ(names({appsTab().apps()[0]}), names({shown.rows()[0]}));
    EXPECT_EQ(appsTab().selectedMovableCount(), 1);
    shown.setSearch("no such");
    EXPECT_FALSE(shown.areAllSelected());
}

TEST_F(ShownAppsTest, FollowsTheList) {
    shown.setScope(Scope::all);
    EXPECT_THAT(names(shown.rows()), ElementsAre("Player", "Editor", "Far"));
    makeFileOfSize(world.folder / "Applications/Editor.app/filling", 500'000);
    makeBundle(world.folder / "Applications/New.app");
    appsTab().refreshApps();
    settle();
    EXPECT_THAT(names(shown.rows()), ElementsAre("Editor", "Player", "Far", "New"));
}

TEST_F(ShownAppsTest, StandsStillWhileTickedOnesAreMeasured) {
    const fs::path editor = world.folder / "Applications/Editor.app";
    const auto isPending = [&](const std::vector<AppRow>& rows) {
        return std::any_of(rows.begin(), rows.end(),
                           [&](const AppRow& each) { return each.entry.bundlePath == editor && each.sizesPending; });
    };
    shown.setScope(Scope::all);
    appsTab().setAppSelected(FilePath(editor), true);
    std::vector<bool> pendingWhenMeasured;
    QObject::connect(&appsTab(), &AppsState::sizeProgressChanged, &shown, [&] {
        if (appsTab().sizeProgress() > 0 && !isPending(appsTab().apps()) && pendingWhenMeasured.empty())
            pendingWhenMeasured.push_back(isPending(shown.rows()));
    });
    appsTab().refreshApps();
    settle();
    EXPECT_THAT(pendingWhenMeasured, ElementsAre(true));
    EXPECT_FALSE(isPending(shown.rows()));
}

TEST_F(ShownAppsTest, OutlivesItsState) {
    state.reset();
    shown.setScope(Scope::all);
    EXPECT_EQ(shown.totalCount(), 0);
    EXPECT_THAT(shown.rows(), IsEmpty());
    shown.toggleAll();
}

}  // namespace tarvik::test
