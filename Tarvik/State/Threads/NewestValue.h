#pragma once

#include "State/Threads/UiThread.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace tarvik {

/// Carries the newest of a stream of values to the UI thread. A value that comes while an older one is still on its way
/// takes its place, so that a quick sender never fills the queue of a busy window. Copies carry the same stream.
template <typename Value>
class NewestValue {
public:
    /// `receive` runs on the UI thread, but may be made and destroyed on any.
    explicit NewestValue(std::function<void(const Value&)> receive)
        : m_shared(std::make_shared<Shared>(std::move(receive))) {}

    /// Any thread; never blocks for longer than the taking of a value.
    void send(Value value) const {
        {
            const std::scoped_lock lock(m_shared->mutex);
            if (std::exchange(m_shared->value, std::move(value))) return;
        }
        UiThread::post([shared = m_shared] {
            std::optional<Value> newest;
            {
                const std::scoped_lock lock(shared->mutex);
                newest.swap(shared->value);
            }
            shared->receive(*newest);
        });
    }

private:
    struct Shared {
        explicit Shared(std::function<void(const Value&)> receiver) : receive(std::move(receiver)) {}

        const std::function<void(const Value&)> receive;
        std::mutex mutex;
        /// What has been sent and not been taken.
        std::optional<Value> value;
    };

    std::shared_ptr<Shared> m_shared;
};

}  // namespace tarvik
