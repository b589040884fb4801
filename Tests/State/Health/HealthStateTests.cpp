#include "Records/HealthManifest.h"
#include "State/EventLoop.h"
#include "State/StateWorld.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <vector>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using enum HealthRepairStrategy;
using Kind = HealthIssue::Kind;

class HealthStateTest : public StateWorld {
protected:
    HealthStateTest() { makeFolder(applications); }

    /// A link to an application on the drive.
    void moveApp(const std::string& name) {
        makeBundle(appsOnDrive / name);
        makeLink(applications / name, appsOnDrive / name);
    }
    void scan() {
        healthTab().refreshHealth();
        settle();
    }
    QString shown(int row, const char* role) const {
        const auto* model = healthTab().problemsModel();
        return model->data(model->index(row, 0), model->roleNames().key(role)).toString();
    }
    std::vector<std::string> names(QAbstractItemModel* model) const {
        std::vector<std::string> names;
        for (int row = 0; row < model->rowCount(); ++row)
            names.push_back(model->data(model->index(row, 0), model->roleNames().key("name")).toString().toStdString());
        return names;
    }
    void holdSignatureOf(const std::string& name) {
        moveApp(name);
        world.host.tools.codesign = world.tool("codesign", "touch '" + (world.folder / "asked").native() + "'\n" +
                                                               waitFor(world.folder / "go") + "exit 1");
        state = std::make_unique<AppState>(world.host, dialogs);
    }
    HealthIssue problem(std::size_t index = 0) const { return healthTab().healthReport()->problems().at(index); }

    const fs::path applications = world.folder / "Applications";
    const fs::path appsOnDrive = world.drive / "ExternalTarvik/Apps";
};

}  // namespace

TEST_F(HealthStateTest, ChecksNothingBeforeItIsAsked) {
    moveApp("Foo.app");
    begin();
    EXPECT_FALSE(healthTab().hasReport());
    EXPECT_FALSE(healthTab().isScanningHealth());
    EXPECT_EQ(healthTab().lastScan(), "");
    EXPECT_EQ(healthTab().healthyCount(), 0);
}

TEST_F(HealthStateTest, TellsWhatACheckHasFound) {
    moveApp("Foo.app");
    makeLink(applications / "Gone.app", appsOnDrive / "Gone.app");
    healthTab().refreshHealth();
    EXPECT_TRUE(healthTab().isScanningHealth());
    settle();
    EXPECT_FALSE(healthTab().isScanningHealth());
    EXPECT_TRUE(healthTab().hasReport());
    EXPECT_EQ(healthTab().healthyCount(), 1);
    EXPECT_EQ(healthTab().problemCount(), 1);
    EXPECT_EQ(healthTab().scannedSymlinks(), 2);
    EXPECT_EQ(healthTab().scannedDrives(), 1);
    EXPECT_THAT(healthTab().lastScan().toStdString(), testing::MatchesRegex("Last scan: .*[0-9].45.*"));
    EXPECT_EQ(shown(0, "name"), "Gone.app");
    EXPECT_EQ(shown(0, "kind"), "dangling");
    EXPECT_EQ(shown(0, "sizeText"), "");
    EXPECT_EQ(shown(0, "targetText").toStdString(), "→ " + (appsOnDrive / "Gone.app").native());
    EXPECT_THAT(names(healthTab().largestModel()), ElementsAre("Foo.app"));
}

TEST_F(HealthStateTest, PutsProblemsIntoTheOrderOfTheirSections) {
    makeBundle(appsOnDrive / "Orphan.app");
    makeLauncher(applications / "Launcher.app", "/nowhere/Launcher.app");
    makeBundle(applications / "Reverted.app");
    makeBundle(appsOnDrive / "Reverted.app");
    makeLink(applications / "Gone.app", "/nowhere/Gone.app");
    scan();
    EXPECT_THAT(names(healthTab().problemsModel()),
                ElementsAre("Gone.app", "Launcher.app", "Reverted.app", "Orphan.app"));
}

