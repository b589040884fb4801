// Folders that give EPERM as they do on a Mac.
#include "MovePlan/FolderMove.h"
#include "Platform/Machine/FullDiskAccess.h"
#include "Support/FailureOf.h"
#include "Support/Linux/KeptItems.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik::test {
namespace {

class KeptFolders : public testing::Test {
protected:
    void SetUp() override { TARVIK_NEEDS_KEPT_ITEMS(); }

    World world;
};

TEST_F(KeptFolders, TellThatFullDiskAccessIsMissing) {
    for (const auto& kept : FullDiskAccess::keptFolders()) makeFolder(world.home / kept.path);
    EXPECT_FALSE(FullDiskAccess::isMissing(world.host));
    {
        const KeptItems mail({world.home / "Library/Mail"});
        EXPECT_TRUE(FullDiskAccess::isMissing(world.host));
    }
    EXPECT_FALSE(FullDiskAccess::isMissing(world.host)) << "it has been given";
}

TEST_F(KeptFolders, AreNotTriedWhereTheSystemWouldAskTheUser) {
    makeFolder(world.home / "Desktop");
    makeFolder(world.home / "Library/Containers");
    const KeptItems others({world.home / "Desktop", world.home / "Library/Containers"});
    EXPECT_FALSE(FullDiskAccess::isMissing(world.host));
}

TEST_F(KeptFolders, AreRefusedWithTheWayToOpenThem) {
    const fs::path folder = world.home / "Documents";
    makeFile(folder / "Letters/first");
    const KeptItems letters({folder / "Letters"});
    EXPECT_THAT(
        failureOf([&] { FolderMove::plan(world.host, folder, world.driveInfo()); }),
        testing::HasSubstr("macOS keeps " + (folder / "Letters").native() + " from Tarvik until it is allowed"));
}

}  // namespace
}  // namespace tarvik::test
