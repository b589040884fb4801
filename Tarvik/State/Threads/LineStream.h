#pragma once

#include "State/Threads/UiThread.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace tarvik {

/// Carries lines to the UI thread in their order and loses none. Those that come while others are still on their way
/// travel with them, so that a quick sender never fills the queue of a busy window. Copies carry the same stream.
class LineStream {
public:
    using Lines = std::vector<std::string>;

    /// `receive` runs on the UI thread, but may be made and destroyed on any.
    explicit LineStream(std::function<void(Lines)> receive) : m_shared(std::make_shared<Shared>(std::move(receive))) {}

    /// Any thread; never blocks for longer than the taking of a line.
    void send(std::string line) const {
        {
            const std::scoped_lock lock(m_shared->mutex);
            m_shared->waiting.push_back(std::move(line));
            if (m_shared->waiting.size() > 1) return;
        }
        UiThread::post([shared = m_shared] {
            Lines lines;
            {
                const std::scoped_lock lock(shared->mutex);
                lines.swap(shared->waiting);
            }
            shared->receive(std::move(lines));
        });
    }

private:
    struct Shared {
        explicit Shared(std::function<void(Lines)> receiver) : receive(std::move(receiver)) {}

        const std::function<void(Lines)> receive;
        std::mutex mutex;
        Lines waiting;
    };

    std::shared_ptr<Shared> m_shared;
};

}  // namespace tarvik
