#include "LoopWatch.h"

#include <algorithm>
#include <time.h>

namespace tarvik {

namespace {

double processorTime(clockid_t clock) {
    timespec time{};
    ::clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

}  // namespace

double threadProcessorTime() {
    return processorTime(CLOCK_THREAD_CPUTIME_ID);
}

double programProcessorTime() {
    return processorTime(CLOCK_PROCESS_CPUTIME_ID);
}

LoopWatch::LoopWatch() {
    m_ticks.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_ticks, &QTimer::timeout, &m_ticks, [this] { takeTick(); });
}

void LoopWatch::start() {
    m_clock.start();
    m_lastTick = m_longestGap = m_mostWork = 0;
    m_workAtLastTick = threadProcessorTime();
    m_ticks.start(1);
}

void LoopWatch::takeTick() {
    const double time = now();
    const double work = threadProcessorTime();
    m_longestGap = std::max(m_longestGap, time - m_lastTick);
    m_mostWork = std::max(m_mostWork, work - m_workAtLastTick);
    m_lastTick = time;
    m_workAtLastTick = work;
}

double LoopWatch::now() const {
    return static_cast<double>(m_clock.nsecsElapsed()) / 1e6;
}

}  // namespace tarvik
