#include "Platform/Files/FileFlags.h"
#include "Platform/Files/UnlockCommand.h"

#include <gtest/gtest.h>

namespace tarvik {

TEST(UnlockCommand, LiftsEachLockOfAMac) {
    EXPECT_EQ(UnlockCommand::byChflags(FileFlags::userImmutable, "/a"), "chflags nouchg /a");
    EXPECT_EQ(UnlockCommand::byChflags(FileFlags::userAppend, "/a"), "chflags nouappnd /a");
    EXPECT_EQ(UnlockCommand::byChflags(FileFlags::systemImmutable, "/a"), "sudo chflags noschg /a");
    EXPECT_EQ(UnlockCommand::byChflags(FileFlags::systemAppend, "/a"), "sudo chflags nosappnd /a");
    EXPECT_EQ(UnlockCommand::byChflags(FileFlags::userLocks | FileFlags::systemImmutable, "/a"),
              "sudo chflags nouchg,nouappnd,noschg /a");
}

TEST(UnlockCommand, LiftsEachLockOfLinux) {
    EXPECT_EQ(UnlockCommand::byChattr(FileFlags::systemImmutable, "/a"), "sudo chattr -i /a");
    EXPECT_EQ(UnlockCommand::byChattr(FileFlags::administratorLocks, "/a"), "sudo chattr -ia /a");
}

TEST(UnlockCommand, NamesOnePathWhateverIsInIt) {
    EXPECT_EQ(UnlockCommand::ofDenial({"/Users/robin/Movies", "delete"}),
              "chmod -a \"everyone deny delete\" /Users/robin/Movies");
    EXPECT_EQ(UnlockCommand::ofDenial({"/a b;$(c)", "delete_child"}),
              "chmod -a \"everyone deny delete_child\" '/a b;$(c)'");
    EXPECT_EQ(UnlockCommand::showingLists("/a b/c"), "ls -led '/a b/c' '/a b'");
    EXPECT_EQ(UnlockCommand::ofOwner("/Robin's.app"), "sudo chown -R \"$(id -un)\" '/Robin'\\''s.app'");
}

}  // namespace tarvik
