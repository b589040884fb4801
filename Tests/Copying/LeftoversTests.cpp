#include "Copying/HiddenName.h"
#include "Copying/ItemLock.h"
#include "Copying/Leftovers.h"
#include "Move/MoverEngine.h"
#include "Platform/Files/Files.h"
#include "Support/Bundles.h"
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

TEST(Leftovers, OfACopyGoToTheTrash) {
    const World world;
    makeFile(HiddenName::forCopyTo(world.home / "Music") / "song", "half a so");
    makeOldLink(HiddenName::forCopyTo(world.home / "Music"), "Music/song");
    Leftovers::sweep(world.host, world.home);
    EXPECT_THAT(world.namesAtHome(), IsEmpty());
    EXPECT_EQ(contentOf(world.trash->folder / "Music (left by an interrupted move)/song"), "half a so");
}

TEST(Leftovers, ThatWereChangingPlacesGetTheirPlaceBack) {
    const World world;
    makeFile(HiddenName::forExchangeOf(world.home / "Music") / "song", "la la");
    makeOldLink(HiddenName::forExchangeOf(world.home / "Film"), "far away");
    Leftovers::sweep(world.host, world.home);
    EXPECT_EQ(contentOf(world.home / "Music/song"), "la la");
    EXPECT_EQ(Files::linkText(world.home / "Film"), "far away");
    // With its place taken, it is a leftover like others.
    makeFile(HiddenName::forExchangeOf(world.home / "Music") / "song", "old");
    makeOldLink(HiddenName::forExchangeOf(world.home / "Film"), "old");
    Leftovers::sweep(world.host, world.home);
    EXPECT_EQ(contentOf(world.home / "Music/song"), "la la");
    EXPECT_EQ(Files::linkText(world.home / "Film"), "far away");
    EXPECT_EQ(contentOf(world.trash->folder / "Music (left by an interrupted move)/song"), "old");
    EXPECT_THAT(world.namesAtHome(), ElementsAre("Film", "Music"));
}

TEST(Leftovers, OfAnOriginalGoToTheTrash) {
    const World world;
    makeFile(HiddenName::forRemovalOf(world.home / "Music") / "song", "la la");
    Leftovers::sweep(world.host, world.home);
    EXPECT_THAT(world.namesAtHome(), IsEmpty());
    EXPECT_EQ(contentOf(world.trash->folder / "Music (left by an interrupted move)/song"), "la la");
}

TEST(Leftovers, AreNotWhatARunningActHolds) {
    const World world;
    const fs::path copy = HiddenName::forCopyTo(world.home / "Film");
    const fs::path original = HiddenName::forRemovalOf(world.home / "Music");
    makeFile(copy / "song");
    makeFile(original / "song");
    {
        const FileDescriptor heldCopy = ItemLock::hold(copy);
        const FileDescriptor heldOriginal = ItemLock::hold(original);
        Leftovers::sweep(world.host, world.home);
        EXPECT_TRUE(Files::exists(copy / "song"));
        EXPECT_TRUE(Files::exists(original / "song"));
    }
    Leftovers::sweep(world.host, world.home);
    EXPECT_THAT(world.namesAtHome(), IsEmpty());
}

TEST(Leftovers, AreNotLinksThatARunningActMayHaveMade) {
    const World world;
    makeLink(HiddenName::forRemovalOf(world.home / "Music"), "far away");
    Leftovers::sweep(world.host, world.home);
    EXPECT_EQ(world.namesAtHome().size(), 1U);
}

TEST(Leftovers, ThatAreEmptyFoldersAreRemoved) {
    const World world;
    makeFolder(HiddenName::forCopyTo(world.home / "Music"));
    Leftovers::sweep(world.host, world.home);
    EXPECT_THAT(world.namesAtHome(), IsEmpty());
    EXPECT_FALSE(Files::itemExists(world.trash->folder));
}

