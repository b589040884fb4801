// Every changing system call of a move and of a restore is made to fail, and the program is killed at every one of
// them. Whatever happens, the tree stands whole at home or on the drive, and no link leads to half of it; and what a
// failure tells is what the user finds.
#include "Faults/FaultWorld.h"
#include "Platform/Files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace tarvik::test {

namespace {

constexpr const char* failures[] = {"error=EIO", "error=ENOSPC", "error=EACCES"};
constexpr const char* kill = "signal=KILL";

/// What a way to fail leaves behind: the beginning of its sentence, and what may stand in each place then.
struct KnownEnd {
    std::string sentence;
    std::vector<Stand> home, drive, stash;
};

std::vector<KnownEnd> knownEnds(Act act) {
    using enum Stand;
    if (act == Act::restore)
        return {
            // Only here has the item come home before something fails.
            {"Music is in its place again, but ", {whole}, {part, whole}, {nothing}},
            {"ditto failed: ", {link}, {whole}, {nothing}},
            {"Verification failed: ", {link}, {whole}, {nothing}},
            {"Could not ", {link}, {whole}, {nothing}},
        };
    return {
        {"Could not create the folder ", {whole}, {nothing}, {nothing}},
        {"Copy failed: ", {whole}, {nothing}, {nothing, part, whole}},
        {"Verification failed: ", {whole}, {nothing}, {part, whole}},
        {"Could not remove original after copy: ", {part, whole}, {nothing}, {whole}},
        {"Symlink creation failed: ", {whole}, {nothing}, {nothing}},
    };
}

/// The known end that the program's last words name. A path in them may hold line breaks.
std::optional<KnownEnd> endToldBy(const std::string& words, const std::vector<KnownEnd>& ends) {
    const auto end = std::find_if(ends.begin(), ends.end(), [&](const KnownEnd& known) {
        return words.starts_with(known.sentence) || words.find("\n" + known.sentence) != std::string::npos;
    });
    if (end == ends.end()) return std::nullopt;
    return *end;
}

/// What must hold after every run, however it ended.
void expectNothingLost(const FaultWorld& world, const Fault& fault) {
    EXPECT_TRUE(world.isWholeAtHome() || world.isWholeOnDrive()) << fault.text() << "\n" << world.picture();
    EXPECT_TRUE(world.isSomethingAtHome()) << fault.text() << "\n" << world.picture();
    EXPECT_TRUE(!world.isLinkAtHome() || world.isLinkGood()) << fault.text() << "\n" << world.picture();
}

void expectDone(const FaultWorld& world, Act act, bool mayLeaveALink = false) {
    const Places places = world.places();
    EXPECT_EQ(places.home, act == Act::move ? Stand::link : Stand::whole);
    EXPECT_EQ(places.drive, act == Act::move ? Stand::whole : Stand::nothing);
    EXPECT_EQ(places.stash, Stand::nothing);
    EXPECT_TRUE(mayLeaveALink || places.leftovers.empty()) << testing::PrintToString(places.leftovers);
}

void expectEnd(const FaultWorld& world, const KnownEnd& end) {
    const Places places = world.places();
    EXPECT_THAT(end.home, testing::Contains(places.home));
    EXPECT_THAT(end.drive, testing::Contains(places.drive));
    EXPECT_THAT(end.stash, testing::Contains(places.stash));
    EXPECT_FALSE(world.isRemembered());
    EXPECT_THAT(places.leftovers, testing::IsEmpty());
}

/// What must hold when the same act has been tried once more after a kill: it is done. Only the link of a restore or
/// the rest of an original may wait under a hidden name for an act after that.
void expectDoneAtLast(const FaultWorld& world, Act act, const Fault& fault, bool wasDone, const CommandResult& result) {
    SCOPED_TRACE(fault.text() + "\n" + result.stderr + world.picture());
    EXPECT_TRUE(result.status == 0 || wasDone);
    EXPECT_EQ(world.places().home, act == Act::move ? Stand::link : Stand::whole);
    if (act == Act::move) {
        EXPECT_EQ(world.places().drive, Stand::whole);
    }
}

bool isDone(const FaultWorld& world, Act act) {
    return world.places().home == (act == Act::move ? Stand::link : Stand::whole);
}

/// What must hold after every run that was not killed.
void expectKnownState(const FaultWorld& world, Act act, const Fault& fault, const CommandResult& result) {
    SCOPED_TRACE(fault.text() + "\n" + result.stderr + world.picture());
    // A link that the item has replaced may stay under its hidden name: the next act beside it clears it.
    const bool mayLeaveALink = act == Act::restore && (fault.call == "unlink" || fault.call == "unlinkat");
    if (result.status == 0) return expectDone(world, act, mayLeaveALink);
    EXPECT_EQ(result.status, 1);
    // Only the copy is complete then, and the user must be told where it is.
    if (world.places().home == Stand::part) {
        EXPECT_THAT(result.stderr, testing::HasSubstr(" The complete copy is "));
    }
    const auto end = endToldBy(result.stderr, knownEnds(act));
    ASSERT_TRUE(end) << "no known way to fail";
    expectEnd(world, *end);
}

void tryEveryPoint(Act act, Victim victim) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    if (!Files::exists("/usr/bin/strace")) TARVIK_SKIP_BECAUSE("strace is not installed");
    const FaultWorld world(act, victim);
    std::vector<Fault> points;
    const CommandResult unharmed = world.list(points);
    ASSERT_EQ(unharmed.status, 0) << unharmed.stderr;
    expectDone(world, act);
    ASSERT_GT(points.size(), 5U);
    std::size_t runs = 0;
    for (Fault point : points) {
        for (const char* effect : failures) {
            point.effect = effect;
            const CommandResult result = world.run(point);
            ++runs;
            // Which thread makes which call is another matter in each run.
            EXPECT_TRUE(world.hasStruck() || victim == Victim::copierThreads) << point.text();
            expectNothingLost(world, point);
            expectKnownState(world, act, point, result);
            if (victim == Victim::copierThreads) break;  // The other errors take the same ways.
        }
        if (victim == Victim::engine && point.call != "close") {
            // A drive or a disk that fails goes on failing. (A call to close that is kept from being made leaves pipes
            // open, which no real failure does.)
            point.effect = failures[0];
            point.isForGood = true;
            world.run(point);
            ++runs;
            expectNothingLost(world, point);
            point.isForGood = false;
        }
        point.effect = kill;
        world.run(point);
        ++runs;
        expectNothingLost(world, point);
        // Whatever the kill has left, the next try of the same loses nothing either, and comes to its end.
        const bool wasDone = isDone(world, act);
        const CommandResult again = world.runAgain();
        ++runs;
        expectNothingLost(world, point);
        expectDoneAtLast(world, act, point, wasDone, again);
        if (act == Act::restore) {
            // Nothing that the kill has left on the drive keeps the item from going there again.
            const CommandResult moved = world.runOther(Act::move);
            ++runs;
            expectNothingLost(world, point);
            expectDoneAtLast(world, Act::move, point, false, moved);
        }
        if (testing::Test::HasFailure()) return;  // One point tells enough.
    }
    testing::Test::RecordProperty("points", std::to_string(points.size()));
    std::cout << points.size() << " points, " << runs << " runs\n";
}

