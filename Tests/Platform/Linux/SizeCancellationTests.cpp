#include "Platform/Files/Files.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Storage/SizingService.h"
#include "Support/Linux/FolderGate.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <functional>

namespace tarvik::test {

namespace {

/// What a measurement gives that is cancelled when it opens the second of two folders, each of which holds one file of
/// a known size further down.
std::int64_t sizeWhenCancelledHalfway(
    const fs::path& tree, const std::function<std::int64_t(const fs::path&, const Cancellation&)>& measure) {
    for (const char* half : {"one", "other"}) makeFileOfSize(tree / half / "inside/file", 50'000);
    const Cancellation cancellation;
    const FolderGate gate({tree / "one", tree / "other"}, [&](std::size_t opened) {
        if (opened == 2) cancellation.cancel();
    });
    return measure(tree, cancellation);
}

}  // namespace

TEST(SizingService, GivesWhatItHasCountedWhenItIsCancelledHalfway) {
    if (!FolderGate::isPossible()) TARVIK_SKIP_BECAUSE("Only the administrator may hold up a walk.");
    const World world;
    const std::int64_t size = sizeWhenCancelledHalfway(
        world.home / "tree",
        [&](const fs::path& tree, const auto& wish) { return SizingService::size(world.host, tree, wish); });
    EXPECT_EQ(size, Files::info(world.home / "tree/one/inside/file")->allocatedSize);
}

TEST(SizeCalculator, GivesWhatItHasCountedWhenItIsCancelledHalfway) {
    if (!FolderGate::isPossible()) TARVIK_SKIP_BECAUSE("Only the administrator may hold up a walk.");
    const World world;
    const std::int64_t size = sizeWhenCancelledHalfway(
        world.home / "tree",
        [&](const fs::path& tree, const auto& wish) { return SizeCalculator::size(world.host, tree, wish); });
    EXPECT_EQ(size, Files::info(world.home / "tree/one/inside/file")->allocatedSize);
}

}  // namespace tarvik::test
