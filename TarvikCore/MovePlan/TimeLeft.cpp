#include "MovePlan/TimeLeft.h"

#include <fmt/format.h>

#include <cmath>

namespace tarvik {

namespace {

using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;

/// An estimate that is younger jumps about.
constexpr seconds shortestLook{3};
/// A drive whose cache is full gets slower: what was long ago tells nothing any more.
constexpr seconds longestLook{30};
/// Beyond this, nobody plans by it.
constexpr double longestEstimate = 1e7;

std::string about(std::int64_t count, const char* unit) {
    return fmt::format("About {} {}{} left", count, unit, count == 1 ? "" : "s");
}

}  // namespace

void TimeLeft::report(std::int64_t copied, std::int64_t remaining, Clock::time_point now) {
    m_remaining = remaining;
    m_reports.push_back({now, copied});
    while (m_reports.size() > 2 && now - m_reports[1].at >= longestLook) m_reports.pop_front();
}

std::optional<seconds> TimeLeft::estimate() const {
    if (m_reports.empty()) return std::nullopt;
    const auto& [begin, copiedBefore] = m_reports.front();
    const auto& [end, copied] = m_reports.back();
    const std::chrono::duration<double> taken = end - begin;
    if (taken < shortestLook || copied <= copiedBefore || m_remaining <= 0) return std::nullopt;
    const double left = taken.count() * static_cast<double>(m_remaining) / static_cast<double>(copied - copiedBefore);
    if (left > longestEstimate) return std::nullopt;
    return seconds(static_cast<std::int64_t>(std::ceil(left)));
}

std::string timeLeftText(seconds left) {
    if (left < minutes(1)) return "Less than a minute left";
    if (left <= minutes(90)) return about(std::chrono::ceil<minutes>(left).count(), "minute");
    return about(std::chrono::round<hours>(left).count(), "hour");
}

}  // namespace tarvik
