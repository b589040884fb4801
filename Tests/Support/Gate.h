#pragma once

#include "Platform/Machine/TrashCan.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <utility>

namespace tarvik::test {

/// Where threads wait as long as it is closed.
class Gate {
public:
    void close() {
        const std::scoped_lock lock(m_mutex);
        m_isClosed = true;
    }
    void open() {
        const std::scoped_lock lock(m_mutex);
        m_isClosed = false;
        m_changed.notify_all();
    }
    void pass() {
        std::unique_lock lock(m_mutex);
        ++m_waiting;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return !m_isClosed; });
        --m_waiting;
    }
    /// Blocks until a thread stands in front of it.
    void waitForSomebody() {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_waiting > 0; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_waiting = 0;
    bool m_isClosed = false;
};

/// A Trash behind a gate.
class GatedTrash : public TrashCan {
public:
    GatedTrash(std::shared_ptr<const TrashCan> trash, std::shared_ptr<Gate> gate)
        : m_trash(std::move(trash)), m_gate(std::move(gate)) {}
    fs::path moveToTrash(const fs::path& item) const override {
        m_gate->pass();
        return m_trash->moveToTrash(item);
    }

private:
    std::shared_ptr<const TrashCan> m_trash;
    std::shared_ptr<Gate> m_gate;
};

}  // namespace tarvik::test
