#include "Platform/Files/Files.h"
#include "StandIns/StandInRun.h"
#include "StandIns/hdiutil/ImageWorld.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

namespace tarvik::test {
namespace {

namespace DiskImage = Practice::DiskImage;
using testing::ElementsAre;
using testing::IsEmpty;

class HdiutilAttach : public ImageWorld {};

TEST_F(HdiutilAttach, ShowsWhatIsOnTheImageUntilItIsDetached) {
    const fs::path image = imageOfTree(DiskImage::zlib());
    const std::string before = contentOf(image);
    EXPECT_THAT(attached(image), ElementsAre((volumes / "Editor").native()));
    EXPECT_EQ(contentsOf(volumes / "Editor"), contentsOf(tree));
    EXPECT_EQ(detach(volumes / "Editor").status, 0);
    expectNothingAttached();
    EXPECT_EQ(contentOf(image), before);
}

TEST_F(HdiutilAttach, ReadsEveryKindOfPieces) {
    for (const auto& packing : {DiskImage::none(), bzip2(), lzfse()}) {
        ASSERT_THAT(attached(imageOfTree(packing)), ElementsAre((volumes / "Editor").native())) << packing.number;
        EXPECT_EQ(contentsOf(volumes / "Editor"), contentsOf(tree)) << packing.number;
        EXPECT_EQ(detach("/dev/disk4").status, 0);
    }
    expectNothingAttached();
}

TEST_F(HdiutilAttach, AnswersInTheMacsForm) {
    const fs::path image = imageOfTree(DiskImage::zlib());
    const std::string answer = attach(image).stdout;
    EXPECT_EQ(answer, R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>system-entities</key>
	<array>
		<dict>
			<key>content-hint</key>
			<string>GUID_partition_scheme</string>
			<key>dev-entry</key>
			<string>/dev/disk4</string>
			<key>potentially-mountable</key>
			<false/>
			<key>unmapped-content-hint</key>
			<string>GUID_partition_scheme</string>
		</dict>
		<dict>
			<key>content-hint</key>
			<string>Apple_HFS</string>
			<key>dev-entry</key>
			<string>/dev/disk4s1</string>
			<key>mount-point</key>
			<string>)" +
                          (volumes / "Editor").native() +
                          R"(</string>
			<key>potentially-mountable</key>
			<true/>
			<key>unmapped-content-hint</key>
			<string>48465300-0000-11AA-AA11-00306543ECAC</string>
			<key>volume-kind</key>
			<string>hfs</string>
		</dict>
	</array>
</dict>
</plist>
)");
}

TEST_F(HdiutilAttach, KeepsTimesAndPermissions) {
    makeFile(tree / "locked/file");
    fs::permissions(tree / "locked/file", fs::perms(0440));
    fs::permissions(tree / "locked", fs::perms(0555));
    const fs::path image = imageOfTree(DiskImage::zlib());
    fs::permissions(tree / "locked", fs::perms(0755));
    attached(image);
    EXPECT_EQ(statusOf(volumes / "Editor/locked").st_mode & 07777, 0555U);
    EXPECT_EQ(statusOf(volumes / "Editor/locked/file").st_mode & 07777, 0440U);
    for (const char* item : {"Read Me.txt", "Applications", "Editor.app/Contents"})
        EXPECT_EQ(statusOf(volumes / "Editor" / item).st_mtime, statusOf(tree / item).st_mtime) << item;
    EXPECT_EQ(detach(volumes / "Editor").status, 0);
    expectNothingAttached();
}

TEST_F(HdiutilAttach, LetsNobodyPutAnythingIntoTheVolume) {
    attached(imageOfTree(DiskImage::zlib()));
    EXPECT_EQ(statusOf(volumes / "Editor").st_mode & 0222, 0U);
}

TEST_F(HdiutilAttach, OpensTwoVolumesAndClosesThemTogether) {
    makeFile(folder / "other/Extra.txt", "extra");
    const fs::path image = folder / "two.dmg";
    DiskImage::create(image, {{"Editor", tree}, {"Extras", folder / "other"}});
    EXPECT_THAT(attached(image), ElementsAre((volumes / "Editor").native(), (volumes / "Extras").native()));
    EXPECT_THAT(attached(image, "dev-entry"), ElementsAre("/dev/disk4", "/dev/disk4s1", "/dev/disk4s2"));
    EXPECT_EQ(contentOf(volumes / "Extras/Extra.txt"), "extra");
    EXPECT_EQ(contentsOf(volumes / "Editor"), contentsOf(tree));
    EXPECT_EQ(detach(volumes / "Extras").status, 0);
    expectNothingAttached();
}

TEST_F(HdiutilAttach, GivesASecondVolumeOfOneNameANumber) {
    makeFile(volumes / "Editor/kept");
    const fs::path image = imageOfTree(DiskImage::zlib());
    fs::copy_file(image, folder / "second.dmg");
    EXPECT_THAT(attached(image), ElementsAre((volumes / "Editor 1").native()));
    EXPECT_THAT(attached(folder / "second.dmg"), ElementsAre((volumes / "Editor 2").native()));
    EXPECT_THAT(attached(folder / "second.dmg", "dev-entry"), ElementsAre("/dev/disk5", "/dev/disk5s1"));
    EXPECT_EQ(detach("disk4").status, 0);
    EXPECT_EQ(detach("/dev/disk5s1").status, 0);
    EXPECT_THAT(Files::names(volumes), ElementsAre("Editor"));
    EXPECT_TRUE(fs::exists(volumes / "Editor/kept"));
}

TEST_F(HdiutilAttach, AnswersTheSameForAnImageThatIsAttached) {
    const fs::path image = imageOfTree(DiskImage::zlib());
    makeLink(folder / "link.dmg", image);
    const std::string first = attach(image).stdout;
    EXPECT_EQ(attach(image).stdout, first);
    EXPECT_EQ(attach(folder / "link.dmg").stdout, first);
    EXPECT_EQ(detach(volumes / "Editor").status, 0);
    expectNothingAttached();
    EXPECT_EQ(detach(volumes / "Editor").status, 1);
}

TEST_F(HdiutilAttach, ReadsAnImageThatNobodyMayWriteTo) {
    const fs::path image = imageOfTree(DiskImage::zlib());
    fs::permissions(image, fs::perms(0444));
    EXPECT_THAT(attached(image), ElementsAre((volumes / "Editor").native()));
}

TEST_F(HdiutilAttach, KeepsNamesAsTheyAreWritten) {
    attached(
        imageOf({itemAt(0, u"Icon\r", S_IFREG | 0644, "icon"), itemAt(0, u"U\u0308 \"q\" *?", S_IFREG | 0644, "umlaut"),
                 itemAt(0, u" sp ", S_IFREG | 0644, "spaces"), itemAt(0, u"back\\slash", S_IFREG | 0644, "slash")}));
    EXPECT_THAT(Files::names(volumes / "Volume"), ElementsAre(" sp ", "Icon\r", "U\u0308 \"q\" *?", "back\\slash"));
    EXPECT_EQ(contentOf(volumes / "Volume/Icon\r"), "icon");
}

TEST_F(HdiutilAttach, HidesWhatAMacHides) {
    const std::u16string hidden = std::u16string(4, u'\0') + u"HFS+ Private Data";
    attached(
        imageOf({itemAt(0, hidden, S_IFDIR | 0755), itemAt(0, u".HFS+ Private Directory Data\r", S_IFDIR | 0755),
                 itemAt(0, u"shown", S_IFREG | 0644, "shown"), itemAt(0, u".journal", S_IFREG | 0644, "journal")}));
    EXPECT_THAT(Files::names(volumes / "Volume"), ElementsAre("shown"));
    EXPECT_EQ(contentOf(volumes / "Volume/shown"), "shown");
}

TEST_F(HdiutilAttach, TellsADiskThatIsOneVolume) {
    const fs::path image = folder / "plain.dmg";
    Files::createFile(image, Practice::HFSVolume::bytes("Plain", Practice::HFSVolume::itemsOf(tree)));
    EXPECT_THAT(attached(image, "dev-entry"), ElementsAre("/dev/disk4"));
    EXPECT_EQ(contentsOf(volumes / "Plain"), contentsOf(tree));
}

TEST_F(HdiutilAttach, OpensADiskThatIsNotCompressed) {
    const std::string volume = Practice::HFSVolume::bytes("Plain", Practice::HFSVolume::itemsOf(tree));
    std::string disk;
    for (const auto& stretch : Practice::PartitionTable::around({volume, volume})) disk += stretch.bytes;
    Files::createFile(folder / "disk.img", disk);
    EXPECT_THAT(attached(folder / "disk.img"),
                ElementsAre((volumes / "Plain").native(), (volumes / "Plain 1").native()));
    EXPECT_EQ(contentsOf(volumes / "Plain 1"), contentsOf(tree));
    EXPECT_EQ(detach("disk4").status, 0);
    expectNothingAttached();
}

TEST_F(HdiutilAttach, TellsItsUsage) {
    for (const std::vector<std::string>& words : {std::vector<std::string>{},
                                                  {"attach"},
                                                  {"attach", "-plist"},
                                                  {"attach", "a", "b"},
                                                  {"attach", "a", "-force"},
                                                  {"detach"},
                                                  {"create", "a"}}) {
        const auto result = runStandIn("hdiutil", words);
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.stderr, testing::StartsWith("Usage:"));
        EXPECT_THAT(result.stdout, IsEmpty());
    }
}

TEST_F(HdiutilAttach, IsQuietWhenAsked) {
    const auto result = runStandIn("hdiutil", {"detach", "/Volumes/None", "-quiet"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.stderr, "");
    const auto loud = runStandIn("hdiutil", {"detach", "/Volumes/None"});
    EXPECT_EQ(loud.stderr, "hdiutil: detach failed - No such file or directory\n");
}

TEST_F(HdiutilAttach, RefusesTheMachineThatRuns) {
    const EnvironmentVariable none("TARVIK_ROOT", std::nullopt);
    EXPECT_EQ(attach(imageOfTree(DiskImage::zlib())).status, 1);
    const EnvironmentVariable whole("TARVIK_ROOT", "/");
    EXPECT_EQ(attach(imageOfTree(DiskImage::zlib())).status, 1);
}

}  // namespace
}  // namespace tarvik::test
