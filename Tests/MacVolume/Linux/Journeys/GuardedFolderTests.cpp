// What a Mac guards by other means than permissions is told before anything is copied.
#include "MacMachine.h"
#include "Platform/Files/Files.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace tarvik::test {

namespace {

using testing::HasSubstr;

class GuardedFolder : public OnMacVolumes {
protected:
    void SetUp() override {
        OnMacVolumes::SetUp();
        if (!mac) return;
        films = mac->atHome("Films");
        makeFile(films / "Holiday/lake.mov", "water");
    }

    /// Expects that the move is refused in a sentence that names `place`, before anything is copied.
    void expectRefusalBy(const fs::path& place) const {
        EXPECT_THAT(mac->moveFolder(films, mac->extended), HasSubstr("can't be moved"));
        EXPECT_THAT(mac->moveFolder(films, mac->extended), HasSubstr(place.native()));
        EXPECT_FALSE(Files::isSymbolicLink(films));
        EXPECT_FALSE(Files::itemExists(mac->extended / "ExternalTarvik/Folders"));
    }

    fs::path films;
};

}  // namespace

TEST_F(GuardedFolder, ThatNobodyMayDeleteIsToldOf) {
    denyDelete(films);
    expectRefusalBy(films);
    EXPECT_THAT(mac->moveFolder(films, mac->extended), HasSubstr("chmod -a \"everyone deny delete\" "));
    denyDelete(films, false);
    EXPECT_EQ(mac->moveFolder(films, mac->extended), "moved");
}

TEST_F(GuardedFolder, WithSomethingInItThatNobodyMayDeleteIsToldOf) {
    denyDelete(films / "Holiday/lake.mov");
    expectRefusalBy(films / "Holiday/lake.mov");
    denyDelete(films / "Holiday/lake.mov", false);
    denyDeleteInside(films / "Holiday");
    expectRefusalBy(films / "Holiday");
}

TEST_F(GuardedFolder, OutOfWhichNothingMayBeTakenIsToldOf) {
    denyDeleteInside(mac->machine.home);
    EXPECT_THAT(mac->moveFolder(films, mac->extended),
                HasSubstr("chmod -a \"everyone deny delete_child\" " + mac->machine.home.native()));
    denyDelete(films);
    EXPECT_THAT(mac->moveFolder(films, mac->extended), HasSubstr("See which of its entries does with: ls -led "));
    EXPECT_FALSE(Files::itemExists(mac->extended / "ExternalTarvik/Folders"));
    EXPECT_EQ(contentOf(films / "Holiday/lake.mov"), "water");
}

TEST_F(GuardedFolder, WithAFileThatIsOnlyInTheCloudIsToldOf) {
    setMacFlags(films / "Holiday/lake.mov", MacFlag::dataless);
    expectRefusalBy(films / "Holiday/lake.mov");
    EXPECT_THAT(mac->moveFolder(films, mac->extended), HasSubstr("cloud"));
}

TEST_F(GuardedFolder, WithWhatTheCopyToolLeavesOutIsToldOf) {
    for (const auto* name : {".nfs0001", ".afpDeleted0001"}) {
        makeFile(films / name);
        expectRefusalBy(films / name);
        fs::remove(films / name);
    }
    makePipe(films / "pipe");
    expectRefusalBy(films / "pipe");
}

TEST_F(GuardedFolder, InAFolderThatOnlyKeepsItsOwnNameMoves) {
    setMacFlags(mac->machine.home, MacFlag::noUnlink);
    EXPECT_EQ(mac->moveFolder(films, mac->extended), "moved");
    EXPECT_EQ(mac->moveBack(films), "back");
    EXPECT_EQ(contentOf(films / "Holiday/lake.mov"), "water");
}

TEST_F(GuardedFolder, OnADriveComesNotBackWhenItCannotLeaveIt) {
    EXPECT_EQ(mac->moveFolder(films, mac->extended), "moved");
    const fs::path moved = mac->extended / "ExternalTarvik/Folders/Films";
    denyDelete(moved / "Holiday");
    EXPECT_NE(mac->moveBack(films), "back");
    EXPECT_TRUE(leadsTo(films, moved));
    EXPECT_EQ(contentOf(moved / "Holiday/lake.mov"), "water");
    EXPECT_EQ(contentOf(films / "Holiday/lake.mov"), "water");
}

}  // namespace tarvik::test
