#include "Health/DanglingDataLinkDetector.h"
#include "Health/HealthWorld.h"
#include "Support/OrdinaryUser.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <sys/stat.h>

namespace tarvik {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DanglingDataLinkDetection : public testing::Test {
protected:
    std::vector<std::string> found() const { return test::kindsAndNames(DanglingDataLinkDetector::detect(world.host)); }

    const test::HealthWorld world;
    const fs::path support = world.library / "Application Support";
};

}  // namespace

TEST_F(DanglingDataLinkDetection, FindsALinkThatLeadsNowhere) {
    test::makeLink(support / "Editor/Cache", "/Volumes/Gone/Cache");
    EXPECT_THAT(DanglingDataLinkDetector::detect(world.host),
                ElementsAre(HealthIssue{.kind = HealthIssue::Kind::dangling,
                                        .location = support / "Editor/Cache",
                                        .target = "/Volumes/Gone/Cache",
                                        .detail = "App-data symlink target is missing. No relocated copy found; the "
                                                  "app may crash at launch until re-linked."}));
}

TEST_F(DanglingDataLinkDetection, NamesACopyThatStandsInTheFolderOfThisVersion) {
    test::makeFolder(world.drive / "ExternalTarvik/Data/Cache");
    test::makeLink(support / "Cache", world.drive / "Tarvik/Data/Cache");
    EXPECT_EQ(DanglingDataLinkDetector::detect(world.host).at(0).detail,
              "App-data symlink target is missing. Relocated copy found at " +
                  (world.drive / "ExternalTarvik/Data/Cache").native() + "; `health repair` repoints it.");
}

TEST_F(DanglingDataLinkDetection, GoesRootByRoot) {
    for (const char* root : {"WebKit", "Saved Application State", "Logs", "Application Support", "HTTPStorages"})
        test::makeLink(world.library / root / root, "/nowhere");
    test::makeLink(world.library / "Caches/Caches", "/nowhere");
    EXPECT_THAT(found(), ElementsAre("dangling Application Support", "dangling Logs", "dangling HTTPStorages",
                                     "dangling WebKit", "dangling Saved Application State"));
}

TEST_F(DanglingDataLinkDetection, PassesOverMarksOfProcesses) {
    for (const char* name : {"SingletonLock", "SingletonCookie", "RunningChromeVersion"})
        test::makeLink(support / "Browser" / name, "host-1234");
    EXPECT_THAT(found(), IsEmpty());
    test::makeLink(support / "Browser/Other", "host-1234");
    EXPECT_THAT(found(), ElementsAre("dangling Other"));
}

TEST_F(DanglingDataLinkDetection, LooksAtThreeLevelsAndOpensNothingBelow) {
    test::makeLink(support / "1/2/third", "/nowhere");
    test::makeLink(support / "1/2/3/fourth", "/nowhere");
    EXPECT_THAT(found(), ElementsAre("dangling third"));
}

TEST_F(DanglingDataLinkDetection, PassesOverHiddenOnesAndWhatIsBehindLinks) {
    test::makeLink(support / ".hidden", "/nowhere");
    test::makeLink(support / ".folder/link", "/nowhere");
    test::makeLink(world.folder / "elsewhere/link", "/nowhere");
    test::makeLink(support / "folder", world.folder / "elsewhere");
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(DanglingDataLinkDetection, TakesARelativeLinkFromItsFolder) {
    test::makeFolder(support / "Shared");
    test::makeLink(support / "Editor/Shared", "../Shared");
    EXPECT_THAT(found(), IsEmpty());
    test::makeLink(support / "Editor/Other", "../Other");
    EXPECT_EQ(DanglingDataLinkDetector::detect(world.host).at(0).target, support / "Editor/../Other");
}

TEST_F(DanglingDataLinkDetection, EndsWithLinksThatGoInCircles) {
    test::makeLink(support / "one", "two");
    test::makeLink(support / "two", "one");
    test::makeLink(support / "self", "self");
    EXPECT_THAT(found(), ElementsAre("dangling one", "dangling self", "dangling two"));
}

TEST_F(DanglingDataLinkDetection, CallsNothingMissingThatMayNotBeLookedAt) {
    const fs::path closed = world.folder / "closed";
    test::makeFolder(closed / "data");
    test::makeLink(support / "data", closed / "data");
    fs::permissions(closed, fs::perms::none);
    {
        const test::OrdinaryUser user(world.folder.path());
        EXPECT_THAT(found(), IsEmpty());
    }
    fs::permissions(closed, fs::perms::owner_all);
}

TEST_F(DanglingDataLinkDetection, FindsALinkAmongAHundredThousandFolders) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    constexpr int each = 317;
    test::makeFolder(support);
    const auto volume = test::RealVolume::memory(support, test::megabyte);  // A disk takes long to remove so many.
    int count = 0;
    const auto make = [&](const std::string& folder) { count += ::mkdir(folder.c_str(), S_IRWXU) == 0 ? 1 : 0; };
    for (int second = 0; second < each; ++second) {
        const std::string parent = volume.path().native() + "/" + std::to_string(second);
        make(parent);
        for (int third = 0; third < each; ++third) make(parent + "/" + std::to_string(third));
    }
    ASSERT_GT(count, 100'000);
    test::makeLink(volume / "316/link", "/nowhere");
    test::makeLink(volume / "316/316/below", "/nowhere");
    EXPECT_THAT(found(), ElementsAre("dangling link"));
}

TEST_F(DanglingDataLinkDetection, EndsWhenItIsCancelled) {
    test::makeLink(support / "data", "/nowhere");
    const Cancellation cancellation;
    cancellation.cancel();
    EXPECT_THAT(DanglingDataLinkDetector::detect(world.host, cancellation), IsEmpty());
}

TEST_F(DanglingDataLinkDetection, LooksIntoADataFolderThatWasMovedAsAWhole) {
    test::makeLink(world.drive / "Support/Editor/Cache", "/nowhere");
    test::makeFolder(world.library);
    fs::remove_all(support);
    test::makeLink(support, world.drive / "Support");
    EXPECT_EQ(DanglingDataLinkDetector::detect(world.host).at(0).location, support / "Editor/Cache");
}

}  // namespace tarvik
