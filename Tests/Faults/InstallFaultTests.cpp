// Every changing system call of an install is made to fail, and the program is killed at every one of them: of the
// program itself, and of the tool that copies. Whatever happens, what stood on the drive before is whole, there or
// where the failure says; what stands there now is whole; nothing stays attached or lies in the temporary folder; and
// the next try succeeds.
#include "Discovery/AppScanner.h"
#include "Faults/FaultPoints.h"
#include "Faults/FaultTrees.h"
#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"
#include "Support/RealVolume.h"
#include "Support/ShellScript.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

namespace tarvik::test {

namespace {

enum class InstallSubject {
    newApp,      ///< nothing stands on the drive
    sameApp,     ///< the same application stands there
    changedApp,  ///< another version stands there
    ownPlace,    ///< the source stands where the launcher is to
    image,       ///< the application is in an image, and another version stands there
    archive,     ///< the same in an archive
};
enum class InstallVictim { program, copier };

void putScript(const fs::path& path, const std::string& lines) {
    makeFile(path, scriptOf(lines));
    fs::permissions(path, fs::perms::owner_all);
}

/// A machine in a folder with a drive, which is made anew for each run.
class InstallFaultWorld {
public:
    InstallFaultWorld(InstallSubject subject, InstallVictim victim)
        : m_subject(subject), m_victim(victim), m_drive(RealVolume::memory(makeVolumes(), 20 * megabyte)) {
        for (const char* name : {"install-act", "external-app-launcher"})
            fs::copy_file(programOfThisBuild(name), ensured(programs()) / name);
        FaultTrees::makeApplication(m_new);
        FaultTrees::copy(m_new, m_old);
        makeFile(m_old / "Contents/version", "older");
        makeFile(m_old / "Contents/Resources/Icon.icns", "another icon");
        if (subject == InstallSubject::image) makeImage();
        if (subject == InstallSubject::archive) makeArchive();
        if (!runTraced({}).succeeded()) throw std::runtime_error("failed without a fault: " + picture());
        FaultTrees::copy(goal(), m_installed);
    }

    static std::optional<std::string> unavailableReason(InstallSubject subject) {
        if (!Files::exists("/usr/bin/strace")) return "strace is not installed";
        if (subject == InstallSubject::image && !Files::exists("/usr/bin/xorriso")) return "xorriso is not installed";
        if (subject == InstallSubject::archive && !Files::exists("/usr/bin/zip")) return "zip is not installed";
        return std::nullopt;
    }

    std::vector<Fault> points() const {
        runTraced({"-e", "trace=" + std::string(FaultPoints::calls)});
        std::istringstream log(contentOf(m_folder / "log"));
        auto points = FaultPoints::in(m_root, log);
        std::erase_if(points, [](const Fault& point) { return point.call == "close"; });
        return points;
    }
    CommandResult run(const Fault& fault) const {
        return runTraced({"-e", "trace=" + fault.call, "-e",
                          "inject=" + fault.call + ":" + fault.effect + ":when=" + std::to_string(fault.ordinal) +
                              (fault.isForGood ? "+" : "")});
    }
    /// On what the last run has left.
    CommandResult runAgain() const { return runOnWhatIsThere({}); }

    bool hasStruck() const {
        std::istringstream log(contentOf(m_folder / "log"));
        return FaultPoints::hasStruckIn("", log);
    }

    bool isSourceWhole() const {
        if (m_subject == InstallSubject::ownPlace) return FaultTrees::isSameIn(m_root, m_new);
        if (m_subject == InstallSubject::image || m_subject == InstallSubject::archive)
            return contentOf(source()) == contentOf(m_folder / source().filename());
        return FaultTrees::isSame(source(), m_new);
    }
    bool isInstalled() const { return FaultTrees::isSame(goal(), m_installed); }
    bool stoodBefore() const {
        return m_subject == InstallSubject::changedApp || m_subject == InstallSubject::image ||
               m_subject == InstallSubject::archive;
    }
    bool isOldAtItsPlace() const { return FaultTrees::isSame(goal(), m_old); }
    bool isOldWhole() const { return !stoodBefore() || FaultTrees::isSameIn(m_root, m_old); }
    bool isGoalFree() const { return !Files::itemExists(goal()); }
    /// Nothing, what stood there before, or a launcher that works, for an application that is whole.
    bool isLauncherSound() const {
        if (!Files::itemExists(launcher())) return true;
        if (m_subject == InstallSubject::ownPlace && FaultTrees::isSame(launcher(), m_new)) return true;
        return isLauncherThere() && isInstalled();
    }
    bool isLauncherThere() const {
        const fs::path program = launcher() / "Contents/MacOS/ExternalAppLauncher";
        return AppScanner::launcherShimTarget(launcher()) == goal() && Files::exists(program) &&
               contentOf(program) == contentOf(programs() / "external-app-launcher");
    }
    /// What is attached, beside the drive.
    std::vector<std::string> attached() const {
        auto names = Files::names(m_root / "Volumes");
        std::erase(names, m_drive.path().filename().native());
        return names;
    }
    std::vector<std::string> inTemporary() const {
        auto names = Files::names(m_root / "tmp");
        std::erase(names, ".TarvikTrash");
        return names;
    }
    std::vector<std::string> besideTheApplication() const {
        auto names = Files::names(goal().parent_path());
        std::erase(names, ".TarvikTrash");
        std::erase(names, goal().filename().native());
        return names;
    }
    std::string picture() const { return pictureOf(m_root); }

private:
    static const fs::path& ensured(const fs::path& folder) {
        makeFolder(folder);
        return folder;
    }
    const fs::path& makeVolumes() const { return ensured(m_volumes); }
    fs::path programs() const { return m_folder / "bin"; }
    fs::path goal() const { return m_drive / "ExternalTarvik/Apps/Mixer.app"; }
    fs::path launcher() const { return m_root / "Applications/Mixer.app"; }
    fs::path source() const {
        if (m_subject == InstallSubject::ownPlace) return launcher();
        const char* const name = m_subject == InstallSubject::image     ? "Mixer.dmg"
                                 : m_subject == InstallSubject::archive ? "Mixer.zip"
                                                                        : "Mixer.app";
        return m_root / "Downloads" / name;
    }

