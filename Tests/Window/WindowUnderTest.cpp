#include "Window/WindowUnderTest.h"

#include "Platform/Processes/ProgramLocation.h"
#include "State/QmlModule.h"

#include <QDropEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMimeData>
#include <QTest>
#include <QUrl>

#include <stdexcept>

namespace tarvik::test {

namespace {

constexpr int patienceMilliseconds = 10'000;
/// Longer than any animation of the window.
constexpr int restMilliseconds = 300;

QQuickItem* findIn(QQuickItem* root, const QString& name) {
    if (!root->isVisible()) return nullptr;
    if (root->objectName() == name) return root;
    const auto children = root->childItems();
    for (QQuickItem* child : children)
        if (QQuickItem* found = findIn(child, name)) return found;
    return nullptr;
}

/// Does now what the next frame would do first: all items come to their places, the inner ones before those around
/// them.
void layOut(QQuickItem& root) {
    const auto children = root.childItems();
    for (QQuickItem* child : children)
        if (child->isVisible()) layOut(*child);
    root.ensurePolished();
}

QPointF centreOf(const QQuickItem& item) {
    return item.mapToScene({item.width() / 2, item.height() / 2});
}

QUrl urlOf(const fs::path& path) {
    const auto encoded = QByteArray::fromStdString(path.native()).toPercentEncoding("/");  // It need not be UTF-8.
    return QUrl("file://" + QString::fromLatin1(encoded), QUrl::StrictMode);
}

}  // namespace

WindowUnderTest::WindowUnderTest(const Host& host, QSize size, bool hasMenus, FirstLook firstLook)
    : m_dialogs(std::make_unique<WindowDialogs>(nullptr)),
      m_desktop(std::make_unique<RecordedDesktop>(hasMenus)),
      m_state(std::make_unique<AppState>(host, *m_dialogs)),
      m_engine(std::make_unique<QQmlApplicationEngine>()) {
    QmlModule::attach(*m_engine, *m_state, *m_dialogs, *m_desktop);
    m_engine->loadData("import Tarvik\nMainWindow {}");
    if (m_engine->rootObjects().isEmpty()) throw std::runtime_error("The window does not load.");
    m_window = qobject_cast<QQuickWindow*>(m_engine->rootObjects().constFirst());
    m_window->resize(size);
    m_window->requestActivate();
    if (!QTest::qWaitForWindowActive(m_window)) throw std::runtime_error("The window does not become active.");
    if (firstLook == FirstLook::hasEnded && !waitUntil([this] { return m_state->isIdle(); }))
        throw std::runtime_error("The first refresh does not end.");
}

WindowUnderTest::~WindowUnderTest() {
    m_engine.reset();
    m_dialogs->dismissAll();
    m_state.reset();
}

QQuickItem* WindowUnderTest::find(const QString& name) const {
    QQuickItem* found = m_window->contentItem();
    const auto steps = name.split(QLatin1Char('/'));
    for (const QString& step : steps) {
        found = findIn(found, step);
        if (!found) return nullptr;
    }
    return found;
}

QQuickItem& WindowUnderTest::item(const QString& name) const {
    if (!waitUntilShown(name)) throw std::runtime_error("Not shown: " + name.toStdString());
    return *find(name);
}

void WindowUnderTest::click(const QString& name, Qt::MouseButton button) {
    // A dialog stands where it belongs, and takes clicks, once it has taken the keyboard.
    if (name.startsWith(QLatin1String("alertButton-")))
        (void)waitUntil([this] { return isShown("alertButton-0") && hasFocus("alertButton-0"); });
    (void)item(name);
    QTest::qWait(0);  // What has just come is laid out first.
    // What is laid out between press and release moves away from under the pointer. A row whose list has been put in
    // another order may still be on its way.
    const QRectF window(QPointF(), m_window->size());
    const auto isAtRest = [&] {
        const QPointF before = centreOf(item(name));
        layOut(*m_window->contentItem());
        return centreOf(item(name)) == before && window.contains(before);
    };
    if (!waitUntil(isAtRest)) throw std::runtime_error("Out of sight: " + name.toStdString());
    QTest::mouseClick(m_window, button, {}, centreOf(item(name)).toPoint());
}

void WindowUnderTest::type(const QString& text) {
    for (const QChar character : text) QTest::keyClick(m_window, character.toLatin1());
}

void WindowUnderTest::press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(m_window, key, modifiers);
}

void WindowUnderTest::holdDown(Qt::Key key, int repetitions) {
    const auto send = [&](QEvent::Type type, bool isRepetition) {
        QKeyEvent event(type, key, Qt::NoModifier, QString(), isRepetition);
        QCoreApplication::sendEvent(m_window, &event);
    };
    send(QEvent::KeyPress, false);
    for (int repetition = 0; repetition < repetitions; ++repetition) {
        send(QEvent::KeyRelease, true);  // Window systems send both.
        send(QEvent::KeyPress, true);
    }
}

void WindowUnderTest::letUp(Qt::Key key) {
    QKeyEvent event(QEvent::KeyRelease, key, Qt::NoModifier);
    QCoreApplication::sendEvent(m_window, &event);
}

void WindowUnderTest::chooseFolder(const fs::path& path) {
    if (!isShown("foldersTab")) openTab("folders");
    auto* source = item("foldersTab").property("source").value<QObject*>();
    QMetaObject::invokeMethod(source, "setUrl", Q_ARG(QUrl, urlOf(path)));
}

void WindowUnderTest::drop(const fs::path& path, const QString& name) {
    QQuickItem& target = item(name);
    const QPointF centre = centreOf(target);
    QMimeData data;
    data.setUrls({urlOf(path)});
    QDragEnterEvent enter(centre.toPoint(), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(m_window, &enter);
    QDropEvent drop(centre, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(m_window, &drop);
}

bool WindowUnderTest::waitUntil(const std::function<bool()>& condition) const {
    return QTest::qWaitFor(condition, patienceMilliseconds);
}

bool WindowUnderTest::waitUntilShown(const QString& name) const {
    return waitUntil([&] { return isShown(name); });
}

bool WindowUnderTest::waitUntilHidden(const QString& name) const {
    return waitUntil([&] { return !isShown(name); });
}

bool WindowUnderTest::waitForText(const QString& name, const QString& text) const {
    return waitUntil([&] {
        const QQuickItem* found = find(name);
        return found && found->property("text").toString() == text;
    });
}

void WindowUnderTest::savePicture(const std::string& name) const {
    QTest::qWait(restMilliseconds);
    const fs::path folder = ProgramLocation::folder().parent_path() / "pictures";
    fs::create_directories(folder);
    m_window->grabWindow().save(QString::fromStdString((folder / (name + ".png")).native()));
}

}  // namespace tarvik::test
