#include "Platform/Files/FileFlags.h"

#include <gtest/gtest.h>

namespace tarvik::FileFlags {

// UF_HIDDEN, UF_COMPRESSED, SF_ARCHIVED and SF_FIRMLINK of <sys/stat.h>.
constexpr std::uint32_t harmless = 0x8000U | 0x20U | 0x10000U | 0x800000U;

TEST(FileFlags, AreTheMacsNumbers) {
    EXPECT_EQ(userLocks, 0x6U);
    EXPECT_EQ(administratorLocks, 0x60000U);
    EXPECT_EQ(restricted, 0x80000U);
    EXPECT_EQ(noUnlink, 0x100000U);
    EXPECT_EQ(dataless, 0x40000000U);
}

TEST(FileFlags, GuardAnItemByEveryLock) {
    for (const auto flag : {userImmutable, userAppend, systemImmutable, systemAppend, restricted, noUnlink})
        EXPECT_TRUE(guardItem(flag | harmless)) << flag;
    EXPECT_FALSE(guardItem(harmless | dataless));
}

TEST(FileFlags, LeaveTheEntriesOfAFolderFreeThatItselfMayNotGo) {
    EXPECT_FALSE(sealContents(noUnlink | harmless));
    for (const auto flag : {userImmutable, userAppend, systemImmutable, systemAppend, restricted})
        EXPECT_TRUE(sealContents(flag | noUnlink)) << flag;
}

TEST(FileFlags, TellWhoKeepsTheItem) {
    EXPECT_TRUE(isKeptBySystem(restricted));
    EXPECT_TRUE(isKeptBySystem(noUnlink));
    EXPECT_FALSE(isKeptBySystem(userLocks | administratorLocks));
    EXPECT_TRUE(isLocked(systemAppend));
    EXPECT_FALSE(isLocked(restricted | noUnlink | harmless));
}

}  // namespace tarvik::FileFlags
