// Every changing system call of a launcher's making is made to fail, and the program is killed at every one of them.
// Whatever happens, what stands at the launcher's place is whole: the launcher, or what stood there before; and the
// next repair makes it whole.
#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"
#include "Platform/Text/PropertyList.h"
#include "Support/Bundles.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarvik::test {

namespace {

constexpr const char* changingCalls =
    "mkdir,mkdirat,openat,write,fchmod,fsync,rename,renameat2,unlink,unlinkat,rmdir,flock";

/// One call, by its name and which of them, and what happens to it.
struct Point {
    std::string call;
    int ordinal = 0;
};

/// A machine with a linked suite of one application, and the program of this build to give it a launcher.
struct LauncherFaultWorld {
    LauncherFaultWorld() {
        makeFolder(folder / "root/Users/ada");
        makeBundle(app, {{"CFBundleName", "Mixer"}, {"CFBundleIconFile", "Mixer"}});
        makeFileOfSize(app / "Contents/Resources/Mixer.icns", 100'000);
        makeFolder(applications);
        makeLink(applications / "Suite", app.parent_path());
    }

    void prepare(bool isOutdated) const {
        for (const auto& name : Files::names(applications))
            if (name != "Suite") fs::remove_all(applications / name);
        fs::remove_all(folder / "root/Users/ada/.Trash");
        if (isOutdated) makeLauncher(launcher, "/elsewhere");
    }

    CommandResult run(const std::vector<std::string>& tracing) const {
        std::vector<std::string> command = {"-qqq", "-y", "-o", (folder / "log").native()};
        command.insert(command.end(), tracing.begin(), tracing.end());
        for (const auto& word :
             {programOfThisBuild("tarvik").native(), std::string("--root"), (folder / "root").native(),
              std::string("--yes"), std::string("launchers"), std::string("--repair")})
            command.push_back(word);
        return CommandRunner::run("/usr/bin/strace", command);
    }

    /// The calls of an undisturbed run that touch the machine's folder.
    std::vector<Point> points() const {
        run({"-e", std::string("trace=") + changingCalls});
        std::vector<Point> found;
        std::map<std::string, int> ordinals;
        std::istringstream log(contentOf(folder / "log"));
        for (std::string line; std::getline(log, line);) {
            const std::string call = line.substr(0, line.find('('));
            const int ordinal = ++ordinals[call];
            const bool isReading = call == "openat" && line.find("O_CREAT") == std::string::npos;
            if (!isReading && line.find((folder / "root").native()) != std::string::npos)
                found.push_back({call, ordinal});
        }
        return found;
    }

    /// `which` of the calls from the point on meet the effect: "" that one, "+" all.
    CommandResult runWith(const Point& point, const std::string& effect, const std::string& which) const {
        return run({"-e", "trace=" + point.call, "-e",
                    "inject=" + point.call + ":" + effect + ":when=" + std::to_string(point.ordinal) + which});
    }
    bool hasLeftovers() const {
        const auto names = Files::names(applications);
        return std::any_of(names.begin(), names.end(),
                           [](const std::string& name) { return name.starts_with(".tarvik-"); });
    }

    bool isWhole() const {
        auto names = Files::names(launcher / "Contents");
        std::erase(names, "_CodeSignature");  // It opens without one, too.
        return names == std::vector<std::string>{"Info.plist", "MacOS", "PkgInfo", "Resources"} &&
               contentOf(launcher / "Contents/PkgInfo") == "APPL????" &&
               contentOf(launcher / "Contents/Resources/ExternalAppTarget.txt") == app.native() &&
               contentOf(launcher / "Contents/MacOS/ExternalAppLauncher") ==
                   contentOf(programOfThisBuild("external-app-launcher")) &&
               (statusOf(launcher / "Contents/MacOS/ExternalAppLauncher").st_mode & 07777U) == 0755U &&
               PropertyList::dictionaryAt(launcher / "Contents/Info.plist").text("CFBundleName") == "Mixer";
    }
    bool isOutdated() const {
        const fs::path target = launcher / "Contents/Resources/ExternalAppTarget.txt";
        return Files::exists(target) && contentOf(target) == "/elsewhere\n" &&
               Files::exists(launcher / "Contents/MacOS/program");
    }

    TemporaryFolder folder;
    fs::path applications = folder / "root/Applications";
    fs::path launcher = applications / "Mixer.app";
    fs::path app = folder / "root/Volumes/Backup/Suite/Mixer.app";
};

void tryEveryPoint(bool startsOutdated) {
    if (!Files::exists("/usr/bin/strace")) TARVIK_SKIP_BECAUSE("strace is not installed");
    const LauncherFaultWorld world;
    world.prepare(startsOutdated);
    const auto points = world.points();
    ASSERT_TRUE(world.isWhole());
    ASSERT_GT(points.size(), 15U);
    const auto expectSound = [&](const std::string& what) {
        const bool isAsBefore = startsOutdated ? world.isOutdated() : !Files::itemExists(world.launcher);
        EXPECT_TRUE(world.isWhole() || isAsBefore) << what << "\n" << pictureOf(world.applications);
    };
    for (const auto& point : points) {
        for (const auto& [effect, which] : {std::pair("error=EIO", ""), std::pair("error=ENOSPC", ""),
                                            std::pair("error=EIO", "+"), std::pair("signal=KILL", "")}) {
            const std::string what = point.call + " " + std::to_string(point.ordinal) + which + " " + effect;
            world.prepare(startsOutdated);
            const auto result = world.runWith(point, effect, which);
            expectSound(what);
            EXPECT_TRUE(result.status != 0 || world.isWhole()) << what;
            // When every call to write fails, nothing can be said any more.
            if (result.status == 1 && point.call != "write") {
                EXPECT_NE(result.stderr.find("Mixer.app: "), std::string::npos) << what << result.stderr;
                const bool isOver = std::string_view(which) != "+";
                EXPECT_TRUE(!isOver || !world.hasLeftovers()) << what;
                EXPECT_TRUE(!isOver || !startsOutdated || world.isOutdated()) << what;
            }
            // What a launcher has replaced waits under its hidden name for the next one that is made beside it.
            const bool isDone = world.isWhole();
            EXPECT_EQ(world.run({"-e", "trace=none"}).status, 0) << what;
            EXPECT_TRUE(world.isWhole()) << what << "\n" << pictureOf(world.applications);
            EXPECT_TRUE(isDone || !world.hasLeftovers()) << what;
            if (testing::Test::HasFailure()) return;  // One point tells enough.
        }
    }
    std::cout << points.size() << " points\n";
}

}  // namespace

TEST(LauncherFaults, LeaveNoHalfMadeLauncher) {
    tryEveryPoint(false);
}
TEST(LauncherFaults, LeaveNoHalfMadeLauncherInThePlaceOfAnother) {
    tryEveryPoint(true);
}

}  // namespace tarvik::test
