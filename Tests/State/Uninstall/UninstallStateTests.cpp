#include "State/Uninstall/UninstallRecords.h"
#include "State/Uninstall/UninstallStateTest.h"

#include <QSignalSpy>

namespace tarvik::test {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

std::vector<int> batchesOf(const QSignalSpy& spy) {
    std::vector<int> sizes;
    for (const auto& arguments : spy) sizes.push_back(arguments.at(0).toInt());
    return sizes;
}

}  // namespace

TEST_F(UninstallStateTest, LooksForNothingBeforeItIsAsked) {
    makeApp("Atlas");
    begin();
    EXPECT_THAT(tab().uninstallApps(), IsEmpty());
    refresh();
    EXPECT_THAT(listed(), ElementsAre("Atlas"));
    makeApp("Brush");
    begin();
    EXPECT_THAT(listed(), UnorderedElementsAre("Atlas", "Brush")) << "from then on it is kept fresh";
}

TEST_F(UninstallStateTest, ListsFirstAndMeasuresThen) {
    makeApp("Atlas");
    tab().refreshUninstall();
    EXPECT_TRUE(tab().isScanningUninstall());
    spinUntil([&] { return !tab().isScanningUninstall(); });
    ASSERT_TRUE(appNamed("Atlas"));
    EXPECT_EQ(appNamed("Atlas")->bundleSizeBytes, 0);
    settle();
    EXPECT_GT(appNamed("Atlas")->bundleSizeBytes, 0);
}

TEST_F(UninstallStateTest, DropsARefreshWhileItLists) {
    makeApp("Atlas");
    QSignalSpy scans(&tab(), &UninstallState::isScanningUninstallChanged);
    tab().refreshUninstall();
    tab().refreshUninstall();
    settle();
    EXPECT_EQ(scans.count(), 2);
}

TEST_F(UninstallStateTest, TakesSizesInBatchesOfEight) {
    for (int number = 0; number < 20; ++number) makeApp("App" + std::to_string(number));
    QSignalSpy batches(&tab(), &UninstallState::sizingBatchApplied);
    refresh();
    EXPECT_THAT(batchesOf(batches), ElementsAre(8, 8, 4));
    for (const AppRecord& record : tab().uninstallApps()) EXPECT_GT(record.bundleSizeBytes, 0) << record.id;
}

TEST_F(UninstallStateTest, AppliesNoEmptyBatch) {
    for (int number = 0; number < 8; ++number) makeApp("App" + std::to_string(number));
    QSignalSpy batches(&tab(), &UninstallState::sizingBatchApplied);
    refresh();
    EXPECT_THAT(batchesOf(batches), ElementsAre(8));
}

TEST_F(UninstallStateTest, ChangesNothingForAMeasuredApplicationThatHasGone) {
    makeApp("Atlas");
    refresh();
    const auto before = tab().uninstallApps();
    tab().applySizingBatch({appRecord("Gone", 5)});
    EXPECT_EQ(tab().uninstallApps(), before);
    EXPECT_THAT(listed(), ElementsAre("Atlas"));
}

TEST_F(UninstallStateTest, PutsSizesIntoListAndGroupsAndLeavesTheSelectionAlone) {
    makeBundle(applications / "Draw.app", {{"CFBundleIdentifier", "com.acme.draw"}});
    makeBundle(applications / "Write.app", {{"CFBundleIdentifier", "com.acme.write"}});
    choose("Draw");
    const AppRecord chosen = *tab().selectedUninstallApp();
    tab().applySizingBatch({appNamed("Draw")->withBundleSize(77'000'000)});
    EXPECT_EQ(appNamed("Draw")->bundleSizeBytes, 77'000'000);
    ASSERT_EQ(tab().uninstallGroups().size(), 1U);
    EXPECT_EQ(tab().uninstallGroups().front().apps.front().bundleSizeBytes, 77'000'000);
    EXPECT_EQ(tab().selectedUninstallApp(), chosen);
    tab().toggleGroup("com.acme");
    tab().applySizingBatch({appNamed("Draw")->withBundleSize(78'000'000)});
    const auto& rows = tab().list()->rows();
    EXPECT_TRUE(std::any_of(rows.begin(), rows.end(), [](const UninstallListRow& row) {
        return row.app() && row.app()->bundleSizeBytes == 78'000'000;
    })) << "also in the row";
}

TEST_F(UninstallStateTest, ChangesOnlyTheRowsThatWereMeasured) {
    makeApp("Atlas");
    makeApp("Brush");
    refresh();
    const QAbstractItemModel* rows = tab().list()->rowsModel();
    QSignalSpy changed(rows, &QAbstractItemModel::dataChanged);
    QSignalSpy moved(rows, &QAbstractItemModel::rowsMoved);
    QSignalSpy inserted(rows, &QAbstractItemModel::rowsInserted);
    tab().applySizingBatch({appNamed("Brush")->withBundleSize(77'000'000)});
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(moved.count() + inserted.count(), 0);
}

