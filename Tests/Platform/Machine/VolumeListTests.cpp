#include "Platform/Machine/VolumeList.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <sys/statvfs.h>

namespace tarvik {
namespace {

using test::makeFile;
using test::makeFolder;
using test::makeLink;
using test::RealVolume;
using test::TemporaryFolder;

TEST(RootedVolumeList, TakesTheFoldersUnderVolumesAsExternalDrives) {
    const TemporaryFolder root;
    makeFolder(root / "Volumes/Backup");
    makeFolder(root / "Volumes/audio/Tarvik");
    const auto volumes = makeRootedVolumeList(root.path())->mounted();
    ASSERT_EQ(volumes.size(), 2U);
    EXPECT_EQ(volumes[0].mountPath, root / "Volumes/Backup");
    EXPECT_EQ(volumes[0].name, "Backup");
    EXPECT_EQ(volumes[0].isInternal, false);
    EXPECT_EQ(volumes[0].isBrowsable, true);
    EXPECT_EQ(volumes[0].isReadOnly, false);
    EXPECT_EQ(volumes[1].name, "audio");
}

TEST(RootedVolumeList, LeavesOutFilesLinksAndHiddenFolders) {
    const TemporaryFolder root;
    makeFile(root / "Volumes/file");
    makeLink(root / "Volumes/Disk", root.path());
    makeFolder(root / "Volumes/.hidden");
    EXPECT_TRUE(makeRootedVolumeList(root.path())->mounted().empty());
}

TEST(RootedVolumeList, IsEmptyWithoutAVolumesFolder) {
    const TemporaryFolder root;
    EXPECT_TRUE(makeRootedVolumeList(root.path())->mounted().empty());
    EXPECT_TRUE(makeRootedVolumeList(root / "gone")->mounted().empty());
}

TEST(RootedVolumeList, TellsTheCapacityOfEachFileSystem) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder root;
    makeFolder(root / "Volumes");
    RealVolume drive = RealVolume::memory(root / "Volumes", 1 << 20);
    test::makeFileOfSize(drive.path() / "file", 256 << 10);
    drive.remountReadOnly();

    const auto list = makeRootedVolumeList(root.path());
    const auto volumes = list->mounted();
    ASSERT_EQ(volumes.size(), 1U);
    EXPECT_EQ(volumes[0].totalBytes, 1 << 20);
    EXPECT_EQ(volumes[0].availableBytes, 768 << 10);
    EXPECT_EQ(volumes[0].isReadOnly, true);
    EXPECT_EQ(list->availableBytes(drive.path() / "file"), 768 << 10);
}

/// What every list tells of free space.
void expectToTellFreeSpace(const VolumeList& list) {
    const TemporaryFolder world;
    struct statvfs expected {};
    ASSERT_EQ(::statvfs(world.path().c_str(), &expected), 0);
    const auto available = list.availableBytes(world.path());
    ASSERT_TRUE(available.has_value());
    EXPECT_GT(*available, 0);
    EXPECT_LE(*available, static_cast<std::int64_t>(expected.f_blocks * expected.f_frsize));
    EXPECT_FALSE(list.availableBytes(world / "gone").has_value());
    EXPECT_FALSE(list.availableBytes(world / "gone/deeper").has_value());
}

TEST(RootedVolumeList, TellsTheFreeSpaceOfAnExistingPathOnly) {
    expectToTellFreeSpace(*makeRootedVolumeList("/"));
}
TEST(SystemVolumeList, TellsTheFreeSpaceOfAnExistingPathOnly) {
    expectToTellFreeSpace(*makeSystemVolumeList("/"));
}

TEST(SystemVolumeList, ListsTheRootAsTheInternalDisk) {
    for (const Volume& volume : makeSystemVolumeList("/no home")->mounted()) {
        if (volume.mountPath != "/") continue;
        EXPECT_EQ(volume.isInternal, true);
        EXPECT_EQ(volume.isBrowsable, true);
        EXPECT_GT(volume.totalBytes.value_or(0), volume.availableBytes.value_or(0));
        EXPECT_TRUE(volume.formatDescription.has_value());
        return;
    }
    FAIL() << "the root is not listed";
}

}  // namespace
}  // namespace tarvik
