// Flags of ext4, and files that are mounted: what lets nobody remove an item.
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/FileFlags.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/TreeObstacle.h"
#include "Support/Linux/DriveFaults.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <sys/mount.h>

namespace tarvik::test {

namespace {

std::string words(const std::optional<TreeObstacle>& obstacle) {
    return obstacle ? obstacle->error().description() : "none";
}

class LockedItems : public testing::Test {
protected:
    void SetUp() override {
        TARVIK_NEEDS_REAL_VOLUMES();
        volume.emplace(RealVolume::ext4(mounts.path(), 20'000'000));
        tree = *volume / "tree";
        makeFile(tree / "a", "first");
        makeFile(tree / "sub/b", "second");
        makeFolder(tree / "empty");
        makeFile(tree / "z", "last");
    }

    std::string notPermitted(const fs::path& item) const {
        return "Could not remove " + item.native() + ": Operation not permitted";
    }

    const TemporaryFolder mounts;
    std::optional<RealVolume> volume;
    fs::path tree;
};

}  // namespace

TEST_F(LockedItems, AreSeenBeforeARemoval) {
    const std::string picture = pictureOf(tree);
    for (const auto flag : {FileFlag::immutable, FileFlag::appendOnly}) {
        for (const char* name : {"a", "sub/b", "sub", "empty", "."}) {
            const fs::path item = Files::standardized(tree / name);
            const Flagged locked(item, flag);
            EXPECT_EQ(words(TreeObstacle::toRemoval(tree)), notPermitted(item));
            EXPECT_THROW(Files::removeItem(tree), FileError);
            EXPECT_EQ(pictureOf(tree), picture);
        }
    }
    EXPECT_EQ(words(TreeObstacle::toRemoval(tree)), "none");
}

TEST_F(LockedItems, TellTheirLock) {
    {
        const Flagged locked(tree / "a", FileFlag::immutable);
        EXPECT_EQ(TreeObstacle::toMove(tree)->flags, FileFlags::systemImmutable);
    }
    const Flagged locked(tree, FileFlag::appendOnly);
    EXPECT_EQ(TreeObstacle::toMove(tree / "sub")->flags, FileFlags::systemAppend);
}

TEST_F(LockedItems, AreSeenInTheFolderAround) {
    for (const auto flag : {FileFlag::immutable, FileFlag::appendOnly}) {
        const Flagged locked(tree, flag);
        EXPECT_EQ(words(TreeObstacle::toRemoval(tree / "sub")),
                  "Could not remove what is in " + tree.native() + ": Operation not permitted");
    }
}

TEST_F(LockedItems, AreFilesOnWhichAnotherIsMounted) {
    const fs::path file = tree / "sub/b";
    ASSERT_EQ(::mount((tree / "a").c_str(), file.c_str(), nullptr, MS_BIND, nullptr), 0);
    const std::string obstacle = words(TreeObstacle::toRemoval(tree));
    ASSERT_EQ(::umount(file.c_str()), 0);
    EXPECT_EQ(obstacle, "Could not remove the mounted volume " + file.native() + ": Device or resource busy");
}

TEST_F(LockedItems, ThatComeInTheMiddleOfARemovalAreToldApart) {
    const Flagged locked(tree / "sub/b", FileFlag::immutable);
    EXPECT_THROW(Files::removeItem(tree / "sub", Files::Obstacles::knownToBeNone), FileError);
    try {
        Files::removeItem(tree / "sub", Files::Obstacles::knownToBeNone);
    } catch (const Files::IncompleteRemoval&) {
        ADD_FAILURE() << "nothing was removed";
    } catch (const FileError&) {
    }
    for (int number = 0; number < 50; ++number) makeFile(tree / "sub" / std::to_string(number));
    EXPECT_THROW(Files::removeItem(tree, Files::Obstacles::knownToBeNone), Files::IncompleteRemoval);
    EXPECT_EQ(contentOf(tree / "sub/b"), "second");
}

TEST_F(LockedItems, MountedInTheMiddleOfARemovalAreNotEntered) {
    const RealVolume inside = RealVolume::memory(tree / "empty", 1'000'000);
    makeFile(inside / "precious", "only copy");
    EXPECT_THROW(Files::removeItem(tree, Files::Obstacles::knownToBeNone), FileError);
    EXPECT_EQ(contentOf(inside / "precious"), "only copy");
}

}  // namespace tarvik::test