TEST_F(UninstallStateTest, PutsRowsInOrderOfTheirSizesSoon) {
    makeApp("Atlas");
    makeApp("Brush");
    refresh();
    tab().list()->setSort(UninstallSort::sizeLargeSmall);
    tab().applySizingBatch({appNamed("Atlas")->withBundleSize(1'000'000'000), appNamed("Brush")->withBundleSize(1)});
    spinUntil([&] { return listed() == std::vector<std::string>{"Atlas", "Brush"}; });
    tab().applySizingBatch({appNamed("Brush")->withBundleSize(2'000'000'000)});
    spinUntil([&] { return listed() == std::vector<std::string>{"Brush", "Atlas"}; });
}

TEST_F(UninstallStateTest, KeepsSizesAndTicksWhenItListsAnew) {
    makeApp("Atlas");
    makeApp("Brush");
    refresh();
    tab().toggleAppMark(appNamed("Atlas")->id);
    tab().toggleAppMark(appNamed("Brush")->id);
    const auto size = appNamed("Atlas")->bundleSizeBytes;
    fs::remove_all(applications / "Brush.app");
    tab().refreshUninstall();
    spinUntil([&] { return !tab().isScanningUninstall(); });
    EXPECT_EQ(appNamed("Atlas")->bundleSizeBytes, size);
    EXPECT_THAT(tab().list()->markedIds(), ElementsAre((applications / "Atlas.app").native()));
    settle();
}

TEST_F(UninstallStateTest, MeasuresWhatALauncherStandsFor) {
    makeFileOfSize(world.drive / "There.app/large", 3'000'000);
    AppRecord launcher = appRecord("Launcher");
    launcher.bundlePath = applications / "Launcher.app";
    makeFile(launcher.bundlePath / "small", "small");
    launcher.isTarvikLauncher = true;
    launcher.externalTargetPath = world.drive / "There.app";
    const auto sizeOf = [&](const AppRecord& record) {
        return UninstallState::measureBundle(world.host, record, {}).bundleSizeBytes;
    };
    EXPECT_GE(sizeOf(launcher), 3'000'000);
    launcher.isTarvikLauncher = false;
    EXPECT_LT(sizeOf(launcher), 1'000'000);
    launcher.isTarvikLauncher = true;
    launcher.externalTargetPath = world.drive / "Gone.app";
    EXPECT_LT(sizeOf(launcher), 1'000'000);
    EXPECT_GT(sizeOf(launcher), 0);
    EXPECT_EQ(UninstallState::measureBundle(world.host, launcher, {}).footprintBytes, 0);
}

TEST_F(UninstallStateTest, MeasuresTheFootprintOfWhatCameWithAnotherApplication) {
    AppRecord tool = appRecord("Tool");
    tool.bundlePath = world.home / "Library/Application Support/Acme/Tool.app";
    makeFileOfSize(tool.bundlePath / "program", 1'000'000);
    EXPECT_GT(UninstallState::measureBundle(world.host, tool, {}).footprintBytes, 0);
}

TEST_F(UninstallStateTest, PlansTheChosenApplication) {
    const fs::path bundle = makeApp("Atlas");
    choose("Atlas");
    EXPECT_EQ(tab().uninstallPlan()->app.bundlePath, bundle);
    EXPECT_THAT(tab().uninstallChecked(), UnorderedElementsAre(bundle.native(), cacheOf("Atlas").native()));
    EXPECT_EQ(tab().checkedBytes(), tab().uninstallPlan()->totalBytes);
    const auto bytes = std::to_string(tab().uninstallPlan()->totalBytes);
    EXPECT_EQ(log(), QStringList({"inspect\t" + QString::fromStdString(bundle.native()),
                                  QString::fromStdString("plan\titems=2\tbytes=" + bytes)}));
}

TEST_F(UninstallStateTest, ClearsPlanAndTicksBeforeTheNextPlanArrives) {
    makeApp("Atlas");
    makeApp("Brush");
    choose("Atlas");
    tab().selectUninstallApp(*appNamed("Brush"));
    EXPECT_FALSE(tab().uninstallPlan());
    EXPECT_THAT(tab().uninstallChecked(), IsEmpty());
    tab().runUninstall(false);
    EXPECT_EQ(error(), "Select an app first.");
    state->clearError();
    tab().runUninstall(true);
    EXPECT_EQ(error(), "Select an app first.");
    settle();
    tab().selectUninstallApp(std::nullopt);
    EXPECT_FALSE(tab().selectedUninstallApp());
    EXPECT_FALSE(tab().uninstallPlan());
    EXPECT_THAT(dialogs.asked, IsEmpty());
}

TEST_F(UninstallStateTest, NeverShowsALatePlanUnderAnotherName) {
    makeApp("Atlas");
    makeApp("Brush");
    holdReceiptsOf("Atlas");
    refresh();
    tab().selectUninstallApp(*appNamed("Atlas"));
    waitForHeldReceipts();
    tab().selectUninstallApp(*appNamed("Brush"));
    spinUntil([&] { return tab().uninstallPlan().has_value(); });
    EXPECT_EQ(tab().uninstallPlan()->app.displayName, "Brush");
    letReceiptsGo();
    settle();
    EXPECT_EQ(tab().uninstallPlan()->app.displayName, "Brush");
    EXPECT_THAT(tab().uninstallChecked(), Contains(cacheOf("Brush").native()));
    EXPECT_EQ(log().size(), 2) << "of one application only";
}

TEST_F(UninstallStateTest, NeverShowsAPlanOnceNothingIsChosen) {
    makeApp("Atlas");
    holdReceiptsOf("Atlas");
    refresh();
    tab().selectUninstallApp(*appNamed("Atlas"));
    waitForHeldReceipts();
    tab().clearSelection();
    letReceiptsGo();
    settle();
    EXPECT_FALSE(tab().uninstallPlan());
    EXPECT_FALSE(tab().selectedUninstallApp());
}

TEST_F(UninstallStateTest, ChoosesADroppedApplication) {
    const fs::path elsewhere = world.home / "Desktop/Elsewhere.app";
    makeBundle(elsewhere, {{"CFBundleIdentifier", "org.elsewhere.app"}});
    tab().inspectDroppedBundle(QUrl("file://" + QString::fromStdString(elsewhere.native()) + "/"));
    settle();
    ASSERT_TRUE(tab().uninstallPlan());
    EXPECT_EQ(tab().uninstallPlan()->app.bundlePath, elsewhere);
    EXPECT_EQ(error(), "");
}

TEST_F(UninstallStateTest, LeavesTheSelectionWhenWhatIsDroppedIsNoApplication) {
    makeApp("Atlas");
    choose("Atlas");
    makeFile(world.home / "Letter.txt");
    makeFile(world.home / "File.app");
    makeFolder(world.home / "Photos");
    const std::pair<QString, std::string> drops[] = {
        {"file://" + QString::fromStdString((world.home / "Letter.txt").native()), "Letter.txt"},
        {"file://" + QString::fromStdString((world.home / "File.app").native()), "File.app"},
        {"file://" + QString::fromStdString((world.home / "Photos").native()), "Photos"},
        {"file://" + QString::fromStdString((applications / "Gone.app").native()), "Gone.app"},
        {"https://example.org/some/Atlas.app", "Atlas.app"},
        {"https://example.org", "https://example.org"},
        {"file:some%20words", "some words"},
    };
    for (const auto& [url, name] : drops) {
        state->clearError();
        tab().inspectDroppedBundle(QUrl(url));
        settle();
        EXPECT_EQ(error(), "Not an app bundle: " + name);
        EXPECT_TRUE(tab().uninstallPlan()) << url.toStdString();
        EXPECT_EQ(tab().selectedUninstallApp()->displayName, "Atlas");
    }
}

TEST_F(UninstallStateTest, TakesTheLastOfSeveralWishes) {
    makeApp("Atlas");
    const fs::path brush = makeApp("Brush");
    refresh();
    tab().inspectDroppedBundle(QUrl("file://" + QString::fromStdString(brush.native())));
    tab().selectUninstallApp(*appNamed("Atlas"));
    settle();
    EXPECT_EQ(tab().selectedUninstallApp()->displayName, "Atlas");
    tab().inspectDroppedBundle(QUrl("file:///nowhere/Gone.app"));
    tab().inspectDroppedBundle(QUrl("file://" + QString::fromStdString(brush.native())));
    settle();
    EXPECT_EQ(tab().selectedUninstallApp()->displayName, "Brush");
    EXPECT_EQ(error(), "");
}

TEST_F(UninstallStateTest, TakesPressesOnRows) {
    makeBundle(applications / "Draw.app", {{"CFBundleIdentifier", "com.acme.draw"}});
    makeBundle(applications / "Write.app", {{"CFBundleIdentifier", "com.acme.write"}});
    refresh();
    tab().list()->setSort(UninstallSort::nameAZ);
    tab().pressRow(1);
    EXPECT_THAT(listed(), ElementsAre("Draw", "Write")) << "the group has been opened";
    tab().toggleRowMark(1);
    EXPECT_EQ(tab().list()->markedIds().size(), 2U);
    tab().toggleRowMark(2);
    EXPECT_EQ(tab().list()->markedIds().size(), 1U);
    tab().toggleRowMark(1);
    EXPECT_EQ(tab().list()->markedIds().size(), 2U) << "some become all";
    tab().toggleRowMark(1);
    EXPECT_THAT(tab().list()->markedIds(), IsEmpty());
    tab().pressRow(3);
    EXPECT_EQ(tab().selectedUninstallApp()->displayName, "Write");
    tab().pressRow(0);
    EXPECT_EQ(tab().list()->rows().size(), 1U) << "the list is closed";
    tab().setRowOpen(0, true);
    tab().setRowOpen(1, false);
    EXPECT_THAT(listed(), IsEmpty());
    for (const int row : {-1, 99}) {
        tab().pressRow(row);
        tab().toggleRowMark(row);
        tab().togglePlanRow(row);
        tab().setPlanRowOpen(row, true);
    }
    settle();
}

}  // namespace tarvik::test
