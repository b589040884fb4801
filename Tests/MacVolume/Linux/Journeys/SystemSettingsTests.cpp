// What a Mac keeps from programs until the user allows it in the settings is told in their words.
#include "MacMachine.h"
#include "MovePlan/AppManagement.h"
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

class SystemSettings : public WithMacApplications {
protected:
    void SetUp() override {
        WithMacApplications::SetUp();
        if (!mac) return;
        setMacFlags(mac->at("Applications"), 0);
        app = mac->at("Applications/Full House.app");
        makeFile(app / "Contents/_CodeSignature/CodeResources", "seal");
        moved = mac->extended / "ExternalTarvik/Apps/Full House.app";
    }

    fs::path app, moved;
};

}  // namespace

TEST_F(SystemSettings, KeepAnApplicationOfAnotherMakerAsItIs) {
    mac->disk.set(MacVolume::Habit::guardsSignedBundles, true);
    const std::string before = pictureOf(app);
    EXPECT_THAT(mac->moveApp(app, mac->extended), HasSubstr("App Management"));
    EXPECT_EQ(pictureOf(app), before);
    EXPECT_FALSE(Files::isSymbolicLink(app));
    EXPECT_FALSE(Files::itemExists(mac->extended / "ExternalTarvik")) << "nothing was copied, of its data neither";

    mac->disk.set(MacVolume::Habit::guardsSignedBundles, false);
    EXPECT_EQ(mac->moveApp(app, mac->extended), "moved");
    EXPECT_EQ(pictureOf(moved), before);
}

TEST_F(SystemSettings, KeepAnApplicationWhoseListNobodyMayWrite) {
    if (::geteuid() != 0) TARVIK_SKIP_BECAUSE("Only the administrator can give items to another user.");
    constexpr uid_t nobody = 65534;
    for (const auto* name : {"", "Contents", "Contents/Info.plist"})
        ASSERT_EQ(::chown((app / name).c_str(), nobody, nobody), 0);
    fs::permissions(app / "Contents/Info.plist", fs::perms::owner_read);
    mac->disk.set(MacVolume::Habit::guardsSignedBundles, true);
    const OrdinaryUser user(mac->folder.path());
    EXPECT_THAT(AppManagement::refusalOf(app), testing::Optional(HasSubstr("App Management")));
    mac->disk.set(MacVolume::Habit::guardsSignedBundles, false);
    EXPECT_EQ(AppManagement::refusalOf(app), std::nullopt);
}

TEST_F(SystemSettings, KeepAnApplicationOfAnotherMakerOnItsDrive) {
    ASSERT_EQ(mac->moveApp(app, mac->extended), "moved");
    mac->extended.set(MacVolume::Habit::guardsSignedBundles, true);
    const std::string before = pictureOf(moved);
    EXPECT_THAT(mac->moveBack(app), HasSubstr("App Management"));
    EXPECT_TRUE(leadsTo(app, moved));
    EXPECT_EQ(pictureOf(moved), before);
}

TEST_F(SystemSettings, AreNamedOnceWhereTheyKeepFolders) {
    makeFile(mac->atHome("Library/Mail/V10/inbox"));
    EXPECT_EQ(mac->run({"apps"}).errors, "");
    keepPrivate(mac->atHome("Library/Mail"));
    const auto finished = mac->run({"apps", "--format", "tsv"});
    EXPECT_EQ(finished.status, 0);
    EXPECT_THAT(finished.output, HasSubstr("Full House"));
    EXPECT_THAT(finished.errors, HasSubstr("Full Disk Access"));
    EXPECT_EQ(finished.errors.find('\n'), finished.errors.size() - 1) << "one line";
}

}  // namespace tarvik::test
