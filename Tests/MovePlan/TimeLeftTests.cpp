#include "MovePlan/TimeLeft.h"

#include <gtest/gtest.h>

namespace tarvik {

namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;

const TimeLeft::Clock::time_point start{};

}  // namespace

TEST(TimeLeft, IsToldByTheSpeed) {
    TimeLeft left;
    left.report(0, 1000, start);
    left.report(100, 900, start + seconds(4));
    EXPECT_EQ(left.estimate(), seconds(36));
}

TEST(TimeLeft, IsNotToldTooEarly) {
    TimeLeft left;
    EXPECT_EQ(left.estimate(), std::nullopt);
    left.report(0, 1000, start);
    EXPECT_EQ(left.estimate(), std::nullopt);
    left.report(100, 900, start + milliseconds(2900));
    EXPECT_EQ(left.estimate(), std::nullopt);
    left.report(100, 900, start + seconds(3));
    EXPECT_EQ(left.estimate(), seconds(27));
}

TEST(TimeLeft, FollowsADriveThatGetsSlower) {
    TimeLeft left;
    left.report(0, 10'000, start);
    left.report(5000, 5000, start + seconds(5));
    for (int second = 6; second <= 40; ++second)
        left.report(5000 + (second - 5) * 10, 5000 - (second - 5) * 10, start + seconds(second));
    EXPECT_EQ(left.estimate(), seconds(465));
}

TEST(TimeLeft, IsNotToldWhenNothingComes) {
    TimeLeft left;
    left.report(500, 500, start);
    left.report(500, 500, start + seconds(10));
    EXPECT_EQ(left.estimate(), std::nullopt);
}

TEST(TimeLeft, IsNotToldAtTheEndOrWhenItIsBeyondReason) {
    TimeLeft left;
    left.report(0, 1000, start);
    left.report(1000, 0, start + seconds(10));
    EXPECT_EQ(left.estimate(), std::nullopt);
    left.report(1001, std::int64_t(1) << 60, start + seconds(11));
    EXPECT_EQ(left.estimate(), std::nullopt);
}

TEST(TimeLeft, IsToldInWords) {
    EXPECT_EQ(timeLeftText(seconds(0)), "Less than a minute left");
    EXPECT_EQ(timeLeftText(seconds(59)), "Less than a minute left");
    EXPECT_EQ(timeLeftText(seconds(60)), "About 1 minute left");
    EXPECT_EQ(timeLeftText(seconds(61)), "About 2 minutes left");
    EXPECT_EQ(timeLeftText(minutes(90)), "About 90 minutes left");
    EXPECT_EQ(timeLeftText(minutes(100)), "About 2 hours left");
    EXPECT_EQ(timeLeftText(minutes(60 * 24)), "About 24 hours left");
}

}  // namespace tarvik
