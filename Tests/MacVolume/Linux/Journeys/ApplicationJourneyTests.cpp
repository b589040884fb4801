// An application and its data on their way between volumes of a Mac.
#include "Discovery/SymlinkScanner.h"
#include "MacMachine.h"
#include "Platform/Files/Files.h"
#include "Support/OrdinaryUser.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

namespace tarvik::test {

namespace {

using testing::HasSubstr;

class MacApplication : public WithMacApplications {
protected:
    void SetUp() override {
        WithMacApplications::SetUp();
        if (!mac) return;
        app = mac->at("Applications/Full House.app");
        support = mac->atHome("Library/Application Support/Full House");
        moved = mac->extended / "ExternalTarvik/Apps/Full House.app";
    }

    fs::path app, support, moved;
};

}  // namespace

TEST_F(MacApplication, GoesWithItsDataAndComesBack) {
    const std::string before = pictureOf(app);
    const std::string data = pictureOf(support);
    EXPECT_EQ(mac->moveApp(app, mac->extended), "moved");
    EXPECT_TRUE(leadsTo(app, moved));
    EXPECT_EQ(pictureOf(moved), before);
    EXPECT_TRUE(Files::isSymbolicLink(support));
    EXPECT_EQ(pictureOf(support / "."), data);

    EXPECT_EQ(mac->moveBack(app), "back");
    EXPECT_EQ(pictureOf(app), before);
    EXPECT_EQ(mac->moveBack(support), "back");
    EXPECT_EQ(pictureOf(support), data);
    EXPECT_FALSE(Files::itemExists(moved));
}

TEST_F(MacApplication, ThatIsLockedStaysUntouched) {
    setMacFlags(app / "Contents/Info.plist", MacFlag::userImmutable);
    const std::string before = pictureOf(app);
    EXPECT_THAT(mac->moveApp(app, mac->extended), HasSubstr("Full House.app can't be moved: "));
    EXPECT_EQ(pictureOf(app), before);
    EXPECT_FALSE(Files::itemExists(moved));
}

TEST_F(MacApplication, ThatTheSystemKeepsStaysUntouched) {
    setMacFlags(app, MacFlag::restricted);
    const std::string before = pictureOf(app);
    EXPECT_THAT(mac->moveApp(app, mac->extended), HasSubstr("Full House.app can't be moved: "));
    EXPECT_EQ(pictureOf(app), before);
    EXPECT_FALSE(Files::itemExists(moved));
}

TEST_F(MacApplication, ThatAnInstallerHasPutThereIsToldHowToBeMadeOnesOwn) {
    if (::geteuid() != 0) TARVIK_SKIP_BECAUSE("Only the administrator can make what belongs to the administrator.");
    std::string sentence;
    fs::permissions(mac->at("Applications"), fs::perms::all);  // As the users of a Mac may change that folder.
    {
        const OrdinaryUser user(mac->folder.path());
        sentence = mac->moveApp(app, mac->extended);
    }
    EXPECT_THAT(sentence, HasSubstr("Full House.app can't be moved: "));
    EXPECT_THAT(sentence, HasSubstr("belongs to the administrator"));
    EXPECT_THAT(sentence, HasSubstr("Make it yours with: sudo chown"));
    EXPECT_FALSE(Files::isSymbolicLink(app));
    EXPECT_FALSE(Files::itemExists(moved));
}

TEST_F(MacApplication, WithLinksInItIsRefusedBeforeTheCopyByADriveThatHoldsNone) {
    // A bundle with frameworks has links inside.
    const fs::path framework = app / "Contents/Frameworks/Core.framework";
    makeFile(framework / "Versions/A/Core", "program");
    makeLink(framework / "Versions/Current", "A");
    const std::string before = pictureOf(app);
    EXPECT_NE(mac->moveApp(app, mac->exFat), "moved");
    EXPECT_EQ(pictureOf(app), before);
    EXPECT_TRUE(Files::names(mac->exFat / "ExternalTarvik/Apps").empty());
}

}  // namespace tarvik::test
