#include "Copying/FileCopier.h"
#include "Copying/MoverError.h"
#include "Platform/Files/Files.h"
#include "Support/EnvironmentVariable.h"
#include "Support/FailureOf.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <chrono>
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

TEST(FileCopier, LetsNoEnvironmentMakeTheToolLeaveThingsOut) {
    World world;
    const EnvironmentVariable ditto("DITTONORSRC", "1");
    const EnvironmentVariable copyfile("COPYFILE_DISABLE", "1");
    world.withDitto(R"(echo "${DITTONORSRC-unset} ${COPYFILE_DISABLE-unset}" > "$3")");
    FileCopier::runDitto(world.host, world.home, world.drive / "out");
    EXPECT_EQ(contentOf(world.drive / "out"), "unset unset\n");
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

TEST(FileCopier, ReportsNoProgressBeforeHalfASecondIsOver) {
    World world;
    const fs::path isReported = world.folder / "reported";
    world.withDitto(waitFor(isReported));
    const auto begin = std::chrono::steady_clock::now();
    std::vector<std::chrono::steady_clock::duration> reports;
    FileCopier::copy(world.host, world.home, world.drive / "copy", 1, [&](std::int64_t, std::int64_t) {
        reports.push_back(std::chrono::steady_clock::now() - begin);
        if (reports.size() == 2) makeFile(isReported);
    });
    ASSERT_GE(reports.size(), 2U);
    EXPECT_GE(reports[0], std::chrono::milliseconds(500));
    EXPECT_GE(reports[1], std::chrono::milliseconds(1000));
}

TEST(FileCopier, NeedsNobodyWhoListens) {
    World world;
    world.withDitto(R"(sleep 0.7; echo "$2" > "$3")");
    FileCopier::copy(world.host, world.home, world.drive / "copy", 1, {});
    EXPECT_EQ(contentOf(world.drive / "copy"), world.home.native() + "\n");
}

TEST(FileCopier, SaysWhyTheToolFailed) {
    World world;
    world.withDitto(R"(mkdir -p "$3"; echo half > "$3/file"; echo broken >&2; exit 1)");
    try {
        FileCopier::copy(world.host, world.home, world.drive / "copy", 1, {});
        FAIL() << "the tool failed";
    } catch (const MoverError& error) {
        EXPECT_EQ(error.kind(), MoverError::Case::copyFailed);
        EXPECT_EQ(error.description(), "Copy failed: ditto failed: broken");
    }
}

TEST(FileCopier, DisposesOfHalfACopy) {
    World world;
    world.withDitto(R"(mkdir -p "$3"; echo half > "$3/file"; exit 1)");
    const auto copy = [&] { FileCopier::copy(world.host, world.home, world.drive / "copy", 1, {}); };
    EXPECT_EQ(failureOf(copy), "Copy failed: ditto failed: exit 1");
    EXPECT_FALSE(Files::itemExists(world.drive / "copy"));
    EXPECT_EQ(contentOf(world.trash->folder / "copy/file"), "half\n");

    world.trash->refuses = true;
    EXPECT_EQ(failureOf(copy), "Copy failed: ditto failed: exit 1");
    EXPECT_FALSE(Files::itemExists(world.drive / "copy"));
    EXPECT_EQ(contentOf(world.drive / ".TarvikTrash/copy-1794764743/file"), "half\n");
}

TEST(FileCopier, RemovesHalfACopyThatNothingTakes) {
    World world;
    world.trash->refuses = true;
    makeFile(world.drive / ".TarvikTrash", "a file in the way");
    world.withDitto(R"(mkdir -p "$3"; echo half > "$3/file"; exit 1)");
    const auto copy = [&] { FileCopier::copy(world.host, world.home, world.drive / "copy", 1, {}); };
    EXPECT_EQ(failureOf(copy), "Copy failed: ditto failed: exit 1");
    EXPECT_FALSE(Files::itemExists(world.drive / "copy"));
    // What stood there before is no copy of ours.
    makeFile(world.drive / "copy/other", "whole");
    EXPECT_EQ(failureOf(copy), "Copy failed: ditto failed: exit 1");
    EXPECT_EQ(contentOf(world.drive / "copy/other"), "whole");
}

TEST(FileCopier, KeepsTheFirstLineOfAToolThatSaysTooMuch) {
    World world;
    EXPECT_EQ(failureOfDitto(world, "echo 'the cause' >&2; yes 'and so on' | head -n 100000 >&2; exit 1"),
              "FileCopier 1: ditto failed: the cause (and 100000 more)");
    EXPECT_EQ(failureOfDitto(world, "printf '\\n \\n the cause \\n\\n \\t\\nmore' >&2; exit 1"),
              "FileCopier 1: ditto failed: the cause (and 1 more)");
    EXPECT_EQ(failureOfDitto(world, "printf 'no \\377\\nthe cause\\n' >&2; exit 1"),
              "FileCopier 1: ditto failed: the cause (and 1 more)");
}

}  // namespace tarvik::test
