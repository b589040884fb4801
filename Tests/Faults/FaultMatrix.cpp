#include "Faults/FaultMatrix.h"

#include "Platform/Files/Files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace tarvik::test::FaultMatrix {

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
            {"{} is in its place again, but ", {whole}, {part, whole}, {nothing}},
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

/// How exactly the records are known after a run.
enum class Records {
    exact,     ///< they tell of each item whether it is away
    cautious,  ///< nothing that is away is forgotten, nothing that has never gone is remembered: what was being
               ///< recorded when the program ended may be or not
};

/// Whether a line of the program's words begins so. A path in them may hold line breaks.
bool isSaid(const std::string& words, const std::string& beginning) {
    return words.starts_with(beginning) || words.find("\n" + beginning) != std::string::npos;
}

/// An act on a world, and what is expected of it.
class Trial {
public:
    Trial(Subject subject, Act act, Victim victim) : m_world(subject, act, victim), m_act(act), m_victim(victim) {}

    void expectUnharmedRun() {
        const CommandResult result = m_world.list(m_points);
        ASSERT_EQ(result.status, 0) << result.stderr << m_world.picture();
        for (const auto& item : m_world.items()) expectDone(item, m_act);
        EXPECT_THAT(m_world.leftovers(), testing::IsEmpty());
        expectRecords(m_act, Records::exact);
        EXPECT_TRUE(m_world.areReferenceLaunchersGood());
        for (const auto& launcher : m_world.launchers())
            EXPECT_EQ(Files::itemExists(launcher), m_act == Act::move) << launcher;
        ASSERT_GT(m_points.size(), 5U);
    }

    const std::vector<Fault>& points() const { return m_points; }
    std::size_t runs() const { return m_runs; }

    void tryError(Fault fault, const char* error) {
        fault.effect = error;
        const CommandResult result = run(fault);
        // Which thread makes which call is another matter in each run.
        EXPECT_TRUE(m_world.hasStruck() || m_victim == Victim::copierThreads) << fault.text();
        expectKnownState(fault, result);
    }

    /// A drive or a disk that fails goes on failing.
    void tryErrorForGood(Fault fault) {
        fault.effect = failures[0];
        fault.isForGood = true;
        const CommandResult result = run(fault);
        SCOPED_TRACE(fault.text() + "+\n" + result.stderr + m_world.picture());
        expectRecords(m_act, m_world.hasStruckRecords() ? Records::cautious : Records::exact);
    }

    /// With `goesOn`, what follows on the next try is tried as well.
    void tryKill(Fault fault, bool goesOn) {
        fault.effect = kill;
        const CommandResult killed = run(fault);
        {
            SCOPED_TRACE(fault.text() + "\n" + killed.stderr + m_world.picture());
            expectRecords(m_act, Records::cautious);
        }
        // Whatever the kill has left, the next try of the same loses nothing either, and comes to its end.
        const bool wasDone = hasDone(m_act);
        CommandResult again = runUnharmed(m_act, fault);
        if (again.stderr == "Selected apps are already moved. Use Move Back.\n") again = runFromTheBeginning(fault);
        expectDoneAtLast(m_act, fault, wasDone, again);
        expectRecords(m_act, wasDone ? Records::cautious : Records::exact);
        expectLaunchersAfterRepair(fault);
        if (m_act == Act::move || !goesOn) return;
        // Nothing that the kill has left on the drive keeps the items from going there again.
        const CommandResult moved = runUnharmed(Act::move, fault);
        expectDoneAtLast(Act::move, fault, false, moved);
        expectRecords(Act::move, Records::exact);
    }

private:
    CommandResult run(const Fault& fault) {
        ++m_runs;
        CommandResult result = m_world.run(fault);
        expectNothingLost(fault, result);
        return result;
    }

    CommandResult runUnharmed(Act act, const Fault& fault) {
        ++m_runs;
        CommandResult result = m_world.runUnharmed(act);
        expectNothingLost(fault, result);
        return result;
    }

    /// The data of an application moves with its bundle: one that has gone before it comes back first.
    CommandResult runFromTheBeginning(const Fault& fault) {
        EXPECT_EQ(m_world.items().front().atHome(), Stand::link) << fault.text();
        const CommandResult back = runUnharmed(Act::restore, fault);
        for (const auto& item : m_world.items())
            EXPECT_EQ(item.atHome(), Stand::whole) << fault.text() << back.stderr << m_world.picture();
        return runUnharmed(Act::move, fault);
    }

