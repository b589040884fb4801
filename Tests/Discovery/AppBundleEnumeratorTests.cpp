#include "Discovery/AppBundleEnumerator.h"
#include "Support/OrdinaryUser.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AppBundleEnumeratorTest : public testing::Test {
protected:
    /// What is found below the root, without the root.
    std::vector<std::string> found(int maxDepth = AppBundleEnumerator::defaultMaxDepth) const {
        std::vector<std::string> names;
        for (const fs::path& bundle : AppBundleEnumerator::bundles(root, maxDepth))
            names.push_back(bundle.native().substr(root.native().size() + 1));
        EXPECT_EQ(AppBundleEnumerator::holdsBundle(root, maxDepth), !names.empty());
        return names;
    }

    test::TemporaryFolder folder;
    fs::path root = folder / "Applications";
};

TEST(AppBundleEnumerator, KnowsABundleByItsName) {
    EXPECT_TRUE(AppBundleEnumerator::isBundleName("Editor.app"));
    EXPECT_TRUE(AppBundleEnumerator::isBundleName("Editor 2.0.app"));
    EXPECT_TRUE(AppBundleEnumerator::isBundleName("\xFF.app"));
    for (const char* name : {"Editor.App", "Editor.APP", "Editor.apps", "Editor.app.old", "Editor", "app", ""})
        EXPECT_FALSE(AppBundleEnumerator::isBundleName(name)) << name;
}

TEST_F(AppBundleEnumeratorTest, FindsBundlesDownToADepth) {
    test::makeFolder(root / "Zero.app");
    test::makeFolder(root / "a/One.app");
    test::makeFolder(root / "a/b/Two.app");
    test::makeFolder(root / "a/b/c/Three.app");
    EXPECT_THAT(found(), ElementsAre("Zero.app", "a/One.app", "a/b/Two.app"));
    EXPECT_THAT(found(4), ElementsAre("Zero.app", "a/One.app", "a/b/Two.app", "a/b/c/Three.app"));
    EXPECT_THAT(found(1), ElementsAre("Zero.app", "a/One.app"));
    EXPECT_THAT(found(0), ElementsAre("Zero.app"));
    EXPECT_THAT(found(-1), IsEmpty());
}

TEST_F(AppBundleEnumeratorTest, GoesByBytesOfNamesAndEntersAFolderWhereItStands) {
    TARVIK_NEEDS_NAMES_OF_ANY_BYTES();
    for (const char* bundle : {"b.app", "C.app", "a.app", "bb/x.app", "Ä.app", "\xFF.app", "日本.app"})
        test::makeFolder(root / bundle);
    EXPECT_THAT(found(), ElementsAre("C.app", "a.app", "b.app", "bb/x.app", "Ä.app", "日本.app", "\xFF.app"));
}

TEST_F(AppBundleEnumeratorTest, LooksIntoNoBundleAndNoHiddenFolder) {
    test::makeFolder(root / "Outer.app/Inner.app");
    test::makeFolder(root / "Outer.app/Contents/Inner.app");
    test::makeFolder(root / ".hidden/Hidden.app");
    test::makeFolder(root / ".Hidden.app");
    test::makeFolder(root / ".app");
    EXPECT_THAT(found(4), ElementsAre("Outer.app"));
}

TEST_F(AppBundleEnumeratorTest, TakesFilesAndLinksOfThatName) {
    test::makeFile(root / "File.app");
    test::makeLink(root / "Link.app", folder / "missing");
    test::makePipe(root / "Pipe.app");
    test::makeFile(root / "file");
    test::makePipe(root / "pipe");
    EXPECT_THAT(found(), ElementsAre("File.app", "Link.app", "Pipe.app"));
}

TEST_F(AppBundleEnumeratorTest, WalksLinksToFoldersUnderTheirOwnPath) {
    test::makeFolder(folder / "elsewhere/Far.app");
    test::makeFolder(folder / "elsewhere/deep/er/TooFar.app");
    test::makeLink(root / "absolute", folder / "elsewhere");
    test::makeLink(root / "relative", "../elsewhere");
    test::makeLink(root / "dangling", "nowhere");
    EXPECT_THAT(found(), ElementsAre("absolute/Far.app", "relative/Far.app"));
}

TEST_F(AppBundleEnumeratorTest, WalksARootThatIsALinkUnderItsOwnPath) {
    test::makeFolder(folder / "elsewhere/Far.app");
    test::makeLink(root, "elsewhere");
    EXPECT_THAT(found(), ElementsAre("Far.app"));
}

TEST_F(AppBundleEnumeratorTest, TakesTheTextOfARootLinkThatTheSystemCannotFollow) {
    test::makeFolder(folder / "elsewhere/Far.app");
    test::makeLink(root, "missing/../elsewhere");
    EXPECT_THAT(found(), ElementsAre("Far.app"));
}

TEST_F(AppBundleEnumeratorTest, DoesNotWalkBackIntoAFolderThatItIsIn) {
    test::makeFolder(root / "a/One.app");
    test::makeLink(root / "self", ".");
    test::makeLink(root / "a/up", "..");
    test::makeLink(root / "a/same", "../a");
    test::makeLink(root / "loop", "loop");
    EXPECT_THAT(found(4), ElementsAre("a/One.app"));
}

TEST_F(AppBundleEnumeratorTest, EndsWhereLinksLeadToEachOther) {
    test::makeFolder(root / "a/One.app");
    test::makeFolder(root / "b/Two.app");
    test::makeLink(root / "a/to b", "../b");
    test::makeLink(root / "b/to a", "../a");
    EXPECT_THAT(found(4), ElementsAre("a/One.app", "a/to b/Two.app", "b/Two.app", "b/to a/One.app"));
}

TEST_F(AppBundleEnumeratorTest, FindsNothingWhereThereIsNoFolder) {
    EXPECT_THAT(found(), IsEmpty());
    test::makeFile(root);
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(AppBundleEnumeratorTest, PassesOverWhatItMayNotRead) {
    test::makeFolder(root / "closed/Hidden.app");
    test::makeFolder(root / "open/Seen.app");
    fs::permissions(root / "closed", fs::perms::none);
    {
        const test::OrdinaryUser user(folder.path());
        EXPECT_THAT(found(), ElementsAre("open/Seen.app"));
    }
    fs::permissions(root / "closed", fs::perms::owner_all);
}

}  // namespace
}  // namespace tarvik
