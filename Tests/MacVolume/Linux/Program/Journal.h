#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace tarvik::macvolume {

/// What was done on the volume, a line each, in order. Any thread.
class Journal {
public:
    /// Many times the same in a row is one line.
    void note(std::string line) {
        const std::lock_guard lock(m_mutex);
        if (m_lines.empty() || m_lines.back() != line) m_lines.push_back(std::move(line));
    }
    std::vector<std::string> lines() const {
        const std::lock_guard lock(m_mutex);
        return m_lines;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_lines;
};

}  // namespace tarvik::macvolume
