#pragma once

#include "LoopWatch.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <optional>

class QQuickItem;
class QQuickWindow;

namespace tarvik {

class AppsState;

/// Watches the first refresh of a window for the benchmarks, with all applications in its list, prints what it took and
/// quits. UI thread only; to be made before the views are, as these begin the refresh.
///
/// The lines that it prints, a word and a number of milliseconds each: `list` until the first frame with rows, `sizes`
/// until all are measured and in order, `processor` what this program has worked until then, and `gap` and `work` as
/// `LoopWatch` tells them.
class RefreshMeasurement : public QObject {
public:
    /// With `scrolls` the list goes from top to bottom, to and fro as long as sizes come in.
    RefreshMeasurement(AppsState& state, bool scrolls);
    /// Shows all applications in the window and watches its frames.
    void watch(QQuickWindow& window);

private:
    void takeFrame();
    void scroll();
    void endOfScan();
    void print() const;
    bool hasRows() const;
    double now() const;

    AppsState& m_state;
    const bool m_scrolls;
    QQuickItem* m_list = nullptr;
    LoopWatch m_loop;
    QTimer m_scrolling;
    QElapsedTimer m_sinceRefresh;
    std::optional<double> m_listShown;
    std::optional<double> m_allSized;
    double m_workUntilSized = 0;
    double m_step;
    bool m_hasPolishedRows = false;
    bool m_hasSeenBottom = false;
};

}  // namespace tarvik
