// Every changing system call of a removal of duplicate launchers is made to fail, and the program is killed at every
// one of them. Whatever happens, each launcher is whole at its place or in the Trash, no application is touched, what
// is told is what the user finds, and the next run does what is left.
#include "Dedupe/AppDedupeService.h"
#include "Faults/FaultPoints.h"
#include "Faults/FaultTrees.h"
#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"
#include "Support/Bundles.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace tarvik::test {

namespace {

/// Two launchers of one application, and one of another, which have one name in the Trash.
class DedupeFaultWorld {
public:
    DedupeFaultWorld() {
        prepare();
        for (std::size_t number = 0; number < launchers.size(); ++number)
            FaultTrees::copy(launchers[number], folder / "reference" / std::to_string(number));
        m_applications = pictureOf(root / "Applications");
    }

    void prepare() const {
        fs::remove_all(root);
        for (const char* name : {"Edit", "Draw"})
            makeBundle(root / "Applications" / (std::string(name) + ".app"), {{"CFBundleIdentifier", name}});
        for (std::size_t number = 0; number < launchers.size(); ++number) {
            makeLauncher(
                launchers[number], "/gone",
                {{"CFBundleIdentifier", number == 2 ? "Draw" : "Edit"}, {"CFBundleVersion", std::to_string(number)}});
        }
    }
    std::vector<Fault> points() const {
        run({"-e", "trace=" + std::string(FaultPoints::calls)});
        std::istringstream log(contentOf(folder / "log"));
        return FaultPoints::in(root, log);
    }
    CommandResult run(const Fault& fault) const {
        return run({"-e", "trace=" + fault.call, "-e",
                    fmt::format("inject={}:{}:when={}{}", fault.call, fault.effect, fault.ordinal,
                                fault.isForGood ? "+" : "")});
    }
    CommandResult runUnharmed() const { return run({"-e", "trace=none"}); }

    bool isAtItsPlace(std::size_t number) const { return FaultTrees::isSame(launchers[number], reference(number)); }
    bool isInTrash(std::size_t number) const { return FaultTrees::isSameIn(home / ".Trash", reference(number)); }
    bool areApplicationsUntouched() const { return pictureOf(root / "Applications") == m_applications; }
    /// Whether the command's lines about each launcher are true: their state is the third field.
    bool isTrue(const std::string& output) const {
        std::istringstream lines(output);
        std::string line;
        std::getline(lines, line);
        while (std::getline(lines, line)) {
            const auto number =
                std::find_if(launchers.begin(), launchers.end(),
                             [&](const fs::path& launcher) { return line.starts_with(launcher.native() + "\t"); }) -
                launchers.begin();
            const bool isDone = line.find("\tdone\t") != std::string::npos;
            if (isDone != isInTrash(static_cast<std::size_t>(number))) return false;
        }
        return true;
    }

    const TemporaryFolder folder;
    const fs::path root = folder / "root";
    const fs::path home = root / "Users/ada";
    const std::vector<fs::path> launchers = {home / "Applications/Edit.app", home / "Applications/Old/Edit.app",
                                             home / "Applications/Older/Edit.app"};

private:
    CommandResult run(const std::vector<std::string>& tracing) const {
        std::vector<std::string> words = {"-qqq", "-y", "-o", (folder / "log").native()};
        words.insert(words.end(), tracing.begin(), tracing.end());
        for (const std::string& word :
             {programOfThisBuild("tarvik").native(), std::string("--root"), root.native(), std::string("--yes"),
              std::string("--format"), std::string("tsv"), std::string("dedupe"), std::string("--remove")})
            words.push_back(word);
        return CommandRunner::run("/usr/bin/strace", words);
    }
    fs::path reference(std::size_t number) const { return folder / "reference" / std::to_string(number); }

    std::string m_applications;
};

void expectSound(const DedupeFaultWorld& world) {
    for (std::size_t number = 0; number < world.launchers.size(); ++number)
        EXPECT_NE(world.isAtItsPlace(number), world.isInTrash(number)) << world.launchers[number];
    EXPECT_TRUE(world.areApplicationsUntouched());
}

void expectAllInTrash(const DedupeFaultWorld& world) {
    for (std::size_t number = 0; number < world.launchers.size(); ++number)
        EXPECT_TRUE(world.isInTrash(number)) << world.launchers[number];
}

}  // namespace

TEST(DedupeFaults, LoseNoLauncher) {
    if (!Files::exists("/usr/bin/strace")) TARVIK_SKIP_BECAUSE("strace is not installed");
    const DedupeFaultWorld world;
    const auto points = world.points();
    expectAllInTrash(world);
    expectSound(world);
    ASSERT_GE(points.size(), 4U) << "the Trash is made, and three launchers go";
    int runs = 0;
    for (Fault point : points) {
        for (const auto& [effect, isForGood] :
             {std::pair("error=EIO", false), {"error=EACCES", false}, {"error=EIO", true}, {"signal=KILL", false}}) {
            point.effect = effect;
            point.isForGood = isForGood;
            world.prepare();
            const auto result = world.run(point);
            ++runs;
            SCOPED_TRACE(point.text() + (isForGood ? "+" : "") + "\n" + result.stdout + result.stderr +
                         pictureOf(world.home));
            expectSound(world);
            EXPECT_TRUE(world.isTrue(result.stdout));
            if (result.status == 0) expectAllInTrash(world);
            // When every call to write fails, nothing can be said any more.
            if (result.status == 1 && point.call != "write") {
                EXPECT_NE(result.stderr.find("Dedupe completed with "), std::string::npos);
            }
            EXPECT_EQ(world.runUnharmed().status, 0);
            expectAllInTrash(world);
            expectSound(world);
            if (testing::Test::HasFailure()) return;  // One point tells enough.
        }
    }
    std::cout << points.size() << " points, " << runs << " runs\n";
}

}  // namespace tarvik::test
