// Every changing system call of an uninstall and of its way back is made to fail, and the program is killed at every
// one of them. Whatever happens, each thing is whole at its place, in the Trash or set aside, and the past uninstalls
// know where: putting them back brings everything to its place.
#include "Faults/FaultPoints.h"
#include "Faults/FaultTrees.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/Host.h"
#include "Platform/Processes/CommandRunner.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"
#include "Support/World.h"
#include "UninstallRun/UninstallHistory.h"
#include "UninstallRun/UninstallUndo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>
#include <sstream>
#include <stdexcept>

namespace tarvik::test {

namespace {

enum class Act { uninstall, undo };
enum class Subject {
    application,  ///< a bundle with data
    link,         ///< a link into a drive, with the copy there
    stash,        ///< a bundle with data, and a Trash that takes nothing
};

/// A machine in a folder with one application, which is made anew for each run.
class UninstallFaultWorld {
public:
    UninstallFaultWorld(Subject subject, Act act) : m_subject(subject), m_act(act) {
        makeMachine();
        for (std::size_t number = 0; number < items.size(); ++number)
            FaultTrees::copy(items[number], reference(number));
        if (subject == Subject::link) FaultTrees::copy(copy, copyReference());
    }

    void prepare() const {
        for (const auto& name : Files::names(root)) fs::remove_all(root / name);
        makeMachine();
        if (m_act == Act::undo && !runProgram(Act::uninstall, {}).succeeded())
            throw std::runtime_error("the uninstall failed");
    }
    std::vector<Fault> points() const {
        prepare();
        const auto result = runProgram(m_act, {"-e", "trace=" + std::string(FaultPoints::calls)});
        if (!result.succeeded()) throw std::runtime_error("failed without a fault: " + result.stderr + picture());
        std::istringstream log(contentOf(folder / "log"));
        auto points = FaultPoints::in(root, log);
        std::erase_if(points, [](const Fault& point) { return point.call == "close"; });
        return points;
    }
    CommandResult run(const Fault& fault) const {
        prepare();
        return runProgram(m_act, {"-e", "trace=" + fault.call, "-e",
                                  "inject=" + fault.call + ":" + fault.effect +
                                      ":when=" + std::to_string(fault.ordinal) + (fault.isForGood ? "+" : "")});
    }
    bool hasStruck() const {
        std::istringstream log(contentOf(folder / "log"));
        return FaultPoints::hasStruckIn("", log);
    }

    bool isAtPlace(std::size_t number) const {
        if (!Files::isSymbolicLink(reference(number))) return FaultTrees::isSame(items[number], reference(number));
        return Files::linkText(items[number]) == Files::linkText(reference(number));
    }
    bool areAllAtPlace() const {
        for (std::size_t number = 0; number < items.size(); ++number)
            if (!isAtPlace(number)) return false;
        return m_subject != Subject::link || FaultTrees::isSame(copy, copyReference());
    }
    /// What a user does then.
    std::string putBackAll() const {
        const Host host = Host::rootedAt(root, home);
        std::string told;
        for (const auto& session : UninstallHistory::list(host)) {
            told += session.id + "\n";
            for (const auto& item : UninstallUndo::putBack(host, session, AppUninstallReporter::silent))
                told += item.originalPath.native() + " " + item.reason + "\n";
        }
        return told;
    }
    std::string picture() const { return pictureOf(root); }

    const TemporaryFolder folder;
    const fs::path root = folder / "root";
    const fs::path home = root / "Users/ada";
    const fs::path copy = root / "Volumes/Drive/ExternalTarvik/Apps/Foo.app";
    std::vector<fs::path> items = {root / "Applications/Foo.app", home / "Library/Caches/Foo",
                                   home / "Library/Application Support/Foo"};

private:
    fs::path reference(std::size_t number) const {
        return folder / "reference" / std::to_string(number) / items[number].filename();
    }

