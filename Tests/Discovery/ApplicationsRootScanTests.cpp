#include "Discovery/ApplicationsRootScan.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Link = ApplicationsRootScan::Link;

TEST(ApplicationsRootScan, TellsLinksFromRealBundles) {
    const test::TemporaryFolder folder;
    const fs::path apps = folder / "Applications";
    test::makeFolder(apps / "Real.app");
    test::makeFile(apps / "File.app");
    test::makeLink(apps / "Absolute.app", "/Volumes/Backup/./Absolute.app");
    test::makeLink(apps / "Relative.app", "../elsewhere/Relative.app");
    const auto result = ApplicationsRootScan::scan({apps});
    EXPECT_THAT(result.symlinks, ElementsAre(Link{apps / "Absolute.app", "/Volumes/Backup/Absolute.app"},
                                             Link{apps / "Relative.app", folder / "elsewhere/Relative.app"}));
    EXPECT_THAT(result.realAppNames, ElementsAre("File.app", "Real.app"));
}

TEST(ApplicationsRootScan, LooksAtNothingElse) {
    const test::TemporaryFolder folder;
    test::makeFolder(folder / "a/Nested.app");
    test::makeFolder(folder / ".Hidden.app");
    test::makeFolder(folder / "Loud.APP");
    test::makeLink(folder / "link", "a");
    EXPECT_EQ(ApplicationsRootScan::scan({folder.path()}), ApplicationsRootScan::Result{});
}

TEST(ApplicationsRootScan, GoesRootByRootAndPassesOverMissingOnes) {
    const test::TemporaryFolder folder;
    test::makeLink(folder / "two/A.app", "/a");
    test::makeLink(folder / "one/B.app", "/b");
    test::makeFolder(folder / "one/Same.app");
    test::makeFolder(folder / "two/Same.app");
    test::makeFile(folder / "file");
    const auto result =
        ApplicationsRootScan::scan({folder / "missing", folder / "two", folder / "file", folder / "one"});
    EXPECT_THAT(result.symlinks, ElementsAre(Link{folder / "two/A.app", "/a"}, Link{folder / "one/B.app", "/b"}));
    EXPECT_THAT(result.realAppNames, ElementsAre("Same.app"));
    EXPECT_THAT(ApplicationsRootScan::scan({}).symlinks, IsEmpty());
}

}  // namespace
}  // namespace tarvik
