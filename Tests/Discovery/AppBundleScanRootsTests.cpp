#include "Discovery/AppBundleScanRoots.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(AppBundleScanRoots, HoldTheUsersOwnFolderOnlyWhereThereIsOne) {
    const test::World world;
    const fs::path applications = world.folder / "Applications";
    const fs::path ofSystem = world.folder / "System/Applications";
    EXPECT_THAT(AppBundleScanRoots::standardApplicationRoots(world.host, false), ElementsAre(applications));
    EXPECT_THAT(AppBundleScanRoots::standardApplicationRoots(world.host, true),
                ElementsAre(applications, applications / "Utilities", ofSystem));

    test::makeFile(world.home / "Applications");
    EXPECT_THAT(AppBundleScanRoots::standardApplicationRoots(world.host, false), ElementsAre(applications));

    fs::remove(world.home / "Applications");
    test::makeFolder(world.home / "Applications");
    EXPECT_THAT(AppBundleScanRoots::standardApplicationRoots(world.host, false),
                ElementsAre(applications, world.home / "Applications"));
    EXPECT_THAT(AppBundleScanRoots::standardApplicationRoots(world.host, true),
                ElementsAre(applications, applications / "Utilities", ofSystem, world.home / "Applications"));
}

class SupplementalRoots : public testing::Test {
protected:
    std::vector<fs::path> found(int maxDepth = 4) const {
        return AppBundleScanRoots::supplementalApplicationSupportRoots(world.host, maxDepth);
    }

    test::World world;
    fs::path support = world.home / "Library/Application Support";
};

TEST_F(SupplementalRoots, AreTheFoldersThatHoldABundle) {
    test::makeFolder(support / "Vendor/a/b/c/d/Deep.app");
    test::makeFolder(support / "Direct/Tool.app");
    test::makeFolder(support / "TooDeep/a/b/c/d/e/Deeper.app");
    test::makeFile(support / "Data/settings");
    test::makeFolder(support / "Empty");
    EXPECT_THAT(found(), ElementsAre(support / "Direct", support / "Vendor"));
    EXPECT_THAT(found(0), ElementsAre(support / "Direct"));
}

TEST_F(SupplementalRoots, AreVisibleFoldersAlone) {
    test::makeFolder(support / ".hidden/Tool.app");
    test::makeFolder(world.home / "elsewhere/Tool.app");
    test::makeLink(support / "link", world.home / "elsewhere");
    test::makeFile(support / "file");
    test::makeFolder(support / "Lone.app");
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(SupplementalRoots, AreNoneWithoutApplicationSupport) {
    EXPECT_THAT(found(), IsEmpty());
}

}  // namespace
}  // namespace tarvik
