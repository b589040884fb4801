#include "State/QmlModule.h"
#include "Window/RecordedDesktop.h"
#include "Window/WindowTest.h"

#include <QQmlComponent>
#include <QSignalSpy>

#include <memory>
#include <stdexcept>

namespace tarvik::test {

namespace {

/// A toast whose time passes when the test says so.
class ToastUnderTest {
public:
    ToastUnderTest() : m_state({}, m_dialogs) {
        QmlModule::attach(m_engine, m_state, m_dialogs, m_desktop);
        QQmlComponent component(&m_engine);
        component.setData(R"(
            import QtQuick
            import Tarvik
            Item { Toast { objectName: "toast"; duration: 3600000; onExpired: text = "" } })",
                          {});
        m_scene.reset(component.create());
        if (!m_scene) throw std::runtime_error(component.errorString().toStdString());
        m_toast = m_scene->findChild<QObject*>("toast");
    }

    void show(const QString& text) { m_toast->setProperty("text", text); }
    bool isShown() const { return m_toast->property("isShown").toBool(); }
    QObject& timer() const { return *m_toast->findChild<QObject*>("toastTimer"); }
    bool isRunning() const { return timer().property("running").toBool(); }
    void letTimePass() const { QMetaObject::invokeMethod(&timer(), "triggered"); }

private:
    WindowDialogs m_dialogs{nullptr};
    AppState m_state;
    RecordedDesktop m_desktop{false};
    QQmlEngine m_engine;
    std::unique_ptr<QObject> m_scene;
    QObject* m_toast = nullptr;
};

TEST(Toast, GoesWhenItsTimeIsOver) {
    ToastUnderTest toast;
    EXPECT_FALSE(toast.isRunning());
    toast.show("Moved 1 item.");
    EXPECT_TRUE(toast.isShown());
    EXPECT_TRUE(toast.isRunning());
    EXPECT_EQ(toast.timer().property("interval").toInt(), 3'600'000);
    toast.letTimePass();
    EXPECT_FALSE(toast.isShown());
    EXPECT_FALSE(toast.isRunning());
}

TEST(Toast, GivesASecondTextOnlyTheTimeThatRemains) {
    ToastUnderTest toast;
    toast.show("one");
    QSignalSpy starts(&toast.timer(), SIGNAL(runningChanged()));
    toast.show("two");
    EXPECT_TRUE(toast.isRunning());
    EXPECT_EQ(starts.count(), 0) << "the timer of the first text goes on";
    toast.letTimePass();
    EXPECT_FALSE(toast.isShown());
}

TEST(Toast, GivesATextThatComesAfterwardsItsWholeTime) {
    ToastUnderTest toast;
    toast.show("one");
    toast.show("");
    EXPECT_FALSE(toast.isRunning());
    toast.show("two");
    EXPECT_TRUE(toast.isRunning());
}

class ToastOfTheWindow : public WindowTest {};

TEST_F(ToastOfTheWindow, StaysThreeSeconds) {
    auto& window = open();
    window.foldersState().moveArbitraryFolder(FilePath(world.home / "Gone"));
    ASSERT_TRUE(window.waitUntilShown("errorToast"));
    auto* timer = window.item("errorToast").findChild<QObject*>("toastTimer");
    EXPECT_EQ(timer->property("interval").toInt(), 3000);
    EXPECT_EQ(window.item("errorToast").property("text"), "Source folder doesn't exist.");
    QMetaObject::invokeMethod(timer, "triggered");
    EXPECT_FALSE(window.isShown("errorToast"));
    EXPECT_EQ(window.state().lastError(), "");
}

TEST_F(ToastOfTheWindow, CoversNothingOfTheTab) {
    auto& window = open(small);
    window.foldersState().moveArbitraryFolder(FilePath(world.home / "Gone"));
    ASSERT_TRUE(window.waitUntilShown("errorToast"));
    const auto& toast = window.item("errorToast");
    EXPECT_LE(toast.mapToScene({0, toast.height()}).y(), window.item("tabContent").mapToScene({}).y());
    EXPECT_LT(toast.mapToScene({toast.width(), 0}).x(), window.item("refreshAllButton").mapToScene({}).x());
}

TEST_F(ToastOfTheWindow, StandsBelowAnotherOne) {
    for (const QSize size : {small, large}) {
        auto& window = open(size);
        window.state().setInfo("Moved 3 items.");
        window.state().setError(
            "A sentence that is so long that it takes more than one line of the widest toast that the "
            "window would ever show, and then some more of it.");
        ASSERT_TRUE(window.waitUntilShown("errorToast"));
        const auto placeOf = [&](const QString& name) {
            const QQuickItem& item = window.item(name);
            return item.mapRectToScene({0, 0, item.width(), item.height()});
        };
        EXPECT_TRUE(window.waitUntil([&] { return placeOf("errorToast").top() > placeOf("infoToast").bottom(); }));
        EXPECT_TRUE(placeOf("errorToast").contains(placeOf("errorToast/toastText")));
        EXPECT_NEAR(placeOf("errorToast").center().x(), placeOf("infoToast").center().x(), 1);
        window.savePicture("ToastsTogether-" + std::to_string(size.width()));
    }
}

TEST_F(ToastOfTheWindow, GoesByItself) {
    auto& window = open();
    window.item("rootView").setProperty("toastDuration", 1);
    window.foldersState().moveArbitraryFolder(FilePath(world.home / "Gone"));
    EXPECT_TRUE(window.waitUntil([&] { return window.state().isIdle() && window.state().lastError().isEmpty(); }));
}

}  // namespace

}  // namespace tarvik::test
