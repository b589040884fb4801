#pragma once

#include "LoopWatch.h"

#include <QElapsedTimer>
#include <QObject>

#include <optional>

class QQuickItem;
class QQuickWindow;

namespace tarvik {

class AppState;

/// Opens the Uninstall tab of a window, watches it for the benchmarks, prints what it took and quits. UI thread only.
///
/// The lines that it prints, a word and a number of milliseconds each: `list` until the first frame with its rows,
/// `sizes` until all are measured, and `gap` and `work` as `LoopWatch` tells them.
class UninstallMeasurement : public QObject {
public:
    explicit UninstallMeasurement(AppState& state);
    /// Begins when the window's first refresh is over.
    void watch(QQuickWindow& window);

private:
    void begin();
    void takeFrame();
    void end();
    double now() const;

    AppState& m_state;
    QQuickWindow* m_window = nullptr;
    LoopWatch m_loop;
    QElapsedTimer m_sinceBegin;
    bool m_hasPolishedRows = false;
    std::optional<double> m_listShown;
    double m_allSized = 0;
};

}  // namespace tarvik
