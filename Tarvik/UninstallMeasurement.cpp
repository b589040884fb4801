#include "UninstallMeasurement.h"

#include "ShownTab.h"
#include "State/Shared/AppState.h"
#include "State/Uninstall/UninstallState.h"

#include <QCoreApplication>
#include <QQuickItem>
#include <QQuickWindow>

#include <algorithm>
#include <cstdio>

namespace tarvik {

namespace {

/// What comes after the sizes, such as the last rows taking their places, is watched too.
constexpr int restAfterSizes = 500;

bool hasRowsIn(const QQuickWindow& window) {
    const auto* list = window.findChild<QQuickItem*>(QStringLiteral("uninstallList"));
    if (!list) return false;
    const auto items = list->property("contentItem").value<QQuickItem*>()->childItems();
    return std::any_of(items.begin(), items.end(), [](const QQuickItem* item) {
        return item->isVisible() && item->objectName().startsWith(QLatin1String("app-"));
    });
}

}  // namespace

UninstallMeasurement::UninstallMeasurement(AppState& state) : m_state(state) {
    connect(&state.tab<UninstallState>(), &UninstallState::sizingEnded, this, &UninstallMeasurement::end);
}

void UninstallMeasurement::watch(QQuickWindow& window) {
    m_window = &window;
    ShownTab::whenIdle(window, m_state, [this] { begin(); });
}

void UninstallMeasurement::begin() {
    connect(m_window, &QQuickWindow::afterAnimating, this, [this] { m_hasPolishedRows = hasRowsIn(*m_window); });
    connect(m_window, &QQuickWindow::frameSwapped, this, &UninstallMeasurement::takeFrame);
    m_sinceBegin.start();
    m_loop.start();
    ShownTab::show(*m_window, "uninstall");
}

void UninstallMeasurement::takeFrame() {
    if (!m_listShown && m_hasPolishedRows) m_listShown = now();
}

void UninstallMeasurement::end() {
    m_allSized = now();
    QTimer::singleShot(restAfterSizes, this, [this] {
        std::printf("list %.1f\nsizes %.1f\ngap %.1f\nwork %.1f\n", m_listShown.value_or(0), m_allSized,
                    m_loop.longestGap(), m_loop.mostWork());
        QCoreApplication::quit();
    });
}

double UninstallMeasurement::now() const {
    return static_cast<double>(m_sinceBegin.nsecsElapsed()) / 1e6;
}

}  // namespace tarvik
