#include "Support/Bundles.h"
#include "Window/HealthRows.h"
#include "Window/WindowTest.h"

#include <QAccessible>
#include <QSignalSpy>

#include <algorithm>
#include <utility>

namespace tarvik::test {

namespace {

class Keyboard : public WindowTest {
protected:
    void tabTo(const QString& name) {
        for (int i = 0; i < 20 && !opened->hasFocus(name); ++i) opened->press(Qt::Key_Tab);
        EXPECT_TRUE(opened->hasFocus(name)) << name.toStdString();
    }
};

/// Everything below `root` that is shown and can be used.
void collectControls(QQuickItem* root, std::vector<QQuickItem*>& found) {
    if (!root->isVisible()) return;
    if (root->inherits("QQuickAbstractButton") || root->activeFocusOnTab()) found.push_back(root);
    for (QQuickItem* child : root->childItems()) collectControls(child, found);
}

TEST_F(Keyboard, MovesAFolderWithoutThePointer) {
    makeFileOfSize(world.home / "Downloads/Film.mov", 2'000'000);
    auto& window = openFolders();
    ASSERT_TRUE(window.waitUntilShown("quickPick-Downloads"));
    tabTo("driveList");
    window.press(Qt::Key_Down);
    window.press(Qt::Key_Space);
    tabTo("quickPickList");
    window.press(Qt::Key_Return);
    EXPECT_TRUE(window.waitUntil([&] { return window.isEnabled("moveButton"); }));
    tabTo("moveButton");
    window.press(Qt::Key_Return);
    EXPECT_TRUE(window.waitUntil([&] { return window.isShown("alertDialog") && window.hasFocus("alertButton-0"); }));
    window.press(Qt::Key_Return);
    EXPECT_TRUE(window.waitForText("job-Downloads/transferStatus", "Done"));
    EXPECT_TRUE(fs::is_symlink(world.home / "Downloads"));
    EXPECT_TRUE(fs::exists(media / "ExternalTarvik/Folders/Downloads/Film.mov"));
}

TEST_F(Keyboard, PicksATabByItsNumber) {
    auto& window = open();
    window.press(Qt::Key_5, Qt::ControlModifier);
    EXPECT_TRUE(window.isShown("symlinksTab"));
    window.press(Qt::Key_2, Qt::ControlModifier);
    EXPECT_TRUE(window.isShown("foldersTab"));
    window.press(Qt::Key_8, Qt::ControlModifier);
    EXPECT_TRUE(window.isShown("foldersTab")) << "A tab that is not there cannot be picked.";
    window.press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_TRUE(window.isShown("appsTab"));
}

TEST_F(Keyboard, ShowsWhereItIsOnlyWhenItIsUsed) {
    auto& window = open();
    window.click("drive-Media");
    EXPECT_FALSE(window.item("driveList").property("showsFocus").toBool());
    window.press(Qt::Key_Up);
    EXPECT_TRUE(window.item("driveList").property("showsFocus").toBool());
    window.click("refreshAllButton");
    EXPECT_FALSE(window.item("refreshAllButton").property("visualFocus").toBool());
}

TEST_F(Keyboard, ScrollsWhatItReachesIntoSight) {
    for (const char* folder : {"Downloads", "Music/Logic Pro Library.bundle", "Library/Application Support/Claude",
                               "Library/Developer/Xcode/DerivedData"})
        makeFolder(world.home / folder);
    auto& window = openFolders(small);
    move(makePhotos());
    ASSERT_TRUE(window.waitUntilShown("quickPickList"));
    tabTo("quickPickList");
    EXPECT_GT(window.item("foldersTab").property("contentY").toDouble(), 0);
}

/// Expects that every control that is shown has a name and a role, and that there are at least `least` of them.
void expectNames(const QQuickWindow& window, std::size_t least, const std::string& where) {
    std::vector<QQuickItem*> controls;
    collectControls(window.contentItem(), controls);
    EXPECT_GE(controls.size(), least) << where;
    for (QQuickItem* control : controls) {
        const std::string which =
            where + ", " + control->metaObject()->className() + " " + control->objectName().toStdString();
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(control);
        ASSERT_NE(accessible, nullptr) << which;
        EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty()) << which;
        EXPECT_NE(accessible->role(), QAccessible::NoRole) << which;
    }
}

TEST_F(Keyboard, FindsANameOnEveryControlOfEveryTab) {
    makeFolder(world.home / "Downloads");
    const fs::path applications = world.folder / "Applications";
    for (const char* name : {"Editor", "Player"}) makeBundle(applications / (std::string(name) + ".app"));
    makeFile(world.home / "Library/Caches/Editor/cache");
    makeLink(applications / "Far.app", backup / "ExternalTarvik/Apps/Far.app");
    makeBundle(applications / "Twice.app", {{"CFBundleIdentifier", "org.example.Twice"}});
    makeLauncher(world.home / "Applications/Twice.app", "/gone", {{"CFBundleIdentifier", "org.example.Twice"}});
    auto& window = open();
    move(makePhotos());
    ASSERT_TRUE(window.waitUntilShown("job-Photos/moveBackButton"));
    for (const auto& [tab, least] : {std::pair("folders", 15u), {"symlinks", 12u}, {"apps", 20u}}) {
        window.openTab(tab);
        expectNames(window.window(), least, tab);
    }
    HealthRows::scan(window);
    expectNames(window.window(), 17, "health");
    EXPECT_TRUE(window.isShown("issue-dangling-Far.app/repairButton-0"));
    window.openTab("dedupe");
    ASSERT_TRUE(window.waitUntilShown("dedupeGroup-Twice"));
    expectNames(window.window(), 16, "dedupe");
    window.openTab("uninstall");
    ASSERT_TRUE(window.waitUntilShown("app-Editor"));
    expectNames(window.window(), 18, "uninstall");
    window.click("app-Editor");
    ASSERT_TRUE(window.waitUntilShown("section-Executables"));
    window.click("section-Executables/sectionChevron");
    expectNames(window.window(), 25, "a plan");
    window.click("uninstallSort");
    ASSERT_TRUE(window.waitUntilShown("choice-0"));
    expectNames(window.window(), 33, "a menu of choices");
    window.press(Qt::Key_Escape);
    window.openTab("apps");
    window.click("viewPicker-all");
    window.click("app-Editor/appChevron");
    ASSERT_TRUE(window.waitUntilShown("category-Caches"));
    expectNames(window.window(), 25, "an opened application");
    window.click("app-Editor/appName", Qt::RightButton);
    ASSERT_TRUE(window.waitUntilShown("revealItem"));
    expectNames(window.window(), 27, "the menu of a row");
    window.press(Qt::Key_Escape);
    window.press(Qt::Key_F1);
    ASSERT_TRUE(window.waitUntilShown("closeAboutButton"));
    expectNames(window.window(), 25, "about");
    window.press(Qt::Key_Escape);
    window.click("app-Editor/appBox");
    window.click("moveAppsButton");
    ASSERT_TRUE(window.waitUntilShown("alertButton-1"));
    expectNames(window.window(), 27, "a question");
}

TEST_F(Keyboard, MendsFindingsWithoutThePointer) {
    const fs::path applications = world.folder / "Applications";
    makeLink(applications / "Lost.app", backup / "nowhere/Lost.app");
    makeBundle(applications / "Reverted.app");
    makeBundle(backup / "ExternalTarvik/Apps/Reverted.app");
    makeBundle(backup / "ExternalTarvik/Apps/Far.app");
    makeLink(applications / "Far.app", backup / "ExternalTarvik/Apps/Far.app");
    auto& window = open(small);
    window.press(Qt::Key_6, Qt::ControlModifier);
    tabTo("scanButton");
    window.press(Qt::Key_Space);
    ASSERT_TRUE(window.waitUntilShown("issue-reverted-Reverted.app"));
    tabTo("healthList");
    window.press(Qt::Key_Tab);
    EXPECT_TRUE(window.hasFocus("issue-dangling-Lost.app/repairButton-0"));
    window.press(Qt::Key_Down);
    EXPECT_TRUE(window.hasFocus("issue-reverted-Reverted.app"));
    window.press(Qt::Key_Tab);
    window.press(Qt::Key_Tab);
    EXPECT_TRUE(window.hasFocus("issue-reverted-Reverted.app/repairButton-1")) << "of each row, all buttons";
    window.press(Qt::Key_Tab);
    EXPECT_TRUE(window.hasFocus("largestList")) << "and of one row alone";
    window.press(Qt::Key_Backtab);
    EXPECT_TRUE(window.hasFocus("issue-reverted-Reverted.app"));
    window.press(Qt::Key_Tab);
    window.press(Qt::Key_Tab);
    window.press(Qt::Key_Return);
    EXPECT_TRUE(window.waitForText("infoToast/toastText", "Re-symlinked Reverted.app to SSD."));
    ASSERT_TRUE(window.waitUntilHidden("issue-reverted-Reverted.app"));
    EXPECT_TRUE(window.hasFocus("healthList")) << "the keyboard stays with the findings";
    window.press(Qt::Key_Up);
    window.press(Qt::Key_Tab);
    window.press(Qt::Key_Return);
    EXPECT_TRUE(window.waitUntilShown("allHealthy"));
}

TEST_F(Keyboard, PressesOnceWhileAKeyIsHeldDown) {
    makeFolder(world.home / "Downloads");
    auto& window = openFolders();
    const auto pressesOf = [&](const QString& pressed, Qt::Key key) {
        QSignalSpy clicks(&window.item(pressed), SIGNAL(clicked()));
        window.holdDown(key, 3);
        window.letUp(key);
        return clicks.count();
    };
    for (const char* button : {"refreshAllButton", "refreshDrivesButton"}) {
        window.item(button).forceActiveFocus(Qt::TabFocusReason);
        for (const auto key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space})
            EXPECT_EQ(pressesOf(button, key), 1) << button << " " << key;
    }
    tabTo("quickPickList");
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space})
        EXPECT_EQ(pressesOf("quickPick-Downloads", key), 1) << key;
}

/// What would draw the window anew without a cause: animations and timers that run.
int runningIn(const QQuickWindow& window) {
    const auto objects = window.findChildren<QObject*>();
    return static_cast<int>(std::count_if(objects.begin(), objects.end(), [](const QObject* object) {
        const bool moves = object->inherits("QQuickAbstractAnimation") || object->inherits("QQmlTimer");
        return moves && object->property("running").toBool();
    }));
}

TEST_F(Keyboard, LeavesTheWindowStillWhenNothingHappens) {
    holdCopies();
    auto& window = open();
    startMove(makePhotos());
    EXPECT_TRUE(window.waitUntil([&] { return runningIn(window.window()) > 0; })) << "a spinner shows that it works";
    letCopyEnd();
    window.item("infoToast");
    window.state().clearInfo();
    EXPECT_TRUE(window.waitUntil([&] { return runningIn(window.window()) == 0; }));
}

}  // namespace

}  // namespace tarvik::test
