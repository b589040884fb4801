#include "Health/HealthWorld.h"
#include "Health/SandboxExternalSymlinkDetector.h"
#include "Health/UnsafePrefsPlistDetector.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {

namespace {

using test::HealthWorld;
using testing::ElementsAre;
using testing::IsEmpty;
using enum HealthIssue::Kind;

}  // namespace

TEST(SandboxExternalSymlinkDetector, FindsALinkToADrive) {
    const HealthWorld world;
    const fs::path link = world.library / "Containers/org.example.Editor";
    const fs::path target = world.folder / "Volumes/Elsewhere/org.example.Editor";
    test::makeLink(link, target);
    EXPECT_THAT(SandboxExternalSymlinkDetector::detect(world.host),
                ElementsAre(HealthIssue{.kind = sandboxExternalSymlink,
                                        .location = link,
                                        .target = target,
                                        .detail = "Sandbox-managed path symlinked to external volume. macOS sandbox "
                                                  "blocks reads from /Volumes/, breaking sandboxed apps. Restore to "
                                                  "internal disk."}));
}

TEST(SandboxExternalSymlinkDetector, LooksAtDirectChildrenOfThreeFolders) {
    const HealthWorld world;
    const fs::path target = world.folder / "Volumes/Elsewhere";
    for (const char* root : {"Application Scripts", "Group Containers", "Containers"}) {
        test::makeLink(world.library / root / "link", target);
        test::makeLink(world.library / root / "child/nested", target);
        test::makeLink(world.library / root / ".hidden", target);
    }
    const auto issues = SandboxExternalSymlinkDetector::detect(world.host);
    ASSERT_EQ(issues.size(), 3U);
    EXPECT_EQ(issues[0].location, world.library / "Containers/link");
    EXPECT_EQ(issues[1].location, world.library / "Group Containers/link");
    EXPECT_EQ(issues[2].location, world.library / "Application Scripts/link");
}

TEST(SandboxExternalSymlinkDetector, ComparesTheTextOfALinkAsItStands) {
    const HealthWorld world;
    const fs::path containers = world.library / "Containers";
    test::makeLink(containers / "relative", "../../../../Volumes/Elsewhere");
    test::makeLink(containers / "itself", world.folder / "Volumes");
    test::makeLink(containers / "likeIt", world.folder / "Volumes2/Elsewhere");
    EXPECT_THAT(SandboxExternalSymlinkDetector::detect(world.host), IsEmpty());
}

TEST(UnsafePrefsPlistDetector, FindsPreferenceFilesThatAreLinks) {
    const HealthWorld world;
    const fs::path file = world.library / "Preferences/org.example.Editor.plist";
    test::makeLink(file, "../elsewhere.plist");
    EXPECT_THAT(UnsafePrefsPlistDetector::detect(world.host, {}),
                ElementsAre(HealthIssue{.kind = unsafePrefsPlist,
                                        .location = file,
                                        .target = "../elsewhere.plist",
                                        .detail = "Library/Preferences plist is a symlink; cfprefsd will break it on "
                                                  "next write."}));
}

TEST(UnsafePrefsPlistDetector, LooksAtTheSystemsFolderFirstAndAtHiddenFilesToo) {
    const HealthWorld world;
    const fs::path extra = world.folder / "other";
    test::makeLink(world.library / "Preferences/.GlobalPreferences.plist", "/nowhere");
    test::makeLink(world.folder / "Library/Preferences/system.plist", "/nowhere");
    test::makeLink(extra / "Library/Preferences/other.plist", "/nowhere");
    const auto found = UnsafePrefsPlistDetector::detect(world.host, {world.folder / "nobody", extra});
    EXPECT_THAT(test::kindsAndNames(found),
                ElementsAre("unsafePrefsPlist system.plist", "unsafePrefsPlist .GlobalPreferences.plist",
                            "unsafePrefsPlist other.plist"));
    EXPECT_THAT(UnsafePrefsPlistDetector::scanRoots(world.host, {world.folder / "nobody"}),
                ElementsAre(world.folder / "Library/Preferences", world.library / "Preferences"));
}

TEST(UnsafePrefsPlistDetector, TakesNothingElseForOne) {
    const HealthWorld world;
    const fs::path preferences = world.library / "Preferences";
    test::makeFile(preferences / "real.plist");
    test::makeLink(preferences / "link.txt", "/nowhere");
    test::makeLink(preferences / "link.PLIST", "/nowhere");
    test::makeLink(preferences / "ByHost/deep.plist", "/nowhere");
    EXPECT_THAT(UnsafePrefsPlistDetector::detect(world.host, {}), IsEmpty());
}

}  // namespace tarvik
