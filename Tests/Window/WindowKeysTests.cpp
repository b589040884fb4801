#include "Window/WindowTest.h"

#include <QCoreApplication>

#include <utility>

namespace tarvik::test {

namespace {

class WindowKeys : public WindowTest {};

TEST_F(WindowKeys, CloseTheWindow) {
    for (const auto key : {Qt::Key_W, Qt::Key_Q}) {
        auto& window = open();
        window.press(key, Qt::ControlModifier);
        EXPECT_TRUE(window.waitUntil([&] { return !window.window().isVisible(); })) << key;
    }
}

TEST_F(WindowKeys, MinimizeTheWindow) {
    auto& window = open();
    window.press(Qt::Key_M, Qt::ControlModifier);
    EXPECT_TRUE(window.waitUntil([&] { return window.window().visibility() == QWindow::Minimized; }));
}

TEST_F(WindowKeys, FillTheScreenAndGoBack) {
    auto& window = open();
    window.press(Qt::Key_F11);
    EXPECT_TRUE(window.waitUntil([&] { return window.window().visibility() == QWindow::FullScreen; }));
    window.press(Qt::Key_F11);
    EXPECT_TRUE(window.waitUntil([&] { return window.window().visibility() != QWindow::FullScreen; }));
    EXPECT_TRUE(window.window().isVisible());
}

TEST_F(WindowKeys, TakeBackWhatWasTyped) {
    auto& window = open();
    window.click("appSearch");
    window.type("edit");
    window.press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_NE(window.text("appSearch"), "edit");
}

TEST_F(WindowKeys, DoNothingBehindAQuestion) {
    auto& window = openFolders();
    window.chooseFolder(makePhotos());
    ASSERT_TRUE(window.waitUntil([&] { return window.isEnabled("moveButton"); }));
    window.click("moveButton");
    ASSERT_TRUE(window.waitUntilShown("alertDialog"));
    window.press(Qt::Key_F1);
    window.press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_FALSE(window.isShown("aboutDialog"));
    EXPECT_TRUE(window.isShown("foldersTab"));
    window.press(Qt::Key_Escape);
    EXPECT_TRUE(window.waitUntilHidden("alertDialog"));
}

class About : public WindowTest {
protected:
    About() { QCoreApplication::setApplicationVersion("9.8.7"); }
    ~About() override { QCoreApplication::setApplicationVersion({}); }
};

TEST_F(About, TellsNameAndVersion) {
    auto& window = open();
    window.click("appName");
    EXPECT_EQ(window.text("aboutName"), "Tarvik");
    EXPECT_EQ(window.text("aboutVersion"), "Version 9.8.7");
    EXPECT_TRUE(window.waitUntil([&] { return window.hasFocus("closeAboutButton"); }));
    window.savePicture("About-1400");
    window.press(Qt::Key_Return);
    EXPECT_TRUE(window.waitUntilHidden("aboutDialog"));
}

TEST_F(About, IsOpenedAndClosedByTheKeyboard) {
    auto& window = open(small);
    window.press(Qt::Key_F1);
    ASSERT_TRUE(window.waitUntilShown("aboutDialog"));
    window.press(Qt::Key_Escape);
    EXPECT_TRUE(window.waitUntilHidden("aboutDialog"));
}

}  // namespace

}  // namespace tarvik::test
