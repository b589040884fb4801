#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>

namespace tarvik {

/// How long something that copies bytes will still take, by how quickly the newest of them came.
class TimeLeft {
public:
    using Clock = std::chrono::steady_clock;

    /// Takes in how far it is, in bytes; the first report is its beginning. Instants never run back.
    void report(std::int64_t copied, std::int64_t remaining, Clock::time_point now);
    /// Rounded up. Nothing while it cannot be told: too early, or for long nothing has come.
    std::optional<std::chrono::seconds> estimate() const;

private:
    struct Report {
        Clock::time_point at;
        std::int64_t copied;
    };
    /// The newest ones, the oldest first.
    std::deque<Report> m_reports;
    std::int64_t m_remaining = 0;
};

/// "About 3 minutes left", "Less than a minute left".
std::string timeLeftText(std::chrono::seconds left);

}  // namespace tarvik
