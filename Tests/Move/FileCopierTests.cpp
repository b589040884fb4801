#include "Move/FileCopier.h"
#include "Move/MoverError.h"
#include "Platform/Files.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <mutex>
#include <vector>

namespace tarvik::test {

namespace {

std::string failureOfDitto(World& world, const std::string& script) {
    world.withDitto(script);
    try {
        FileCopier::runDitto(world.host, world.home, world.drive / "copy");
    } catch (const Failure& failure) {
        return failure.domain() + " " + std::to_string(failure.code()) + ": " + failure.description();
    }
    return "copied";
}

}  // namespace

TEST(FileCopier, PassesItsArgumentsOneToOne) {
    World world;
    world.withDitto(R"(printf '%s|' "$#" "$1" "$2" "$3" > "$3")");
    FileCopier::runDitto(world.host, "/a b/\"c\"", world.drive / "out");
    EXPECT_EQ(contentOf(world.drive / "out"), "3|--rsrc|/a b/\"c\"|" + (world.drive / "out").native() + "|");
}

TEST(FileCopier, TellsTheToolsOwnWords) {
    World world;
    EXPECT_EQ(failureOfDitto(world, "printf '\\n  no room \\n\\n' >&2; exit 4"), "FileCopier 4: ditto failed: no room");
    EXPECT_EQ(failureOfDitto(world, "exit 5"), "FileCopier 5: ditto failed: exit 5");
    EXPECT_EQ(failureOfDitto(world, "printf '\\377\\376' >&2; exit 6"), "FileCopier 6: ditto failed: exit 6");
    EXPECT_EQ(failureOfDitto(world, "kill -9 $$"), "FileCopier 9: ditto failed: exit 9");
}

TEST(FileCopier, IsNotBlockedByAToolThatTalksMuch) {
    World world;
    world.withDitto("head -c 300000 /dev/zero; head -c 300000 /dev/zero | tr '\\0' x >&2; exit 0");
    FileCopier::runDitto(world.host, world.home, world.drive / "copy");
}

TEST(FileCopier, ReportsProgressWhileItCopiesAndAtTheEnd) {
    World world;
    const fs::path isReported = world.folder / "reported";
    world.withDitto("head -c 100000 /dev/zero > \"$3\"\n" + waitFor(isReported));
    std::mutex mutex;
    std::vector<std::pair<std::int64_t, std::int64_t>> reports;
    FileCopier::copy(world.host, world.home, world.drive / "copy", 200'000,
                     [&](std::int64_t copied, std::int64_t total) {
                         const std::lock_guard lock(mutex);
                         reports.emplace_back(copied, total);
                         if (copied >= 100'000) makeFile(isReported);
                     });
    ASSERT_GE(reports.size(), 2U);
    const auto& last = reports.back();
    const auto& whileCopying = reports[reports.size() - 2];
    EXPECT_GE(whileCopying.first, 100'000);
    EXPECT_LT(whileCopying.first, 200'000);
    EXPECT_EQ(whileCopying.second, 200'000);
    EXPECT_EQ(last, (std::pair<std::int64_t, std::int64_t>(200'000, 200'000)));
}

TEST(FileCopier, SaysWhyTheToolFailed) {
    World world;
    world.withDitto(R"(mkdir -p "$3"; echo half > "$3/file"; echo broken >&2; exit 1)");
    try {
        FileCopier::copy(world.host, world.home, world.drive / "copy", 1, [](std::int64_t, std::int64_t) {});
        FAIL() << "the tool failed";
    } catch (const MoverError& error) {
        EXPECT_EQ(error.description(), "Copy failed: ditto failed: broken");
    }
}

TEST(FileCopier, KeepsTheFirstWordsOfAToolThatSaysTooMuch) {
    World world;
    world.withDitto("echo 'the cause' >&2; yes 'and so on' | head -c 1000000 >&2; exit 1");
    try {
        FileCopier::runDitto(world.host, world.home, world.drive / "copy");
        FAIL() << "the tool failed";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.description().find("ditto failed: the cause"), 0U);
        EXPECT_LT(failure.description().size(), 20'000U);
    }
}

}  // namespace tarvik::test
