#include "State/EventLoop.h"
#include "State/StateWorld.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>

namespace tarvik::test {

namespace {

using AppStateDrives = StateWorld;

std::vector<std::string> namesOf(const std::vector<DriveInfo>& drives) {
    std::vector<std::string> names;
    for (const DriveInfo& drive : drives) names.push_back(drive.name);
    return names;
}

}  // namespace

TEST_F(AppStateDrives, StartWithNothing) {
    EXPECT_TRUE(state->drives().empty());
    EXPECT_FALSE(state->selectedDrive());
    EXPECT_FALSE(state->isScanningDrives());
    EXPECT_EQ(state->lastError(), "");
    EXPECT_EQ(state->lastInfo(), "");
    EXPECT_EQ(state->appsTargetFolderName, "ExternalTarvik/Apps");
    EXPECT_EQ(state->dataTargetFolderName, "ExternalTarvik/Data");
    EXPECT_EQ(state->foldersTargetFolderName, "ExternalTarvik/Folders");
}

TEST_F(AppStateDrives, AreListedByARefreshThatSelectsTheFirstExternalWritableOne) {
    volumes->set({backup(), volume("/Volumes/audio", "audio", false), volume("/", "Disk", true),
                  volume("/Volumes/Image", "A disk image", false, true)});
    state->refreshAll();
    EXPECT_TRUE(state->isScanningDrives());
    settle();
    EXPECT_FALSE(state->isScanningDrives());
    EXPECT_EQ(namesOf(state->drives()), (std::vector<std::string>{"Disk", "A disk image", "Backup", "audio"}));
    EXPECT_EQ(state->selectedDriveName(), "Backup");
}

TEST_F(AppStateDrives, WithoutAnExternalOneLeaveNothingSelected) {
    volumes->set({volume("/", "Disk", true), volume("/System/Volumes/Data", "Data", true)});
    begin();
    EXPECT_FALSE(state->selectedDrive());
    EXPECT_EQ(state->selectedDriveId(), "");
    EXPECT_EQ(state->drives().size(), 2U);
}

TEST_F(AppStateDrives, ThatAreReadOnlyAreListedButNeverADefault) {
    volumes->set({volume("/Volumes/Image", "Image", false, true)});
    begin();
    ASSERT_EQ(state->drives().size(), 1U);
    EXPECT_FALSE(state->drives()[0].isWritable);
    EXPECT_FALSE(state->selectedDrive());
}

TEST_F(AppStateDrives, AreTargetsWhenWritableAndNotTheBootVolume) {
    volumes->set({volume("/", "Disk", true), volume("/Volumes/Second", "Second", true),
                  volume("/Volumes/Image", "Image", false, true), backup()});
    begin();
    EXPECT_EQ(namesOf(state->targetDrives()), (std::vector<std::string>{"Second", "Backup"}));
}

TEST_F(AppStateDrives, KeepARecordOfTheSelectedOneAfterItWasUnplugged) {
    begin();
    const auto before = state->selectedDrive();
    volumes->set({volume("/", "Disk", true), volume("/Volumes/Other", "Other", false)});
    begin();
    EXPECT_EQ(state->selectedDrive(), before);
    EXPECT_EQ(namesOf(state->drives()), (std::vector<std::string>{"Disk", "Other"}));
}

TEST_F(AppStateDrives, BringTheSelectedOneUpToDate) {
    begin();
    volumes->set({backup(12'000'000'000)});
    begin();
    EXPECT_EQ(state->selectedDriveFree(), "12 GB");
}

TEST_F(AppStateDrives, CanBeSelectedByTheirId) {
    volumes->set({volume("/Volumes/audio", "audio", false), backup()});
    begin();
    state->selectDrive("/Volumes/audio");
    EXPECT_EQ(state->selectedDriveName(), "audio");
    begin();
    EXPECT_EQ(state->selectedDriveName(), "audio");
    state->selectDrive("/Volumes/nowhere");
    EXPECT_EQ(state->selectedDriveName(), "audio");
}

TEST_F(AppStateDrives, AreToldApartWhereTheyLookTheSame) {
    volumes->set({volume("/Volumes/M\xFC", "one", false), volume("/Volumes/M\xFD", "two", false),
                  volume("/Volumes/M\uFFFD", "three", false)});
    begin();
    auto& model = *state->targetDrivesModel();
    for (int row = 0; row < 3; ++row) {
        const auto value = [&](const char* role) {
            return model.data(model.index(row, 0), model.roleNames().key(role)).toString();
        };
        state->selectDrive(value("driveId"));
        EXPECT_EQ(state->selectedDriveName(), value("name"));
        EXPECT_EQ(state->selectedDriveId(), value("driveId"));
    }
}

TEST_F(AppStateDrives, AreNotRefreshedWhileApplicationsAreScanned) {
    appsTab().refreshApps();
    state->refreshAll();
    EXPECT_FALSE(state->isScanningDrives());
    settle();
    EXPECT_EQ(volumes->askedCount(), 0);
    spinOnce();
    EXPECT_EQ(volumes->askedCount(), 0) << "a dropped refresh is not made up for";
    begin();
    EXPECT_EQ(volumes->askedCount(), 1);
}

TEST_F(AppStateDrives, AreRefreshedOnTheirOwnEvenWhileApplicationsAreScanned) {
    appsTab().refreshApps();
    state->refreshDrives();
    settle();
    EXPECT_EQ(state->drives().size(), 1U);
}

TEST_F(AppStateDrives, AreLookedAtOnceMoreWhenSomebodyAsksDuringAScan) {
    volumes->hold();
    state->refreshDrives();
    spinUntil([this] { return volumes->askedCount() == 1; });
    state->refreshDrives();
    state->refreshDrives();
    volumes->release();
    settle();
    EXPECT_EQ(volumes->askedCount(), 2);
    EXPECT_FALSE(state->isScanningDrives());
}

TEST_F(AppStateDrives, CanBeLookedAtAgainAfterALookThatBrokeDown) {
    volumes->breakDown();
    begin();
    EXPECT_FALSE(state->isScanningDrives());
    EXPECT_NE(state->lastError(), "");
    EXPECT_FALSE(state->hasTargetDrives());
    volumes->set({backup()});
    begin();
    EXPECT_EQ(state->drives().size(), 1U);
    EXPECT_TRUE(state->hasTargetDrives());
}

TEST_F(AppStateDrives, TellWhatIsFreeOnTheBootVolume) {
    begin();
    EXPECT_EQ(state->bootFree(), "1,099.51 GB") << "where no volume is at /, the one with the home";
    Volume boot = volume("/", "Disk", true);
    boot.availableBytes = 80'000'000'000;
    volumes->set({boot});
    begin();
    EXPECT_EQ(state->bootFree(), "80 GB");
}

TEST_F(AppStateDrives, AreWaitedForByTheDestructor) {
    volumes->hold();
    state->refreshAll();
    spinUntil([this] { return volumes->askedCount() == 1; });
    volumes->release();
    state.reset();
}

TEST_F(AppStateDrives, AreShownToTheViewsInRoles) {
    volumes->set({volume("/Volumes/audio", "audio", false)});
    begin();
    auto& model = *state->targetDrivesModel();
    const auto value = [&](const char* role) { return model.data(model.index(0, 0), model.roleNames().key(role)); };
    EXPECT_EQ(value("driveId"), "/Volumes/audio");
    EXPECT_EQ(value("name"), "audio");
    EXPECT_EQ(value("freeText"), "1 KB");
    EXPECT_EQ(value("totalText"), "1 KB");
    EXPECT_EQ(value("usedFraction"), 0.75);
    EXPECT_EQ(value("isInternal"), false);
    EXPECT_EQ(value("isWritable"), true);
    EXPECT_EQ(value("filesystem"), "");
}

}  // namespace tarvik::test
