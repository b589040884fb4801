#include "State/Threads/UiThread.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>

#include <condition_variable>
#include <deque>
#include <mutex>

namespace tarvik::UiThread {

namespace {

class Queue {
public:
    void add(std::function<void()> function) {
        const std::scoped_lock lock(m_mutex);
        m_functions.push_back(std::move(function));
        m_added.notify_one();
    }

    /// An empty function when nothing is queued.
    std::function<void()> take() {
        const std::scoped_lock lock(m_mutex);
        return takeFirst();
    }

    std::function<void()> waitAndTake() {
        std::unique_lock lock(m_mutex);
        m_added.wait(lock, [this] { return !m_functions.empty(); });
        return takeFirst();
    }

private:
    std::function<void()> takeFirst() {
        if (m_functions.empty()) return {};
        auto first = std::move(m_functions.front());
        m_functions.pop_front();
        return first;
    }

    std::mutex m_mutex;
    std::condition_variable m_added;
    std::deque<std::function<void()>> m_functions;
};

Queue& queue() {
    static Queue theQueue;
    return theQueue;
}

/// Each event of it runs one function, so that input and painting get their turn between two of them.
class Doorbell : public QObject {
public:
    void customEvent(QEvent*) override {
        if (const auto function = queue().take()) function();
    }
};

Doorbell* doorbell() {
    static Doorbell* const theDoorbell = [] {
        auto* made = new Doorbell;
        made->moveToThread(QCoreApplication::instance()->thread());
        return made;
    }();
    return theDoorbell;
}

}  // namespace

void post(std::function<void()> function) {
    queue().add(std::move(function));
    QCoreApplication::postEvent(doorbell(), new QEvent(QEvent::User));
}

void runUntil(const std::function<bool()>& isDone) {
    while (!isDone()) queue().waitAndTake()();
}

void runPosted() {
    while (const auto function = queue().take()) function();
}

}  // namespace tarvik::UiThread
