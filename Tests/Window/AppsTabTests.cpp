#include "State/Threads/BusyThreads.h"
#include "Window/AppsWindowTest.h"

#include <QTest>
#include <gmock/gmock.h>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class AppsTab : public AppsWindowTest {};

TEST_F(AppsTab, StartsWithWhatIsOnTheDrive) {
    app("Editor");
    auto& window = open();
    EXPECT_EQ(window.text("appsHeading"), "Applications");
    EXPECT_EQ(window.text("appsCount"), "0 shown / 1 total");
    EXPECT_EQ(window.item("viewPicker").property("choice"), "onDrive");
    EXPECT_EQ(window.item("noAppsShown/emptyTitle").property("text"), "No apps on the selected drive.");
    EXPECT_EQ(window.text("noAppsShown/emptyText"), "Moved apps appear here with Move Back actions.");
}

TEST_F(AppsTab, SaysWhyEachListIsEmpty) {
    appOnDrive("Far");
    auto& window = openScope("local");
    EXPECT_EQ(window.text("noAppsShown/emptyTitle"), "No local apps match this view.");
    EXPECT_EQ(window.text("noAppsShown/emptyText"), "Local apps appear here with Move & Symlink actions.");
    window.click("viewPicker-all");
    EXPECT_FALSE(window.isShown("noAppsShown"));
    window.click("appSearch");
    window.type("zzz");
    EXPECT_EQ(window.text("noAppsShown/emptyTitle"), "No apps match this search.");
    EXPECT_EQ(window.text("noAppsShown/emptyText"), "Clear search or filters to see more apps.");
}

TEST_F(AppsTab, SaysThatItLooksAndThatItHasFoundNothing) {
    auto& window = open();
    EXPECT_EQ(window.text("emptyApps/emptyTitle"), "No applications found.");
    EXPECT_EQ(window.text("appsCount"), "0 shown / 0 total");
    BusyThreads busyThreads(BusyThreads::all(), Priority::userInitiated);
    window.click("refreshAppsButton");
    EXPECT_EQ(window.text("discoveringText"), "Discovering applications...");
    EXPECT_EQ(window.text("appsCount"), "... ");
    EXPECT_FALSE(window.isShown("emptyApps"));
    EXPECT_FALSE(window.isEnabled("refreshAppsButton"));
    busyThreads.end();
    EXPECT_TRUE(window.waitUntilShown("emptyApps"));
    EXPECT_FALSE(window.isShown("discoveringApps"));
}

TEST_F(AppsTab, CountsEachScopeWhateverIsSearched) {
    app("Editor");
    app("Player");
    appOnDrive("Far");
    auto& window = openScope("all");
    const auto texts = [&] {
        return std::vector{window.text("viewPicker-onDrive"), window.text("viewPicker-local"),
                           window.text("viewPicker-all")};
    };
    const std::vector<QString> all{"On Drive (1)", "Local (2)", "All (3)"};
    EXPECT_EQ(texts(), all);
    window.click("appSearch");
    window.type("EDI");
    EXPECT_THAT(shownApps(), ElementsAre("Editor"));
    EXPECT_EQ(texts(), all);
    EXPECT_EQ(window.text("appsCount"), "1 shown / 3 total");
    window.press(Qt::Key_Escape);
    EXPECT_EQ(window.text("appSearch"), "");
    EXPECT_THAT(shownApps(), SizeIs(3));
    window.type("play");
    window.click("appSearchClear");
    EXPECT_EQ(window.text("appSearch"), "");
}

TEST_F(AppsTab, HidesRiskyOnesEvenWhenTheyAreSearchedFor) {
    makeRiskyApps();
    app("Plain");
    auto& window = openScope("local");
    EXPECT_EQ(window.text("hideRiskyBox"), "Hide risky");
    window.click("hideRiskyBox");
    EXPECT_THAT(shownApps(), ElementsAre("Plain"));
    window.click("appSearch");
    window.type("Store");
    EXPECT_THAT(shownApps(), IsEmpty());
    EXPECT_TRUE(window.isShown("noAppsShown"));
}

