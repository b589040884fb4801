#pragma once

#include <atomic>
#include <mutex>
#include <string_view>

namespace tarvik::ditto {

/// What the tool says of items that it could not copy: one line each, at once. Any thread may say something.
class Diagnostics {
public:
    void say(std::string_view text);
    /// Whether everything was copied so far.
    bool areNone() const { return !m_hasSaid; }

private:
    std::mutex m_mutex;
    std::atomic<bool> m_hasSaid = false;
};

}  // namespace tarvik::ditto
