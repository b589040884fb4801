#include "Launchers/StaleRootRetarget.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

namespace tarvik {

namespace {

class StaleRootRetargetTest : public testing::Test {
protected:
    std::optional<fs::path> candidate(const fs::path& path) const {
        return StaleRootRetarget::candidate(world.host, path);
    }

    test::World world;
};

}  // namespace

TEST_F(StaleRootRetargetTest, FindsWhatStandsInTheFolderOfThisVersion) {
    test::makeFile(world.drive / "ExternalTarvik/Data/notes");
    EXPECT_EQ(candidate(world.drive / "Tarvik/Data/notes"), world.drive / "ExternalTarvik/Data/notes");
    // Also when the old one is still there.
    test::makeFile(world.drive / "Tarvik/Data/notes");
    EXPECT_EQ(candidate(world.drive / "Tarvik/Data/notes"), world.drive / "ExternalTarvik/Data/notes");
}

TEST_F(StaleRootRetargetTest, ReplacesEveryOccurrence) {
    test::makeFile(world.drive / "ExternalTarvik/Folders/ExternalTarvik/notes");
    EXPECT_EQ(candidate(world.drive / "Tarvik/Folders/Tarvik/notes"),
              world.drive / "ExternalTarvik/Folders/ExternalTarvik/notes");
}

TEST_F(StaleRootRetargetTest, GivesNothingWhereNothingIs) {
    test::makeLink(world.drive / "ExternalTarvik/dangling", "nowhere");
    EXPECT_EQ(candidate(world.drive / "Tarvik/Data/notes"), std::nullopt);
    EXPECT_EQ(candidate(world.drive / "Tarvik/dangling"), std::nullopt);
}

TEST_F(StaleRootRetargetTest, GivesNothingForAPathWithoutTheOldName) {
    for (const char* name : {"ExternalTarvik/notes", "tarvik/notes", "Tarvik2/notes", "MyTarvik/notes", "notes"}) {
        test::makeFile(world.drive / name);
        EXPECT_EQ(candidate(world.drive / name), std::nullopt) << name;
    }
    test::makeFolder(world.drive / "ExternalTarvik");
    EXPECT_EQ(candidate(world.drive / "Tarvik"), std::nullopt);
    EXPECT_EQ(candidate(""), std::nullopt);
}

}  // namespace tarvik
