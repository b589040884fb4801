#include "Platform/Processes/Utf8Locale.h"

#include <gtest/gtest.h>

#include <locale>

namespace tarvik::test {

TEST(Utf8Locale, IsTheFirstThatTheSystemKnows) {
    EXPECT_EQ(Utf8Locale::firstKnown({"C", "POSIX"}), "C");
    EXPECT_EQ(Utf8Locale::firstKnown({"xx_XX.NONSENSE", "C"}), "C");
    EXPECT_EQ(Utf8Locale::firstKnown({"xx_XX.NONSENSE", "yy_YY.NONSENSE"}), "yy_YY.NONSENSE");
}

TEST(Utf8Locale, IsKnownHere) {
    EXPECT_TRUE(Utf8Locale::name().ends_with(".UTF-8"));
    EXPECT_NO_THROW(const std::locale known(Utf8Locale::name()));
}

}  // namespace tarvik::test
