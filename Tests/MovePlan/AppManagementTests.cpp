#include "MovePlan/AppManagement.h"
#include "Platform/Files/Files.h"
#include "Support/Bundles.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

namespace tarvik {
namespace {

using testing::Eq;
using testing::IsEmpty;
using testing::Optional;

class AppManagementTest : public testing::Test {
protected:
    fs::path made(const fs::path& name, bool isSigned) const {
        const fs::path bundle = folder / name;
        test::makeBundle(bundle, {{"CFBundleIdentifier", "org.example.app"}});
        if (isSigned) test::makeFile(bundle / "Contents/_CodeSignature/CodeResources");
        return bundle;
    }
    /// The bundles that a change of was tried.
    static std::vector<fs::path> triedIn(const fs::path& item) {
        std::vector<fs::path> bundles;
        for (const auto& trial : AppManagement::tryToChange(item)) {
            EXPECT_EQ(trial.error, 0) << trial.bundle;
            bundles.push_back(trial.bundle);
        }
        return bundles;
    }

    test::TemporaryFolder folder;
};

TEST(AppManagement, IsNamedWhereTheSystemForbidsAChangeThoughPermissionsAllow) {
    EXPECT_THAT(
        AppManagement::refusalAfter({{"/Applications/A.app", 0}, {"/Applications/Editor.app", EPERM}}),
        Optional(Eq("Editor.app can't be moved until Tarvik, or the terminal it runs in, may change applications: "
                    "allow it under System Settings > Privacy & Security > App Management.")));
}

TEST(AppManagement, IsNotJudgedByWhatElseStopsAChange) {
    for (const int error : {0, EACCES, ENOENT, EROFS, ENOTSUP, ELOOP})
        EXPECT_EQ(AppManagement::refusalAfter({{"/Applications/Editor.app", error}}), std::nullopt) << error;
    EXPECT_EQ(AppManagement::refusalAfter({}), std::nullopt);
}

TEST_F(AppManagementTest, IsTriedOnSignedBundlesOnly) {
    const auto bundle = made("Editor.app", true);
    EXPECT_THAT(triedIn(bundle), testing::ElementsAre(bundle));
    EXPECT_THAT(triedIn(made("Plain.app", false)), IsEmpty());
    test::makeFile(folder / "Photos/_CodeSignature");
    EXPECT_THAT(triedIn(folder / "Photos"), IsEmpty());
    EXPECT_THAT(triedIn(folder / "Nothing.app"), IsEmpty());
}

TEST_F(AppManagementTest, IsTriedOnEachBundleInAFolderButNotBehindLinks) {
    const auto mixer = made("Suite/Mixer.app", true);
    const auto player = made("Suite/Tools/Player.app", true);
    const auto outside = made("Outside.app", true);
    test::makeLink(folder / "Suite/Outside.app", outside);
    EXPECT_THAT(triedIn(folder / "Suite"), testing::ElementsAre(mixer, player));
    test::makeLink(folder / "Link.app", outside);
    EXPECT_THAT(triedIn(folder / "Link.app"), IsEmpty());
}

TEST_F(AppManagementTest, IsTriedWithoutATrace) {
    const auto bundle = made("Editor.app", true);
    const auto before = test::pictureOf(bundle);
    const auto modified = Files::modifiedAt(bundle / "Contents/Info.plist");
    AppManagement::tryToChange(bundle);
    EXPECT_EQ(test::pictureOf(bundle), before);
    EXPECT_EQ(Files::modifiedAt(bundle / "Contents/Info.plist"), modified);
}

}  // namespace
}  // namespace tarvik
