// Folders on their way from a disk that folds names to drives of a Mac, and back.
#include "MacMachine.h"
#include "Move/MoverEngine.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Storage/DriveScanner.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarvik::test {

namespace {

using testing::HasSubstr;

class FolderJourney : public OnMacVolumes {
protected:
    void SetUp() override {
        OnMacVolumes::SetUp();
        if (!mac) return;
        music = mac->atHome("Musique d'\u00E9t\u00E9");
        makeFileOfSize(music / "Ballade n\u00BA 1.wav", 300'000);
        makeFile(music / "Pr\u00E9lude/\u00C9tude.txt", "la");
        makeFolder(music / "empty");
        makeOld(music);
        moved = mac->extended / "ExternalTarvik/Folders" / music.filename();
    }

    fs::path music, moved;
};

}  // namespace

TEST_F(FolderJourney, LeadsToADriveThatFoldsNamesAndBack) {
    makeLink(music / "latest", "Pr\u00E9lude/\u00C9tude.txt");
    const std::string before = pictureOf(music);
    const std::string besides = pictureOf(mac->machine.home / "Documents");
    EXPECT_EQ(mac->moveFolder(music, mac->extended), "moved");
    EXPECT_TRUE(leadsTo(music, moved));
    EXPECT_EQ(pictureOf(moved), before);
    EXPECT_EQ(pictureOf(music / "."), before);

    EXPECT_EQ(mac->moveBack(music), "back");
    EXPECT_FALSE(Files::isSymbolicLink(music));
    EXPECT_EQ(pictureOf(music), before);
    EXPECT_FALSE(Files::itemExists(moved));
    EXPECT_EQ(pictureOf(mac->machine.home / "Documents"), besides);
}

TEST_F(FolderJourney, LeadsToExFatAndBack) {
    const std::string before = contentsOf(music);
    EXPECT_EQ(mac->moveFolder(music, mac->exFat), "moved");
    const fs::path onCard = mac->exFat / "ExternalTarvik/Folders" / music.filename();
    EXPECT_TRUE(leadsTo(music, onCard));
    EXPECT_EQ(contentsOf(onCard), before);
    EXPECT_EQ(mac->moveBack(music), "back");
    EXPECT_EQ(contentsOf(music), before);
    EXPECT_FALSE(Files::itemExists(onCard));
}

TEST_F(FolderJourney, IsBegunHoweverThePathIsWritten) {
    const std::string before = pictureOf(music);
    const fs::path typed = mac->atHome("MUSIQUE d'e\u0301te\u0301");
    EXPECT_EQ(mac->moveFolder(typed, mac->extended), "moved");
    EXPECT_TRUE(Files::isSymbolicLink(music));
    EXPECT_EQ(mac->moveBack(mac->atHome("musique D'\u00C9T\u00C9")), "back");
    EXPECT_EQ(pictureOf(music), before);
}

TEST_F(FolderJourney, ReplacesNothingOfTheSameNameOnTheDrive) {
    const fs::path taken = mac->extended / "ExternalTarvik/Folders/MUSIQUE D'e\u0301te\u0301";
    makeFile(taken / "other", "someone else's");
    const std::string before = pictureOf(music);
    EXPECT_EQ(mac->moveFolder(music, mac->extended), "Destination already exists.");
    EXPECT_EQ(contentOf(taken / "other"), "someone else's");
    EXPECT_EQ(Files::names(taken).size(), 1U);
    EXPECT_EQ(pictureOf(music), before);
}

TEST_F(FolderJourney, EndsBeforeItBeginsAtTwoNamesThatAreOneOnTheDrive) {
    mac->letDiskTellNamesApart();
    makeFile(music / "ballade N\u00BA 1.WAV", "another one");
    const std::string before = pictureOf(music);
    EXPECT_THAT(mac->moveFolder(music, mac->extended), HasSubstr("would be one item there"));
    EXPECT_EQ(pictureOf(music), before);
    EXPECT_FALSE(Files::itemExists(moved.parent_path())) << "nothing was copied";
}

TEST_F(FolderJourney, LosesNothingWhereTheDriveFoldsNamesAndNobodyTellsThat) {
    mac->letDiskTellNamesApart();
    makeFile(music / "PRE\u0301LUDE/\u00C9TUDE.txt", "la");
    makeOld(music);
    const std::string before = pictureOf(music);
    EXPECT_THROW(MoverEngine::moveAndLink(mac->host, music, moved.parent_path(), false, {}, {}), Failure);
    EXPECT_EQ(pictureOf(music), before);
    EXPECT_FALSE(Files::itemExists(moved));
}

TEST_F(FolderJourney, EndsBeforeItBeginsAtALockedFile) {
    for (const auto flag : {MacFlag::userImmutable, MacFlag::systemAppend, MacFlag::restricted}) {
        setMacFlags(music / "Pr\u00E9lude/\u00C9tude.txt", flag);
        const std::string before = pictureOf(music);
        EXPECT_THAT(mac->moveFolder(music, mac->extended), HasSubstr("can't be moved: "));
        EXPECT_EQ(pictureOf(music), before);
        EXPECT_FALSE(Files::itemExists(moved.parent_path())) << "nothing was copied";
    }
}

TEST_F(FolderJourney, EndsBeforeItBeginsWherePrivacyKeepsIt) {
    for (const fs::path& folder : {music / "Pr\u00E9lude", music}) {
        keepPrivate(folder);
        EXPECT_THAT(mac->moveFolder(music, mac->extended), HasSubstr("can't be read"));
        EXPECT_FALSE(Files::itemExists(moved.parent_path()));
        keepPrivate(folder, false);
    }
    EXPECT_EQ(mac->moveFolder(music, mac->extended), "moved");
}

TEST_F(FolderJourney, IsNotHeldUpByADriveThatTellsOfNoRoom) {
    mac->extended.set(MacVolume::Habit::hasNoRoom, true);
    // The engine takes no room at all for an unknown one.
    MoverEngine::moveAndLink(mac->host, music, moved.parent_path(), false, {}, {});
    EXPECT_TRUE(leadsTo(music, moved));
}

TEST_F(FolderJourney, IsNotHeldUpByADriveThatTellsOneOfTwoCapacities) {
    mac->extended.set(MacVolume::Habit::tellsOneCapacity, true);
    EXPECT_EQ(mac->moveFolder(music, mac->extended), "moved");
    EXPECT_EQ(mac->moveBack(music), "back");
    const auto away = mac->run({"move", "folder", music, "--drive", "Extended", "--yes"});
    EXPECT_EQ(away.status, 0) << away.errors;
    EXPECT_TRUE(leadsTo(music, moved));
}

TEST_F(FolderJourney, EndsBeforeItBeginsWhereBothCapacitiesAreUsedUp) {
    mac->extended.set(MacVolume::Habit::hasNoRoom, true);
    const auto away = mac->run({"move", "folder", music, "--drive", "Extended", "--yes"});
    EXPECT_EQ(away.status, 1);
    EXPECT_THAT(away.errors, HasSubstr("Extended has Zero KB"));
    EXPECT_FALSE(Files::isSymbolicLink(music));
}

TEST_F(FolderJourney, FromAVolumeThatExchangesNoNamesTakesMoreSteps) {
    const fs::path photos = mac->extended / "Photos";
    makeFile(photos / "lake.raw", "water");
    const auto away = mac->run({"move", "folder", photos, "--drive", "Studio Drive", "--yes"});
    EXPECT_EQ(away.status, 0) << away.errors;
    EXPECT_TRUE(leadsTo(photos, mac->at("Volumes/Studio Drive/ExternalTarvik/Folders/Photos")));
    EXPECT_EQ(mac->moveBack(photos), "back");
    EXPECT_EQ(Files::names(mac->extended.path()), std::vector<std::string>{"Photos"});
    EXPECT_EQ(contentOf(photos / "lake.raw"), "water");
}

TEST_F(FolderJourney, FromExFatEndsWithTheFolderAsItWas) {
    const fs::path photos = mac->exFat / "Photos";
    makeFile(photos / "lake.raw", "water");
    EXPECT_EQ(mac->moveFolder(photos, mac->extended),
              "Photos can't be moved: a symlink would have to take its place, and Card holds none (exFAT).");
    EXPECT_EQ(contentOf(photos / "lake.raw"), "water");
    EXPECT_EQ(Files::names(mac->exFat.path()), std::vector<std::string>{"Photos"});
    EXPECT_FALSE(Files::itemExists(mac->extended / "ExternalTarvik/Folders/Photos"));
}

TEST_F(FolderJourney, ByTheCommandTakesNamesAsTheyAreTyped) {
    const std::string before = pictureOf(music);
    const std::string typed = mac->atHome("musique d'e\u0301te\u0301");
    const auto away = mac->run({"move", "folder", typed, "--drive", "Extended", "--yes"});
    EXPECT_EQ(away.status, 0) << away.errors;
    EXPECT_EQ(pictureOf(moved), before);
    const auto links = mac->run({"links", "--format", "tsv"});
    EXPECT_THAT(links.output, HasSubstr(moved.parent_path().native()));
    const auto back = mac->run({"move", "restore", mac->atHome("Musique d'\u00E9t\u00E9"), "--yes"});
    EXPECT_EQ(back.status, 0) << back.errors;
    EXPECT_EQ(pictureOf(music), before);
}

}  // namespace tarvik::test
