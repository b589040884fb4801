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

TEST(HiddenPlace, RemovesAnEmptyFolderThatWasLeftBehind) {
    const World world;
    makeFolder(HiddenPlace::forCopyTo(world.home / "Music"));
    HiddenPlace::sweep(world.host, world.home);
    EXPECT_THAT(world.namesAtHome(), IsEmpty());
    EXPECT_FALSE(Files::itemExists(world.trash->folder));
}

TEST(HiddenPlace, ClearsTheCopyThatAKilledMoveHasLeft) {
    const World world;
    const fs::path source = world.home / "Music";
    const fs::path copy = world.foldersOnDrive() / "Music";
    makeFile(source / "song", "la la");
    makeFile(copy / "song", "la la");
    // Without the mark of a killed act it is someone's own.
    HiddenPlace::clearUnfinished(world.host, source, copy);
    EXPECT_TRUE(Files::exists(copy / "song"));
    makeOldLink(HiddenPlace::forRemovalOf(source), world.foldersOnDrive() / "Film");
    makeOldLink(HiddenPlace::forRemovalOf(world.home / "Film"), copy);
    HiddenPlace::clearUnfinished(world.host, source, copy);
    EXPECT_TRUE(Files::exists(copy / "song"));
    for (const fs::path& mark : {HiddenPlace::forRemovalOf(source), HiddenPlace::forCopyTo(source)}) {
        makeOldLink(mark, copy);
        // A sweep leaves the mark, and an act that runs keeps the copy.
        HiddenPlace::sweep(world.host, world.home);
        for (const fs::path& item : {source, copy}) {
            const FileDescriptor held = HiddenPlace::hold(item);
            HiddenPlace::clearUnfinished(world.host, source, copy);
            EXPECT_TRUE(Files::exists(copy / "song"));
        }
        HiddenPlace::clearUnfinished(world.host, source, copy);
        EXPECT_FALSE(Files::itemExists(copy));
        EXPECT_EQ(contentOf(world.trash->folder / "Music/song"), "la la");
        EXPECT_THAT(world.namesAtHome(), ElementsAre("Music"));
        fs::remove_all(world.trash->folder);
        makeFile(copy / "song", "la la");
    }
}

TEST(HiddenPlace, RemovesALinkThatHasOutlivedItsAct) {
    const World world;
    const fs::path source = world.home / "Music";
    makeFile(source / "song", "la la");
    makeLink(HiddenPlace::forRemovalOf(source), world.foldersOnDrive() / "Music");
    {
        const FileDescriptor held = HiddenPlace::hold(source);
        HiddenPlace::clearUnfinished(world.host, source, world.foldersOnDrive() / "Music");
        EXPECT_EQ(world.namesAtHome().size(), 2U);
    }
    HiddenPlace::clearUnfinished(world.host, source, world.foldersOnDrive() / "Music");
    EXPECT_THAT(world.namesAtHome(), ElementsAre("Music"));
}

TEST(HiddenPlace, NeverTakesForACopyWhatTheOriginalDoesNotHold) {
    const World world;
    const fs::path source = world.home / "Music";
    const fs::path another = world.foldersOnDrive() / "Music";
    makeFile(source / "song", "la la");
    makeFile(another / "only copy", "of another Music");
    makeOldLink(HiddenPlace::forRemovalOf(source), another);
    HiddenPlace::clearUnfinished(world.host, source, another);
    EXPECT_EQ(contentOf(another / "only copy"), "of another Music");
}

TEST(HiddenPlace, NeverTakesForACopyWhatAnotherItemWasMovedTo) {
    const World world;
    const fs::path source = world.home / "Music";
    const fs::path another = world.home / "Band/Music";
    makeFile(source / "song", "la la");
    makeFile(another / "song", "hm hm");
    MoverEngine::moveAndLink(
        world.host, another, world.foldersOnDrive(), false, [](const JobStatus&) {}, [](std::int64_t, std::int64_t) {});
    makeOldLink(HiddenPlace::forRemovalOf(source), world.foldersOnDrive() / "Music");
    HiddenPlace::clearUnfinished(world.host, source, world.foldersOnDrive() / "Music");
    EXPECT_EQ(contentOf(another / "song"), "hm hm");
}

