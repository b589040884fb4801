#include "Copying/ProgressTimer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

namespace tarvik {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// When a timer ticked. Outlives the timer.
class Ticks {
public:
    ProgressTimer::Tick note() {
        return [this](const Cancellation&) {
            const std::lock_guard lock(m_mutex);
            m_times.push_back(steady_clock::now() - m_begin);
            m_changed.notify_all();
        };
    }
    /// Waits for so many.
    void await(std::size_t count) {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_times.size() >= count; });
    }
    std::vector<steady_clock::duration> times() {
        const std::lock_guard lock(m_mutex);
        return m_times;
    }

private:
    const steady_clock::time_point m_begin = steady_clock::now();
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<steady_clock::duration> m_times;
};

TEST(ProgressTimer, TicksEveryHalfSecondFromTheFirstOn) {
    Ticks ticks;
    Ticks slowerTicks;
    ProgressTimer timer(ticks.note());
    const ProgressTimer slower(slowerTicks.note(), milliseconds(900));
    ticks.await(3);
    timer.cancel();
    const auto times = ticks.times();
    for (std::size_t at = 0; at < 3; ++at) EXPECT_GE(times[at], milliseconds(500) * static_cast<int>(at + 1)) << at;
    EXPECT_LT(slowerTicks.times().size(), 3U) << "three half seconds are over long before";
}

TEST(ProgressTimer, NeverTicksOnceItIsCancelled) {
    Ticks ticks;
    ProgressTimer timer(ticks.note(), milliseconds(1));
    ticks.await(2);
    timer.cancel();
    const auto count = ticks.times().size();
    std::this_thread::sleep_for(milliseconds(50));
    EXPECT_EQ(ticks.times().size(), count);
    timer.cancel();
}

TEST(ProgressTimer, GoesOnAfterATickThatFailed) {
    Ticks ticks;
    const ProgressTimer timer(
        [note = ticks.note()](const Cancellation& cancellation) {
            note(cancellation);
            throw std::runtime_error("cannot be measured");
        },
        milliseconds(1));
    ticks.await(3);
}

TEST(ProgressTimer, TellsALongTickThatItIsWantedNoMore) {
    std::mutex mutex;
    std::condition_variable changed;
    bool hasBegun = false;
    ProgressTimer timer(
        [&](const Cancellation& cancellation) {
            {
                const std::lock_guard lock(mutex);
                hasBegun = true;
            }
            changed.notify_all();
            while (!cancellation.isCancelled()) std::this_thread::yield();
        },
        milliseconds(1));
    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return hasBegun; });
    lock.unlock();
    timer.cancel();  // Returns.
}

}  // namespace
}  // namespace tarvik
