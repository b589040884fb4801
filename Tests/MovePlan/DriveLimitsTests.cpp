#include "MovePlan/DriveLimits.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace tarvik::test {

namespace {

constexpr std::int64_t fourGigabytes = 0xFFFFFFFF;

const DriveInfo stick{.name = "Stick",
                      .filesystem = "FAT32",
                      .keepsLinks = false,
                      .keepsPermissions = false,
                      .largestFile = fourGigabytes};

class DriveLimitsTest : public testing::Test {
protected:
    DriveLimitsTest() {
        makeFile(app / "Contents/MacOS/Editor", "program");
        makeFile(app / "Contents/Resources/large", "a larger file");
    }

    const TemporaryFolder folder;
    const fs::path app = folder / "Editor.app";
};

}  // namespace

TEST_F(DriveLimitsTest, KeepOutLinksWhereNoneCanBeMade) {
    EXPECT_EQ(DriveLimits::refusal(app, stick), std::nullopt);
    makeLink(app / "Contents/Current", "MacOS");
    EXPECT_EQ(DriveLimits::refusal(app, stick),
              "Editor.app does not fit on Stick: " + (app / "Contents/Current").native() +
                  " is a symlink, and FAT32 holds none. Choose another drive.");
}

TEST_F(DriveLimitsTest, AreNoneWhereTheSystemTellsOfNone) {
    makeLink(app / "Contents/Current", "MacOS");
    EXPECT_EQ(DriveLimits::refusal(app, DriveInfo{.name = "Disk"}), std::nullopt);
    EXPECT_EQ(DriveLimits::refusal(app, DriveInfo{.name = "Disk", .keepsLinks = true}), std::nullopt);
    EXPECT_TRUE(DriveLimits::warnings(DriveInfo{.name = "Disk"}).empty());
    EXPECT_TRUE(DriveLimits::warnings(DriveInfo{.name = "Disk", .keepsPermissions = true}).empty());
}

TEST_F(DriveLimitsTest, KeepOutFilesThatAreTooLarge) {
    const fs::path film = folder / "Films/long.mov";
    const auto refusal = [&](std::int64_t size) {
        return DriveLimits::refusal(folder / "Films", {std::nullopt, film, size}, stick).value_or("none");
    };
    EXPECT_EQ(refusal(fourGigabytes), "none");
    EXPECT_EQ(refusal(5'000'000'000), "Films does not fit on Stick: " + film.native() +
                                          " has 5 GB, and FAT32 holds no file of more than 4.29 GB. Choose another "
                                          "drive.");
}

TEST_F(DriveLimitsTest, GoByWhatIsInTheItem) {
    const auto needs = DriveLimits::Needs::of(app);
    EXPECT_EQ(needs.link, std::nullopt);
    EXPECT_EQ(needs.largestFile, app / "Contents/Resources/large");
    EXPECT_EQ(needs.largestSize, 13);
    makeLink(folder / "link", "nowhere");
    EXPECT_EQ(DriveLimits::Needs::of(folder / "link").link, folder / "link");
    EXPECT_EQ(DriveLimits::Needs::of(app / "Contents/MacOS/Editor").largestSize, 7);
    EXPECT_EQ(DriveLimits::Needs::of(folder / "gone").largestFile, std::nullopt);
}

TEST_F(DriveLimitsTest, WarnOfPermissionsThatAreLost) {
    EXPECT_THAT(DriveLimits::warnings(stick),
                testing::ElementsAre("Stick (FAT32) keeps no permissions: what was private is open to every user "
                                     "there, and stays so after Move Back."));
}

TEST_F(DriveLimitsTest, KeepOutTwoNamesThatAreOneThere) {
    const DriveInfo disk{.name = "Disk", .foldsNames = true};
    makeFile(app / "Contents/resources", "in another folder");
    makeFile(app / "Contents/MacOS/Resources");
    makeFile(app / "Contents/MacOS/other/EDITOR");
    makeFile(app / "Contents/Caf\u00E9");
    EXPECT_EQ(DriveLimits::refusal(folder / "Editor.app/Contents/MacOS", disk), std::nullopt);
    EXPECT_EQ(DriveLimits::refusal(app, disk),
              "Editor.app does not fit on Disk: " + (app / "Contents/Resources").native() +
                  " and resources would be one item there. Choose another drive.");
    EXPECT_EQ(DriveLimits::refusal(app, DriveInfo{.name = "Disk", .foldsNames = false}), std::nullopt);
    fs::remove(app / "Contents/resources");
    EXPECT_EQ(DriveLimits::refusal(app, disk), std::nullopt);
    makeFile(app / "Contents/CAFE\u0301");
    const auto twins = DriveLimits::Needs::of(app).oneName;
    EXPECT_EQ(twins, std::pair(app / "Contents/CAFE\u0301", app / "Contents/Caf\u00E9"));
}

}  // namespace tarvik::test
