#include "Window/WindowTest.h"

#include <QCoreApplication>

#include <algorithm>

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

/// Its desktop shows menus above windows, which have the keys then.
class WindowMenus : public WindowTest {
protected:
    WindowMenus() : m_before(qInstallMessageHandler(nullptr)) {
        strict = m_before;
        qInstallMessageHandler(passOnAllButOne);
    }
    ~WindowMenus() override { qInstallMessageHandler(m_before); }

    /// The item of the menus with this text; null when there is none.
    QObject* itemOf(const QString& text) {
        const auto objects = opened->window().findChildren<QObject*>();
        const auto found = std::find_if(objects.begin(), objects.end(), [&](const QObject* object) {
            return object->inherits("QQuickLabsPlatformMenuItem") && object->property("text").toString() == text;
        });
        return found == objects.end() ? nullptr : *found;
    }
    void choose(const QString& text) {
        QObject* item = itemOf(text);
        ASSERT_NE(item, nullptr) << text.toStdString();
        ASSERT_TRUE(item->property("enabled").toBool()) << text.toStdString();
        QMetaObject::invokeMethod(item, "triggered");
    }
    bool isEnabled(const QString& text) { return itemOf(text) && itemOf(text)->property("enabled").toBool(); }

private:
    /// Without a display there are no menus to be shown, which the toolkit says once.
    static void passOnAllButOne(QtMsgType type, const QMessageLogContext& context, const QString& message) {
        if (!message.contains("No native Menu implementation available")) strict(type, context, message);
    }

    static inline QtMessageHandler strict = nullptr;
    QtMessageHandler m_before;
};

TEST_F(WindowMenus, PickATabAndRefresh) {
    auto& window = open(large, true);
    choose("Symlinks");
    EXPECT_TRUE(window.isShown("symlinksTab"));
    addVolume("/Volumes/Late", "Late");
    choose("Refresh");
    EXPECT_TRUE(window.waitUntilShown("drive-Late"));
}

TEST_F(WindowMenus, DoWhatConcernsTheWindow) {
    auto& window = open(large, true);
    choose("About Tarvik");
    EXPECT_TRUE(window.waitUntilShown("aboutDialog"));
    window.press(Qt::Key_Escape);
    choose("Minimize");
    EXPECT_TRUE(window.waitUntil([&] { return window.window().visibility() == QWindow::Minimized; }));
    choose("Close Window");
    EXPECT_TRUE(window.waitUntil([&] { return !window.window().isVisible(); }));
}

TEST_F(WindowMenus, EditWhereOneTypes) {
    auto& window = open(large, true);
    for (const char* text : {"Undo", "Cut", "Copy", "Select All"}) EXPECT_FALSE(isEnabled(text)) << text;
    window.click("appSearch");
    window.type("edit");
    EXPECT_TRUE(isEnabled("Undo"));
    choose("Select All");
    choose("Cut");
    EXPECT_EQ(window.text("appSearch"), "");
    choose("Paste");
    EXPECT_EQ(window.text("appSearch"), "edit");
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
