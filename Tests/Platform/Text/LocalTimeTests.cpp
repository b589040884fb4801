#include "Platform/Text/LocalTime.h"
#include "Support/EnvironmentVariable.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <string>

namespace tarvik {
namespace {

using LocalTime::Instant;
using LocalTime::Reading;
using test::EnvironmentVariable;

constexpr Instant autumnEvening{std::chrono::seconds(test::madeNow)};
/// By its rules, so that no table of the system is needed.
constexpr const char* centralEurope = "CET-1CEST,M3.5.0,M10.5.0/3";

TEST(LocalTime, IsWhatTheClockShowsWhereTheUserIs) {
    for (const auto& [zone, hour] : {std::pair("UTC0", 17), std::pair(centralEurope, 18), std::pair("EST5", 12)}) {
        const EnvironmentVariable here("TZ", zone);
        const Reading reading{2026, 11, 15, hour, 45, 43};
        EXPECT_EQ(LocalTime::at(autumnEvening), reading) << zone;
        EXPECT_EQ(LocalTime::instantOf(reading), autumnEvening) << zone;
    }
}

TEST(LocalTime, CutsOffWhatIsBelowASecond) {
    const EnvironmentVariable here("TZ", "UTC0");
    EXPECT_EQ(LocalTime::at(autumnEvening + std::chrono::milliseconds(999)).second, 43);
    EXPECT_EQ(LocalTime::at(Instant(std::chrono::milliseconds(-1))), (Reading{1969, 12, 31, 23, 59, 59}));
    EXPECT_EQ(LocalTime::instantOf({1969, 12, 31, 23, 59, 59}), Instant(std::chrono::seconds(-1)));
}

TEST(LocalTime, KnowsSummerAndWinter) {
    const EnvironmentVariable here("TZ", centralEurope);
    EXPECT_EQ(LocalTime::at(*LocalTime::instantOf({2026, 7, 1, 12, 0, 0})), (Reading{2026, 7, 1, 12, 0, 0}));
    EXPECT_EQ(LocalTime::instantOf({2026, 7, 1, 12, 0, 0}), Instant(std::chrono::seconds(1782900000)));
    EXPECT_EQ(LocalTime::instantOf({2026, 3, 29, 2, 30, 0}), std::nullopt) << "the clock goes from 2 to 3";
    EXPECT_TRUE(LocalTime::instantOf({2026, 10, 25, 2, 30, 0})) << "it shows this twice";
}

TEST(LocalTime, RefusesWhatNoClockShows) {
    for (const auto& reading :
         {Reading{2026, 2, 29, 0, 0, 0}, Reading{2026, 13, 1, 0, 0, 0}, Reading{2026, 0, 1, 0, 0, 0},
          Reading{2026, 1, 0, 0, 0, 0}, Reading{2026, 1, 1, 24, 0, 0}, Reading{2026, 1, 1, 0, 60, 0},
          Reading{2026, 1, 1, 0, 0, 60}, Reading{9999, 1, 1, 0, 0, 0}, Reading{0, 1, 1, 0, 0, 0}})
        EXPECT_EQ(LocalTime::instantOf(reading), std::nullopt) << reading.year << '-' << reading.month;
    EXPECT_TRUE(LocalTime::instantOf({2028, 2, 29, 0, 0, 0}));
}

}  // namespace
}  // namespace tarvik
