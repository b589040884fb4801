#include "Platform/Basics/AsyncSemaphore.h"

#include <utility>

namespace tarvik {

AsyncSemaphore::~AsyncSemaphore() {
    if (m_hasGone) *m_hasGone = true;
    for (Waiting* waiting = m_oldest; waiting; waiting = waiting->m_newer) waiting->m_semaphore = nullptr;
}

void AsyncSemaphore::signal() noexcept {
    if (!m_oldest) {
        ++m_available;
        return;
    }
    ++m_passing;
    if (m_hasGone != nullptr) return;

    bool hasGone = false;
    m_hasGone = &hasGone;
    while (m_passing > 0 && m_oldest) {
        --m_passing;
        const auto coroutine = m_oldest->m_coroutine;
        remove(*m_oldest);
        coroutine.resume();
        if (hasGone) return;
    }
    m_hasGone = nullptr;
    // Waiters that were destroyed meanwhile took no permit.
    m_available += std::exchange(m_passing, 0);
}

void AsyncSemaphore::append(Waiting& waiting) noexcept {
    waiting.m_older = m_newest;
    (m_newest ? m_newest->m_newer : m_oldest) = &waiting;
    m_newest = &waiting;
}

void AsyncSemaphore::remove(Waiting& waiting) noexcept {
    (waiting.m_older ? waiting.m_older->m_newer : m_oldest) = waiting.m_newer;
    (waiting.m_newer ? waiting.m_newer->m_older : m_newest) = waiting.m_older;
    waiting.m_coroutine = nullptr;
}

bool AsyncSemaphore::Waiting::await_ready() noexcept {
    if (m_semaphore->m_available < 1) return false;
    --m_semaphore->m_available;
    return true;
}

void AsyncSemaphore::Waiting::await_suspend(std::coroutine_handle<> coroutine) noexcept {
    m_coroutine = coroutine;
    m_semaphore->append(*this);
}

}  // namespace tarvik
