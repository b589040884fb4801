#include "Copying/CopyPlace.h"
#include "Copying/ItemLock.h"
#include "Copying/Leftovers.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Support/FailureOf.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace tarvik::test {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(CopyPlace, HoldsNothingWhereTheCopyIsToStand) {
    const World world;
    CopyPlace place(world.home / "Music");
    EXPECT_EQ(place.path().filename(), "Music");
    EXPECT_FALSE(Files::itemExists(place.path()));
    EXPECT_TRUE(HiddenPlace::isCopyUnderWayTo(world.home / "Music"));
    place.clearFolder();
    EXPECT_THAT(world.namesAtHome(), IsEmpty());
}

TEST(CopyPlace, LetsTheCopyArriveWhereNothingStands) {
    const World world;
    CopyPlace place(world.home / "Music");
    makeFile(place.path() / "song", "la la");
    makeFile(world.home / "Music/song", "another");
    EXPECT_NE(failureOf([&] { place.arrive(); }), "");
    EXPECT_EQ(contentOf(world.home / "Music/song"), "another");
    fs::remove_all(world.home / "Music");
    place.arrive();
    EXPECT_EQ(place.path(), world.home / "Music");
    EXPECT_EQ(contentOf(world.home / "Music/song"), "la la");
    EXPECT_THAT(world.namesAtHome(), ElementsAre("Music"));
}

TEST(CopyPlace, MarksTheCopyAsInUseWhereverItIs) {
    const World world;
    for (const bool isFolder : {true, false}) {
        const fs::path goal = world.home / (isFolder ? "Music" : "song");
        auto place = std::make_optional<CopyPlace>(goal);
        makeFile(isFolder ? place->path() / "song" : place->path(), "la la");
        Leftovers::sweep(world.host, world.home);
        EXPECT_TRUE(Files::exists(place->path()));
        place->leaveFolder();
        EXPECT_EQ(place->path().parent_path(), world.home);
        Leftovers::sweep(world.host, world.home);
        EXPECT_TRUE(HiddenPlace::isCopyUnderWayTo(goal));
        place->arrive();
        EXPECT_TRUE(ItemLock::isHeld(goal));
        place.reset();
        EXPECT_FALSE(ItemLock::isHeld(goal));
    }
    EXPECT_THAT(world.namesAtHome(), ElementsAre("Music", "song"));
    EXPECT_FALSE(Files::itemExists(world.trash->folder));
}

TEST(CopyPlace, TellsOfTheGoalAlone) {
    const World world;
    const CopyPlace place(world.home / "Music");
    EXPECT_EQ(place.inOwnName("ditto: " + (place.path() / "song").native() + ": No space left on device"),
              "ditto: " + (world.home / "Music/song").native() + ": No space left on device");
    EXPECT_EQ(place.inOwnName("Could not remove " + place.path().parent_path().native()),
              "Could not remove " + (world.home / "Music").native());
}

}  // namespace tarvik::test