TEST(Leftovers, AreCompleteCopiesOfAKilledMove) {
    const World world;
    const fs::path source = world.home / "Music";
    const fs::path copy = world.foldersOnDrive() / "Music";
    makeFile(source / "song", "la la");
    makeFile(copy / "song", "la la");
    // Without the mark of a killed act it is someone's own.
    Leftovers::clearUnfinished(world.host, source, copy);
    EXPECT_TRUE(Files::exists(copy / "song"));
    makeOldLink(HiddenName::forRemovalOf(source), world.foldersOnDrive() / "Film");
    makeOldLink(HiddenName::forRemovalOf(world.home / "Film"), copy);
    Leftovers::clearUnfinished(world.host, source, copy);
    EXPECT_TRUE(Files::exists(copy / "song"));
    for (const fs::path& mark : {HiddenName::forRemovalOf(source), HiddenName::forCopyTo(source)}) {
        makeOldLink(mark, copy);
        // A sweep leaves the mark, and an act that runs keeps the copy.
        Leftovers::sweep(world.host, world.home);
        for (const fs::path& item : {source, copy}) {
            const FileDescriptor held = ItemLock::hold(item);
            Leftovers::clearUnfinished(world.host, source, copy);
            EXPECT_TRUE(Files::exists(copy / "song"));
        }
        Leftovers::clearUnfinished(world.host, source, copy);
        EXPECT_FALSE(Files::itemExists(copy));
        EXPECT_EQ(contentOf(world.trash->folder / "Music/song"), "la la");
        EXPECT_THAT(world.namesAtHome(), ElementsAre("Music"));
        fs::remove_all(world.trash->folder);
        makeFile(copy / "song", "la la");
    }
}

TEST(Leftovers, AreWhatAKilledWayBackHasLeftBehindALauncher) {
    const World world;
    const fs::path source = world.home / "Editor.app";
    const fs::path rest = world.drive / "Editor.app";
    const fs::path launcher = HiddenName::forCopyTo(source);
    for (const fs::path& item : {source, rest}) makeFile(item / "Contents/Info.plist", "of a real one");
    makeLauncher(launcher, rest);
    // The launcher is the mark by which the next move frees the place.
    Leftovers::sweep(world.host, world.home);
    EXPECT_TRUE(Files::exists(launcher));
    Leftovers::clearUnfinished(world.host, source, rest);
    EXPECT_FALSE(Files::itemExists(rest));
    EXPECT_EQ(contentOf(world.trash->folder / "Editor.app/Contents/Info.plist"), "of a real one");
    Leftovers::sweep(world.host, world.home);
    EXPECT_THAT(world.namesAtHome(), ElementsAre("Editor.app"));
    EXPECT_EQ(contentOf(source / "Contents/Info.plist"), "of a real one");
}

TEST(Leftovers, AreLaunchersThatWereToTakeAnotherOnesPlace) {
    const World world;
    const fs::path app = world.drive / "Editor.app";
    makeFile(app / "Contents/Info.plist");
    makeLauncher(world.home / "Editor.app", app);
    makeLauncher(HiddenName::forCopyTo(world.home / "Editor.app"), app);
    Leftovers::sweep(world.host, world.home);
    EXPECT_THAT(world.namesAtHome(), ElementsAre("Editor.app"));
    EXPECT_TRUE(Files::exists(app / "Contents/Info.plist"));
}

TEST(Leftovers, AreLinksThatHaveOutlivedTheirAct) {
    const World world;
    const fs::path source = world.home / "Music";
    makeFile(source / "song", "la la");
    makeLink(HiddenName::forRemovalOf(source), world.foldersOnDrive() / "Music");
    {
        const FileDescriptor held = ItemLock::hold(source);
        Leftovers::clearUnfinished(world.host, source, world.foldersOnDrive() / "Music");
        EXPECT_EQ(world.namesAtHome().size(), 2U);
    }
    Leftovers::clearUnfinished(world.host, source, world.foldersOnDrive() / "Music");
    EXPECT_THAT(world.namesAtHome(), ElementsAre("Music"));
}

TEST(Leftovers, AreNotWhatTheOriginalDoesNotHold) {
    const World world;
    const fs::path source = world.home / "Music";
    const fs::path another = world.foldersOnDrive() / "Music";
    makeFile(source / "song", "la la");
    makeFile(another / "only copy", "of another Music");
    makeOldLink(HiddenName::forRemovalOf(source), another);
    Leftovers::clearUnfinished(world.host, source, another);
    EXPECT_EQ(contentOf(another / "only copy"), "of another Music");
}

