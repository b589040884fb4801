#include "State/CheckedPaths.h"

#include <gmock/gmock.h>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using State = CheckedPaths::State;

const fs::path root = "/data";

/// /data holds a and b, /data/a holds x and y; nothing more is known.
std::vector<CheckedPaths::Sized> childrenOf(const fs::path& folder) {
    if (folder == root) return {{root / "a", 10}, {root / "b", 20}};
    if (folder == root / "a") return {{root / "a/x", 3}, {root / "a/y", 7}};
    return {};
}

}  // namespace

TEST(CheckedPaths, StandForAllThatIsInAFolder) {
    CheckedPaths paths;
    paths.check(root / "a", 10);
    EXPECT_EQ(paths.stateOf(root / "a"), State::all);
    EXPECT_EQ(paths.stateOf(root / "a/x"), State::all);
    EXPECT_EQ(paths.stateOf(root), State::some);
    EXPECT_EQ(paths.stateOf(root / "b"), State::none);
    EXPECT_EQ(paths.stateOf("/data/ab"), State::none) << "the name only begins alike";
}

TEST(CheckedPaths, NeverHoldAPathBelowAnother) {
    CheckedPaths paths;
    paths.check(root / "a/x", 3);
    paths.check(root / "b", 20);
    paths.check(root, 30);
    EXPECT_THAT(paths.within({root}), ElementsAre(root));
    paths.check(root / "a/x", 3);
    EXPECT_THAT(paths.within({root}), ElementsAre(root));
    EXPECT_EQ(paths.bytesWithin({root}), 30);
}

TEST(CheckedPaths, KeepTheRestOfAFolderOfWhichAPartIsLeftOut) {
    CheckedPaths paths;
    paths.check(root, 30);
    paths.uncheck(root / "a/x", childrenOf);
    EXPECT_THAT(paths.within({root}), ElementsAre(root / "a/y", root / "b"));
    EXPECT_EQ(paths.bytesWithin({root}), 27);
    EXPECT_EQ(paths.stateOf(root / "a"), State::some);
}

TEST(CheckedPaths, KeepNothingOfAFolderWhoseContentsAreNotKnown) {
    CheckedPaths paths;
    paths.check(root, 30);
    paths.uncheck(root / "b/unknown/deep", childrenOf);
    EXPECT_THAT(paths.within({root}), IsEmpty());
}

TEST(CheckedPaths, LetGoOfWhatIsInAFolderThatIsLeftOut) {
    CheckedPaths paths;
    paths.check(root / "a/x", 3);
    paths.check(root / "b", 20);
    paths.uncheck(root / "a", childrenOf);
    EXPECT_THAT(paths.within({root}), ElementsAre(root / "b"));
}

TEST(CheckedPaths, AreCountedByTheRootsThatTheyLieIn) {
    CheckedPaths paths;
    paths.check(root / "a", 10);
    paths.check("/other", 5);
    EXPECT_THAT(paths.within({root, "/none"}), ElementsAre(root / "a"));
    EXPECT_EQ(paths.bytesWithin({"/other/"}), 5) << "however the root is written";
    paths.setBytes(root / "a", 11);
    paths.setBytes(root / "b", 99);
    EXPECT_EQ(paths.bytesWithin({root}), 11);
    paths.removeWithin({root});
    EXPECT_THAT(paths.within({"/"}), ElementsAre("/other"));
}

}  // namespace tarvik::test
