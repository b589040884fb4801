#include "Copying/MoverError.h"
#include "Move/OriginalRemoval.h"
#include "Platform/Files/Files.h"
#include "Support/FailureOf.h"
#include "Support/RealVolume.h"
#include "Support/ScarceMemory.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <functional>
#include <new>
#include <string>
#include <thread>
#include <unistd.h>

namespace tarvik::test {

using testing::ElementsAre;

namespace {

/// A machine with an original and its proved copy.
struct Pair {
    Pair() {
        makeFile(original / "song", "la la");
        makeFile(original / "deep/er/song", "lo lo");
        makeFile(copy / "song", "la la");
        makeFile(copy / "deep/er/song", "lo lo");
        picture = pictureOf(original);
        start = ChangeWatch::mark(original);
    }

    void replaceByLink(const fs::path& target, const ChangeWatch::Mark& mark) const {
        const OriginalRemoval::LinkInWaiting link(original, target);
        OriginalRemoval::replaceByLink(world.host, link, mark);
    }

    World world;
    fs::path original = world.home / "Music";
    fs::path copy = world.drive / "Music";
    std::string picture;
    ChangeWatch::Mark start;
};

}  // namespace

TEST(OriginalRemoval, LeavesALinkInThePlace) {
    const Pair pair;
    pair.replaceByLink(pair.copy, pair.start);
    EXPECT_EQ(Files::linkText(pair.original), pair.copy);
    EXPECT_THAT(pair.world.namesAtHome(), ElementsAre("Music"));
}

TEST(OriginalRemoval, NeverLeavesThePlaceFree) {
    const Pair pair;
    for (int file = 0; file < 200; ++file) makeFile(pair.original / std::to_string(file));
    std::atomic<bool> isWatched = false;
    std::atomic<bool> isDone = false;
    std::thread act([&] {
        isWatched.wait(false);
        pair.replaceByLink(pair.copy, ChangeWatch::mark(pair.original));
        isDone = true;
    });
    bool wasAlwaysThere = true;
    while (!isDone) {
        wasAlwaysThere = Files::itemExists(pair.original) && wasAlwaysThere;
        isWatched = true;
        isWatched.notify_all();
    }
    act.join();
    EXPECT_TRUE(wasAlwaysThere);
    EXPECT_TRUE(Files::isSymbolicLink(pair.original));
}

TEST(OriginalRemoval, PutsAChangedOriginalBack) {
    const Pair pair;
    makeFile(pair.original / "deep/er/song", "new words");
    const auto both = {failureOf([&] { OriginalRemoval::remove(pair.world.host, pair.original, pair.start); }),
                       failureOf([&] { pair.replaceByLink(pair.copy, pair.start); })};
    EXPECT_THAT(both, testing::Each("Verification failed: Music/deep/er/song was changed while it was copied."));
    EXPECT_EQ(contentOf(pair.original / "deep/er/song"), "new words");
    EXPECT_THAT(pair.world.namesAtHome(), ElementsAre("Music"));
}

TEST(OriginalRemoval, LeavesTheOriginalAloneWhereNoLinkCanBeMade) {
    // A link's text has an end, and this one goes beyond it.
    const Pair pair;
    const fs::path endless = pair.world.drive / std::string(5000, 'n');
    EXPECT_EQ(failureOf([&] { pair.replaceByLink(endless, pair.start); }),
              "Symlink creation failed: Could not create the link " + pair.original.native() + ": File name too long");
    EXPECT_EQ(pictureOf(pair.original), pair.picture);
    EXPECT_THAT(pair.world.namesAtHome(), ElementsAre("Music"));
}

TEST(OriginalRemoval, LeavesAnOriginalThatHoldsAVolume) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const Pair pair;
    const RealVolume inside = RealVolume::memory(pair.original / "deep", 1'000'000);
    EXPECT_EQ(failureOf([&] { pair.replaceByLink(pair.copy, ChangeWatch::mark(pair.original)); }),
              "Could not remove the mounted volume " + inside.path().native() + ": " + wordsFor(EBUSY));
    EXPECT_TRUE(Files::exists(pair.original / "song"));
    EXPECT_THAT(pair.world.namesAtHome(), ElementsAre("Music"));
}

TEST(OriginalRemoval, KeepsTheOriginalWhenItsCopyHasGone) {
    const Pair pair;
    fs::remove_all(pair.copy);
    EXPECT_EQ(failureOf([&] { pair.replaceByLink(pair.copy, pair.start); }),
              "Verification failed: Music has gone from the drive.");
    EXPECT_EQ(pictureOf(pair.original), pair.picture);
    EXPECT_THAT(pair.world.namesAtHome(), ElementsAre("Music"));
}

TEST(OriginalRemoval, PutsTheOriginalBackForWantOfMemory) {
    bool isOver = false;
    for (int ordinal = 1; !isOver; ++ordinal) {
        SCOPED_TRACE(ordinal);
        const Pair pair;
        bool isWhole = true;
        {
            const OriginalRemoval::LinkInWaiting link(pair.original, pair.copy);
            try {
                const ScarceMemory memory(ordinal);
                OriginalRemoval::replaceByLink(pair.world.host, link, pair.start);
                isOver = !ScarceMemory::hasStruck();
                isWhole = false;
            } catch (const Files::IncompleteRemoval& error) {
                EXPECT_EQ(error.code(), ENOMEM);
                EXPECT_TRUE(Files::isFolder(pair.original));
                isWhole = false;
            } catch (const std::bad_alloc&) {
                EXPECT_TRUE(ScarceMemory::hasStruck());
            }
        }
        if (isWhole) {
            EXPECT_EQ(pictureOf(pair.original), pair.picture);
        }
        EXPECT_EQ(Files::isSymbolicLink(pair.original), isOver);
        ASSERT_THAT(pair.world.namesAtHome(), ElementsAre("Music"));
        ASSERT_LT(ordinal, 1000);
    }
}

TEST(Files, LetsTwoItemsTakeEachOthersName) {
    const World world;
    makeFile(world.home / "folder/file", "inside");
    makeLink(world.home / "link", "anywhere");
    Files::exchange(world.home / "link", world.home / "folder", world.home / "between");
    EXPECT_EQ(Files::linkText(world.home / "folder"), "anywhere");
    EXPECT_EQ(contentOf(world.home / "link/file"), "inside");
    EXPECT_EQ(failureOf([&] { Files::exchange(world.home / "link", world.home / "none", world.home / "between"); }),
              "Could not exchange " + (world.home / "link").native() + " and " + (world.home / "none").native() +
                  ": No such file or directory");
    EXPECT_EQ(contentOf(world.home / "link/file"), "inside");
}

}  // namespace tarvik::test
