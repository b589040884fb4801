#include "Platform/Basics/Parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace tarvik {

namespace {

class Work {
public:
    Work(std::size_t count, const std::function<void(std::size_t)>& body) : m_count(count), m_body(body) {}

    /// Takes one index after the other until none is left. One call a thread.
    void run() {
        for (auto index = m_next.fetch_add(1); index < m_count; index = m_next.fetch_add(1)) {
            try {
                m_body(index);
            } catch (...) {
                fail(std::current_exception());
            }
        }
    }

    void rethrow() const {
        if (m_failure) std::rethrow_exception(m_failure);
    }

private:
    void fail(std::exception_ptr failure) {
        const std::lock_guard lock(m_mutex);
        if (!m_failure) m_failure = std::move(failure);
        m_next = m_count;
    }

    const std::size_t m_count;
    const std::function<void(std::size_t)>& m_body;
    std::atomic<std::size_t> m_next = 0;
    std::mutex m_mutex;
    std::exception_ptr m_failure;
};

/// Threads that are waited for.
class Crew {
public:
    ~Crew() {
        for (auto& thread : m_threads) thread.join();
    }
    /// @returns whether the system gives one more thread.
    template <typename Body>
    bool add(const Body& body) {
        try {
            m_threads.emplace_back(body);
        } catch (const std::system_error&) {
            return false;
        }
        return true;
    }

private:
    std::vector<std::thread> m_threads;
};

}  // namespace

void inParallel(std::size_t count, std::size_t threads, const std::function<void(std::size_t)>& body) {
    Work work(count, body);
    {
        Crew crew;
        // The caller's thread is one of them, and can do it all alone.
        for (std::size_t started = 1; started < std::min(count, threads); ++started)
            if (!crew.add([&] { work.run(); })) break;
        work.run();
    }
    work.rethrow();
}

std::size_t processorCount() {
    return std::max(1U, std::thread::hardware_concurrency());
}

}  // namespace tarvik