TEST(Leftovers, AreNotWhatAnotherItemWasMovedTo) {
    const World world;
    const fs::path source = world.home / "Music";
    const fs::path another = world.home / "Band/Music";
    makeFile(source / "song", "la la");
    makeFile(another / "song", "hm hm");
    MoverEngine::moveAndLink(world.host, another, world.foldersOnDrive(), false, {}, {});
    makeOldLink(HiddenName::forRemovalOf(source), world.foldersOnDrive() / "Music");
    Leftovers::clearUnfinished(world.host, source, world.foldersOnDrive() / "Music");
    EXPECT_EQ(contentOf(another / "song"), "hm hm");
}

TEST(Leftovers, AreNotWhatALinkLeadsTo) {
    const World world;
    const fs::path source = world.home / "Music";
    const fs::path copy = world.foldersOnDrive() / "Music";
    makeFile(copy / "song", "la la");
    makeLink(source, copy);
    makeOldLink(HiddenName::forRemovalOf(source), copy);
    Leftovers::clearUnfinished(world.host, source, copy);
    EXPECT_EQ(contentOf(source / "song"), "la la");
}

TEST(Leftovers, GetANameEachWhenThereAreSeveral) {
    const World world;
    world.trash->refuses = true;
    makeFile(world.home / "Music (left by an interrupted move)");
    makeFile(HiddenName::forRemovalOf(world.home / "Music") / "song", "la la");
    Leftovers::sweep(world.host, world.home);
    EXPECT_THAT(world.namesAtHome(), ElementsAre(".TarvikTrash", "Music (left by an interrupted move)"));
}

TEST(Leftovers, AreNothingElse) {
    const World world;
    for (const char* name :
         {".tarvik-notes", ".tarvik-moving-notes", ".tarvik-moving-12345678", ".tarvik-moving-abcdefgh-x",
          ".tarvik-removing-1234567-x", ".tarvik-moving-1234ABCD-", "tarvik-moving-1234ABCD-x"})
        makeFile(world.home / name);
    makeFile(world.home / "Music/.tarvik-moving-1/deep");
    const std::string before = pictureOf(world.home);
    Leftovers::sweep(world.host, world.home);
    Leftovers::sweep(world.host, world.home / "nowhere");
    EXPECT_EQ(pictureOf(world.home), before);
}

TEST(Leftovers, AreSweptByTheNextMoveAndTheNextRestore) {
    const World world;
    makeFile(world.home / "Music/song");
    makeFile(HiddenName::forCopyTo(world.home / "Film") / "film");
    MoverEngine::moveAndLink(
        world.host, world.home / "Music", world.foldersOnDrive(), false, [](const JobStatus&) {},
        [](std::int64_t, std::int64_t) {});
    EXPECT_THAT(world.namesAtHome(), ElementsAre("Music"));

    makeFile(HiddenName::forCopyTo(world.home / "Notes") / "note");
    makeFile(HiddenName::forRemovalOf(world.foldersOnDrive() / "Photos") / "photo");
    MoverEngine::restore(world.host, world.home / "Music");
    EXPECT_THAT(world.namesAtHome(), ElementsAre("Music"));
    EXPECT_THAT(Files::names(world.foldersOnDrive()), IsEmpty());
    EXPECT_TRUE(Files::exists(world.trash->folder / "Photos (left by an interrupted move)/photo"));
}

TEST(Leftovers, HoldCopiesThatNoRunningActMakes) {
    const World world;
    const fs::path left = HiddenName::forCopyTo(world.home / "Music");
    const fs::path running = HiddenName::forCopyTo(world.home / "Film");
    for (const fs::path& folder : {left, running, HiddenName::forRemovalOf(world.home / "Notes")})
        makeFile(folder / "file");
    const FileDescriptor held = ItemLock::hold(running);
    EXPECT_THAT(Leftovers::copiesIn(world.home), ElementsAre(left));
    EXPECT_THAT(Leftovers::copiesIn(world.home / "nowhere"), IsEmpty());
}

}  // namespace tarvik::test