    void makeImage() const {
        const auto made =
            CommandRunner::run("/usr/bin/xorriso", {"-as", "mkisofs", "-quiet", "-R", "-V", "Mixer", "-o",
                                                    (m_folder / "Mixer.dmg").native(), m_new.parent_path().native()});
        if (!made.succeeded()) throw std::runtime_error(made.stderr);
    }
    void makeArchive() const {
        const auto made =
            CommandRunner::run("/bin/sh", {"-c", "cd '" + m_new.parent_path().native() + "' && zip -qry '" +
                                                     (m_folder / "Mixer.zip").native() + "' Mixer.app"});
        if (!made.succeeded()) throw std::runtime_error(made.stderr);
    }

    void prepare() const {
        for (const char* name : {"Applications", "Downloads", "Users", "tmp"}) fs::remove_all(m_root / name);
        for (const auto& name : Files::names(m_drive.path())) fs::remove_all(m_drive / name);
        makeFolder(m_root / "Users/ada");
        makeFolder(m_root / "Applications");
        makeFolder(source().parent_path());
        if (m_subject == InstallSubject::image || m_subject == InstallSubject::archive)
            fs::copy_file(m_folder / source().filename(), source());
        else
            FaultTrees::copy(m_new, source());
        if (stoodBefore()) FaultTrees::copy(m_old, goal());
        if (m_subject == InstallSubject::sameApp) FaultTrees::copy(m_new, goal());
    }

    CommandResult runTraced(const std::vector<std::string>& tracing) const {
        prepare();
        return runOnWhatIsThere(tracing);
    }
    CommandResult runOnWhatIsThere(const std::vector<std::string>& tracing) const {
        std::vector<std::string> traced;
        if (!tracing.empty()) traced = {"/usr/bin/strace", "-qqq", "-y", "-o", (m_folder / "log").native()};
        traced.insert(traced.end(), tracing.begin(), tracing.end());
        for (const char* name : {"ditto", "hdiutil"}) {
            const bool isVictim = m_victim == InstallVictim::copier && std::string(name) == "ditto";
            std::string line = "exec";
            if (isVictim)
                for (const auto& word : traced) line += " '" + word + "'";
            putScript(programs() / "stand-ins" / name,
                      line + " '" + (programOfThisBuild("stand-ins") / name).native() + "' \"$@\"");
        }
        std::vector<std::string> words;
        if (m_victim == InstallVictim::program) words = traced;
        words.insert(words.end(), {(programs() / "install-act").native(), m_root.native(),
                                   (m_root / "Users/ada").native(), m_drive.path().native(), source().native()});
        return CommandRunner::run(words.front(), {words.begin() + 1, words.end()});
    }

