#include "Platform/Bundles/RunningAppsDetector.h"
#include "Platform/Bundles/RunningBundle.h"
#include "Platform/Files/Files.h"
#include "Platform/Processes/Utf8Locale.h"
#include "Support/EnvironmentVariable.h"
#include "Support/RealVolume.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <regex>
#include <string>
#include <unistd.h>

namespace tarvik {
namespace {

using std::chrono::milliseconds;
using test::makeFile;
using test::runSleeperIn;
using test::runStubbornSleeperIn;
using test::World;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Bundles = std::set<fs::path>;

constexpr std::chrono::seconds patience(60);
constexpr milliseconds noPatience(1);

Bundles in(std::string_view line) {
    return RunningAppsDetector::bundlePathsIn({line});
}

/// A machine whose process list is this text.
class Listed : public World {
public:
    explicit Listed(const std::string& text) {
        makeFile(folder / "list", text);
        host.tools.ps = tool("ps", "[ \"$*\" = '-axo comm,args' ] && cat '" + (folder / "list").native() + "'; exit 1");
    }
};

/// A machine with the real process list and the real process table. The caller's environment would spoil the list.
class Real : public World {
public:
    Real() {
        host.tools.ps = systemTools().ps;
        host.runningApplications = makeProcessTableApplications({folder.path()});
    }

    fs::path bundle = folder / "Applications/My Editor.app";

private:
    test::EnvironmentVariable m_width{"COLUMNS", "20"};
    test::EnvironmentVariable m_language{"LC_ALL", "C"};
};

TEST(RunningAppsDetector, FindsBundlesInALine) {
    EXPECT_EQ(in("/Applications/Editor.app/Contents/MacOS/Editor"), Bundles{"/Applications/Editor.app"});
    EXPECT_EQ(in("Editor  /Applications/Editor.app/Contents/MacOS/Editor -x"), Bundles{"/Applications/Editor.app"});
    EXPECT_EQ(in("open /Applications/Editor.app"), Bundles{"/Applications/Editor.app"});
    EXPECT_EQ(in("open /Applications/Editor.app --fresh"), Bundles{"/Applications/Editor.app"});
    EXPECT_EQ(in("open /Applications/Editor.app\tx"), Bundles{"/Applications/Editor.app"});
    EXPECT_EQ(in("open /Applications/Editor.app\u00A0x"), Bundles{"/Applications/Editor.app"});
    EXPECT_EQ(in("open /Applications/Editor.app\u3000x"), Bundles{"/Applications/Editor.app"});
}

TEST(RunningAppsDetector, KnowsABundleByAnotherPathToIt) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    World world;
    const fs::path bundle = world.folder / "Applications/Editor.app";
    makeFile(bundle / "Contents/Info.plist");
    makeFile(world.folder / "Applications/Other.app/Contents/Info.plist");
    const auto view = test::RealVolume::viewOf(world.folder / "Applications", world.folder.path());
    if (!view) TARVIK_SKIP_BECAUSE("This system shows no folder twice.");
    const Bundles inUse = {*view / "Editor.app"};
    EXPECT_TRUE(RunningAppsDetector::isAmong(inUse, bundle));
    EXPECT_TRUE(RunningAppsDetector::isAmong(inUse, *view / "./Editor.app/"));
    EXPECT_FALSE(RunningAppsDetector::isAmong(inUse, world.folder / "Applications/Other.app"));
    EXPECT_FALSE(RunningAppsDetector::isAmong(inUse, world.folder / "Elsewhere/Editor.app"));
    world.applications->list = {{.bundlePath = *view / "Editor.app"}};
    EXPECT_THAT(RunningAppsDetector::runningInstances(world.host, bundle), SizeIs(1));
}

TEST(RunningAppsDetector, APathMayHoldSpaces) {
    EXPECT_EQ(in("/Applications/My Own Editor.app/Contents/MacOS/My Own Editor"),
              Bundles{"/Applications/My Own Editor.app"});
    EXPECT_EQ(in("/Applications/.app.app x"), Bundles{"/Applications/.app.app"});
}

TEST(RunningAppsDetector, TwoPathsInALineAreTwoBundles) {
    EXPECT_EQ(in("diff /A/One.app /B/Two.app"), (Bundles{"/A/One.app", "/B/Two.app"}));
    EXPECT_EQ(in("/A/One.app/Contents/Helper /B/Two.app/Contents/MacOS/Two"), (Bundles{"/A/One.app", "/B/Two.app"}));
}

TEST(RunningAppsDetector, NoPathHoldsAQuotationMarkOrEndsAtOne) {
    EXPECT_EQ(in("run \"/A/One.app\" x /B/Two.app \"/C/Three.app /D/Four.app\""),
              (Bundles{"/B/Two.app", "/C/Three.app"}));
    EXPECT_EQ(in("/A/\" /B/Two.app"), Bundles{"/B/Two.app"});
}

TEST(RunningAppsDetector, TheShortestTextFromTheFirstSlashCounts) {
    EXPECT_EQ(in("/A/Outer.app/Contents/Inner.app/Contents/MacOS/Inner"), Bundles{"/A/Outer.app"});
    EXPECT_EQ(in("/A/Suite.app/Tools/Inner.app/Contents/x"), Bundles{"/A/Suite.app/Tools/Inner.app"});
    EXPECT_EQ(in("/bin/sh /A/One.app/Contents/MacOS/run"), Bundles{"/bin/sh /A/One.app"});
    EXPECT_EQ(in("/A/One.app/Contents/MacOS/One /B/Two.app"), (Bundles{"/A/One.app", "/One /B/Two.app"}));
    EXPECT_EQ(in("/A/One.application /B/Two.app"), Bundles{"/A/One.application /B/Two.app"});
    EXPECT_EQ(in("/.app /B/Two.app"), Bundles{"/.app /B/Two.app"});
}

TEST(RunningAppsDetector, OtherLinesNameNoBundle) {
    for (const char* line : {"", "/", "//", "/.app", ".app", "Editor.app", "/sbin/launchd", "/A/One.app/Contents",
                             "/A/One.app/x", "/A/One.application", "/A/One.APP", "/A/One.app\u00E9", "/A/One.app\xC2"})
        EXPECT_EQ(in(line), Bundles{}) << line;
}

TEST(RunningAppsDetector, GivesStandardizedPaths) {
    EXPECT_EQ(in("/A//x/../One.app"), Bundles{"/A/One.app"});
    EXPECT_EQ(RunningAppsDetector::bundlePathsIn({"/A/One.app", "x /A/./One.app/Contents/y", "/B/Two.app"}),
              (Bundles{"/A/One.app", "/B/Two.app"}));
}

TEST(RunningAppsDetector, ReadsLinesAsTheExpressionDoes) {
    const std::regex expression(R"((/[^"\n]+?\.app)(?:/Contents/|\s|$))");
    const std::vector<std::string> pieces = {"/", ".app", "\"",     " ",  "/Contents/",
                                             "a", ".",    "/A.app", "\t", "Contents"};
    std::mt19937 random(7);
    for (int round = 0; round < 5000; ++round) {
        std::string line;
        for (auto count = random() % 16; count > 0; --count) line += pieces[random() % pieces.size()];
        Bundles expected;
        for (std::sregex_iterator match(line.begin(), line.end(), expression), end; match != end; ++match)
            expected.insert(Files::standardized((*match)[1].str()));
        ASSERT_EQ(in(line), expected) << line;
    }
}

