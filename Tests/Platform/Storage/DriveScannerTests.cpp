#include "Platform/Machine/VolumeList.h"
#include "Platform/Storage/DriveScanner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MadeVolumes final : public VolumeList {
public:
    explicit MadeVolumes(std::vector<Volume> volumes) : m_volumes(std::move(volumes)) {}
    std::vector<Volume> mounted() const override { return m_volumes; }
    std::optional<std::int64_t> availableBytes(const fs::path&) const override { return std::nullopt; }

private:
    std::vector<Volume> m_volumes;
};

Volume volume(const fs::path& mountPath, std::optional<std::string> name, std::optional<bool> isInternal) {
    return {.mountPath = mountPath,
            .name = std::move(name),
            .totalBytes = 1000,
            .availableBytes = 400,
            .isInternal = isInternal,
            .isBrowsable = true,
            .isReadOnly = false,
            .formatDescription = "APFS"};
}

std::vector<DriveInfo> scanned(std::vector<Volume> volumes) {
    Host host;
    host.volumes = std::make_shared<MadeVolumes>(std::move(volumes));
    return DriveScanner::scan(host);
}

std::vector<std::string> namesOf(const std::vector<DriveInfo>& drives) {
    std::vector<std::string> names;
    for (const DriveInfo& drive : drives) names.push_back(drive.name);
    return names;
}

TEST(DriveScanner, GivesEveryFigureOfAVolume) {
    const auto drives = scanned({volume("/Volumes/Backup", "Backup", false)});
    ASSERT_EQ(drives.size(), 1U);
    EXPECT_EQ(drives[0].id, "/Volumes/Backup");
    EXPECT_EQ(drives[0].name, "Backup");
    EXPECT_EQ(drives[0].mountPath, "/Volumes/Backup");
    EXPECT_EQ(drives[0].totalBytes, 1000);
    EXPECT_EQ(drives[0].freeBytes, 400);
    EXPECT_EQ(drives[0].usedBytes(), 600);
    EXPECT_FALSE(drives[0].isInternal);
    EXPECT_TRUE(drives[0].isWritable);
    EXPECT_EQ(drives[0].filesystem, "APFS");
}

TEST(DriveScanner, TellsWhatAFormatUsuallyHolds) {
    auto card = volume("/Volumes/Card", "Card", false);
    card.formatDescription = "FAT32";
    auto unknown = volume("/Volumes/Share", "Share", false);
    unknown.formatDescription = "SMB";
    const auto drives = scanned({card, unknown});
    EXPECT_EQ(drives[0].keepsLinks, false);
    EXPECT_EQ(drives[0].keepsPermissions, false);
    EXPECT_EQ(drives[0].foldsNames, true);
    EXPECT_EQ(drives[0].largestFile, 0xFFFFFFFF);
    EXPECT_EQ(drives[1].keepsLinks, std::nullopt);
    EXPECT_EQ(drives[1].keepsPermissions, std::nullopt);
    EXPECT_EQ(drives[1].foldsNames, std::nullopt);
    EXPECT_EQ(drives[1].largestFile, std::nullopt);
}

TEST(DriveScanner, BelievesTheSystemMoreThanTheFormat) {
    auto card = volume("/Volumes/Card", "Card", false);
    card.formatDescription = "FAT32";
    card.keepsLinks = true;
    card.keepsPermissions = true;
    card.foldsNames = false;
    card.largestFile = 12;
    const auto drives = scanned({card});
    EXPECT_EQ(drives[0].keepsLinks, true);
    EXPECT_EQ(drives[0].keepsPermissions, true);
    EXPECT_EQ(drives[0].foldsNames, false);
    EXPECT_EQ(drives[0].largestFile, 12);
}

TEST(DriveScanner, GivesNothingWhenTheSystemHasNoList) {
    EXPECT_THAT(scanned({}), IsEmpty());
}

TEST(DriveScanner, ListsOnlyInternalVolumesWhenNothingElseIsMounted) {
    const auto drives = scanned({volume("/", "Disk", true), volume("/Volumes/Data", "Data", true)});
    EXPECT_THAT(namesOf(drives), ElementsAre("Data", "Disk"));
    for (const DriveInfo& drive : drives) EXPECT_TRUE(drive.isInternal) << drive.name;
}

TEST(DriveScanner, PutsInternalVolumesFirstAndThenSortsByPlainBytes) {
    const auto drives = scanned({volume("/Volumes/audio", "audio", false), volume("/Volumes/Backup", "Backup", false),
                                 volume("/", "zebra", true)});
    EXPECT_THAT(namesOf(drives), ElementsAre("zebra", "Backup", "audio"));
}

TEST(DriveScanner, KeepsTheSystemsOrderOfVolumesWithOneName) {
    std::vector<Volume> volumes;
    std::vector<fs::path> expected;
    for (int number = 99; number > 0; --number) {
        expected.push_back("/Volumes/Same " + std::to_string(number));
        volumes.push_back(volume(expected.back(), "Same", false));
    }
    std::vector<fs::path> found;
    for (const DriveInfo& drive : scanned(volumes)) found.push_back(drive.mountPath);
    EXPECT_EQ(found, expected);
}

TEST(DriveScanner, NamesAVolumeWithoutANameAfterItsMountPath) {
    EXPECT_THAT(namesOf(scanned({volume("/Volumes/Untitled 2", std::nullopt, false)})), ElementsAre("Untitled 2"));
    EXPECT_THAT(namesOf(scanned({volume("/Volumes/Empty", "", false)})), ElementsAre("Empty"));
    EXPECT_THAT(namesOf(scanned({volume("/", std::nullopt, true)})), ElementsAre("/"));
}

TEST(DriveScanner, LeavesOutWhatIsNotBrowsableOrNotKnownToBe) {
    Volume hidden = volume("/System/Volumes/VM", "VM", true);
    hidden.isBrowsable = false;
    Volume unknown = volume("/Volumes/Unknown", "Unknown", true);
    unknown.isBrowsable = std::nullopt;
    EXPECT_THAT(scanned({hidden, unknown}), IsEmpty());
}

TEST(DriveScanner, ListsAReadOnlyVolumeAsNotWritable) {
    Volume image = volume("/Volumes/Installer", "Installer", false);
    image.isReadOnly = true;
    const auto drives = scanned({image});
    ASSERT_EQ(drives.size(), 1U);
    EXPECT_FALSE(drives[0].isWritable);
}

TEST(DriveScanner, TakesWhatTheSystemDoesNotTellAsEmptyExternalAndWritable) {
    Volume mute;
    mute.mountPath = "/Volumes/Mute";
    mute.isBrowsable = true;
    const auto drives = scanned({mute});
    ASSERT_EQ(drives.size(), 1U);
    EXPECT_EQ(drives[0].name, "Mute");
    EXPECT_FALSE(drives[0].isInternal);
    EXPECT_TRUE(drives[0].isWritable);
    EXPECT_EQ(drives[0].totalBytes, 0);
    EXPECT_EQ(drives[0].freeBytes, 0);
    EXPECT_FALSE(drives[0].filesystem.has_value());
}

TEST(DriveScanner, CallsOnlyTheRootTheBootVolume) {
    const auto drives = scanned({volume("/", "Disk", true), volume("/System/Volumes/Data", "Data", true)});
    ASSERT_EQ(drives.size(), 2U);
    EXPECT_EQ(drives[0].name, "Data");
    EXPECT_FALSE(drives[0].isBoot());
    EXPECT_TRUE(drives[0].isInternal);
    EXPECT_TRUE(drives[1].isBoot());
}

}  // namespace
}  // namespace tarvik
