#include "Platform/Storage/DriveGuard.h"
#include "Support/Linux/PlainUser.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

namespace tarvik::test {

TEST(DriveGuard, ServesWhereAFolderMayOnlyBePassedThrough) {
    const TemporaryFolder folder;
    makeFolder(folder / "drive/inside");
    fs::permissions(folder / "drive", fs::perms::owner_exec);
    {
        const PlainUser user;
        const DriveGuard guard(folder / "drive");
        EXPECT_TRUE(guard.holds(folder / "drive/inside"));
    }
    fs::permissions(folder / "drive", fs::perms::owner_all);
}

}  // namespace tarvik::test
