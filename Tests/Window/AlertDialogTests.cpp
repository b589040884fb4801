#include "Support/Bundles.h"
#include "Window/WindowTest.h"

#include <QKeyEvent>
#include <QSignalSpy>

namespace tarvik::test {

namespace {

class AlertDialog : public WindowTest {
protected:
    /// Opens the window with the question whether to move the photos.
    WindowUnderTest& ask() {
        auto& window = open(small);
        window.chooseFolder(makePhotos());
        EXPECT_TRUE(window.waitUntil([&] { return window.isEnabled("moveButton"); }));
        window.click("moveButton");
        EXPECT_TRUE(
            window.waitUntil([&] { return window.isShown("alertDialog") && window.hasFocus("alertButton-0"); }));
        return window;
    }
};

TEST_F(AlertDialog, ShowsTitleTextAndButtonsInOrder) {
    auto& window = ask();
    EXPECT_EQ(window.text("alertTitle"), "Move Photos to Backup?");
    EXPECT_TRUE(window.text("alertText").startsWith("Total 5 MB."));
    EXPECT_EQ(window.text("alertDetails").remove(QChar(0x2060)).toStdString(),
              "From " + (world.home / "Photos").native());
    EXPECT_EQ(window.text("alertButton-0"), "Move");
    EXPECT_EQ(window.text("alertButton-1"), "Cancel");
}

TEST_F(AlertDialog, ShowsAllOfItsTextAtOnce) {
    auto& window = ask();
    auto* view = window.item("alertText").parentItem()->parentItem()->parentItem();
    ASSERT_TRUE(view->property("contentHeight").isValid());
    EXPECT_GE(view->height(), view->property("contentHeight").toDouble());
}

TEST_F(AlertDialog, TakesReturnAsTheFirstButton) {
    auto& window = ask();
    window.press(Qt::Key_Return);
    EXPECT_TRUE(window.waitUntilShown("jobsPanel"));
    EXPECT_TRUE(window.waitUntilHidden("alertDialog"));
}

TEST_F(AlertDialog, TakesEscapeAsCancel) {
    auto& window = ask();
    window.press(Qt::Key_Escape);
    EXPECT_TRUE(window.waitUntilHidden("alertDialog"));
    EXPECT_FALSE(window.isShown("jobsPanel"));
}

TEST_F(AlertDialog, TakesEscapeAsCancelAlsoOfThreeButtons) {
    auto& window = open();
    const auto editor = world.folder / "Applications/Editor.app";
    makeBundle(editor);
    world.applications->list = {{.process = 1, .bundlePath = editor}};
    window.appsState().refreshApps();
    ASSERT_TRUE(window.waitUntil([&] { return window.state().isIdle(); }));
    window.appsState().setAppSelected(FilePath(editor), true);
    window.appsState().confirmAndMove();
    window.click("alertButton-0");
    ASSERT_TRUE(window.waitForText("alertTitle", "1 selected app is running"));
    EXPECT_EQ(window.text("alertButton-2"), "Move Anyway");
    window.press(Qt::Key_Escape);
    EXPECT_TRUE(window.waitUntilHidden("alertDialog"));
    EXPECT_TRUE(window.waitUntil([&] { return window.state().isIdle(); }));
    EXPECT_TRUE(window.state().jobs().empty());
    EXPECT_TRUE(fs::is_directory(editor) && !fs::is_symlink(editor));
}

TEST_F(AlertDialog, TakesReturnAsTheButtonThatTheKeyboardIsOn) {
    auto& window = ask();
    window.press(Qt::Key_Tab);
    ASSERT_TRUE(window.hasFocus("alertButton-1"));
    window.press(Qt::Key_Return);
    EXPECT_TRUE(window.waitUntilHidden("alertDialog"));
    EXPECT_FALSE(window.isShown("jobsPanel"));
}

TEST_F(AlertDialog, KeepsTheKeyboardInside) {
    auto& window = ask();
    for (int i = 0; i < 5; ++i) {
        window.press(Qt::Key_Tab);
        EXPECT_TRUE(window.hasFocus("alertButton-0") || window.hasFocus("alertButton-1"));
    }
}

TEST_F(AlertDialog, KeepsThePointerFromWhatIsBehind) {
    auto& window = ask();
    window.click("drive-Media");
    window.click("clearSourceButton");
    EXPECT_TRUE(window.isShown("alertDialog"));
    EXPECT_FALSE(window.isShown("drive-Media/driveCheckMark"));
    EXPECT_EQ(window.text("sourceName"), "Photos");
}

TEST_F(AlertDialog, KeepsShortcutsFromWhatIsBehind) {
    auto& window = ask();
    QSignalSpy scans(&window.state(), &AppState::isScanningDrivesChanged);
    for (const auto key : {Qt::Key_R, Qt::Key_1}) window.press(key, Qt::ControlModifier);
    window.press(Qt::Key_F5);
    EXPECT_EQ(scans.count(), 0);
    EXPECT_TRUE(window.isShown("alertDialog"));

    window.press(Qt::Key_Escape);
    ASSERT_TRUE(window.waitUntilHidden("alertDialog"));
    window.press(Qt::Key_R, Qt::ControlModifier);
    EXPECT_GT(scans.count(), 0) << "the same key works when nothing is asked";
}

TEST_F(AlertDialog, IsNotAnsweredByTheKeyThatOpenedIt) {
    auto& window = open(small);
    window.chooseFolder(makePhotos());
    ASSERT_TRUE(window.waitUntil([&] { return window.isEnabled("moveButton"); }));
    window.item("moveButton").forceActiveFocus(Qt::TabFocusReason);
    window.holdDown(Qt::Key_Return, 0);
    ASSERT_TRUE(window.waitUntil([&] { return window.isShown("alertDialog") && window.hasFocus("alertButton-0"); }));
    for (const bool onButton : {true, false}) {
        if (!onButton) window.item("alertDialog").forceActiveFocus();
        for (const auto key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
            QKeyEvent repetition(QEvent::KeyPress, key, Qt::NoModifier, QString(), true);
            QCoreApplication::sendEvent(&window.window(), &repetition);
        }
    }
    window.letUp(Qt::Key_Return);
    QCoreApplication::processEvents();
    EXPECT_TRUE(window.isShown("alertDialog"));
    EXPECT_FALSE(window.isShown("jobsPanel"));
}

}  // namespace

}  // namespace tarvik::test
