#include "HealthMeasurement.h"

#include "State/Health/HealthState.h"
#include "State/Shared/AppState.h"

#include <QCoreApplication>
#include <QJSValue>
#include <QQuickItem>
#include <QQuickWindow>
#include <QString>
#include <QVariantList>
#include <QVariantMap>

#include <cstdio>

namespace tarvik {

namespace {

constexpr int glanceMilliseconds = 10;
/// The report's way into the view is watched too.
constexpr int restAfterReport = 500;

/// Where the tab stands among those of the root view. Without it there is nothing to measure.
int placeOf(const QString& tab, const QQuickItem& rootView) {
    const QVariantList tabs = rootView.property("tabs").value<QJSValue>().toVariant().toList();
    for (int place = 0; place < tabs.size(); ++place)
        if (tabs.at(place).toMap().value(QStringLiteral("name")) == tab) return place;
    qFatal("There is no tab of that name.");
}

}  // namespace

HealthMeasurement::HealthMeasurement(AppState& state) : m_state(state) {
    auto& health = state.tab<HealthState>();
    connect(&health, &HealthState::isScanningHealthChanged, this, [this, &health] {
        if (!health.isScanningHealth()) end();
    });
}

void HealthMeasurement::watch(QQuickWindow& window) {
    auto* timer = new QTimer(&window);
    connect(timer, &QTimer::timeout, &window, [this, timer, &window] {
        if (!m_state.isIdle()) return;
        timer->stop();
        begin(window);
    });
    timer->start(glanceMilliseconds);
}

void HealthMeasurement::begin(QQuickWindow& window) {
    auto* const rootView = window.findChild<QQuickItem*>(QStringLiteral("rootView"));
    rootView->setProperty("selectedTab", placeOf(QStringLiteral("health"), *rootView));
    m_sinceBegin.start();
    m_loop.start();
    m_state.tab<HealthState>().refreshHealth();
}

void HealthMeasurement::end() {
    m_checked = static_cast<double>(m_sinceBegin.nsecsElapsed()) / 1e6;
    QTimer::singleShot(restAfterReport, this, [this] {
        std::printf("check %.1f\ngap %.1f\nwork %.1f\n", m_checked, m_loop.longestGap(), m_loop.mostWork());
        QCoreApplication::quit();
    });
}

}  // namespace tarvik
