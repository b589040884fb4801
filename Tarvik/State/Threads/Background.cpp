#include "State/Threads/Background.h"

#include "Platform/Processes/ThreadPriority.h"
#include "State/Threads/UiThread.h"

#include <QThreadPool>

#include <algorithm>
#include <deque>
#include <mutex>

namespace tarvik::Background {

namespace {

/// The work of one priority, in the order in which it came, and the threads that do it.
template <Priority priority>
class Pool {
public:
    static Pool& shared() {
        static Pool thePool;
        return thePool;
    }

    void add(std::function<void()> work) {
        {
            const std::scoped_lock lock(m_mutex);
            m_work.push_back(std::move(work));
        }
        // The threads get no more than a nudge: what one thread leaves to another goes through our own lock alone.
        m_threads.start([] {
            if (priority != Priority::userInitiated) ThreadPriority::lower();
            shared().take()();
        });
    }

    void waitForDone() { m_threads.waitForDone(); }

private:
    Pool() {
        // A move holds a thread for as long as it takes: scans and plans must not wait for it.
        m_threads.setMaxThreadCount(priority == Priority::pictures ? 2 : std::max(4, QThread::idealThreadCount()));
    }

    std::function<void()> take() {
        const std::scoped_lock lock(m_mutex);
        auto first = std::move(m_work.front());
        m_work.pop_front();
        return first;
    }

    std::mutex m_mutex;
    std::deque<std::function<void()>> m_work;
    QThreadPool m_threads;
};

}  // namespace

void run(Priority priority, std::function<void()> work) {
    switch (priority) {
        case Priority::userInitiated:
            return Pool<Priority::userInitiated>::shared().add(std::move(work));
        case Priority::utility:
            return Pool<Priority::utility>::shared().add(std::move(work));
        case Priority::pictures:
            return Pool<Priority::pictures>::shared().add(std::move(work));
    }
}

void finish() {
    Pool<Priority::userInitiated>::shared().waitForDone();
    Pool<Priority::utility>::shared().waitForDone();
    Pool<Priority::pictures>::shared().waitForDone();
    UiThread::runPosted();
}

void Hop::await_suspend(std::coroutine_handle<> awaiting) {
    run(priority, [this, awaiting] {
        work();
        UiThread::post([awaiting] { awaiting.resume(); });
    });
}

}  // namespace tarvik::Background
