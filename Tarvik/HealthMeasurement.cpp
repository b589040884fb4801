#include "HealthMeasurement.h"

#include "ShownTab.h"
#include "State/Health/HealthState.h"
#include "State/Shared/AppState.h"

#include <QCoreApplication>
#include <QQuickWindow>

#include <cstdio>

namespace tarvik {

namespace {

/// The report's way into the view is watched too.
constexpr int restAfterReport = 500;

}  // namespace

HealthMeasurement::HealthMeasurement(AppState& state) : m_state(state) {
    auto& health = state.tab<HealthState>();
    connect(&health, &HealthState::isScanningHealthChanged, this, [this, &health] {
        if (!health.isScanningHealth()) end();
    });
}

void HealthMeasurement::watch(QQuickWindow& window) {
    ShownTab::whenIdle(window, m_state, [this, &window] { begin(window); });
}

void HealthMeasurement::begin(QQuickWindow& window) {
    ShownTab::show(window, "health");
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