TEST(RunningAppsDetector, TakesALineAwayForEachOfItsOwn) {
    const auto without = RunningAppsDetector::linesWithout;
    EXPECT_THAT(without({"COMM    ARGS", "sh      sh /A/One.app", "vi      vi /A/One.app"},
                        {"COMM ARGS", "sh   sh /A/One.app"}),
                ElementsAre("vi      vi /A/One.app"));
    EXPECT_THAT(without({"sh sh /A/One.app", "sh sh /A/One.app"}, {"sh sh /A/One.app"}), SizeIs(1))
        << "another one does the same";
    EXPECT_THAT(without({"sh sh /A/One.app x", "xsh sh /A/One.app"}, {"sh sh /A/One.app"}), SizeIs(2));
    EXPECT_THAT(without({"a", "b"}, {}), SizeIs(2));
    EXPECT_THAT(without({}, {"a"}), IsEmpty());
}

TEST(RunningAppsDetector, DoesNotTakeItselfForTheApplicationThatItNames) {
    Listed world("sh      sh /A/One.app\nvi      vi /B/Two.app\n");
    const fs::path list = world.folder / "list";
    world.host.tools.ps = world.tool("ps", "case $1 in -axo) cat '" + list.native() + "';; -o) echo \"$*\" > '" +
                                               list.native() + ".asked'; echo 'sh sh /A/One.app';; esac");
    EXPECT_EQ(RunningAppsDetector::bundlePaths(world.host), Bundles{"/B/Two.app"});
    EXPECT_THAT(test::contentOf(list.native() + ".asked"),
                testing::StartsWith("-o comm,args -p " + std::to_string(::getpid())));
}