/// Some drivers know neither how to exchange names nor how to rename without replacing.
void expectDoneWithoutSpecialRenames(Act act) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    if (!Files::exists("/usr/bin/strace")) TARVIK_SKIP_BECAUSE("strace is not installed");
    const FaultWorld world(act, Victim::engine);
    const CommandResult result =
        world.run({.call = "renameat2", .ordinal = 1, .effect = "error=EINVAL", .isForGood = true});
    EXPECT_TRUE(world.hasStruck());
    EXPECT_EQ(result.status, 0) << result.stderr;
    expectDone(world, act);
}

}  // namespace

TEST(PlainRenames, AreEnoughForAMove) {
    expectDoneWithoutSpecialRenames(Act::move);
}
TEST(PlainRenames, AreEnoughForARestore) {
    expectDoneWithoutSpecialRenames(Act::restore);
}

TEST(FaultMatrix, AMoveLosesNothingWhenTheEngineFails) {
    tryEveryPoint(Act::move, Victim::engine);
}
TEST(FaultMatrix, AMoveLosesNothingWhenTheCopierFails) {
    tryEveryPoint(Act::move, Victim::copier);
}
TEST(FaultMatrix, AMoveLosesNothingWhenAThreadOfTheCopierFails) {
    tryEveryPoint(Act::move, Victim::copierThreads);
}
TEST(FaultMatrix, ARestoreLosesNothingWhenTheEngineFails) {
    tryEveryPoint(Act::restore, Victim::engine);
}
TEST(FaultMatrix, ARestoreLosesNothingWhenTheCopierFails) {
    tryEveryPoint(Act::restore, Victim::copier);
}
TEST(FaultMatrix, ARestoreLosesNothingWhenAThreadOfTheCopierFails) {
    tryEveryPoint(Act::restore, Victim::copierThreads);
}

}  // namespace tarvik::test
