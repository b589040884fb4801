#include "ditto/CopyCrew.h"

#include "ditto/ItemError.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace tarvik::ditto {

namespace {

/// Each batch holds two handles open, and a process may be allowed as few as 256.
constexpr std::size_t queueLimit = 48;
/// With fewer items than this the walk's own thread is done before others have begun. No more than the queue's limit,
/// so that the threads run before it can be full.
constexpr std::size_t itemsWorthThreads = queueLimit;
/// More would only wait for each other at the drive.
constexpr unsigned mostThreads = 8;

}  // namespace

void Batch::add(unsigned char type, std::string_view name) {
    m_entries += static_cast<char>(type);
    m_entries += name;
    m_entries += '\0';
    ++m_size;
}

CopyCrew::~CopyCrew() {
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    joinThreads();
}

void CopyCrew::add(Batch batch) {
    m_itemsAdded += batch.size();
    {
        std::unique_lock lock(m_mutex);
        m_hasSpace.wait(lock, [&] { return m_batches.size() < queueLimit || m_stop; });
        if (m_stop) throw Stopped{};
        ++batch.folder().folder->unfinished;
        m_batches.push_back(std::move(batch));
    }
    m_hasWork.notify_one();
    if (m_threads.empty() && m_itemsAdded >= itemsWorthThreads) startThreads();
}

void CopyCrew::fail(std::exception_ptr failure) {
    {
        const std::lock_guard lock(m_mutex);
        if (!m_failure) m_failure = std::move(failure);
        m_stop = true;
    }
    m_hasWork.notify_all();
    m_hasSpace.notify_all();
}

void CopyCrew::finish() {
    {
        const std::lock_guard lock(m_mutex);
        m_isComplete = true;
    }
    m_hasWork.notify_all();
    work();
    joinThreads();
    if (m_failure) std::rethrow_exception(m_failure);
}

void CopyCrew::startThreads() {
    const unsigned count = std::clamp(std::thread::hardware_concurrency(), 1U, mostThreads);
    try {
        while (m_threads.size() < count) m_threads.emplace_back([this] { work(); });
    } catch (const std::system_error&) {
        if (m_threads.empty()) throw;  // Fewer threads than wished for do the work as well.
    }
}

void CopyCrew::work() {
    try {
        ItemCopier copier(m_links, m_stop);
        for (Batch batch(nullptr); take(batch);) {
            batch.forEach([&](const Item& item, unsigned char type) {
                if (m_stop) throw Stopped{};
                triesToCopy(m_diagnostics, [&] { copier.copy(item, type); });
            });
            triesToCopy(m_diagnostics, [&] { leave(batch.folder()); });
        }
    } catch (...) {
        fail(std::current_exception());
    }
}

bool CopyCrew::take(Batch& batch) {
    batch = Batch(nullptr);
    std::unique_lock lock(m_mutex);
    m_hasWork.wait(lock, [&] { return !m_batches.empty() || m_isComplete || m_stop; });
    if (m_batches.empty() || m_stop) return false;
    batch = std::move(m_batches.front());
    m_batches.pop_front();
    // Not at each batch: the walk then wakes up to a queue that is worth filling.
    if (m_batches.size() == queueLimit / 2) m_hasSpace.notify_one();
    return true;
}

void CopyCrew::joinThreads() {
    m_hasWork.notify_all();
    for (std::thread& thread : m_threads) thread.join();
    m_threads.clear();
}

}  // namespace tarvik::ditto
