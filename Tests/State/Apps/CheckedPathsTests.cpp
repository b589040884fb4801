#include "State/Apps/CheckedPaths.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

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

TEST(CheckedPaths, TellWhatLiesInAFolderFromWhatIsNamedAlike) {
    const std::vector<std::string> names = {"a!", "a -", "a.plist", "a\x01", "a", "ab"};
    for (const auto& ticked : names) {
        CheckedPaths paths;
        for (const auto& name : names) paths.check(root / name / "x", 1);
        paths.check(root / ticked, 1);
        for (const auto& name : names) {
            EXPECT_EQ(paths.stateOf(root / name), name == ticked ? State::all : State::some) << ticked << " " << name;
            EXPECT_EQ(paths.stateOf(root / name / "x"), State::all);
            EXPECT_EQ(paths.stateOf(root / name / "y"), name == ticked ? State::all : State::none);
            EXPECT_THAT(paths.within({root / name}), ElementsAre(name == ticked ? root / name : root / name / "x"));
        }
        paths.uncheck(root / ticked, childrenOf);
        EXPECT_EQ(paths.within({root}).size(), names.size() - 1);
        EXPECT_EQ(paths.stateOf(root / ticked / "x"), State::none);
    }
}

TEST(CheckedPaths, AreCountedOnceWhereRootsLieInOneAnother) {
    CheckedPaths paths;
    paths.check(root / "b", 20);
    paths.check(root / "a/x", 3);
    const std::vector<fs::path> roots = {root / "b/", root / "a/x", "/data/./a", root / "b", root / "a"};
    EXPECT_THAT(paths.within(roots), ElementsAre(root / "a/x", root / "b"));
    EXPECT_EQ(paths.bytesWithin(roots), 23);
    EXPECT_THAT(paths.within({root / "a/x/deep"}), IsEmpty()) << "only what lies in the root itself";
    paths.removeWithin(roots);
    EXPECT_EQ(paths, CheckedPaths());
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
