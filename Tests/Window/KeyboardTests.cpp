#include "Window/WindowTest.h"

#include <QAccessible>
#include <QSignalSpy>
#include <QTest>

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
    auto& window = open();
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
    window.press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(window.item("rootView").property("selectedTab").toInt(), 0);
    window.press(Qt::Key_8, Qt::ControlModifier);
    EXPECT_TRUE(window.isShown("foldersTab")) << "A tab that is not there cannot be picked.";
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
    auto& window = open(small);
    move(makePhotos());
    ASSERT_TRUE(window.waitUntilShown("quickPickList"));
    tabTo("quickPickList");
    EXPECT_GT(window.item("foldersTab").property("contentY").toDouble(), 0);
}

TEST_F(Keyboard, FindsANameOnEveryControl) {
    makeFolder(world.home / "Downloads");
    auto& window = open();
    move(makePhotos());
    ASSERT_TRUE(window.waitUntilShown("job-Photos/moveBackButton"));
    std::vector<QQuickItem*> controls;
    collectControls(window.window().contentItem(), controls);
    EXPECT_GE(controls.size(), 10u);
    for (QQuickItem* control : controls) {
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(control);
        ASSERT_NE(accessible, nullptr) << control->metaObject()->className();
        EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty()) << control->objectName().toStdString();
        EXPECT_NE(accessible->role(), QAccessible::NoRole) << control->objectName().toStdString();
    }
}

TEST_F(Keyboard, LeavesTheWindowStillWhenNothingHappens) {
    auto& window = open();
    QTest::qWait(500);
    QSignalSpy frames(&window.window(), &QQuickWindow::afterFrameEnd);
    QTest::qWait(500);
    EXPECT_EQ(frames.count(), 0);
}

}  // namespace

}  // namespace tarvik::test
