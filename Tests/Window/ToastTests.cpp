#include "State/QmlModule.h"
#include "Window/WindowTest.h"

#include <QElapsedTimer>
#include <QQmlComponent>
#include <QTest>

#include <stdexcept>
#include <vector>

namespace tarvik::test {

namespace {

/// Two toasts beside each other, which write down the order in which they expire.
class Toasts {
public:
    Toasts() : m_state({}, m_dialogs) {
        QmlModule::attach(m_engine, m_state, m_dialogs);
        QQmlComponent component(&m_engine);
        component.setData(R"(
            import QtQuick
            import Tarvik
            Item {
                property string order
                property alias first: first
                property alias second: second
                Toast { id: first; duration: 400; onExpired: { order += "first "; text = "" } }
                Toast { id: second; duration: 400; onExpired: { order += "second "; text = "" } }
            })",
                          {});
        m_scene.reset(component.create());
        if (!m_scene) throw std::runtime_error(component.errorString().toStdString());
    }

    void show(const char* toast, const QString& text) { object(toast)->setProperty("text", text); }
    bool isShown(const char* toast) { return object(toast)->property("isShown").toBool(); }
    QString order() const { return m_scene->property("order").toString(); }

private:
    QObject* object(const char* name) { return m_scene->property(name).value<QObject*>(); }

    WindowDialogs m_dialogs{nullptr};
    AppState m_state;
    QQmlEngine m_engine;
    std::unique_ptr<QObject> m_scene;
};

TEST(Toast, GoesByItself) {
    Toasts toasts;
    toasts.show("first", "Moved 1 item.");
    EXPECT_TRUE(toasts.isShown("first"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !toasts.isShown("first"); }));
}

TEST(Toast, GivesASecondTextOnlyTheTimeThatRemains) {
    Toasts toasts;
    toasts.show("first", "one");
    QTest::qWait(100);
    toasts.show("second", "beside");
    QTest::qWait(100);
    toasts.show("first", "two");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !toasts.isShown("first") && !toasts.isShown("second"); }));
    EXPECT_EQ(toasts.order(), "first second ");
}

TEST(Toast, GivesATextThatComesAfterwardsItsWholeTime) {
    Toasts toasts;
    toasts.show("first", "one");
    QTest::qWait(100);
    toasts.show("first", "");
    toasts.show("second", "beside");
    QTest::qWait(100);
    toasts.show("first", "two");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !toasts.isShown("first") && !toasts.isShown("second"); }));
    EXPECT_EQ(toasts.order(), "second first ");
}

class ToastOfTheWindow : public WindowTest {};

TEST_F(ToastOfTheWindow, StaysThreeSeconds) {
    auto& window = open();
    EXPECT_EQ(window.item("rootView").property("toastDuration").toInt(), 3000);
    window.state().moveArbitraryFolder(FilePath(world.home / "Gone"));
    QElapsedTimer clock;
    ASSERT_TRUE(window.waitUntilShown("errorToast"));
    clock.start();
    ASSERT_TRUE(window.waitUntilHidden("errorToast"));
    EXPECT_GE(clock.elapsed(), 2500);
    EXPECT_EQ(window.state().lastError(), "");
}

}  // namespace

}  // namespace tarvik::test