    /// What must hold after every run, however it ended.
    void expectNothingLost(const Fault& fault, const CommandResult& result) const {
        SCOPED_TRACE(fault.text() + "\n" + result.stderr + m_world.picture());
        for (const auto& item : m_world.items()) {
            EXPECT_TRUE(m_world.isWholeSomewhere(item)) << item.home;
            EXPECT_TRUE(Files::itemExists(item.home)) << item.home;
            EXPECT_TRUE(item.hasNoBadLink()) << item.home;
        }
        for (const auto& launcher : m_world.launchers())
            EXPECT_TRUE(!Files::itemExists(launcher) || m_world.isLauncherWhole(launcher)) << launcher;
        EXPECT_TRUE(m_world.isMemorySound());
    }

    /// Whether the program's memory and the tracking database tell what stands on the disk.
    void expectRecords(Act act, Records records) const {
        for (const auto& item : m_world.items()) {
            const bool isAway = item.atHome() == Stand::link;
            const bool mustBeKnown = isAway && (records == Records::exact || act == Act::restore);
            const bool mustBeUnknown = !isAway && (records == Records::exact || act == Act::move);
            if (!mustBeKnown && !mustBeUnknown) continue;
            EXPECT_EQ(m_world.isRemembered(item), mustBeKnown) << item.home;
            EXPECT_EQ(m_world.isTracked(item), mustBeKnown) << item.home;
        }
    }

    void expectDone(const FaultItem& item, Act act) const {
        EXPECT_EQ(item.atHome(), act == Act::move ? Stand::link : Stand::whole) << item.home;
        EXPECT_EQ(item.onDrive(), act == Act::move ? Stand::whole : Stand::nothing) << item.home;
        EXPECT_EQ(item.inStash(), Stand::nothing) << item.home;
    }

    /// What must hold after every run that was not killed.
    void expectKnownState(const Fault& fault, const CommandResult& result) const {
        SCOPED_TRACE(fault.text() + "\n" + result.stderr + m_world.picture());
        // What the item has replaced may stay under its hidden name: the next act beside it clears it. To dispose of a
        // launcher takes calls of many kinds.
        const bool mayLeaveALink = m_act == Act::restore && (!m_world.items().front().launcher.empty() ||
                                                             fault.call == "unlink" || fault.call == "unlinkat");
        bool hasFailed = false;
        for (const auto& item : m_world.items()) {
            const auto end = endToldOf(item, result.stderr);
            if (end) {
                hasFailed = true;
                expectEnd(item, *end, result.stderr);
            } else {
                expectDone(item, m_act);
            }
        }
        EXPECT_EQ(result.status, hasFailed ? 1 : 0);
        expectRecords(m_act, m_world.hasStruckRecords() ? Records::cautious : Records::exact);
        EXPECT_TRUE((mayLeaveALink && !hasFailed) || m_world.leftovers().empty())
            << testing::PrintToString(m_world.leftovers());
        expectLaunchers(hasFailed);
    }

    /// What the program has told of an item that it could not take.
    std::optional<KnownEnd> endToldOf(const FaultItem& item, const std::string& words) const {
        for (KnownEnd& end : knownEnds(m_act)) {
            if (end.sentence.starts_with("{}")) end.sentence.replace(0, 2, item.home.filename().native());
            const std::string name = m_world.items().size() == 1 ? "" : item.calledIn(m_act) + ": ";
            if (isSaid(words, name + end.sentence)) return std::move(end);
        }
        return std::nullopt;
    }

    void expectEnd(const FaultItem& item, const KnownEnd& end, const std::string& words) const {
        EXPECT_THAT(end.home, testing::Contains(item.atHome())) << item.home;
        EXPECT_THAT(end.drive, testing::Contains(item.onDrive())) << item.home;
        EXPECT_THAT(end.stash, testing::Contains(item.inStash())) << item.home;
        // Only the copy is complete then, and the user must be told where it is.
        if (item.atHome() == Stand::part) {
            EXPECT_THAT(words, testing::HasSubstr(" The complete copy is "));
        }
    }