TEST_F(HealthStateTest, CountsEachProblemOfTheReport) {
    makeBundle(applications / "Foo.app");
    const HealthManifestEntry entry{applications / "Foo.app", "/nowhere/Foo.app", std::nullopt, 1, world.host.now()};
    makeFile(HealthManifest::file(world.host), nlohmann::json({entry, entry}).dump());
    scan();
    EXPECT_EQ(healthTab().healthReport()->problems().size(), 2U);
    EXPECT_EQ(healthTab().problemCount(), 2) << "though they are one row";
}

TEST_F(HealthStateTest, HeadsASectionWithItsCountAndTheSumOfWhatWasReverted) {
    for (const char* name : {"One.app", "Two.app"}) {
        makeBundle(applications / name);
        makeFileOfSize(appsOnDrive / name / "Contents/large", 1'000'000);
    }
    makeBundle(appsOnDrive / "Orphan.app");
    scan();
    const auto reverted = healthTab().section("reverted");
    EXPECT_EQ(reverted["title"].toString(), "Reverted by auto-updater (2)");
    EXPECT_THAT(reverted["total"].toString().toStdString(), testing::StartsWith("Total reclaimable: 2"));
    EXPECT_EQ(reverted["tone"].toString(), "warning");
    const auto orphans = healthTab().section("orphan");
    EXPECT_EQ(orphans["title"].toString(), "Orphaned SSD bundles (1)");
    EXPECT_EQ(orphans["total"].toString(), "") << "though they have sizes";
}