TEST_F(AppsTab, SortsByWhatIsPicked) {
    app("Alpha", 4096);
    app("beta", 800'000);
    makeRiskyApps();
    auto& window = openScope("local");
    EXPECT_EQ(window.text("sortPicker-size"), "Size");
    EXPECT_EQ(window.text("sortPicker-name"), "Name");
    EXPECT_EQ(window.text("sortPicker-risk"), "Risk");
    EXPECT_EQ(shownApps().front(), "beta");
    window.click("sortPicker-name");
    EXPECT_THAT(shownApps(), ElementsAre("Alpha", "beta", "Driver", "Store"));
    window.click("sortPicker-risk");
    EXPECT_THAT(shownApps(), ElementsAre("Driver", "Store", "beta", "Alpha"));
}

TEST_F(AppsTab, KeepsTheOrderOfEquals) {
    for (const char* name : {"Carol", "Alice", "Bob"}) app(name);
    auto& window = openScope("local");
    EXPECT_THAT(shownApps(), ElementsAre("Alice", "Bob", "Carol"));
    window.click("sortPicker-risk");
    EXPECT_THAT(shownApps(), ElementsAre("Alice", "Bob", "Carol"));
}

TEST_F(AppsTab, TicksAllThatIsSeen) {
    app("Editor");
    app("Player");
    appOnDrive("Far");
    auto& window = openScope("local");
    const auto state = [&] { return window.item("selectAllBox").property("checkState").toInt(); };
    EXPECT_EQ(state(), Qt::Unchecked);
    window.click("selectAllBox");
    EXPECT_EQ(state(), Qt::Checked);
    EXPECT_EQ(window.appsState().selectedMovableCount(), 2);
    EXPECT_EQ(window.appsState().selectedRestorableCount(), 0);
    window.click("app-Editor/appBox");
    EXPECT_EQ(state(), Qt::Unchecked);
    window.click("selectAllBox");
    window.click("selectAllBox");
    EXPECT_THAT(window.appsState().selectedAppIDs(), IsEmpty());
}

TEST_F(AppsTab, ShowsWhatAnApplicationTakesAndItsRisk) {
    makeRiskyApps();
    app("Editor", 2'000'000, 1'000'000);
    appOnDrive("Far");
    auto& window = openScope("all");
    const AppEntry& editor = window.appsState().apps().front().entry;
    ASSERT_EQ(editor.name, "Editor");
    EXPECT_TRUE(window.text("app-Editor/appSize").startsWith("app 2"));
    EXPECT_TRUE(window.text("app-Editor/appDataSize").startsWith("data 1"));
    EXPECT_TRUE(window.text("app-Editor/appTotal").startsWith("3"));
    EXPECT_FALSE(window.isShown("app-Editor/appRisk"));
    EXPECT_FALSE(window.isShown("app-Editor/appMoveBackButton"));
    EXPECT_EQ(window.text("app-Store/appRisk"), "caution");
    EXPECT_EQ(window.text("app-Driver/appRisk"), "do not move");
    EXPECT_EQ(window.text("app-Far/appMoveBackButton"), "Move Back");
    EXPECT_FALSE(window.isShown("app-Far/appSizeSpinner"));
}

TEST_F(AppsTab, ShowsASpinnerForWhatIsNotMeasuredYet) {
    app("Editor", 100'000);
    auto& window = openScope("local");
    app("Player");
    BusyThreads busyThreads;
    window.appsState().refreshApps();
    ASSERT_TRUE(window.waitUntilShown("app-Player"));
    EXPECT_TRUE(window.isShown("app-Player/appSizeSpinner"));
    EXPECT_FALSE(window.isShown("app-Player/appTotal"));
    EXPECT_TRUE(window.isShown("app-Editor/appTotal")) << "what was known stays";
    EXPECT_EQ(window.text("appsCount"), "... ");
    EXPECT_TRUE(window.isShown("sizingBar"));
    busyThreads.end();
    EXPECT_TRUE(window.waitUntilShown("app-Player/appTotal"));
    EXPECT_FALSE(window.isShown("app-Player/appSizeSpinner"));
}

TEST_F(AppsTab, TellsWhatIsTickedAndWhereItWouldGo) {
    app("Editor", 2'000'000, 1'000'000);
    appOnDrive("Far");
    auto& window = openScope("local");
    EXPECT_EQ(window.text("selectionText"), "0 selected - Zero KB");
    EXPECT_FALSE(window.isEnabled("moveAppsButton"));
    EXPECT_FALSE(window.isEnabled("clearSelectionButton"));
    EXPECT_FALSE(window.isShown("restoreSelectedButton"));
    window.click("app-Editor/appBox");
    EXPECT_EQ(window.text("selectionText"), "1 selected - " + window.appsState().selectedTotalText());
    EXPECT_EQ(window.text("targetText"), "Backup");
    EXPECT_EQ(window.text("targetFree"), "412 GB free");
    EXPECT_EQ(window.text("moveAppsButton"), "Move & Symlink");
    EXPECT_TRUE(window.isEnabled("moveAppsButton"));

    const QString withData = window.text("selectionText");
    EXPECT_EQ(window.text("includeDataBox"), "Include app data");
    window.click("includeDataBox");
    EXPECT_NE(window.text("selectionText"), withData);

    window.click("viewPicker-onDrive");
    EXPECT_EQ(window.text("selectionText"), "0 selected to move back");
    EXPECT_EQ(window.text("targetText"), "External-drive apps");
    EXPECT_FALSE(window.isShown("targetFree"));
    EXPECT_FALSE(window.isShown("moveAppsButton"));
    EXPECT_FALSE(window.isEnabled("restoreSelectedButton"));
    window.click("app-Far/appBox");
    EXPECT_EQ(window.text("selectionText"), "1 selected to move back");
    EXPECT_EQ(window.text("restoreSelectedButton"), "Move Back");
    EXPECT_TRUE(window.isEnabled("restoreSelectedButton"));

    window.click("viewPicker-all");
    EXPECT_EQ(window.text("selectionText"),
              "1 selected - " + window.appsState().selectedTotalText() + ", 1 selected to move back");
    EXPECT_TRUE(window.isEnabled("moveAppsButton"));
    EXPECT_TRUE(window.isEnabled("restoreSelectedButton"));
    EXPECT_EQ(window.text("clearSelectionButton"), "Clear");
    window.click("clearSelectionButton");
    EXPECT_THAT(window.appsState().selectedAppIDs(), IsEmpty());
}

TEST_F(AppsTab, NeedsATargetDrive) {
    app("Editor");
    world.volumes->list.clear();
    auto& window = openScope("local");
    window.click("app-Editor");
    EXPECT_EQ(window.text("targetText"), "Pick a target drive in sidebar");
    EXPECT_FALSE(window.isEnabled("moveAppsButton"));
}

TEST_F(AppsTab, MovesWhatIsTickedAndBringsItBack) {
    const auto editor = app("Editor", 100'000, 50'000);
    app("Player");
    const auto before = pictureOf(editor);
    auto& window = openScope("local");
    window.click("app-Editor/appBox");
    window.click("moveAppsButton");
    EXPECT_EQ(window.text("alertTitle"), "Move 1 item to Backup?");
    window.click("alertButton-0");
    EXPECT_TRUE(window.waitForText("infoToast/toastText", "Moved 2 items."));
    EXPECT_TRUE(window.waitUntilHidden("app-Editor"));
    EXPECT_TRUE(fs::is_symlink(editor));
    EXPECT_TRUE(fs::is_symlink(world.home / "Library/Caches/Editor"));
    EXPECT_TRUE(window.isShown("app-Player"));

    window.click("viewPicker-onDrive");
    window.click("app-Editor/appMoveBackButton");
    EXPECT_EQ(window.text("alertTitle"), "Move Editor.app back?");
    window.click("alertButton-0");
    EXPECT_TRUE(window.waitUntilShown("noAppsShown"));
    EXPECT_EQ(pictureOf(editor), before);
}

TEST_F(AppsTab, SaysOfAnApplicationWhoseDriveIsAwayThatItIsNotThere) {
    const auto there = appOnDrive("Far", 50'000);
    appOnDrive("Near", 50'000);
    const auto away = backup / "ExternalTarvik/Away.app";
    fs::rename(there, away);
    auto& window = openScope("onDrive", small);
    ASSERT_TRUE(window.waitUntilShown("app-Far/appAbsence"));
    EXPECT_EQ(window.text("app-Far/appTotal"), "—");
    EXPECT_EQ(window.text("app-Far/appSize"), "app —");
    EXPECT_FALSE(window.isEnabled("app-Far/appMoveBackButton"));
    EXPECT_FALSE(window.isShown("app-Near/appAbsence"));
    EXPECT_TRUE(window.isEnabled("app-Near/appMoveBackButton"));
    window.savePicture("AppsAbsent-900");

    fs::rename(away, there);
    window.click("refreshDrivesButton");
    EXPECT_TRUE(window.waitUntilHidden("app-Far/appAbsence")) << "its drive is there again";
    EXPECT_TRUE(window.isEnabled("app-Far/appMoveBackButton"));
    EXPECT_TRUE(window.waitForText("app-Far/appTotal", window.text("app-Near/appTotal"))) << "and measured";
}

TEST_F(AppsTab, StartsNoOtherMoveDuringARun) {
    app("Editor");
    appOnDrive("Far");
    holdCopies();
    auto& window = openScope("all");
    window.click("selectAllBox");
    window.click("moveAppsButton");
    window.click("alertButton-0");
    ASSERT_TRUE(window.waitUntil([&] { return window.state().isRunning(); }));
    EXPECT_FALSE(window.isEnabled("moveAppsButton"));
    EXPECT_FALSE(window.isEnabled("restoreSelectedButton"));
    EXPECT_FALSE(window.isEnabled("app-Far/appMoveBackButton"));
    letCopyEnd();
    EXPECT_TRUE(window.waitUntil([&] { return window.state().isIdle(); }));
}

TEST_F(AppsTab, ShowsThatAMoveIsMadeReady) {
    app("Editor");
    auto& window = openScope("local");
    window.click("app-Editor/appBox");
    ASSERT_TRUE(window.waitUntil([&] { return window.state().isIdle(); }));
    BusyThreads busyThreads(BusyThreads::all(), Priority::userInitiated);
    EXPECT_FALSE(window.isShown("preparingSpinner"));
    window.click("moveAppsButton");
    EXPECT_TRUE(window.waitUntilShown("preparingSpinner"));
    EXPECT_FALSE(window.isEnabled("moveAppsButton"));
    busyThreads.end();
    EXPECT_TRUE(window.waitUntilShown("alertDialog"));
    EXPECT_FALSE(window.isShown("preparingSpinner")) << "it is the user who is waited for";
    window.press(Qt::Key_Escape);
    EXPECT_TRUE(window.waitUntil([&] { return window.isEnabled("moveAppsButton"); }));
}

TEST_F(AppsTab, IsUsedByTheKeyboardAlone) {
    app("Editor");
    app("Player");
    auto& window = open();
    const auto tabTo = [&](const char* name) {
        for (int i = 0; i < 30 && !window.hasFocus(name); ++i) window.press(Qt::Key_Tab);
        EXPECT_TRUE(window.hasFocus(name)) << name;
    };
    tabTo("viewPicker");
    window.press(Qt::Key_Right);
    EXPECT_EQ(window.item("viewPicker").property("choice"), "local");
    window.press(Qt::Key_Left);
    window.press(Qt::Key_Left);
    EXPECT_EQ(window.item("viewPicker").property("choice"), "onDrive");
    window.press(Qt::Key_Right);
    tabTo("hideRiskyBox");
    window.press(Qt::Key_Space);
    EXPECT_EQ(window.item("hideRiskyBox").property("checkState").toInt(), Qt::Checked);
    tabTo("appList");
    window.press(Qt::Key_Down);
    window.press(Qt::Key_Space);
    EXPECT_THAT(window.appsState().selectedAppIDs(), ElementsAre("org.example.Player"));
    window.press(Qt::Key_Right);
    EXPECT_TRUE(window.waitUntilShown("app-Player/appExpansion"));
    window.press(Qt::Key_Left);
    EXPECT_TRUE(window.waitUntilHidden("appExpansion"));
    tabTo("moveAppsButton");
    window.press(Qt::Key_Return);
    EXPECT_TRUE(window.waitUntilShown("alertDialog"));
}

TEST_F(AppsTab, ShowsTheIconsThatBundlesHave) {
    makeIcon(app("Coloured"), QColor(200, 0, 0), "org.example.Coloured");
    app("Plain");
    const auto broken = app("Broken");
    makeIcon(broken, Qt::red, "org.example.Broken");
    makeFile(broken / "Contents/Resources/Icon.icns",
             iconFile({{"ic07", pngBeginning(128, 128) + std::string(50, 'x')}}));
    testing::internal::CaptureStderr();  // The library that decodes it says so there.
    auto& window = openScope("local");
    const auto isNeutral = [&](const char* name) {
        return window.item(QStringLiteral("app-%1/appIcon").arg(name)).property("isNeutral").toBool();
    };
    EXPECT_TRUE(window.waitUntil([&] { return !isNeutral("Coloured"); }));
    const QQuickItem& icon = window.item("app-Coloured/appIcon");
    EXPECT_EQ(window.window().grabWindow().pixelColor(icon.mapToScene({16, 16}).toPoint()), QColor(200, 0, 0));
    EXPECT_TRUE(isNeutral("Plain"));
    EXPECT_TRUE(isNeutral("Broken"));
    opened.reset();
    testing::internal::GetCapturedStderr();
}

TEST_F(AppsTab, KeepsLongNamesInTheirRow) {
    const std::string name(80, 'W');
    const fs::path deep = applications / ("A suite" + std::string(220, 's'));
    makeBundle(deep / (name + ".app"), {{"CFBundleName", name}});
    app("Short");
    auto& window = openScope("local", small);
    const QString row = QString::fromStdString("app-" + name);
    ASSERT_TRUE(window.waitUntilShown(row));
    EXPECT_EQ(window.item(row).height(), window.item("app-Short").height());
    EXPECT_EQ(window.item(row + "/appName").property("lineCount").toInt(), 1);
    EXPECT_TRUE(window.item(row + "/appName").property("truncated").toBool());
    EXPECT_TRUE(window.item(row + "/appPath").property("truncated").toBool());
    const auto rightOf = [&](const QString& item) {
        const auto& found = window.item(item);
        return found.mapToScene({found.width(), 0}).x();
    };
    EXPECT_EQ(rightOf(row + "/appTotal"), rightOf("app-Short/appTotal")) << "figures stand in their columns";
    EXPECT_LT(rightOf(row + "/appName"), rightOf(row + "/appTotal") - 150);
}

TEST_F(AppsTab, MakesOnlyTheRowsThatAreSeen) {
    for (int number = 0; number < 500; ++number) app("App " + std::to_string(number));
    auto& window = openScope("local");
    const auto& list = window.item("appList");
    EXPECT_EQ(list.property("count").toInt(), 500);
    const auto rows = [&] { return list.property("contentItem").value<QQuickItem*>()->childItems().size(); };
    EXPECT_LT(rows(), 60);
    QMetaObject::invokeMethod(&window.item("appList"), "positionViewAtEnd");
    QTest::qWait(50);
    EXPECT_LT(rows(), 90) << "rows are used again";
}

}  // namespace

}  // namespace tarvik::test
