#include "RefreshMeasurement.h"

#include "State/Apps/AppsState.h"
#include "State/Apps/ShownApps.h"

#include <QCoreApplication>
#include <QQuickItem>
#include <QQuickWindow>

#include <algorithm>
#include <cstdio>

namespace tarvik {

namespace {

constexpr int frameMilliseconds = 16;
/// A quick flick: some seven rows a frame.
constexpr double scrollStep = 400;
/// What comes after the sizes, such as the last rows taking their places, is watched too.
constexpr int restMilliseconds = 500;

}  // namespace

RefreshMeasurement::RefreshMeasurement(AppsState& state, bool scrolls)
    : m_state(state), m_scrolls(scrolls), m_step(scrollStep) {
    connect(&state, &AppsState::isScanningAppsChanged, this, [this] {
        if (m_state.isScanningApps()) {
            m_sinceRefresh.start();
        } else {
            endOfScan();
        }
    });
    m_scrolling.setTimerType(Qt::PreciseTimer);
    connect(&m_scrolling, &QTimer::timeout, this, &RefreshMeasurement::scroll);
}

void RefreshMeasurement::watch(QQuickWindow& window) {
    m_list = window.findChild<QQuickItem*>(QStringLiteral("appList"));
    window.findChild<ShownApps*>()->setScope(ShownApps::Scope::all);
    connect(&window, &QQuickWindow::afterAnimating, this, [this] { m_hasPolishedRows = hasRows(); });
    connect(&window, &QQuickWindow::frameSwapped, this, &RefreshMeasurement::takeFrame);
    m_loop.start();
}

void RefreshMeasurement::takeFrame() {
    if (m_listShown || !m_hasPolishedRows) return;
    m_listShown = now();
    if (m_scrolls) m_scrolling.start(frameMilliseconds);
}

void RefreshMeasurement::scroll() {
    const double height = m_list->property("contentHeight").toDouble() - m_list->height();
    const double place = std::clamp(m_list->property("contentY").toDouble() + m_step, 0.0, height);
    m_list->setProperty("contentY", place);
    if (place > 0 && place < height) return;
    m_hasSeenBottom = m_hasSeenBottom || place > 0;
    m_step = -m_step;
    if (m_allSized && m_hasSeenBottom) m_scrolling.stop();
}

void RefreshMeasurement::endOfScan() {
    m_allSized = now();
    m_workUntilSized = programProcessorTime();
    auto* end = new QTimer(this);
    connect(end, &QTimer::timeout, this, [this] {
        if (m_scrolling.isActive() || !m_listShown) return;
        print();
        QCoreApplication::quit();
    });
    end->start(restMilliseconds);
}

void RefreshMeasurement::print() const {
    std::printf("list %.1f\nsizes %.1f\nprocessor %.1f\ngap %.1f\nwork %.1f\n", *m_listShown, *m_allSized,
                m_workUntilSized, m_loop.longestGap(), m_loop.mostWork());
}

bool RefreshMeasurement::hasRows() const {
    const auto* content = m_list->property("contentItem").value<QQuickItem*>();
    const auto items = content->childItems();
    return std::any_of(items.begin(), items.end(), [](const QQuickItem* item) {
        return item->isVisible() && item->objectName().startsWith(QLatin1String("app-"));
    });
}

double RefreshMeasurement::now() const {
    return static_cast<double>(m_sinceRefresh.nsecsElapsed()) / 1e6;
}

}  // namespace tarvik
