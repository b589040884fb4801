#include "Launchers/LauncherShimCleaner.h"
#include "Platform/Files/Files.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {

namespace {

using test::makeLauncher;
using testing::ElementsAre;
using testing::IsEmpty;

class LauncherShimCleanerTest : public testing::Test {
protected:
    std::vector<fs::path> cleaned(const fs::path& path) const {
        return LauncherShimCleaner::cleanupShims(world.host, path);
    }

    test::World world;
    fs::path applications = world.folder / "Applications";
    fs::path own = world.home / "Applications";
    fs::path target = world.drive / "Apps/Editor.app";
};

}  // namespace

TEST_F(LauncherShimCleanerTest, RemovesWhateverOpensTheTarget) {
    makeLauncher(applications / "Editor.app", target);
    makeLauncher(applications / "Another Name.app", world.drive / "x/.." / "Apps//Editor.app/");
    makeLauncher(own / "Own.app", target);
    makeLauncher(applications / "Other.app", world.drive / "Apps/Other.app");
    EXPECT_THAT(cleaned(target),
                ElementsAre(applications / "Another Name.app", applications / "Editor.app", own / "Own.app"));
    EXPECT_THAT(Files::names(applications), ElementsAre("Other.app"));
    EXPECT_THAT(Files::names(own), IsEmpty());
    EXPECT_TRUE(Files::exists(world.trash->folder / "Another Name.app"));
}

TEST_F(LauncherShimCleanerTest, TakesAnUntidyTarget) {
    makeLauncher(applications / "Editor.app", target);
    EXPECT_THAT(cleaned(world.drive / "Apps/./Editor.app/"), ElementsAre(applications / "Editor.app"));
}

TEST_F(LauncherShimCleanerTest, LeavesWhatOnlyLooksLikeALauncher) {
    makeLauncher(applications / "Empty.app", "");
    makeLauncher(applications / "Relative.app", "Editor.app");
    makeLauncher(applications / "Folder", target);
    makeLauncher(applications / "Sub/Deep.app", target);
    test::makeBundle(applications / "Editor.app");
    test::makeLink(applications / "Link.app", target);
    const std::string picture = test::pictureOf(applications);
    EXPECT_THAT(cleaned(target), IsEmpty());
    EXPECT_THAT(cleaned(""), IsEmpty());
    EXPECT_EQ(test::pictureOf(applications), picture);
}

TEST_F(LauncherShimCleanerTest, PassesOverWhatTheTrashRefuses) {
    makeLauncher(applications / "Editor.app", target);
    world.trash->refuses = true;
    EXPECT_THAT(cleaned(target), IsEmpty());
    EXPECT_THAT(Files::names(applications), ElementsAre("Editor.app"));
}

}  // namespace tarvik