TEST(RunningAppsDetector, TakesTheProcessListAndTheListOfApplicationsTogether) {
    Listed world("COMM ARGS\n\n/A/One.app/Contents/MacOS/One x\n/sbin/launchd\n");
    world.applications->list = {{.process = 7, .startTime = 1, .bundlePath = "/B/./Two.app/"}};
    EXPECT_EQ(RunningAppsDetector::bundlePaths(world.host), (Bundles{"/A/One.app", "/B/Two.app"}));
    EXPECT_TRUE(RunningAppsDetector::isRunning(world.host, "/A/One.app"));
    EXPECT_TRUE(RunningAppsDetector::isRunning(world.host, "/A/x/..//One.app/"));
    EXPECT_TRUE(RunningAppsDetector::isRunning(world.host, "/B/Two.app"));
    EXPECT_FALSE(RunningAppsDetector::isRunning(world.host, "/A/one.app"));
    EXPECT_FALSE(RunningAppsDetector::isRunning(world.host, "/A"));
}

TEST(RunningAppsDetector, ReadsTheListOfAMacWhichCutsItsFirstColumn) {
    // `ps -axo comm,args` as macOS prints it: of a command that is not the last column, 16 bytes are left.
    Listed world(
        "COMM             ARGS\n"
        "/sbin/launchd    /sbin/launchd\n"
        "/System/Library/ /System/Library/CoreServices/loginwindow.app/Contents/MacOS/loginwindow console\n"
        "/Applications/My /Applications/My Editor.app/Contents/MacOS/My Editor\n"
        "/Applications/Ma /Applications/Mail Helper.app/Contents/MacOS/Mail Helper -psn_0_12345\n"
        "/usr/bin/python3 /usr/bin/python3 /Applications/Script.app/Contents/Resources/run.py\n"
        "/usr/libexec/tru /usr/libexec/trustd\n");
    const auto bundles = RunningAppsDetector::bundlePaths(world.host);
    for (const char* bundle : {"/System/Library/CoreServices/loginwindow.app", "/Applications/My Editor.app",
                               "/Applications/Mail Helper.app", "/Applications/Script.app"})
        EXPECT_TRUE(bundles.contains(bundle)) << bundle;
    EXPECT_FALSE(bundles.contains("/usr/libexec/trustd"));
}

TEST(RunningAppsDetector, TakesTheProgramsOfAllProcessesToo) {
    // Arguments may hide the program, and lists may be cut or late.
    Listed world("COMM             ARGS\nlogin            -bash\n");
    world.applications->inUse = {"/A/One.app", "/A/One.app/Contents/Helpers/Inner.app"};
    EXPECT_EQ(RunningAppsDetector::bundlePaths(world.host),
              (Bundles{"/A/One.app", "/A/One.app/Contents/Helpers/Inner.app"}));
}

TEST(RunningAppsDetector, AsksForTheProcessListInALocaleThatTheSystemKnows) {
    World world;
    const test::EnvironmentVariable language("LC_ALL", "nonsense");
    const fs::path noted = world.folder / "noted";
    world.host.tools.ps = world.tool("ps", "echo \"$LC_ALL\" > '" + noted.native() + "'");
    RunningAppsDetector::bundlePaths(world.host);
    EXPECT_EQ(test::contentOf(noted), Utf8Locale::name() + "\n");
}

TEST(RunningAppsDetector, TheListOfApplicationsServesAloneWhenTheProcessListSaysNothing) {
    Listed world("/A/One.app \xFF\n");  // No text as a whole.
    world.applications->list = {{.process = 7, .startTime = 1, .bundlePath = "/B/Two.app"}};
    EXPECT_EQ(RunningAppsDetector::bundlePaths(world.host), Bundles{"/B/Two.app"});
    world.host.tools.ps = world.folder / "missing";
    EXPECT_EQ(RunningAppsDetector::bundlePaths(world.host), Bundles{"/B/Two.app"});
    EXPECT_FALSE(RunningAppsDetector::containsProcess(world.host, "Two"));
}

