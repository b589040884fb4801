#pragma once

#include <chrono>
#include <optional>

/// The user's local time: what a clock on the wall shows. Any thread.
namespace tarvik::LocalTime {

using Instant = std::chrono::system_clock::time_point;

struct Reading {
    int year = 0;
    /// 1 to 12.
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;

    bool operator==(const Reading&) const = default;
};

/// What is below a second is cut off.
Reading at(Instant instant);
/// When the clock shows that; nothing when it never does, as on the 31st of February or in the hour that is left out in
/// spring. Of two such instants in autumn it is one.
std::optional<Instant> instantOf(const Reading& reading);

}  // namespace tarvik::LocalTime
