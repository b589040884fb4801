#pragma once

#include "Platform/Basics/Cancellation.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace tarvik {

/// Calls a function every half second, first after half a second, from a thread of its own, until its life ends.
class ProgressTimer {
public:
    /// Gets the wish to stop, so that a long measurement can end early. What it throws is dropped. May be empty.
    using Tick = std::function<void(const Cancellation&)>;

    explicit ProgressTimer(Tick tick, std::chrono::milliseconds interval = std::chrono::milliseconds(500));
    ~ProgressTimer() { cancel(); }
    ProgressTimer(const ProgressTimer&) = delete;
    ProgressTimer& operator=(const ProgressTimer&) = delete;

    /// Ends it. Once this returns, the function is not running and never runs again.
    void cancel();

private:
    void run();

    Tick m_tick;
    std::chrono::milliseconds m_interval;
    Cancellation m_cancellation;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::thread m_thread;
};

}  // namespace tarvik