    const InstallSubject m_subject;
    const InstallVictim m_victim;
    const TemporaryFolder m_folder;
    const fs::path m_root = m_folder / "root";
    const fs::path m_volumes = m_root / "Volumes";
    const RealVolume m_drive;
    const fs::path m_new = m_folder / "new/Mixer.app";
    const fs::path m_old = m_folder / "old/Mixer.app";
    /// What an install without a fault leaves.
    const fs::path m_installed = m_folder / "installed/Mixer.app";
};

class InstallFaults : public testing::TestWithParam<std::tuple<InstallSubject, InstallVictim>> {
protected:
    void tryEveryPoint(const InstallFaultWorld& world) {
        const auto points = world.points();
        ASSERT_GE(points.size(), 5U);
        expectDone(world);
        for (const Fault& point : points) {
            for (const char* error : {"error=EIO", "error=ENOSPC", "error=EACCES"})
                tryError(world, point, error, false);
            tryError(world, point, "error=EIO", true);
            tryKill(world, point);
            if (testing::Test::HasFailure()) return;  // One point tells enough.
        }
        std::cout << points.size() << " points, " << m_runs << " runs\n";
    }

private:
    static void expectDone(const InstallFaultWorld& world) {
        EXPECT_TRUE(world.isInstalled());
        EXPECT_TRUE(world.isLauncherThere());
        EXPECT_THAT(world.besideTheApplication(), testing::IsEmpty());
        expectNothingOpen(world);
    }
    static void expectNothingOpen(const InstallFaultWorld& world) {
        EXPECT_THAT(world.attached(), testing::IsEmpty());
        EXPECT_THAT(world.inTemporary(), testing::IsEmpty());
    }
    static void expectNothingLost(const InstallFaultWorld& world) {
        EXPECT_TRUE(world.isSourceWhole());
        EXPECT_TRUE(world.isOldWhole());
        EXPECT_TRUE(world.isGoalFree() || world.isInstalled() || (world.stoodBefore() && world.isOldAtItsPlace()));
        EXPECT_TRUE(world.isLauncherSound());
    }

    void tryError(const InstallFaultWorld& world, Fault fault, const std::string& error, bool isForGood) {
        fault.effect = error;
        fault.isForGood = isForGood;
        ++m_runs;
        const CommandResult result = world.run(fault);
        SCOPED_TRACE(fault.text() + (isForGood ? "+" : "") + "\n" + result.stdout + result.stderr + world.picture());
        EXPECT_TRUE(world.hasStruck());
        expectNothingLost(world);
        // What is broken for good keeps a program from clearing up too, and what cannot be removed the next start
        // clears.
        const bool isRemoval = fault.call.starts_with("unlink") || fault.call == "rmdir";
        if (!isForGood && !isRemoval) expectNothingOpen(world);
        if (result.status == 0) {
            EXPECT_TRUE(world.isInstalled() && world.isLauncherThere());
        } else {
            EXPECT_EQ(result.status, 1);
            const bool hasVanished = world.stoodBefore() && world.isGoalFree();
            EXPECT_TRUE(!hasVanished || result.stderr.find("that stood there is ") != std::string::npos);
        }
        if (isForGood || !isRemoval) return;
        world.runAgain();
        expectNothingOpen(world);
    }

    void tryKill(const InstallFaultWorld& world, Fault fault) {
        fault.effect = "signal=KILL";
        ++m_runs;
        const CommandResult killed = world.run(fault);
        SCOPED_TRACE(fault.text() + "\n" + killed.stdout + killed.stderr + world.picture());
        expectNothingLost(world);
        ++m_runs;
        const CommandResult again = world.runAgain();
        SCOPED_TRACE(again.stdout + again.stderr + world.picture());
        EXPECT_TRUE(again.status == 0 || world.isLauncherThere());
        EXPECT_TRUE(world.isInstalled() && world.isLauncherThere() && world.isOldWhole());
        EXPECT_THAT(world.besideTheApplication(), testing::IsEmpty());
        EXPECT_THAT(world.attached(), testing::IsEmpty());
    }

    int m_runs = 0;
};

std::string nameOfInstall(const testing::TestParamInfo<std::tuple<InstallSubject, InstallVictim>>& test) {
    const char* const subjects[] = {"NewApp", "SameApp", "ChangedApp", "OwnPlace", "Image", "Archive"};
    const auto [subject, victim] = test.param;
    return std::string(subjects[static_cast<int>(subject)]) + (victim == InstallVictim::program ? "" : "Copier");
}

}  // namespace

TEST_P(InstallFaults, LoseNothingAndLeaveNothingHalf) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const auto [subject, victim] = GetParam();
    if (const auto reason = InstallFaultWorld::unavailableReason(subject)) TARVIK_SKIP_BECAUSE(*reason);
    tryEveryPoint(InstallFaultWorld(subject, victim));
}

INSTANTIATE_TEST_SUITE_P(Of, InstallFaults,
                         testing::Combine(testing::Values(InstallSubject::newApp, InstallSubject::sameApp,
                                                          InstallSubject::changedApp, InstallSubject::ownPlace,
                                                          InstallSubject::image, InstallSubject::archive),
                                          testing::Values(InstallVictim::program)),
                         nameOfInstall);
INSTANTIATE_TEST_SUITE_P(OfTheCopy, InstallFaults,
                         testing::Combine(testing::Values(InstallSubject::newApp, InstallSubject::changedApp),
                                          testing::Values(InstallVictim::copier)),
                         nameOfInstall);

}  // namespace tarvik::test
