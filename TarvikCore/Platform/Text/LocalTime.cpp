#include "Platform/Text/LocalTime.h"

#include <ctime>

namespace tarvik::LocalTime {

namespace {

constexpr int firstYear = 1900;

Reading readingOf(std::time_t seconds) {
    std::tm local{};
    ::localtime_r(&seconds, &local);
    return {local.tm_year + firstYear, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

/// Whether the clock can tell an instant that many seconds after its beginning.
bool isInClockRange(std::time_t seconds) {
    using std::chrono::duration_cast;
    constexpr auto earliest = duration_cast<std::chrono::seconds>(Instant::duration::min()).count();
    constexpr auto latest = duration_cast<std::chrono::seconds>(Instant::duration::max()).count();
    return earliest < seconds && seconds < latest;
}

}  // namespace

Reading at(Instant instant) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(instant.time_since_epoch());
    ::tzset();  // localtime_r alone need not notice that the user has travelled.
    return readingOf(static_cast<std::time_t>(seconds.count()));
}

std::optional<Instant> instantOf(const Reading& reading) {
    std::tm local{};
    local.tm_year = reading.year - firstYear;
    local.tm_mon = reading.month - 1;
    local.tm_mday = reading.day;
    local.tm_hour = reading.hour;
    local.tm_min = reading.minute;
    local.tm_sec = reading.second;
    local.tm_isdst = -1;
    const std::time_t seconds = std::mktime(&local);
    // It takes any fields and makes a time of them: only a real one comes back as it was.
    if (!isInClockRange(seconds) || readingOf(seconds) != reading) return std::nullopt;
    return Instant(std::chrono::seconds(seconds));
}

}  // namespace tarvik::LocalTime
