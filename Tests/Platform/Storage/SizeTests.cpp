#include "Platform/Files/Files.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Storage/SizingService.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

namespace tarvik::test {

namespace {

/// Both ways of measuring, for what they agree and disagree on.
class Sizes : public testing::Test {
protected:
    std::int64_t calculated(const fs::path& path) { return SizeCalculator::size(world.host, path); }
    std::int64_t serviced(const fs::path& path) { return SizingService::size(world.host, path); }
    static std::int64_t allocated(const fs::path& path) { return Files::info(path)->allocatedSize; }

    World world;
    fs::path tree = world.home / "tree";
};

}  // namespace

TEST_F(Sizes, AddUpWhatFilesTakeOnTheDisk) {
    makeFileOfSize(tree / "one", 1);
    makeFileOfSize(tree / "sub/two", 100'000);
    const std::int64_t expected = allocated(tree / "one") + allocated(tree / "sub/two");
    EXPECT_GE(expected, 100'001);
    EXPECT_EQ(calculated(tree), expected);
    EXPECT_EQ(serviced(tree), expected);
    EXPECT_EQ(calculated(tree / "sub/two"), allocated(tree / "sub/two"));
    EXPECT_EQ(serviced(tree / "sub/two"), allocated(tree / "sub/two"));
}

TEST_F(Sizes, AreZeroForAMissingPath) {
    EXPECT_EQ(calculated(tree), 0);
    EXPECT_EQ(serviced(tree), 0);
}

TEST_F(Sizes, LeaveHiddenFilesAndFoldersOutAtAnyDepth) {
    makeFileOfSize(tree / ".hidden", 5000);
    makeFileOfSize(tree / "sub/.deep/inside", 5000);
    EXPECT_EQ(calculated(tree), 0);
    EXPECT_EQ(serviced(tree), 0);
    makeFileOfSize(tree / "sub/shown", 5000);
    EXPECT_EQ(calculated(tree), allocated(tree / "sub/shown"));
    EXPECT_EQ(serviced(tree), allocated(tree / "sub/shown"));
}

TEST_F(Sizes, DifferForALinkToAFolder) {
    makeFileOfSize(tree / "file", 50'000);
    makeLink(world.home / "link", tree);
    EXPECT_EQ(serviced(world.home / "link"), allocated(tree / "file"));
    EXPECT_EQ(calculated(world.home / "link"), allocated(world.home / "link"));
}

TEST_F(Sizes, DoNotFollowLinksInside) {
    makeFileOfSize(world.home / "outside/file", 50'000);
    makeLink(tree / "link", world.home / "outside");
    makeLink(tree / "loop", tree);
    EXPECT_EQ(calculated(tree), 0);
    EXPECT_EQ(serviced(tree), 0);
}

TEST_F(Sizes, CountHardLinksEachAnew) {
    makeFileOfSize(tree / "one", 1'000'000);
    fs::create_hard_link(tree / "one", tree / "two");
    EXPECT_EQ(calculated(tree), 2 * allocated(tree / "one"));
    EXPECT_EQ(serviced(tree), 2 * allocated(tree / "one"));
}

TEST_F(Sizes, CountSocketsAndPipesOnlyInTheService) {
    makeSocket(tree / "socket");
    makePipe(tree / "pipe");
    EXPECT_EQ(calculated(tree), 0);
    EXPECT_EQ(serviced(tree), allocated(tree / "socket") + allocated(tree / "pipe"));
}

TEST_F(Sizes, GiveAPartialTotalWhenCancelled) {
    makeFileOfSize(tree / "sub/file", 5000);
    const Cancellation cancelled;
    cancelled.cancel();
    EXPECT_EQ(SizeCalculator::size(world.host, tree, cancelled), 0);
    EXPECT_EQ(SizingService::size(world.host, tree, cancelled), 0);
}

TEST_F(Sizes, EndWhereAFolderStandsInsideItself) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    makeFileOfSize(tree / "file", 5000);
    makeFileOfSize(tree / "sub/inner", 50'000);
    const auto loop = RealVolume::viewOf(tree, tree / "sub");
    if (!loop) TARVIK_SKIP_BECAUSE("This system shows no folder in two places.");
    ASSERT_TRUE(Files::exists(*loop / "sub/inner"));
    // The measured folder itself is not remembered, so its own files count once more; the folder inside is.
    EXPECT_EQ(serviced(tree), 2 * allocated(tree / "file") + allocated(tree / "sub/inner"));
}

TEST_F(Sizes, CountTheRootWhateverItsName) {
    makeFileOfSize(world.home / ".root/file", 5000);
    EXPECT_EQ(calculated(world.home / ".root"), allocated(world.home / ".root/file"));
    EXPECT_EQ(serviced(world.home / ".root"), allocated(world.home / ".root/file"));
}

TEST(SizeCalculator, FormatsDecimally) {
    EXPECT_EQ(SizeCalculator::format(0), "Zero KB");
    EXPECT_EQ(SizeCalculator::format(1'500'000), "1.5 MB");
}

TEST(SizingService, TellsFoldersApartByVolumeAndNumber) {
    EXPECT_EQ((SizingService::DirID{1, 2}), (SizingService::DirID{1, 2}));
    EXPECT_FALSE((SizingService::DirID{1, 2}) == (SizingService::DirID{2, 2}));
}

}  // namespace tarvik::test