TEST(HiddenPlace, NeverTakesForACopyWhatALinkLeadsTo) {
    const World world;
    const fs::path source = world.home / "Music";
    const fs::path copy = world.foldersOnDrive() / "Music";
    makeFile(copy / "song", "la la");
    makeLink(source, copy);
    makeOldLink(HiddenPlace::forRemovalOf(source), copy);
    HiddenPlace::clearUnfinished(world.host, source, copy);
    EXPECT_EQ(contentOf(source / "song"), "la la");
}

TEST(HiddenPlace, IsDisposedOfUnderTheItemsOwnName) {
    const World world;
    const fs::path item = world.home / "Music.app";
    for (const bool trashRefuses : {false, true}) {
        world.trash->refuses = trashRefuses;
        const fs::path hidden = HiddenPlace::forCopyTo(item);
        makeFile(hidden / "song", "la la");
        const auto outcome = HiddenPlace::stash(world.host, hidden, item);
        EXPECT_EQ(outcome.place,
                  trashRefuses ? world.home / ".TarvikTrash/Music.app-1794764743" : world.trash->folder / "Music.app");
        EXPECT_EQ(contentOf(outcome.place / "song"), "la la");
    }
    EXPECT_THAT(world.namesAtHome(), ElementsAre(".TarvikTrash"));
}

TEST(HiddenPlace, StaysWhereItIsWhenNothingTakesIt) {
    const World world;
    world.trash->refuses = true;
    makeFile(world.home / ".TarvikTrash", "a file in the way");
    const fs::path hidden = HiddenPlace::forCopyTo(world.home / "Music");
    makeFile(hidden / "song", "la la");
    EXPECT_EQ(HiddenPlace::stash(world.host, hidden, world.home / "Music"),
              (tarvik::Disposal::Outcome{tarvik::Disposal::Outcome::End::stayed, hidden}));
    EXPECT_EQ(contentOf(hidden / "song"), "la la");
    EXPECT_EQ(world.namesAtHome().size(), 2U);
}

TEST(HiddenPlace, KeepsALinkThatLeadsNowhereWhereItIs) {
    const World world;
    const fs::path hidden = HiddenPlace::forCopyTo(world.home / "Music");
    makeLink(hidden, "nowhere");
    EXPECT_EQ(HiddenPlace::stash(world.host, hidden, world.home / "Music"),
              (tarvik::Disposal::Outcome{tarvik::Disposal::Outcome::End::stayed, hidden}));
    EXPECT_THAT(world.namesAtHome(), ElementsAre(hidden.filename().native()));
}

TEST(HiddenPlace, IsNotSpokenOf) {
    const std::string longName(250, 'n');
    for (const std::string& name : {std::string("Music"), std::string("odd \xff"), longName}) {
        const fs::path item = fs::path("/drive") / name;
        const fs::path hidden = HiddenPlace::forCopyTo(item);
        EXPECT_EQ(HiddenPlace::withOwnName("no " + hidden.native() + " and " + hidden.native() + "/x", hidden, item),
                  "no " + item.native() + " and " + item.native() + "/x");
    }
    const fs::path folder = HiddenPlace::forCopyTo("/drive/Music");
    EXPECT_EQ(HiddenPlace::withOwnName((folder / "Music").native(), folder, "/drive/Music"), "/drive/Music/Music");
    EXPECT_EQ(HiddenPlace::withOwnName((folder / "Music").native(), folder / "Music", "/drive/Music"), "/drive/Music");
    // The copy tool spells bytes that are no text in its own way.
    const fs::path odd = HiddenPlace::forCopyTo("/drive/odd \xff");
    std::string spelt = odd.native();
    spelt.replace(spelt.size() - 1, 1, "\\xFF");
    EXPECT_EQ(HiddenPlace::withOwnName(spelt, odd, "/drive/odd \xff"), "/drive/odd \\xFF");
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
