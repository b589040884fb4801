#include "MovePlan/DriveChoice.h"
#include "Platform/Basics/Failure.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

namespace tarvik {

namespace {

DriveInfo drive(const std::string& name, const fs::path& mountPath) {
    return {.id = mountPath.native(), .name = name, .mountPath = mountPath};
}

const std::vector<DriveInfo> drives = {drive("Disk", "/"),
                                       drive("Backup", "/Volumes/Backup"),
                                       drive("audio", "/Volumes/audio"),
                                       drive("Twin", "/Volumes/Twin"),
                                       drive("Twin", "/Volumes/Twin 1"),
                                       drive("in/out", "/Volumes/in:out")};

std::string sentenceOf(std::string_view wanted, const std::vector<DriveInfo>& list = drives) {
    try {
        DriveChoice::named(list, wanted);
    } catch (const Failure& failure) {
        return failure.description();
    }
    return "found";
}

std::string sentenceOfTarget(const DriveInfo& target) {
    try {
        DriveChoice::requireTarget(target);
    } catch (const Failure& failure) {
        return failure.description();
    }
    return "accepted";
}

}  // namespace

TEST(DriveChoice, FindsADriveByItsName) {
    EXPECT_EQ(DriveChoice::named(drives, "audio").mountPath, "/Volumes/audio");
    EXPECT_EQ(DriveChoice::named(drives, "in/out").mountPath, "/Volumes/in:out");
}

TEST(DriveChoice, FindsANameInEitherNormalForm) {
    const std::vector<DriveInfo> list = {drive("Cafe\u0301", "/Volumes/Cafe\u0301"), drive("caf\u00E9", "/Volumes/1")};
    EXPECT_EQ(DriveChoice::named(list, "Caf\u00E9").mountPath, "/Volumes/Cafe\u0301");
    EXPECT_EQ(DriveChoice::named(list, "cafe\u0301").mountPath, "/Volumes/1");
}

TEST(DriveChoice, FindsAMountPathByWhatStandsThere) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const test::TemporaryFolder folder;
    test::makeFolder(folder / "Volumes/Studio");
    const auto view = test::RealVolume::viewOf(folder / "Volumes", folder.path());
    if (!view) TARVIK_SKIP_BECAUSE("This system shows no folder twice.");
    const std::vector<DriveInfo> list = {drive("Studio Drive", folder / "Volumes/Studio")};
    EXPECT_EQ(DriveChoice::named(list, (*view / "Studio").native()).name, "Studio Drive");
    EXPECT_NE(sentenceOf((*view / "Other").native(), list), "found");
}

TEST(DriveChoice, FindsADriveByItsMountPathHoweverItIsSpelled) {
    for (const auto* path : {"/Volumes/Backup", "/Volumes/Backup/", "//Volumes/./Backup", "/Volumes/audio/../Backup"})
        EXPECT_EQ(DriveChoice::named(drives, path).name, "Backup") << path;
    EXPECT_EQ(DriveChoice::named(drives, "/").name, "Disk");
}

TEST(DriveChoice, FollowsALinkToAMountPath) {
    const test::TemporaryFolder folder;
    test::makeFolder(folder / "Volumes/T");
    test::makeLink(folder / "link", folder / "Volumes/T");
    EXPECT_EQ(DriveChoice::named({drive("T", folder / "Volumes/T")}, (folder / "link").native()).name, "T");
}

TEST(DriveChoice, ListsTheDrivesWhenNoneFits) {
    EXPECT_EQ(sentenceOf("Nope", {drives[0], drives[1]}),
              "There is no drive \"Nope\". There is: Disk (/), Backup (/Volumes/Backup).");
    EXPECT_EQ(sentenceOf("Nope", {}), "There is no drive \"Nope\": no drives are mounted.");
    EXPECT_NE(sentenceOf("backup"), "found");
    EXPECT_NE(sentenceOf("/Volumes/Nope"), "found");
}

TEST(DriveChoice, ShowsBothMountPathsOfTwoDrivesOfOneName) {
    EXPECT_EQ(sentenceOf("Twin"),
              "More than one drive is called \"Twin\": Twin (/Volumes/Twin), Twin (/Volumes/Twin 1). Name one by its "
              "mount path.");
    EXPECT_EQ(DriveChoice::named(drives, "/Volumes/Twin 1").mountPath, "/Volumes/Twin 1");
}

TEST(DriveChoice, TellsAPlaceOnADriveFromTheDrive) {
    EXPECT_EQ(sentenceOf("/Volumes/Backup/Photos"),
              "\"/Volumes/Backup/Photos\" is a place on the drive Backup, not the drive itself. Its mount path is "
              "/Volumes/Backup.");
    EXPECT_EQ(
        sentenceOf("/Volumes/Twin 1/x"),
        "\"/Volumes/Twin 1/x\" is a place on the drive Twin, not the drive itself. Its mount path is /Volumes/Twin 1.");
}

TEST(DriveChoice, TakesOnlyADriveThatCanBeWrittenAndDoesNotStartTheSystem) {
    auto readOnly = drive("Image", "/Volumes/Image");
    readOnly.isWritable = false;
    auto second = drive("Second", "/Volumes/Second");
    second.isInternal = true;
    EXPECT_EQ(sentenceOfTarget(readOnly), "Image is read-only. Choose another drive.");
    EXPECT_EQ(sentenceOfTarget(drives[0]), "Disk is the disk that the system starts from. Choose another drive.");
    EXPECT_EQ(sentenceOfTarget(second), "accepted");
    EXPECT_FALSE(DriveChoice::canBeTarget(readOnly));
    EXPECT_FALSE(DriveChoice::canBeTarget(drives[0]));
    EXPECT_TRUE(DriveChoice::canBeTarget(second));
}

}  // namespace tarvik