TEST(RunningAppsDetector, FindsAProcessByAPartOfItsLineInAnyCase) {
    Listed world("/usr/sbin/Audiod -x\n/A/Überblick.app/Contents/MacOS/x\n");
    EXPECT_TRUE(RunningAppsDetector::containsProcess(world.host, "AUDIOD"));
    EXPECT_TRUE(RunningAppsDetector::containsProcess(world.host, "überBLICK"));
    EXPECT_TRUE(RunningAppsDetector::containsProcess(world.host, "-x"));
    EXPECT_FALSE(RunningAppsDetector::containsProcess(world.host, "videod"));
    EXPECT_FALSE(RunningAppsDetector::containsProcess(world.host, "-x\n/A"));
}

TEST(RunningAppsDetector, AHelperMakesItsBundleRunAlthoughTheListOfApplicationsLacksIt) {
    Real world;
    world.host.runningApplications = world.applications;
    EXPECT_FALSE(RunningAppsDetector::isRunning(world.host, world.bundle));
    const ChildProcess helper = runSleeperIn(world.bundle);
    EXPECT_TRUE(RunningAppsDetector::isRunning(world.host, world.bundle));
}

TEST(RunningAppsDetector, FindsABundleOfAnyNameInTheProcessList) {
    Real world;
    world.host.runningApplications = world.applications;
    const fs::path bundle = world.folder / "Applications/写真 Éditeur.app";
    const ChildProcess helper = runSleeperIn(bundle);
    EXPECT_TRUE(RunningAppsDetector::isRunning(world.host, bundle));
    EXPECT_TRUE(RunningAppsDetector::containsProcess(world.host, "写真 éDITEUR"));
}

TEST(RunningAppsDetector, ReadsUnusualProcessLists) {
    const auto listed = [](const std::string& text) {
        const Listed world(text);
        return RunningAppsDetector::bundlePaths(world.host);
    };
    EXPECT_EQ(listed("/A/One.app/Contents/x\n/B/Two.app"), (Bundles{"/A/One.app", "/B/Two.app"}))
        << "no last line break";
    EXPECT_EQ(listed("/A/One.app\r\n/B/Two.app x\r\n"), (Bundles{"/A/One.app", "/B/Two.app"}));
    EXPECT_EQ(listed(std::string("/A/One.app/Contents/\0x\n\0\n/B/Two.app\n", 37)),
              (Bundles{"/A/One.app", "/B/Two.app"}));
    EXPECT_EQ(listed(std::string("/A/One.app\0/B/Two.app\n", 23)).size(), 1U) << "a NUL ends no path";
    const std::string longText(1'000'000, 'x');
    EXPECT_EQ(listed(longText + " /A/One.app " + longText + "\n/B/" + longText + ".app\n"),
              (Bundles{"/A/One.app", "/B/" + longText + ".app"}));
    EXPECT_EQ(listed("\n\n\r\n"), Bundles{});
}

TEST(RunningAppsDetector, TheListOfApplicationsServesAloneWhenTheProcessListEndsInTheMiddleOfACharacter) {
    Listed world("/A/One.app\n/B/\xE5\x86");
    world.applications->list = {{.process = 7, .startTime = 1, .bundlePath = "/C/Three.app"}};
    EXPECT_EQ(RunningAppsDetector::bundlePaths(world.host), Bundles{"/C/Three.app"});
    EXPECT_FALSE(RunningAppsDetector::containsProcess(world.host, "One"));
}

/// How long it takes to quit the application of a world that will not listen.
std::chrono::duration<double> timeToGiveUp(bool force, std::chrono::duration<double> timeout,
                                           std::chrono::duration<double> forcedTimeout) {
    World world;
    world.applications->list = {{.process = 7, .startTime = 1, .bundlePath = "/A/One.app"}};
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(RunningAppsDetector::quit(world.host, "/A/One.app", force, timeout, forcedTimeout));
    return std::chrono::steady_clock::now() - begin;
}

TEST(RunningAppsDetector, QuitGivesAnApplicationAllItsTime) {
    EXPECT_GE(timeToGiveUp(false, milliseconds(500), noPatience), milliseconds(500));
    EXPECT_GE(timeToGiveUp(true, milliseconds(500), milliseconds(700)), milliseconds(1200));
}

TEST(RunningAppsDetector, GivesAnApplicationThatIsEndedByForceThreeSeconds) {
    World world;
    world.applications->list = {{.process = 7, .startTime = 1, .bundlePath = "/A/One.app"}};
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(RunningAppsDetector::quit(world.host, "/A/One.app", true, noPatience));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3));
}

