#include "Copying/ItemLock.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

namespace tarvik::test {

TEST(ItemLock, HoldsAnItemForAsLongAsItLives) {
    const TemporaryFolder folder;
    const fs::path item = folder / "Music";
    makeFolder(item);
    EXPECT_FALSE(ItemLock::isHeld(item));
    {
        const FileDescriptor one = ItemLock::hold(item);
        const FileDescriptor other = ItemLock::hold(item);
        EXPECT_TRUE(one && other);
        EXPECT_TRUE(ItemLock::isHeld(item));
        EXPECT_FALSE(ItemLock::holdAlone(item));
    }
    EXPECT_FALSE(ItemLock::isHeld(item));
    const FileDescriptor alone = ItemLock::holdAlone(item);
    EXPECT_TRUE(alone);
    EXPECT_FALSE(ItemLock::hold(item));
}

TEST(ItemLock, GoesWithTheItemAndNotWithItsName) {
    const TemporaryFolder folder;
    makeFile(folder / "song");
    const FileDescriptor held = ItemLock::hold(folder / "song");
    EXPECT_TRUE(ItemLock::isHeldAt(folder / "song", held));
    fs::rename(folder / "song", folder / "other");
    makeFile(folder / "song");
    EXPECT_FALSE(ItemLock::isHeld(folder / "song"));
    EXPECT_FALSE(ItemLock::isHeldAt(folder / "song", held));
    EXPECT_TRUE(ItemLock::isHeld(folder / "other"));
    EXPECT_TRUE(ItemLock::isHeldAt(folder / "other", held));
    EXPECT_FALSE(ItemLock::isHeldAt(folder / "other", FileDescriptor()));
}

TEST(ItemLock, HoldsNoLinkAndNothingThatIsNotThere) {
    const TemporaryFolder folder;
    makeFile(folder / "song");
    makeLink(folder / "link", folder / "song");
    for (const char* name : {"link", "nothing"}) {
        EXPECT_FALSE(ItemLock::hold(folder / name)) << name;
        EXPECT_FALSE(ItemLock::isHeld(folder / name)) << name;
    }
}

}  // namespace tarvik::test
