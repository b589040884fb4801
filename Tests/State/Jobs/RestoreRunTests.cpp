#include "State/Jobs/RestoreRun.h"

#include <gtest/gtest.h>

namespace tarvik::test {

namespace {

WayBack::Plan wayBack(const char* name) {
    return {fs::path("/Applications") / name, fs::path("/Volumes/Backup/ExternalTarvik/Apps") / name, true};
}

}  // namespace

TEST(RestoreRun, IsEmptyAtFirst) {
    const RestoreRun run;
    EXPECT_TRUE(run.isEmpty());
    EXPECT_EQ(run.label(), "");
    EXPECT_EQ(run.summary(), "");
    EXPECT_EQ(run.all(), ByteProgress{});
}

TEST(RestoreRun, TellsOfTheItemUnderWay) {
    RestoreRun run({wayBack("Atlas.app"), wayBack("Ink.app")});
    run.begin(1);
    EXPECT_EQ(run.label(), "Ink.app");
    EXPECT_EQ(run.from(), "/Volumes/Backup/ExternalTarvik/Apps/Ink.app");
    EXPECT_EQ(run.to(), "/Applications/Ink.app");
    EXPECT_EQ(run.bytes(), "");
    run.report({1'000'000, 4'000'000});
    EXPECT_EQ(run.bytes(), "1 MB of 4 MB");
    EXPECT_EQ(run.fraction(), 0.25);
    run.report({2'000'000, 3'000'000});
    EXPECT_EQ(run.fraction(), 0.5) << "the total never shrinks";
}

TEST(RestoreRun, TellsOfAllItemsByTheirSizes) {
    RestoreRun run({wayBack("Atlas.app"), wayBack("Ink.app")}, {3000, 1000});
    run.begin(0);
    run.report({1000, 3000});
    EXPECT_EQ(run.all(), (ByteProgress{1000, 4000}));
    EXPECT_EQ(run.summary(), "1 of 2");
    run.begin(1);
    EXPECT_EQ(run.all(), (ByteProgress{3000, 4000}));
    run.report({5000, 5000});
    EXPECT_EQ(run.allFraction(), 1) << "it may have grown since it was measured";
    EXPECT_EQ(run.summary(), "2 of 2");
    run.end("Moved 2 items back.", false);
    EXPECT_EQ(run.summary(), "Moved 2 items back.");
}

TEST(RestoreRun, KnowsOfOneItemWhatItReports) {
    RestoreRun run({wayBack("Atlas.app")});
    run.report({1, 4});
    EXPECT_EQ(run.all(), (ByteProgress{1, 4}));
    EXPECT_EQ(run.summary(), "");
}

TEST(RestoreRun, IsWholeWhenItHasComeBack) {
    RestoreRun run({wayBack("Atlas.app")});
    run.end("Restored Atlas.app", false);
    EXPECT_EQ(run.fraction(), 1);
    RestoreRun failed({wayBack("Atlas.app")});
    failed.report({1, 4});
    failed.end("The drive is gone.", true);
    EXPECT_EQ(failed.fraction(), 0.25);
    EXPECT_TRUE(failed.hasFailed());
}

}  // namespace tarvik::test
