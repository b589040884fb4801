#include "MovePlan/MoveRefusal.h"

#include <gtest/gtest.h>

namespace tarvik {

TEST(MoveRefusal, KeepsOutOnlyWhatIsLargerThanTheFreeSpace) {
    const DriveInfo drive{.name = "Studio", .freeBytes = 2'000'000};
    EXPECT_EQ(MoveRefusal::ofSpace(0, drive), std::nullopt);
    EXPECT_EQ(MoveRefusal::ofSpace(2'000'000, drive), std::nullopt);
    EXPECT_EQ(MoveRefusal::ofSpace(3'500'000, drive), "Need 3.5 MB but Studio has 2 MB.");
}

}  // namespace tarvik
