#include "ShownTab.h"

#include "State/Shared/AppState.h"

#include <QQuickItem>
#include <QQuickWindow>
#include <QTimer>

#include <utility>

namespace tarvik::ShownTab {

namespace {

constexpr int glanceMilliseconds = 10;

}  // namespace

void whenIdle(QQuickWindow& window, const AppState& state, std::function<void()> act) {
    auto* timer = new QTimer(&window);
    QObject::connect(timer, &QTimer::timeout, &window, [timer, &state, act = std::move(act)] {
        if (!state.isIdle()) return;
        timer->stop();
        act();
    });
    timer->start(glanceMilliseconds);
}

void show(QQuickWindow& window, const char* name) {
    auto* const root = window.findChild<QQuickItem*>(QStringLiteral("rootView"));
    QMetaObject::invokeMethod(root, "showTab", Q_ARG(QVariant, QString::fromUtf8(name)));
}

}  // namespace tarvik::ShownTab
