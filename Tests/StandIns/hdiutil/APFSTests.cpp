#include "Platform/Files/Files.h"
#include "StandIns/hdiutil/APFSContainer.h"
#include "StandIns/hdiutil/ImageWorld.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

namespace tarvik::test {
namespace {

using testing::ElementsAre;

class HdiutilAPFS : public ImageWorld {
protected:
    void SetUp() override {
        if (const auto reason = APFSContainer::unavailableReason()) GTEST_SKIP() << *reason;
    }
    std::string disk() const {
        return APFSContainer::bytes(folder.path(), "Vol Name",
                                    {{0, "Editor.app", S_IFDIR | 0755, ""},
                                     {1, "run", S_IFREG | 0755, std::string(9000, 'r')},
                                     {0, "Applications", S_IFLNK | 0755, "/Applications"},
                                     {0, "empty", S_IFREG | 0600, ""},
                                     {0, "again", S_IFREG | 0755, "", 2}});
    }
    void expectVolume() const {
        EXPECT_THAT(Files::names(volumes / "Vol Name"), ElementsAre("Applications", "Editor.app", "again", "empty"));
        EXPECT_EQ(contentOf(volumes / "Vol Name/Editor.app/run"), std::string(9000, 'r'));
        EXPECT_EQ(contentOf(volumes / "Vol Name/again"), std::string(9000, 'r'));
        EXPECT_EQ(Files::readLink(volumes / "Vol Name/Applications"), "/Applications");
        EXPECT_EQ(statusOf(volumes / "Vol Name/empty").st_mode & 07777, 0600U);
        EXPECT_EQ(statusOf(volumes / "Vol Name/Editor.app/run").st_mode & 07777, 0755U);
        EXPECT_EQ(statusOf(volumes / "Vol Name/empty").st_mtime, 1'700'000'000);
    }
};

TEST_F(HdiutilAPFS, IsReadFromACompressedImage) {
    auto stretches = Practice::PartitionTable::around({disk()});
    stretches[4].name = "disk image (Apple_APFS : 4)";
    const fs::path image = folder / "apfs.dmg";
    Practice::DiskImage::write(image, stretches, Practice::DiskImage::zlib());
    EXPECT_THAT(attached(image), ElementsAre((volumes / "Vol Name").native()));
    EXPECT_THAT(attached(image, "dev-entry"), ElementsAre("/dev/disk4", "/dev/disk4s1", "/dev/disk5", "/dev/disk5s1"));
    EXPECT_THAT(attached(image, "content-hint"),
                ElementsAre("GUID_partition_scheme", "Apple_APFS", "EF57347C-0000-11AA-AA11-00306543ECAC",
                            "41504653-0000-11AA-AA11-00306543ECAC"));
    EXPECT_THAT(attached(image, "volume-kind"), ElementsAre("apfs"));
    expectVolume();
    EXPECT_EQ(detach("/dev/disk5s1").status, 0);
    expectNothingAttached();
}

TEST_F(HdiutilAPFS, IsReadFromADiskAsItIs) {
    const fs::path image = folder / "apfs.img";
    Files::createFile(image, disk());
    EXPECT_THAT(attached(image), ElementsAre((volumes / "Vol Name").native()));
    expectVolume();
    EXPECT_EQ(detach(volumes / "Vol Name").status, 0);
    expectNothingAttached();
}

TEST_F(HdiutilAPFS, TakesNumbersThatAreFree) {
    const fs::path image = folder / "apfs.img";
    Files::createFile(image, disk());
    EXPECT_THAT(attached(image, "dev-entry"), ElementsAre("/dev/disk4", "/dev/disk5", "/dev/disk5s1"));
    const fs::path other = imageOfTree(Practice::DiskImage::zlib());
    EXPECT_THAT(attached(other, "dev-entry"), ElementsAre("/dev/disk6", "/dev/disk6s1"));
    EXPECT_EQ(detach("/dev/disk4").status, 0);
    fs::copy_file(other, folder / "third.dmg");
    EXPECT_THAT(attached(folder / "third.dmg", "dev-entry"), ElementsAre("/dev/disk4", "/dev/disk4s1"));
    fs::copy_file(other, folder / "fourth.dmg");
    EXPECT_THAT(attached(folder / "fourth.dmg", "dev-entry"), ElementsAre("/dev/disk5", "/dev/disk5s1"));
    EXPECT_EQ(detach("/dev/disk4").status, 0);
    EXPECT_THAT(attached(image, "dev-entry"), ElementsAre("/dev/disk4", "/dev/disk7", "/dev/disk7s1"));
}

}  // namespace
}  // namespace tarvik::test
