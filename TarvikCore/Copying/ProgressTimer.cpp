#include "Copying/ProgressTimer.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Basics/Notify.h"

#include <system_error>
#include <utility>

namespace tarvik {

ProgressTimer::ProgressTimer(Tick tick, std::chrono::milliseconds interval)
    : m_tick(std::move(tick)), m_interval(interval) {
    try {
        m_thread = std::thread([this] { run(); });
    } catch (const std::system_error&) {
        return;  // Work without reports is better than none.
    }
}

void ProgressTimer::cancel() {
    {
        const std::lock_guard lock(m_mutex);
        m_cancellation.cancel();
    }
    m_wake.notify_all();
    if (m_thread.joinable()) m_thread.join();
}

void ProgressTimer::run() {
    auto next = std::chrono::steady_clock::now() + m_interval;
    std::unique_lock lock(m_mutex);
    while (!m_wake.wait_until(lock, next, [this] { return m_cancellation.isCancelled(); })) {
        lock.unlock();
        ignoringFailure([this] { notify(m_tick, m_cancellation); });
        lock.lock();
        next += m_interval;
        const auto now = std::chrono::steady_clock::now();
        if (next < now) next = now + m_interval;  // A tick that took longer than the interval is not made up for.
    }
}

}  // namespace tarvik