TEST(RunningAppsDetector, QuitSeesAnApplicationGoThatTakesItsTime) {
    /// An application that is still there when it is looked for the first few times.
    class Slow : public test::MadeApplications {
    public:
        std::vector<RunningApplication> running() const override {
            if (--m_looks == 0) list.clear();
            return list;
        }

    private:
        mutable int m_looks = 4;
    };
    World world;
    const auto slow = std::make_shared<Slow>();
    slow->list = {{.process = 7, .startTime = 1, .bundlePath = "/A/One.app"}};
    world.host.runningApplications = slow;
    EXPECT_TRUE(RunningAppsDetector::quit(world.host, "/A/One.app", true, patience));
    EXPECT_THAT(slow->terminated, SizeIs(1));
    EXPECT_THAT(slow->forced, IsEmpty());
}

TEST(RunningAppsDetector, QuitAsksAndWaitsUntilTheApplicationHasGone) {
    const Real world;
    ChildProcess program = runSleeperIn(world.bundle);
    const ChildProcess other = runSleeperIn(world.folder / "Other.app");
    EXPECT_THAT(RunningAppsDetector::runningInstances(world.host, world.bundle), SizeIs(1));
    EXPECT_TRUE(RunningAppsDetector::quit(world.host, world.bundle, false, patience));
    EXPECT_EQ(program.wait(), SIGTERM);
    EXPECT_THAT(RunningAppsDetector::runningInstances(world.host, world.bundle), IsEmpty());
    EXPECT_FALSE(RunningAppsDetector::isRunning(world.host, world.bundle));
    EXPECT_TRUE(RunningAppsDetector::isRunning(world.host, world.folder / "Other.app"));
}

TEST(RunningAppsDetector, QuitGivesUpOnAnApplicationThatWillNotListen) {
    const Real world;
    ChildProcess program = runStubbornSleeperIn(world.bundle);
    EXPECT_FALSE(RunningAppsDetector::quit(world.host, world.bundle, false, noPatience));
    EXPECT_EQ(program.poll(), std::nullopt);
}

TEST(RunningAppsDetector, QuitByForceEndsOneThatWillNotListen) {
    const Real world;
    ChildProcess program = runStubbornSleeperIn(world.bundle);
    EXPECT_TRUE(RunningAppsDetector::quit(world.host, world.bundle, true, noPatience, patience));
    EXPECT_EQ(program.wait(), SIGKILL);
}

TEST(RunningAppsDetector, QuitOfABundleThatDoesNotRunAsksNothing) {
    World world;
    world.applications->list = {{.process = 7, .startTime = 1, .bundlePath = "/B/Two.app"}};
    EXPECT_TRUE(RunningAppsDetector::quit(world.host, "/A/One.app", true, patience));
    EXPECT_THAT(world.applications->terminated, IsEmpty());
    EXPECT_THAT(world.applications->forced, IsEmpty());
}

TEST(RunningAppsDetector, QuitAsksEachInstanceAndForcesOnlyWhenTold) {
    World world;
    const RunningApplication first{.process = 7, .startTime = 1, .bundlePath = "/A/One.app"};
    const RunningApplication second{.process = 8, .startTime = 2, .bundlePath = "/A/One.app/"};
    world.applications->list = {first, {.process = 9, .startTime = 3, .bundlePath = "/B/Two.app"}, second};
    EXPECT_FALSE(RunningAppsDetector::quit(world.host, "/A/./One.app", false, noPatience));
    EXPECT_THAT(world.applications->terminated, ElementsAre(first, second));
    EXPECT_THAT(world.applications->forced, IsEmpty());
    EXPECT_FALSE(RunningAppsDetector::quit(world.host, "/A/One.app", true, noPatience, noPatience));
    EXPECT_THAT(world.applications->forced, ElementsAre(first, second));
}

TEST(RunningAppsDetector, ABackgroundProcessThatTheListLacksIsLeftAlone) {
    Real world;
    world.host.runningApplications = world.applications;
    ChildProcess helper = runSleeperIn(world.bundle);
    EXPECT_TRUE(RunningAppsDetector::quit(world.host, world.bundle, true, patience));
    EXPECT_EQ(helper.poll(), std::nullopt);
    EXPECT_TRUE(RunningAppsDetector::isRunning(world.host, world.bundle));
}

}  // namespace
}  // namespace tarvik
