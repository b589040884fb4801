// Backups from a disk that folds names to drives of a Mac.
#include "Backups/BackupPlan.h"
#include "Backups/BackupService.h"
#include "MacMachine.h"
#include "Platform/Files/Files.h"
#include "Support/FailureOf.h"
#include "Support/MacAttributes.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace tarvik::test {

namespace {

using testing::HasSubstr;

class MacBackup : public OnMacVolumes {
protected:
    void SetUp() override {
        OnMacVolumes::SetUp();
        if (!mac) return;
        letters = mac->atHome("Lettres d'\u00E9t\u00E9");
        makeFile(letters / "\u00C9t\u00E9.txt", "sun");
        makeFile(letters / "more/rain.txt", "rain");
    }

    /// Backs up as both fronts do. @returns the folder of the backup.
    fs::path backUp(const std::vector<fs::path>& things, const MacVolume& drive) const {
        const auto plan = BackupPlan::plan(mac->host, things, mac->driveInfo(drive));
        BackupPlan::run(mac->host, plan, {});
        const auto backups = Files::names(drive / "TarvikBackups");
        return drive / "TarvikBackups" / backups.back();
    }

    fs::path letters;
};

}  // namespace

TEST_F(MacBackup, HoldsWhatWasThere) {
    const fs::path backup = backUp({letters}, mac->extended);
    EXPECT_EQ(pictureOf(backup / letters.filename()), pictureOf(letters));
    EXPECT_EQ(BackupService::list(mac->host, mac->extended.path()).size(), 1U);
}

TEST_F(MacBackup, OnExFatHoldsTheContents) {
    const fs::path backup = backUp({letters}, mac->exFat);
    EXPECT_EQ(contentsOf(backup / letters.filename()), contentsOf(letters));
    const auto backups = BackupService::list(mac->host, mac->exFat.path());
    ASSERT_EQ(backups.size(), 1U);
    EXPECT_TRUE(BackupService::unfinished(mac->host, mac->exFat.path()).empty());
}

TEST_F(MacBackup, IsNoneWhereTwoFilesHaveBecomeOne) {
    mac->letDiskTellNamesApart();
    makeFile(letters / "\u00C9T\u00C9.txt", "sol");
    EXPECT_THAT(failureOf([&] { backUp({letters}, mac->extended); }), HasSubstr("would be one item there"));
    EXPECT_FALSE(Files::itemExists(mac->extended / "TarvikBackups"));
    // Where nobody has told that the drive folds names, the copy shows it.
    EXPECT_THAT(failureOf([&] { BackupService::create(mac->host, {letters}, mac->extended.path()); }),
                HasSubstr("Verification failed: "));
    EXPECT_TRUE(BackupService::list(mac->host, mac->extended.path()).empty());
}

TEST_F(MacBackup, HoldsNoEmptyFilesForThoseInTheCloud) {
    setMacFlags(letters / "more/rain.txt", MacFlag::dataless);
    EXPECT_THAT(failureOf([&] { backUp({letters}, mac->extended); }), HasSubstr("more/rain.txt is only in the cloud."));
    EXPECT_FALSE(Files::itemExists(mac->extended / "TarvikBackups"));
}

TEST_F(MacBackup, IsNoneOfWhatPrivacyKeeps) {
    keepPrivate(letters / "more");
    EXPECT_THAT(failureOf([&] { backUp({letters}, mac->extended); }), HasSubstr("can't be backed up as a whole: "));
    keepPrivate(letters / "more", false);
    const fs::path mail = mac->atHome("Library/Mail");
    makeFile(mail / "V10/inbox");
    keepPrivate(mail / "V10");
    EXPECT_THAT(failureOf([&] { backUp({mail}, mac->extended); }), HasSubstr("Mail can't be backed up: macOS keeps "));
}

TEST_F(MacBackup, HoldsWhatIsLocked) {
    setMacFlags(letters / "more/rain.txt", MacFlag::userImmutable);
    denyDelete(letters);
    EXPECT_TRUE(Files::exists(backUp({letters}, mac->extended) / letters.filename() / "more/rain.txt"));
}

TEST_F(MacBackup, IsMadeAndListedByTheCommand) {
    const auto made = mac->run({"backup", "create", letters, "--drive", "Card", "--yes"});
    EXPECT_EQ(made.status, 0) << made.errors;
    const auto listed = mac->run({"backup", "list", "--drive", "Card", "--format", "tsv"});
    EXPECT_EQ(listed.status, 0) << listed.errors;
    EXPECT_THAT(listed.output, HasSubstr("TarvikBackups"));
}

}  // namespace tarvik::test
