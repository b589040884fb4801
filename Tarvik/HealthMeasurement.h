#pragma once

#include "LoopWatch.h"

#include <QElapsedTimer>
#include <QObject>

class QQuickWindow;

namespace tarvik {

class AppState;

/// Lets a window check everything that was moved, watches it for the benchmarks, prints what it took and quits. UI
/// thread only.
///
/// The lines that it prints, a word and a number of milliseconds each: `check` until the report is there, and `gap` and
/// `work` as `LoopWatch` tells them.
class HealthMeasurement : public QObject {
public:
    explicit HealthMeasurement(AppState& state);
    /// Begins when the window's first refresh is over.
    void watch(QQuickWindow& window);

private:
    void begin(QQuickWindow& window);
    void end();

    AppState& m_state;
    LoopWatch m_loop;
    QElapsedTimer m_sinceBegin;
    double m_checked = 0;
};

}  // namespace tarvik
