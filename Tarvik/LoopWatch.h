#pragma once

#include <QElapsedTimer>
#include <QTimer>

namespace tarvik {

/// Watches for the benchmarks how the event loop turns. UI thread only.
class LoopWatch {
public:
    LoopWatch();

    /// From now on; what was seen before is forgotten.
    void start();
    /// The longest time in which the loop did not turn, in milliseconds.
    double longestGap() const { return m_longestGap; }
    /// The most that its thread has worked in one such time, in milliseconds.
    double mostWork() const { return m_mostWork; }

private:
    void takeTick();
    double now() const;

    QElapsedTimer m_clock;
    QTimer m_ticks;
    double m_lastTick = 0;
    double m_workAtLastTick = 0;
    double m_longestGap = 0;
    double m_mostWork = 0;
};

/// What this thread has worked so far, and what the whole program has, in milliseconds.
double threadProcessorTime();
double programProcessorTime();

}  // namespace tarvik
