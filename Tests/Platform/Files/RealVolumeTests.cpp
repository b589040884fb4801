#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <system_error>

namespace tarvik::test {
namespace {

std::uint64_t deviceOf(const fs::path& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_dev : 0;
}

/// What every kind of volume gives to a test.
void expectToBeAVolume(RealVolume& volume, const fs::path& outside) {
    EXPECT_NE(deviceOf(volume.path()), deviceOf(outside));
    makeFile(volume.path() / "file", "bytes");
    EXPECT_EQ(contentOf(volume.path() / "file"), "bytes");
    std::error_code error;
    fs::rename(volume.path() / "file", outside / "file", error);
    EXPECT_EQ(error, std::errc::cross_device_link);

    volume.remountReadOnly();
    fs::create_directory(volume.path() / "folder", error);
    EXPECT_EQ(error, std::errc::read_only_file_system);

    volume.detach();
    EXPECT_FALSE(fs::exists(volume.path()));
}

TEST(RealVolume, OfADiskImageIsAVolumeOfItsOwn) {
    TARVIK_NEEDS_REAL_VOLUMES();
    const TemporaryFolder world;
    RealVolume volume = RealVolume::ext4(world.path(), 8 << 20);
    expectToBeAVolume(volume, world.path());
}

TEST(RealVolume, OfMemoryIsAVolumeOfItsOwn) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder world;
    RealVolume volume = RealVolume::memory(world.path(), 1 << 20);
    expectToBeAVolume(volume, world.path());
}

TEST(RealVolume, LeavesNothingBehind) {
    TARVIK_NEEDS_REAL_VOLUMES();
    const TemporaryFolder world;
    const std::string before = pictureOf(world.path());
    { const RealVolume volume = RealVolume::ext4(world.path(), 4 << 20); }
    EXPECT_EQ(pictureOf(world.path()), before);
}

}  // namespace
}  // namespace tarvik::test
