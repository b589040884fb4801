#include "Installers/Opening/PathHashes.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace tarvik::test {
namespace {

/// Enough of them that equal ones are looked for again and again.
void addMany(PathHashes& hashes, std::uint64_t first = 1'000'000) {
    constexpr std::uint64_t many = 300'000;
    for (std::uint64_t hash = first; hash < first + many; ++hash) hashes.add(hash);
}

TEST(PathHashes, NoticesARepetitionHoweverManyComeBetweenAndAfter) {
    PathHashes hashes;
    hashes.add(1);
    addMany(hashes);
    EXPECT_FALSE(hashes.haveRepetition());
    hashes.add(1);
    EXPECT_TRUE(hashes.haveRepetition());
    addMany(hashes, 2'000'000);
    EXPECT_TRUE(hashes.haveRepetition());
}

TEST(PathHashes, FindsWhatTwoHaveInCommon) {
    PathHashes none;
    PathHashes many;
    addMany(many);
    many.add(1);
    PathHashes few;
    few.add(2);
    EXPECT_FALSE(none.haveOneInCommonWith(many) || many.haveOneInCommonWith(none));
    EXPECT_FALSE(few.haveOneInCommonWith(many) || many.haveOneInCommonWith(few));
    few.add(1);
    EXPECT_TRUE(few.haveOneInCommonWith(many));
    EXPECT_TRUE(many.haveOneInCommonWith(few));
}

}  // namespace
}  // namespace tarvik::test