    /// Launchers stand where the folder has moved, and only there. One that could not be made or removed fails nothing.
    void expectLaunchers(bool hasFailed) const {
        const bool isMoved = m_world.items().front().atHome() == Stand::link;
        const auto launchers = m_world.launchers();
        const auto wrong = std::count_if(launchers.begin(), launchers.end(), [&](const fs::path& launcher) {
            return Files::itemExists(launcher) != isMoved;
        });
        EXPECT_LE(wrong, hasFailed ? 0 : 1);
    }

    /// What must hold when the same act has been tried once more after a kill: it is done. Only the link of a restore
    /// or the rest of an original may wait under a hidden name for an act after that.
    void expectDoneAtLast(Act act, const Fault& fault, bool wasDone, const CommandResult& result) const {
        SCOPED_TRACE(fault.text() + "\n" + result.stderr + m_world.picture());
        EXPECT_TRUE(result.status == 0 || wasDone);
        for (const auto& item : m_world.items()) {
            EXPECT_EQ(item.atHome(), act == Act::move ? Stand::link : Stand::whole) << item.home;
            if (act == Act::move) {
                EXPECT_EQ(item.onDrive(), Stand::whole) << item.home;
            }
        }
    }

    /// A kill can leave launchers as they should not be, but what mends launchers puts them right.
    void expectLaunchersAfterRepair(const Fault& fault) {
        if (m_world.launchers().empty()) return;
        ++m_runs;
        const CommandResult result = m_world.repairLaunchers();
        SCOPED_TRACE(fault.text() + "\n" + result.stderr + m_world.picture());
        EXPECT_EQ(result.status, 0);
        const bool isMoved = m_world.items().front().atHome() == Stand::link;
        for (const auto& launcher : m_world.launchers())
            EXPECT_TRUE(isMoved ? m_world.isLauncherWhole(launcher) : !Files::itemExists(launcher)) << launcher;
    }

    /// Whether anything of the act needs no doing any more.
    bool hasDone(Act act) const {
        const auto& items = m_world.items();
        return std::any_of(items.begin(), items.end(), [&](const FaultItem& item) {
            return item.atHome() == (act == Act::move ? Stand::link : Stand::whole);
        });
    }

    const FaultWorld m_world;
    const Act m_act;
    const Victim m_victim;
    std::vector<Fault> m_points;
    std::size_t m_runs = 0;
};

}  // namespace

void tryEveryPoint(Subject subject, Act act, Victim victim, Errors errors) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    if (const auto reason = FaultWorld::unavailableReason(subject)) TARVIK_SKIP_BECAUSE(*reason);
    Trial trial(subject, act, victim);
    trial.expectUnharmedRun();
    if (testing::Test::HasFailure()) return;
    std::size_t number = 0;
    for (const Fault& point : trial.points()) {
        // Calls to close are no other ones than those of a single folder.
        if (errors == Errors::one && subject != Subject::folder && point.call == "close") continue;
        for (const char* error : failures) {
            trial.tryError(point, error);
            if (errors == Errors::one) break;
        }
        const bool isThorough = errors == Errors::several || number % 4 == 0;
        // A call to close that is kept from being made for good leaves pipes open, which no real failure does.
        if (isThorough && victim == Victim::engine && point.call != "close") trial.tryErrorForGood(point);
        trial.tryKill(point, isThorough);
        ++number;
        if (testing::Test::HasFailure()) return;  // One point tells enough.
    }
    testing::Test::RecordProperty("points", std::to_string(number));
    std::cout << number << " points, " << trial.runs() << " runs\n";
}

void expectDoneWithoutSpecialRenames(Act act) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    if (const auto reason = FaultWorld::unavailableReason(Subject::folder)) TARVIK_SKIP_BECAUSE(*reason);
    const FaultWorld world(Subject::folder, act, Victim::engine);
    const CommandResult result =
        world.run({.call = "renameat2", .ordinal = 1, .effect = "error=EINVAL", .isForGood = true});
    EXPECT_TRUE(world.hasStruck());
    EXPECT_EQ(result.status, 0) << result.stderr;
    const FaultItem& item = world.items().front();
    EXPECT_EQ(item.atHome(), act == Act::move ? Stand::link : Stand::whole);
    EXPECT_EQ(item.onDrive(), act == Act::move ? Stand::whole : Stand::nothing);
    EXPECT_THAT(world.leftovers(), testing::IsEmpty());
}

}  // namespace tarvik::test::FaultMatrix
