#include "Volume/VolumeTest.h"

namespace tarvik::test {

namespace {

class PrivateFolders : public VolumeTest {
protected:
    void SetUp() override {
        VolumeTest::SetUp();
        if (!volume) return;
        makeFile(at("Mail/V10/inbox"), "letters");
        keepPrivate(at("Mail"));
    }
};

class SignedBundles : public VolumeTest {
protected:
    void SetUp() override {
        VolumeTest::SetUp();
        if (!volume) return;
        makeFile(at("Signed.app/Contents/_CodeSignature/CodeResources"));
        makeFile(at("Signed.app/Contents/Info.plist"), "list");
        makeFile(at("Unsigned.app/Contents/Info.plist"), "list");
        volume->set(MacVolume::Habit::guardsSignedBundles, true);
    }
};

}  // namespace

TEST_F(PrivateFolders, AreSeenButNotRead) {
    EXPECT_EQ(statusOf(at("Mail")).st_mode & 07777, 0755U);
    EXPECT_EQ(errorOf(::access(at("Mail").c_str(), R_OK | W_OK | X_OK)), 0) << "permissions would allow it";
    EXPECT_EQ(listing(at("Mail")), EPERM);
    EXPECT_EQ(listing(at("Mail/V10")), EPERM);
    EXPECT_EQ(opening(at("Mail/V10/inbox"), O_RDONLY), EPERM);
    keepPrivate(at("Mail"), false);
    EXPECT_EQ(contentOf(at("Mail/V10/inbox")), "letters");
}

TEST_F(PrivateFolders, AreNotChanged) {
    EXPECT_EQ(addition(at("Mail/V11")), EPERM);
    EXPECT_EQ(opening(at("Mail/new"), O_WRONLY | O_CREAT), EPERM);
    EXPECT_EQ(removal(at("Mail/V10/inbox")), EPERM);
    EXPECT_EQ(renaming(at("Mail/V10"), at("V10")), EPERM);
    EXPECT_EQ(renaming(at("Mail"), at("Post")), EPERM);
    makeFolder(at("Outside"));
    EXPECT_EQ(renaming(at("Outside"), at("Mail/Inside")), EPERM);
}

TEST_F(SignedBundles, AreNotChangedInside) {
    const fs::path contents = at("Signed.app/Contents");
    EXPECT_EQ(contentOf(contents / "Info.plist"), "list");
    EXPECT_EQ(addition(at("Signed.app/new")), EPERM);
    EXPECT_EQ(opening(contents / "new", O_WRONLY | O_CREAT), EPERM);
    EXPECT_EQ(opening(contents / "Info.plist", O_WRONLY), EPERM);
    EXPECT_EQ(errorOf(::truncate((contents / "Info.plist").c_str(), 0)), EPERM);
    EXPECT_EQ(setting(contents / "Info.plist", "user.note", "x"), EPERM);
    EXPECT_EQ(changeOfPermissions(contents), EPERM);
    EXPECT_EQ(renaming(contents / "Info.plist", contents / "Other.plist"), EPERM);
    EXPECT_EQ(removal(contents / "_CodeSignature/CodeResources"), EPERM);
    EXPECT_EQ(renaming(at("Signed.app"), at("Renamed.app")), 0) << "its name belongs to the folder above";
    EXPECT_EQ(removal(at("Renamed.app/Contents/Info.plist")), EPERM);
}

TEST_F(SignedBundles, AreOnlyThoseOfOtherMakers) {
    EXPECT_EQ(addition(at("Unsigned.app/Contents/new")), 0);
    makeFile(at("Mine.app/Contents/_CodeSignature/CodeResources"));
    EXPECT_EQ(addition(at("Mine.app/Contents/new")), 0);
    volume->set(MacVolume::Habit::guardsSignedBundles, false);
    EXPECT_EQ(addition(at("Signed.app/Contents/new")), 0);
}

}  // namespace tarvik::test
