#include "Move/HiddenPlace.h"
#include "Move/MoverEngine.h"
#include "Platform/Files.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace tarvik::test {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A link that is as old as those that a killed act has left.
void makeOldLink(const fs::path& link, const fs::path& target) {
    makeLink(link, target);
    const timespec old[] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, link.c_str(), old, AT_SYMLINK_NOFOLLOW), 0);
}

}  // namespace

TEST(HiddenPlace, IsNamedAfterTheItem) {
    const fs::path place = HiddenPlace::forRemovalOf("/home/ada/Music");
    EXPECT_EQ(place.parent_path(), "/home/ada");
    EXPECT_THAT(place.filename().native(), testing::MatchesRegex("\\.tarvik-removing-[0-9A-F]+-Music"));
    EXPECT_NE(place, HiddenPlace::forRemovalOf("/home/ada/Music"));
}

TEST(HiddenPlace, HasRoomForTheLongestNames) {
    std::string name = std::string(252, 'n') + "\xe2\x82\xac";  // The euro sign ends at byte 255.
    const fs::path place = HiddenPlace::forRemovalOf(fs::path("/home") / name);
    EXPECT_LE(place.filename().native().size(), 255U);
    EXPECT_EQ(place.filename().native().back(), 'n');
}

TEST(HiddenPlace, PutsACopyThatWasLeftBehindIntoTheTrash) {
    const World world;
    makeFile(HiddenPlace::forCopyTo(world.home / "Music") / "song", "half a so");
    makeOldLink(HiddenPlace::forCopyTo(world.home / "Music"), "Music/song");
    HiddenPlace::sweep(world.host, world.home);
    EXPECT_THAT(world.namesAtHome(), IsEmpty());
    EXPECT_EQ(contentOf(world.trash->folder / "Music (left by an interrupted move)/song"), "half a so");
}

TEST(HiddenPlace, GivesWhatWasChangingPlacesItsPlaceBack) {
    const World world;
    makeFile(HiddenPlace::forExchangeOf(world.home / "Music") / "song", "la la");
    makeOldLink(HiddenPlace::forExchangeOf(world.home / "Film"), "far away");
    HiddenPlace::sweep(world.host, world.home);
    EXPECT_EQ(contentOf(world.home / "Music/song"), "la la");
    EXPECT_EQ(Files::linkText(world.home / "Film"), "far away");
    // With its place taken, it is a leftover like others.
    makeFile(HiddenPlace::forExchangeOf(world.home / "Music") / "song", "old");
    makeOldLink(HiddenPlace::forExchangeOf(world.home / "Film"), "old");
    HiddenPlace::sweep(world.host, world.home);
    EXPECT_EQ(contentOf(world.home / "Music/song"), "la la");
    EXPECT_EQ(Files::linkText(world.home / "Film"), "far away");
    EXPECT_EQ(contentOf(world.trash->folder / "Music (left by an interrupted move)/song"), "old");
    EXPECT_THAT(world.namesAtHome(), ElementsAre("Film", "Music"));
}

TEST(HiddenPlace, PutsAnOriginalThatWasLeftBehindIntoTheTrash) {
    const World world;
    makeFile(HiddenPlace::forRemovalOf(world.home / "Music") / "song", "la la");
    HiddenPlace::sweep(world.host, world.home);
    EXPECT_THAT(world.namesAtHome(), IsEmpty());
    EXPECT_EQ(contentOf(world.trash->folder / "Music (left by an interrupted move)/song"), "la la");
}

TEST(HiddenPlace, LeavesWhatARunningActHolds) {
    const World world;
    const fs::path copy = HiddenPlace::forCopyTo(world.home / "Film");
    const fs::path original = HiddenPlace::forRemovalOf(world.home / "Music");
    makeFile(copy / "song");
    makeFile(original / "song");
    {
        const FileDescriptor heldCopy = HiddenPlace::hold(copy);
        const FileDescriptor heldOriginal = HiddenPlace::hold(original);
        HiddenPlace::sweep(world.host, world.home);
        EXPECT_TRUE(Files::exists(copy / "song"));
        EXPECT_TRUE(Files::exists(original / "song"));
    }
    HiddenPlace::sweep(world.host, world.home);
    EXPECT_THAT(world.namesAtHome(), IsEmpty());
}

TEST(HiddenPlace, LeavesALinkThatARunningActMayHaveMade) {
    const World world;
    makeLink(HiddenPlace::forRemovalOf(world.home / "Music"), "far away");
    HiddenPlace::sweep(world.host, world.home);
    EXPECT_EQ(world.namesAtHome().size(), 1U);
}

TEST(HiddenPlace, FindsANameForEachOfSeveralLeftovers) {
    const World world;
    world.trash->refuses = true;
    makeFile(world.home / "Music (left by an interrupted move)");
    makeFile(HiddenPlace::forRemovalOf(world.home / "Music") / "song", "la la");
    HiddenPlace::sweep(world.host, world.home);
    EXPECT_THAT(world.namesAtHome(), ElementsAre(".TarvikTrash", "Music (left by an interrupted move)"));
}

TEST(HiddenPlace, LeavesEverythingElse) {
    const World world;
    for (const char* name :
         {".tarvik-notes", ".tarvik-moving-notes", ".tarvik-moving-12345678", ".tarvik-moving-abcdefgh-x",
          ".tarvik-removing-1234567-x", ".tarvik-moving-1234ABCD-", "tarvik-moving-1234ABCD-x"})
        makeFile(world.home / name);
    makeFile(world.home / "Music/.tarvik-moving-1/deep");
    const std::string before = pictureOf(world.home);
    HiddenPlace::sweep(world.host, world.home);
    HiddenPlace::sweep(world.host, world.home / "nowhere");
    EXPECT_EQ(pictureOf(world.home), before);
}

TEST(HiddenPlace, IsSweptByTheNextMoveAndTheNextRestore) {
    const World world;
    makeFile(world.home / "Music/song");
    makeFile(HiddenPlace::forCopyTo(world.home / "Film") / "film");
    MoverEngine::moveAndLink(
        world.host, world.home / "Music", world.foldersOnDrive(), false, [](const JobStatus&) {},
        [](std::int64_t, std::int64_t) {});
    EXPECT_THAT(world.namesAtHome(), ElementsAre("Music"));

    makeFile(HiddenPlace::forCopyTo(world.home / "Notes") / "note");
    makeFile(HiddenPlace::forRemovalOf(world.foldersOnDrive() / "Photos") / "photo");
    MoverEngine::restore(world.host, world.home / "Music");
    EXPECT_THAT(world.namesAtHome(), ElementsAre("Music"));
    EXPECT_THAT(Files::names(world.foldersOnDrive()), IsEmpty());
    EXPECT_TRUE(Files::exists(world.trash->folder / "Photos (left by an interrupted move)/photo"));
}

}  // namespace tarvik::test