TEST_F(HealthStateTest, ShowsTheTenLargestHealthyOnes) {
    for (int number = 0; number < 11; ++number) {
        const std::string name = std::to_string(number) + ".app";
        moveApp(name);
        makeFileOfSize(appsOnDrive / name / "large", static_cast<std::size_t>(number + 1) * 100'000);
    }
    scan();
    EXPECT_THAT(names(healthTab().largestModel()),
                ElementsAre("10.app", "9.app", "8.app", "7.app", "6.app", "5.app", "4.app", "3.app", "2.app", "1.app"));
}

TEST_F(HealthStateTest, DropsACheckWhileOneIsUnderWay) {
    int changes = 0;
    QObject::connect(&healthTab(), &HealthState::isScanningHealthChanged, [&] { ++changes; });
    healthTab().refreshHealth();
    healthTab().refreshHealth();
    settle();
    EXPECT_EQ(changes, 2) << "one begin and one end";
}

TEST_F(HealthStateTest, KeepsTheLastReportUntilTheNextIsThere) {
    makeLink(applications / "Gone.app", "/nowhere/Gone.app");
    scan();
    fs::remove(applications / "Gone.app");
    healthTab().refreshHealth();
    EXPECT_EQ(healthTab().problemCount(), 1);
    settle();
    EXPECT_EQ(healthTab().problemCount(), 0);
}

TEST_F(HealthStateTest, RepairsTellsAndChecksAgain) {
    makeLink(applications / "Gone.app", "/nowhere/Gone.app");
    scan();
    healthTab().repairHealth(shown(0, "id"), static_cast<int>(removeDangling));
    settle();
    EXPECT_EQ(state->lastInfo(), "Removed dead symlink Gone.app.");
    EXPECT_EQ(state->lastError(), "");
    EXPECT_EQ(healthTab().problemCount(), 0);
}

TEST_F(HealthStateTest, TellsWhyARepairFailedAndChecksAgainAllTheSame) {
    makeLink(applications / "Gone.app", appsOnDrive / "Gone.app");
    scan();
    const auto issue = problem();
    makeBundle(appsOnDrive / "Gone.app");
    healthTab().repairHealth(issue, removeDangling);
    settle();
    EXPECT_EQ(state->lastError(), "Gone.app is not what it was when it was checked. Nothing was changed.");
    EXPECT_EQ(healthTab().problemCount(), 0);
    EXPECT_EQ(healthTab().healthyCount(), 1);
}

TEST_F(HealthStateTest, LetsTheOtherTabsShowWhatARepairHasChanged) {
    makeBundle(applications / "Reverted.app");
    makeBundle(appsOnDrive / "Reverted.app");
    begin();
    ASSERT_EQ(appsTab().apps().size(), 1U);
    EXPECT_FALSE(appsTab().apps().front().entry.isAlreadySymlinked);
    EXPECT_THAT(symlinksTab().symlinks(), IsEmpty());
    scan();
    healthTab().repairHealth(problem(), reSymlinkReverted);
    settle();
    EXPECT_EQ(state->lastInfo(), "Re-symlinked Reverted.app to SSD.");
    EXPECT_TRUE(appsTab().apps().front().entry.isAlreadySymlinked);
    ASSERT_EQ(symlinksTab().symlinks().size(), 1U);
    EXPECT_EQ(symlinksTab().symlinks().front().id, applications / "Reverted.app");
}

TEST_F(HealthStateTest, LetsTheOtherTabsShowWhatAFailedRepairHasLeft) {
    begin();
    const HealthIssue issue{.kind = Kind::dangling, .location = applications / "Gone.app"};
    makeLink(applications / "Gone.app", appsOnDrive / "Gone.app");
    makeBundle(appsOnDrive / "Gone.app");
    healthTab().repairHealth(issue, removeDangling);
    settle();
    EXPECT_NE(state->lastError(), "");
    EXPECT_EQ(symlinksTab().symlinks().size(), 1U);
}

TEST_F(HealthStateTest, NamesWhatIsBeingRepairedUntilTheReportThatTellsOfIt) {
    makeBundle(applications / "Reverted.app");
    makeFile(appsOnDrive / "Reverted.app/old");
    scan();
    const QString id = shown(0, "id");
    holdCopyOf("Reverted.app");
    healthTab().repairHealth(id, static_cast<int>(reSymlinkReverted));
    waitForHeldCopy();
    EXPECT_EQ(healthTab().repairing(), QStringList{id});
    healthTab().repairHealth(id, static_cast<int>(reclaimReverted));
    EXPECT_EQ(healthTab().repairing(), QStringList{id}) << "the second press is passed over";
    bool wasNamedDuringTheCheck = false;
    QObject::connect(&healthTab(), &HealthState::healthReportChanged,
                     [&] { wasNamedDuringTheCheck = healthTab().repairing().contains(id); });
    letGo();
    settle();
    EXPECT_TRUE(wasNamedDuringTheCheck);
    EXPECT_EQ(healthTab().repairing(), QStringList());
    EXPECT_EQ(state->lastInfo(), "Re-symlinked Reverted.app to SSD.");
    EXPECT_EQ(state->lastError(), "");
}

TEST_F(HealthStateTest, GivesEachOfTwoRepairsOneOutcome) {
    makeBundle(appsOnDrive / "Orphan.app");
    scan();
    const auto issue = problem();
    std::vector<QString> told;
    QObject::connect(state.get(), &AppState::lastInfoChanged, [&] { told.push_back(state->lastInfo()); });
    QObject::connect(state.get(), &AppState::lastErrorChanged, [&] { told.push_back(state->lastError()); });
    healthTab().repairHealth(issue, removeOrphan);
    healthTab().repairHealth(issue, removeOrphan);
    settle();
    EXPECT_EQ(told.size(), 2U);
    EXPECT_THAT(told, testing::Contains("Trashed orphan Orphan.app."));
    EXPECT_TRUE(fs::exists(world.trash->folder / "Orphan.app"));
    EXPECT_EQ(healthTab().problemCount(), 0);
}

TEST_F(HealthStateTest, StartsARepairAtOnceDuringACheckAndChecksNoSecondTime) {
    makeLink(applications / "Gone.app", "/nowhere/Gone.app");
    holdSignatureOf("Foo.app");
    const HealthIssue gone{
        .kind = Kind::dangling, .location = applications / "Gone.app", .target = "/nowhere/Gone.app"};
    int begun = 0;
    int reports = 0;
    QObject::connect(&healthTab(), &HealthState::isScanningHealthChanged,
                     [&] { begun += healthTab().isScanningHealth() ? 1 : 0; });
    QObject::connect(&healthTab(), &HealthState::healthReportChanged, [&] { ++reports; });
    healthTab().refreshHealth();
    spinUntil([this] { return fs::exists(world.folder / "asked"); });
    healthTab().repairHealth(gone, removeDangling);
    spinUntil([this] { return state->lastInfo() == "Removed dead symlink Gone.app."; });
    EXPECT_FALSE(fs::is_symlink(applications / "Gone.app"));
    spinOnce();
    EXPECT_TRUE(healthTab().isScanningHealth());
    makeFile(world.folder / "go");
    settle();
    EXPECT_EQ(begun, 1) << "the check after the repair is dropped";
    EXPECT_EQ(reports, 1);
    EXPECT_EQ(healthTab().problemCount(), 1) << "the report is older than the repair";
}

TEST_F(HealthStateTest, TellsOfAFailedCopyAsInformation) {
    const fs::path link = world.home / "Library/Containers/org.example.foo";
    makeFile(world.drive / "Data/org.example.foo/file");
    makeLink(link, world.drive / "Data/org.example.foo");
    world.withDitto("exit 1");
    scan();
    healthTab().repairHealth(problem(), restoreSandboxExternal);
    settle();
    EXPECT_EQ(state->lastInfo(), "ditto failed restoring org.example.foo; reverted.");
    EXPECT_EQ(state->lastError(), "");
    EXPECT_TRUE(fs::is_symlink(link));
}

TEST_F(HealthStateTest, PassesOverAFindingThatIsNotThereAnyMore) {
    makeLink(applications / "Gone.app", "/nowhere/Gone.app");
    scan();
    healthTab().repairHealth("nobody", static_cast<int>(removeDangling));
    for (const int strategy : {static_cast<int>(removeOrphan), -1, 99})
        healthTab().repairHealth(shown(0, "id"), strategy);
    settle();
    EXPECT_TRUE(fs::is_symlink(applications / "Gone.app"));
    EXPECT_EQ(state->lastInfo(), "");
    EXPECT_EQ(state->lastError(), "");
}

TEST_F(HealthStateTest, KeepsNoReportOfACheckThatWasStopped) {
    scan();
    makeLink(applications / "Gone.app", "/nowhere/Gone.app");
    healthTab().refreshHealth();
    healthTab().stop();
    settle();
    EXPECT_EQ(healthTab().problemCount(), 0) << "what a stopped check has not seen could be wrong too";
    EXPECT_FALSE(healthTab().isScanningHealth());
}

TEST_F(HealthStateTest, BeginsNothingMoreWhenTheWindowIsGoing) {
    makeBundle(applications / "Reverted.app");
    makeFile(appsOnDrive / "Reverted.app/old");
    makeLink(applications / "Gone.app", "/nowhere/Gone.app");
    scan();
    ASSERT_EQ(shown(0, "name"), "Gone.app");
    holdCopyOf("Reverted.app");
    healthTab().repairHealth(problem(1), reSymlinkReverted);
    waitForHeldCopy();
    dialogs.answers = {0};
    EXPECT_FALSE(state->mayClose());
    spinUntil([this] { return dialogs.asked.size() == 1; });
    spinOnce();
    healthTab().refreshHealth();
    EXPECT_FALSE(healthTab().isScanningHealth());
    healthTab().repairHealth(problem(), removeDangling);
    letGo();
    settle();
    EXPECT_TRUE(fs::is_symlink(applications / "Gone.app"));
    EXPECT_TRUE(fs::is_symlink(applications / "Reverted.app")) << "what was begun is finished";
}

TEST_F(HealthStateTest, AsksBeforeTheWindowClosesInTheMiddleOfARepair) {
    makeBundle(applications / "Reverted.app");
    makeFile(appsOnDrive / "Reverted.app/old");
    scan();
    holdCopyOf("Reverted.app");
    healthTab().repairHealth(problem(), reSymlinkReverted);
    waitForHeldCopy();
    dialogs.answers = {1};
    EXPECT_FALSE(state->mayClose());
    EXPECT_FALSE(state->isBusy()) << "something else may begin";
    letGo();
    settle();
    EXPECT_TRUE(state->mayClose());
    EXPECT_EQ(state->lastInfo(), "Re-symlinked Reverted.app to SSD.");
}

}  // namespace tarvik::test
