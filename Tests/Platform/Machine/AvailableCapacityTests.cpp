#include "Platform/Machine/AvailableCapacity.h"

#include <gtest/gtest.h>

namespace tarvik {

TEST(AvailableCapacity, CountsWhatTheSystemWouldClearAway) {
    EXPECT_EQ(AvailableCapacity::of(900, 500), 900);
    EXPECT_EQ(AvailableCapacity::of(300, 500), 300);
}

TEST(AvailableCapacity, IsThePlainOneWhereNothingWouldBeClearedAway) {
    EXPECT_EQ(AvailableCapacity::of(0, 500), 500);
    EXPECT_EQ(AvailableCapacity::of(std::nullopt, 500), 500);
}

TEST(AvailableCapacity, IsWhatIsToldWhereOnlyOneIsTold) {
    EXPECT_EQ(AvailableCapacity::of(0, std::nullopt), 0);
    EXPECT_EQ(AvailableCapacity::of(0, 0), 0);
    EXPECT_EQ(AvailableCapacity::of(std::nullopt, 0), 0);
    EXPECT_EQ(AvailableCapacity::of(std::nullopt, std::nullopt), std::nullopt);
}

}  // namespace tarvik
