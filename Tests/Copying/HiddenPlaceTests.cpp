#include "Copying/HiddenName.h"
#include "Copying/HiddenPlace.h"
#include "Platform/Files/Files.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace tarvik::test {

using testing::ElementsAre;

TEST(HiddenPlace, IsClaimedForOneCopyAndToldToOthers) {
    const World world;
    const fs::path longest = world.home / std::string(255, 'n');
    for (const fs::path& goal : {world.home / "Music", longest}) {
        EXPECT_FALSE(HiddenPlace::isCopyUnderWayTo(goal));
        {
            const auto claim = HiddenPlace::claimForCopyTo(goal);
            EXPECT_TRUE(Files::isFolder(claim.path));
            EXPECT_TRUE(HiddenPlace::isCopyUnderWayTo(goal));
            EXPECT_FALSE(HiddenPlace::isCopyUnderWayTo(world.home / "Film"));
            EXPECT_NE(HiddenPlace::claimForCopyTo(goal).path, claim.path);
        }
        EXPECT_FALSE(HiddenPlace::isCopyUnderWayTo(goal)) << "a killed act makes no copy any more";
    }
}

TEST(HiddenPlace, IsDisposedOfUnderTheItemsOwnName) {
    const World world;
    const fs::path item = world.home / "Music.app";
    for (const bool trashRefuses : {false, true}) {
        world.trash->refuses = trashRefuses;
        const fs::path hidden = HiddenName::forCopyTo(item);
        makeFile(hidden / "song", "la la");
        const auto outcome = HiddenPlace::stash(world.host, hidden, item);
        EXPECT_EQ(outcome.place,
                  trashRefuses ? world.home / ".TarvikTrash/Music.app-1794764743" : world.trash->folder / "Music.app");
        EXPECT_EQ(contentOf(outcome.place / "song"), "la la");
    }
    EXPECT_THAT(world.namesAtHome(), ElementsAre(".TarvikTrash"));
}

TEST(HiddenPlace, IsSetAsideWithAReason) {
    const World world;
    const fs::path item = world.home / "Music.app";
    for (const bool trashRefuses : {false, true}) {
        world.trash->refuses = trashRefuses;
        const fs::path hidden = HiddenName::forCopyTo(item);
        makeLink(hidden, "nowhere");
        const auto outcome = HiddenPlace::moveAside(world.host, hidden, item, "in-the-way");
        EXPECT_EQ(outcome.place, trashRefuses ? world.home / ".TarvikTrash/Music.app-in-the-way-2026-11-15T174543Z"
                                              : world.trash->folder / "Music.app");
        EXPECT_EQ(Files::linkText(outcome.place), "nowhere");
    }
    EXPECT_THAT(world.namesAtHome(), ElementsAre(".TarvikTrash"));
}

TEST(HiddenPlace, StaysWhereItIsWhenNothingTakesIt) {
    const World world;
    world.trash->refuses = true;
    makeFile(world.home / ".TarvikTrash", "a file in the way");
    const fs::path hidden = HiddenName::forCopyTo(world.home / "Music");
    makeFile(hidden / "song", "la la");
    EXPECT_EQ(HiddenPlace::stash(world.host, hidden, world.home / "Music"),
              (tarvik::Disposal::Outcome{tarvik::Disposal::Outcome::End::stayed, hidden}));
    EXPECT_EQ(contentOf(hidden / "song"), "la la");
    EXPECT_EQ(world.namesAtHome().size(), 2U);
}

TEST(HiddenPlace, KeepsALinkThatLeadsNowhereWhereItIs) {
    const World world;
    const fs::path hidden = HiddenName::forCopyTo(world.home / "Music");
    makeLink(hidden, "nowhere");
    EXPECT_EQ(HiddenPlace::stash(world.host, hidden, world.home / "Music"),
              (tarvik::Disposal::Outcome{tarvik::Disposal::Outcome::End::stayed, hidden}));
    EXPECT_THAT(world.namesAtHome(), ElementsAre(hidden.filename().native()));
}

}  // namespace tarvik::test
