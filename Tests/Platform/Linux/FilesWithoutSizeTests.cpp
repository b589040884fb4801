#include "Platform/Files/Files.h"

#include <gtest/gtest.h>

namespace tarvik {

TEST(Files, HoldsToALimitWhereAFileTellsNoSize) {
    ASSERT_EQ(Files::info("/proc/self/status")->size, 0);
    EXPECT_GT(Files::read("/proc/self/status").size(), 20U);
    EXPECT_THROW(Files::read("/proc/self/status", 20), FileError);
}

}  // namespace tarvik
