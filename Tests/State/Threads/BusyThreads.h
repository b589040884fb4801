#pragma once

#include "State/Threads/Background.h"

#include <QThread>

#include <algorithm>
#include <future>
#include <utility>

namespace tarvik::test {

/// Keeps threads busy, those for checks unless others are named.
class BusyThreads {
public:
    /// As many as there are at once.
    static int all() { return std::max(4, QThread::idealThreadCount()); }
    explicit BusyThreads(int threads = all(), Priority priority = Priority::utility) {
        const auto untilTheEnd = m_end.get_future().share();
        for (int thread = 0; thread < threads; ++thread)
            Background::run(priority, [untilTheEnd] { untilTheEnd.wait(); });
    }
    ~BusyThreads() { end(); }
    /// Blocks until the thread that is left has done all that it was given.
    static void waitForTheLastThread() {
        std::promise<void> done;
        Background::run(Priority::utility, [&] { done.set_value(); });
        done.get_future().wait();
    }
    void end() {
        if (!std::exchange(m_hasEnded, true)) m_end.set_value();
    }

private:
    std::promise<void> m_end;
    bool m_hasEnded = false;
};

}  // namespace tarvik::test
