#include "Platform/Basics/AsyncSemaphore.h"

#include <gtest/gtest.h>

#include <coroutine>
#include <exception>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace tarvik {
namespace {

/// The smallest coroutine: runs at once, and is destroyed with its object.
class Task {
public:
    struct promise_type {
        Task get_return_object() { return Task(std::coroutine_handle<promise_type>::from_promise(*this)); }
        std::suspend_never initial_suspend() noexcept { return {}; }
        std::suspend_always final_suspend() noexcept { return {}; }
        void return_void() {}
        void unhandled_exception() { std::terminate(); }
    };

    Task(Task&& other) noexcept : m_coroutine(std::exchange(other.m_coroutine, nullptr)) {}
    ~Task() {
        if (m_coroutine) m_coroutine.destroy();
    }
    bool isDone() const { return m_coroutine.done(); }

private:
    explicit Task(std::coroutine_handle<> coroutine) : m_coroutine(coroutine) {}

    std::coroutine_handle<> m_coroutine;
};

using Log = std::vector<int>;

Task take(AsyncSemaphore& semaphore, int number, Log& log) {
    co_await semaphore.wait();
    log.push_back(number);
}

Task takeAndGiveBack(AsyncSemaphore& semaphore, int number, Log& log) {
    co_await semaphore.wait();
    log.push_back(number);
    semaphore.signal();
}

TEST(AsyncSemaphore, GivesAsManyPermitsAsItHas) {
    AsyncSemaphore semaphore(2);
    Log log;
    const Task first = take(semaphore, 1, log);
    const Task second = take(semaphore, 2, log);
    const Task third = take(semaphore, 3, log);
    EXPECT_EQ(log, (Log{1, 2}));
    EXPECT_FALSE(third.isDone());
}

TEST(AsyncSemaphore, ASignalWithoutWaitersIsKeptForTheNextWait) {
    AsyncSemaphore semaphore(0);
    semaphore.signal();
    Log log;
    const Task task = take(semaphore, 1, log);
    EXPECT_TRUE(task.isDone());
    const Task next = take(semaphore, 2, log);
    EXPECT_FALSE(next.isDone());
}

TEST(AsyncSemaphore, ResumesWaitersInTheOrderInWhichTheyCame) {
    AsyncSemaphore semaphore(0);
    Log log;
    const Task first = take(semaphore, 1, log);
    const Task second = take(semaphore, 2, log);
    semaphore.signal();
    EXPECT_EQ(log, (Log{1}));
    semaphore.signal();
    EXPECT_EQ(log, (Log{1, 2}));
}

TEST(AsyncSemaphore, BelowZeroASignalStillResumesAWaiter) {
    AsyncSemaphore semaphore(-1);
    Log log;
    semaphore.signal();
    const Task first = take(semaphore, 1, log);
    EXPECT_FALSE(first.isDone());
    semaphore.signal();
    EXPECT_TRUE(first.isDone());
}

TEST(AsyncSemaphore, WhoComesLaterCannotTakeThePermitThatWasPassedOn) {
    AsyncSemaphore semaphore(0);
    Log log;
    const auto greedy = [](AsyncSemaphore& shared, Log& numbers) -> Task {
        co_await shared.wait();
        numbers.push_back(1);
        shared.signal();
        co_await shared.wait();
        numbers.push_back(3);
        shared.signal();
    };
    const Task first = greedy(semaphore, log);
    const Task second = takeAndGiveBack(semaphore, 2, log);
    semaphore.signal();
    EXPECT_EQ(log, (Log{1, 2, 3}));
}

TEST(AsyncSemaphore, PassesOnePermitThroughAnyNumberOfWaiters) {
    constexpr int waiterCount = 200'000;
    AsyncSemaphore semaphore(0);
    Log log;
    std::vector<Task> tasks;
    for (int number = 0; number < waiterCount; ++number) tasks.push_back(takeAndGiveBack(semaphore, number, log));
    semaphore.signal();
    ASSERT_EQ(log.size(), std::size_t{waiterCount});
    EXPECT_EQ(log.back(), waiterCount - 1);

    const Task next = take(semaphore, waiterCount, log);
    EXPECT_TRUE(next.isDone());
}

TEST(AsyncSemaphore, ADestroyedWaiterLeavesTheQueue) {
    for (const std::size_t destroyed : {0U, 1U, 2U}) {
        AsyncSemaphore semaphore(0);
        Log log;
        std::vector<std::optional<Task>> tasks(3);
        for (int number = 0; number < 3; ++number) tasks[number].emplace(take(semaphore, number, log));
        tasks[destroyed].reset();
        semaphore.signal();
        semaphore.signal();
        Log expected = {0, 1, 2};
        expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(destroyed));
        EXPECT_EQ(log, expected);
        semaphore.signal();
        const Task next = take(semaphore, 9, log);
        EXPECT_TRUE(next.isDone());
    }
}

TEST(AsyncSemaphore, KeepsThePermitOfAWaiterThatIsDestroyedOnTheWay) {
    AsyncSemaphore semaphore(0);
    Log log;
    std::optional<Task> victim;
    const auto destroyer = [](AsyncSemaphore& shared, std::optional<Task>& other) -> Task {
        co_await shared.wait();
        shared.signal();
        other.reset();
    };
    const Task first = destroyer(semaphore, victim);
    victim.emplace(take(semaphore, 2, log));
    semaphore.signal();
    EXPECT_EQ(log, Log{});
    const Task next = take(semaphore, 3, log);
    EXPECT_TRUE(next.isDone());
}

TEST(AsyncSemaphore, AWaiterMayDestroyTheSemaphore) {
    auto semaphore = std::make_unique<AsyncSemaphore>(0);
    Log log;
    const auto destroyer = [](std::unique_ptr<AsyncSemaphore>& owner) -> Task {
        co_await owner->wait();
        owner.reset();
    };
    const Task first = destroyer(semaphore);
    const Task second = take(*semaphore, 2, log);
    semaphore->signal();
    EXPECT_TRUE(first.isDone());
    EXPECT_FALSE(second.isDone());
    EXPECT_EQ(log, Log{});
}

}  // namespace
}  // namespace tarvik
