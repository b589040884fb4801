#include "State/EventLoop.h"

#include "State/Threads/UiThread.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>
#include <gtest/gtest.h>

namespace tarvik::test {

void spinUntil(const std::function<bool()>& isTrue) {
    QEventLoop loop;
    QTimer tick;  // For what comes true without an event.
    QObject::connect(&tick, &QTimer::timeout, &loop, [] {});
    tick.start(5);
    const QDeadlineTimer deadline(std::chrono::minutes(1));
    while (!isTrue()) {
        if (deadline.hasExpired()) {
            ADD_FAILURE() << "waited in vain";
            return;
        }
        loop.processEvents(QEventLoop::WaitForMoreEvents);
    }
}

void spinOnce() {
    bool hasRun = false;
    UiThread::post([&] { hasRun = true; });
    spinUntil([&] { return hasRun; });
}

}  // namespace tarvik::test
