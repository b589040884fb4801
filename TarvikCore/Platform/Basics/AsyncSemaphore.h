#pragma once

#include <coroutine>

namespace tarvik {

/// A counting semaphore for coroutines: it bounds how many of them do something at the same time.
///
///     co_await semaphore.wait();
///     ... at most so many at once ...
///     semaphore.signal();
///
/// Works in any coroutine. The semaphore, its waiters and every call belong to one thread. Permits go strictly by order
/// of arrival: the one that `signal` gives passes straight to the oldest waiter, and nobody who comes later can take
/// it. A coroutine that is destroyed while it waits leaves the queue. Waiters that are left when the semaphore itself
/// is destroyed are never resumed.
class AsyncSemaphore {
public:
    class [[nodiscard]] Waiting;

    /// `value` is the number of permits that are free at first.
    explicit AsyncSemaphore(int value) : m_available(value) {}
    ~AsyncSemaphore();
    AsyncSemaphore(const AsyncSemaphore&) = delete;
    AsyncSemaphore& operator=(const AsyncSemaphore&) = delete;

    /// To be awaited: takes a permit, at once when one is free, else when all who came before have had theirs.
    /// No memory is allocated for a waiter.
    Waiting wait();

    /// Gives a permit. With a waiter, the oldest is resumed inside this call, up to its next suspension. When that
    /// coroutine signals in its turn, the next waiter is not resumed inside it but after it, by the first call: however
    /// many waiters follow each other, the stack grows by one only. A resumed coroutine may destroy the semaphore; it
    /// must not let an exception out.
    void signal() noexcept;

private:
    void append(Waiting& waiting) noexcept;
    void remove(Waiting& waiting) noexcept;

    int m_available;
    /// The queue, linked through the waiters themselves.
    Waiting* m_oldest = nullptr;
    Waiting* m_newest = nullptr;
    /// Permits on their way to waiters. Not 0 only while `signal` runs.
    int m_passing = 0;
    /// Set while `signal` resumes waiters: where the destructor says that the semaphore has gone.
    bool* m_hasGone = nullptr;
};

/// What a coroutine awaits. It lives in the coroutine's frame, and with it.
class AsyncSemaphore::Waiting {
public:
    explicit Waiting(AsyncSemaphore& semaphore) noexcept : m_semaphore(&semaphore) {}
    ~Waiting() {
        if (m_coroutine && m_semaphore) m_semaphore->remove(*this);
    }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

    bool await_ready() noexcept;
    void await_suspend(std::coroutine_handle<> coroutine) noexcept;
    void await_resume() const noexcept {}

private:
    friend class AsyncSemaphore;

    /// Null when the semaphore has gone.
    AsyncSemaphore* m_semaphore;
    /// Set while in the queue.
    std::coroutine_handle<> m_coroutine;
    Waiting* m_older = nullptr;
    Waiting* m_newer = nullptr;
};

inline AsyncSemaphore::Waiting AsyncSemaphore::wait() {
    return Waiting(*this);
}

}  // namespace tarvik
