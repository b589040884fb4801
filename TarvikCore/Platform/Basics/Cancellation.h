#pragma once

#include <atomic>
#include <memory>

namespace tarvik {

/// A wish to stop, shared between the one who asks and the work that looks at it now and then. Safe on every thread.
class Cancellation {
public:
    /// One whose wish is the value of a flag that lives as long as the program: a signal may do no more than set one.
    static Cancellation sharing(std::atomic<bool>& flag) {
        Cancellation shared;
        shared.m_flag = {std::shared_ptr<void>(), &flag};
        return shared;
    }

    void cancel() const noexcept { m_flag->store(true, std::memory_order_relaxed); }
    bool isCancelled() const noexcept { return m_flag->load(std::memory_order_relaxed); }

private:
    std::shared_ptr<std::atomic<bool>> m_flag = std::make_shared<std::atomic<bool>>(false);
};

}  // namespace tarvik