    fs::path copyReference() const { return folder / "reference/copy/Foo.app"; }

    void makeMachine() const {
        makeFolder(items[0].parent_path());
        if (m_subject == Subject::link) {
            FaultTrees::makeApplication(copy);
            makeLink(items[0], copy);
        } else {
            FaultTrees::makeApplication(items[0]);
        }
        for (unsigned number = 1; number < 3; ++number) FaultTrees::makeData(items[number], number);
        if (m_subject == Subject::stash) makeFile(home / ".Trash", "no folder");
    }

    CommandResult runProgram(Act act, const std::vector<std::string>& tracing) const {
        std::vector<std::string> words = {"-qqq", "-y", "-o", (folder / "log").native()};
        words.insert(words.end(), tracing.begin(), tracing.end());
        words.insert(words.end(), {programOfThisBuild("uninstall-act").native(), root.native(), home.native()});
        words.push_back(act == Act::undo ? "undo" : "uninstall");
        if (act == Act::uninstall)
            for (const fs::path& item : items) words.push_back(item.native());
        if (!tracing.empty()) return CommandRunner::run("/usr/bin/strace", words);
        words.erase(words.begin(), words.begin() + 4);
        const fs::path program = words.front();
        words.erase(words.begin());
        return CommandRunner::run(program, words);
    }

    const Subject m_subject;
    const Act m_act;
};

class UninstallFaults : public testing::TestWithParam<std::tuple<Act, Subject>> {
protected:
    void tryEveryPoint(const UninstallFaultWorld& world) {
        const auto points = world.points();
        ASSERT_GE(points.size(), 5U);
        ASSERT_EQ(world.areAllAtPlace(), std::get<Act>(GetParam()) == Act::undo) << world.picture();
        world.putBackAll();
        ASSERT_TRUE(world.areAllAtPlace()) << world.picture();
        for (const Fault& point : points) {
            for (const char* effect : {"error=EIO", "error=ENOSPC", "signal=KILL"})
                for (const bool isForGood : {false, true}) tryFault(world, point, effect, isForGood);
            if (testing::Test::HasFailure()) return;  // One point tells enough.
        }
        std::cout << points.size() << " points, " << m_runs << " runs\n";
    }

private:
    void tryFault(const UninstallFaultWorld& world, Fault fault, const std::string& effect, bool isForGood) {
        if (isForGood && effect != "error=EIO") return;
        fault.effect = effect;
        fault.isForGood = isForGood;
        ++m_runs;
        const CommandResult result = world.run(fault);
        const std::string before = world.picture();
        const std::string told = world.putBackAll();
        SCOPED_TRACE(fault.text() + (isForGood ? "+" : "") + "\n" + result.stderr + before + told + world.picture());
        EXPECT_TRUE(world.hasStruck() || effect == "signal=KILL");
        EXPECT_TRUE(world.areAllAtPlace());
        EXPECT_FALSE(effect != "signal=KILL" && result.status != 0 && result.status != 1) << result.status;
    }

    int m_runs = 0;
};

std::string nameOf(const testing::TestParamInfo<std::tuple<Act, Subject>>& test) {
    const char* const subjects[] = {"Application", "Link", "Stash"};
    const auto [act, subject] = test.param;
    return std::string(act == Act::undo ? "Undo" : "Uninstall") + subjects[static_cast<int>(subject)];
}

}  // namespace

TEST_P(UninstallFaults, LoseNothing) {
    if (!Files::exists("/usr/bin/strace")) TARVIK_SKIP_BECAUSE("strace is not installed");
    const auto [act, subject] = GetParam();
    tryEveryPoint(UninstallFaultWorld(subject, act));
}

INSTANTIATE_TEST_SUITE_P(Of, UninstallFaults,
                         testing::Combine(testing::Values(Act::uninstall, Act::undo),
                                          testing::Values(Subject::application, Subject::link, Subject::stash)),
                         nameOf);

}  // namespace tarvik::test
