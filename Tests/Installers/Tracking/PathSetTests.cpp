#include "Installers/Tracking/PathSet.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> all(const PathSet& set) {
    std::vector<std::string> paths;
    for (const std::string_view path : set) paths.emplace_back(path);
    return paths;
}

TEST(PathSet, HoldsEachPathOnceWithFoldersBeforeTheirContents) {
    const PathSet set({"/b", "/a.b", "/a/x", "/a", "/a/x", "/a-b", "/", "/a/x/y"});
    EXPECT_THAT(all(set), ElementsAre("/", "/a", "/a/x", "/a/x/y", "/a-b", "/a.b", "/b"));
    EXPECT_EQ(set.size(), 7U);
    EXPECT_FALSE(set.empty());
}

TEST(PathSet, IsEmptyAtFirst) {
    const PathSet set;
    EXPECT_TRUE(set.empty());
    EXPECT_THAT(all(set), IsEmpty());
    EXPECT_FALSE(set.contains(""));
    EXPECT_FALSE(set.contains("/"));
    EXPECT_EQ(set, PathSet(std::vector<std::string>()));
}

TEST(PathSet, TakesOnlyWhatComesAfterAllThatIsThere) {
    PathSet set;
    EXPECT_TRUE(set.append("/a"));
    EXPECT_TRUE(set.append("/a/b"));
    EXPECT_FALSE(set.append("/a/b"));
    EXPECT_FALSE(set.append("/a"));
    EXPECT_TRUE(set.append("/a b"));
    EXPECT_FALSE(set.append("/a/c"));
    EXPECT_EQ(set, PathSet({"/a", "/a/b", "/a b"}));
}

TEST(PathSet, KnowsNeitherPartsNorContinuationsOfItsPaths) {
    const PathSet set({"/folder/file", "/folder/file.txt"});
    EXPECT_TRUE(set.contains("/folder/file"));
    for (const auto* other :
         {"", "/", "/folder", "/folder/fil", "/folder/file.", "/folder/file.txt.", "/folder/file/x"})
        EXPECT_FALSE(set.contains(other)) << other;
}

TEST(PathSet, DiffersByASinglePath) {
    const PathSet set({"/a", "/b"});
    EXPECT_NE(set, PathSet({"/a", "/c"}));
    EXPECT_NE(set, PathSet({"/a"}));
    EXPECT_NE(set, PathSet({"/a", "/b", "/b/c"}));
}

TEST(PathSet, KeepsPathsOfAnyBytesAndLength) {
    const std::string bytes = "/\xff\xfe/\x01\n\t/\xc3\xa9";
    const std::string longPath = "/" + std::string(20'000, 'x');
    const PathSet set({bytes, longPath, longPath + "/y", "/a"});
    EXPECT_THAT(all(set), ElementsAre("/a", longPath, longPath + "/y", bytes));
    EXPECT_TRUE(set.contains(bytes));
    EXPECT_TRUE(set.contains(longPath));
    EXPECT_TRUE(set.contains(longPath + "/y"));
    EXPECT_FALSE(set.contains(longPath + "x"));
}

/// Short names of few letters, so that many paths share much and some are the same.
std::string randomPath(std::mt19937& random) {
    constexpr std::string_view letters = "ab./ -\xff";
    std::string path = "/";
    for (auto length = random() % 12; length > 0; --length) path += letters[random() % letters.size()];
    return path;
}

TEST(PathSet, HoldsWhatAnySetHolds) {
    std::mt19937 random(1);
    for (const int count : {1, 10, 1000, 50'000}) {
        std::vector<std::string> paths;
        for (int index = 0; index < count; ++index) paths.push_back(randomPath(random));
        const std::set<std::string> wanted(paths.begin(), paths.end());
        const PathSet set(paths);
        EXPECT_EQ(set.size(), wanted.size());
        auto held = all(set);
        EXPECT_TRUE(std::is_sorted(held.begin(), held.end(), PathSet::isBefore));
        std::sort(held.begin(), held.end());
        EXPECT_TRUE(std::equal(held.begin(), held.end(), wanted.begin(), wanted.end()));
        for (int index = 0; index < 2000; ++index) {
            const std::string path = randomPath(random);
            ASSERT_EQ(set.contains(path), wanted.count(path) > 0) << path;
        }
        std::shuffle(paths.begin(), paths.end(), random);
        EXPECT_EQ(PathSet(paths), set);
    }
}

}  // namespace
}  // namespace tarvik
