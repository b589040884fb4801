#include "Copying/Leftovers.h"
#include "Discovery/AppScanner.h"
#include "Launchers/LauncherAppBuilder.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"
#include "Platform/Text/PropertyList.h"
#include "Support/Bundles.h"
#include "Support/EnvironmentVariable.h"
#include "Support/OrdinaryUser.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tarvik {

namespace {

using test::contentOf;
using test::makeFile;
using test::statusOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Info = PropertyList::Dictionary;

/// A world with an application on the drive that wants a launcher.
class LauncherAppBuilderTest : public testing::Test {
protected:
    LauncherAppBuilderTest() {
        world.host.tools.externalAppLauncher = world.folder / "external-app-launcher";
        makeFile(world.host.tools.externalAppLauncher, "the program");
        test::makeFolder(applications);
        describe({{"CFBundleIdentifier", "org.example.editor"},
                  {"CFBundleName", "Editor"},
                  {"CFBundleShortVersionString", "1.2"},
                  {"CFBundleVersion", "120"}});
    }

    void describe(const Info& info) const { test::makeBundle(app, info); }
    /// As a source that puts control characters and the like into its list would be read.
    void describeInBinary(const Info& info) const {
        makeFile(app / "Contents/Info.plist", PropertyList(info).binary());
    }

    /// "done", or the description of the failure.
    std::string install(const fs::path& place, const fs::path& target) {
        lines.clear();
        const InstallerRunReporter reporter{[this](const std::string& line) { lines.push_back(line); }};
        try {
            LauncherAppBuilder::install(world.host, target, place, target, reporter);
        } catch (const Failure& failure) {
            lastFailure = failure;
            return failure.description();
        }
        return "done";
    }
    std::string install() { return install(launcher, app); }

    std::optional<std::string> infoText(std::string_view key) const {
        return PropertyList::dictionaryAt(launcher / "Contents/Info.plist").text(key);
    }

    test::World world;
    fs::path applications = world.folder / "Applications";
    fs::path app = world.drive / "Suite/Editor.app";
    fs::path launcher = applications / "Editor.app";
    fs::path targetFile = launcher / "Contents/Resources/ExternalAppTarget.txt";
    fs::path program = launcher / "Contents/MacOS/ExternalAppLauncher";
    std::vector<std::string> lines;
    std::optional<Failure> lastFailure;
};

/// What Python's own reader finds in a property list, keys in order.
std::string readByPython(const fs::path& list) {
    const std::string script =
        "import plistlib, sys\n"
        "for item in sorted(plistlib.load(open(sys.argv[1], 'rb')).items()): print(ascii(item[0]), ascii(item[1]))";
    const auto result = CommandRunner::run("/usr/bin/python3", {"-c", script, list.native()});
    return result.status == 0 ? result.stdout : result.stderr;
}

}  // namespace

TEST_F(LauncherAppBuilderTest, WritesAWholeBundle) {
    makeFile(app / "Contents/Resources/AppIcon.icns", "picture");
    describe({{"CFBundleIdentifier", "org.example.editor"},
              {"CFBundleDisplayName", "The Editor"},
              {"CFBundleName", "Editor"},
              {"CFBundleShortVersionString", "1.2"},
              {"CFBundleVersion", "120"},
              {"CFBundleIconFile", "AppIcon"}});
    EXPECT_EQ(install(), "done");
    EXPECT_THAT(Files::names(applications), ElementsAre("Editor.app"));
    EXPECT_THAT(Files::names(launcher / "Contents"), ElementsAre("Info.plist", "MacOS", "PkgInfo", "Resources"));
    EXPECT_THAT(Files::names(launcher / "Contents/MacOS"), ElementsAre("ExternalAppLauncher"));
    EXPECT_THAT(Files::names(launcher / "Contents/Resources"), ElementsAre("AppIcon.icns", "ExternalAppTarget.txt"));
    EXPECT_EQ(contentOf(launcher / "Contents/PkgInfo"), "APPL????");
    EXPECT_EQ(contentOf(targetFile), app.native());
    EXPECT_EQ(contentOf(launcher / "Contents/Resources/AppIcon.icns"), "picture");
    EXPECT_EQ(contentOf(program), "the program");
    EXPECT_EQ(statusOf(program).st_mode & 07777U, 0755U);
    EXPECT_EQ(statusOf(targetFile).st_mode & 07777U, 0644U);
    EXPECT_EQ(statusOf(launcher).st_mode, statusOf(applications).st_mode) << "as open as any new folder";
    EXPECT_EQ(PropertyList::dictionaryAt(launcher / "Contents/Info.plist"),
              PropertyList(Info{{"CFBundleExecutable", "ExternalAppLauncher"},
                                {"CFBundleIdentifier", "org.example.editor.externallauncher"},
                                {"CFBundleInfoDictionaryVersion", "6.0"},
                                {"CFBundleName", "The Editor"},
                                {"CFBundleDisplayName", "The Editor"},
                                {"CFBundlePackageType", "APPL"},
                                {"CFBundleShortVersionString", "1.2"},
                                {"CFBundleVersion", "120"},
                                {"LSMinimumSystemVersion", "10.13"},
                                {"CFBundleIconFile", "AppIcon.icns"}}));
    EXPECT_EQ(AppScanner::launcherShimTarget(launcher), app);
}

TEST_F(LauncherAppBuilderTest, TakesTheDocumentsOfTheApplication) {
    const PropertyList::List letters{Info{{"CFBundleTypeExtensions", PropertyList::List{"letter"}}}};
    describe({{"CFBundleDocumentTypes", letters}});
    EXPECT_EQ(install(), "done");
    const auto info = PropertyList::dictionaryAt(launcher / "Contents/Info.plist");
    const auto* const types = info.find("CFBundleDocumentTypes");
    ASSERT_TRUE(types);
    EXPECT_EQ(*types, PropertyList(PropertyList::List{Info{{"CFBundleTypeExtensions", PropertyList::List{"letter"}},
                                                           {"LSHandlerRank", "Alternate"}}}));
}

TEST_F(LauncherAppBuilderTest, DescribesABundleThatDoesNotDescribeItself) {
    for (const char* list : {"", "no list", "<plist version=\"1.0\"><array/></plist>"}) {
        makeFile(app / "Contents/Info.plist", list);
        fs::remove_all(launcher);
        EXPECT_EQ(install(), "done");
        EXPECT_EQ(infoText("CFBundleIdentifier"), "app.external.launcher.externallauncher");
        EXPECT_EQ(infoText("CFBundleName"), "Editor");
        EXPECT_EQ(infoText("CFBundleDisplayName"), "Editor");
        EXPECT_EQ(infoText("CFBundleShortVersionString"), "1.0");
        EXPECT_EQ(infoText("CFBundleVersion"), "1");
        EXPECT_EQ(infoText("CFBundleIconFile"), std::nullopt);
    }
}

TEST_F(LauncherAppBuilderTest, TakesOnlyTextsFromTheSource) {
    describe({{"CFBundleIdentifier", 7},
              {"CFBundleDisplayName", true},
              {"CFBundleName", PropertyList::List{"Editor"}},
              {"CFBundleShortVersionString", 1.5},
              {"CFBundleVersion", 12},
              {"CFBundleIconFile", 3}});
    EXPECT_EQ(install(), "done");
    EXPECT_EQ(infoText("CFBundleIdentifier"), "app.external.launcher.externallauncher");
    EXPECT_EQ(infoText("CFBundleName"), "Editor");
    EXPECT_EQ(infoText("CFBundleShortVersionString"), "1.0");
    EXPECT_EQ(infoText("CFBundleVersion"), "1");
    EXPECT_EQ(infoText("CFBundleIconFile"), std::nullopt);
}

TEST_F(LauncherAppBuilderTest, CopiesTheIconUnderItsFullName) {
    makeFile(app / "Contents/Resources/Round.icns", "round");
    for (const char* name : {"Round", "Round.icns"}) {
        describe({{"CFBundleIconFile", name}});
        fs::remove_all(launcher);
        EXPECT_EQ(install(), "done");
        EXPECT_EQ(infoText("CFBundleIconFile"), "Round.icns");
        EXPECT_EQ(contentOf(launcher / "Contents/Resources/Round.icns"), "round");
    }
}

TEST_F(LauncherAppBuilderTest, NamesNoIconThatTheSourceLacks) {
    test::makeFolder(app / "Contents/Resources");
    makeFile(app / "secret.icns", "not an icon of this bundle");
    for (const std::string name : {"Missing", "", "../../secret", "../Resources/Missing"}) {
        describe({{"CFBundleIconFile", name}});
        fs::remove_all(launcher);
        EXPECT_EQ(install(), "done");
        EXPECT_EQ(infoText("CFBundleIconFile"), std::nullopt) << name;
        EXPECT_THAT(Files::names(launcher / "Contents/Resources"), ElementsAre("ExternalAppTarget.txt"));
        EXPECT_THAT(Files::names(launcher), ElementsAre("Contents"));
    }
}

TEST_F(LauncherAppBuilderTest, NamesAnIconThatCouldNotBeCopied) {
    describe({{"CFBundleIconFile", "Odd"}});
    const fs::path icon = app / "Contents/Resources/Odd.icns";
    for (const bool isPipe : {true, false}) {
        fs::remove_all(icon);
        test::makeFolder(icon.parent_path());
        isPipe ? test::makePipe(icon) : test::makeFolder(icon);
        fs::remove_all(launcher);
        EXPECT_EQ(install(), "done");
        EXPECT_EQ(infoText("CFBundleIconFile"), "Odd.icns");
        EXPECT_THAT(Files::names(launcher / "Contents/Resources"), ElementsAre("ExternalAppTarget.txt"));
    }
}

TEST_F(LauncherAppBuilderTest, CopiesWhatAnIconThatIsALinkLeadsTo) {
    describe({{"CFBundleIconFile", "Linked"}});
    makeFile(app / "Contents/Resources/Real.icns", "picture");
    test::makeLink(app / "Contents/Resources/Linked.icns", "Real.icns");
    EXPECT_EQ(install(), "done");
    EXPECT_FALSE(Files::isSymbolicLink(launcher / "Contents/Resources/Linked.icns"));
    EXPECT_EQ(contentOf(launcher / "Contents/Resources/Linked.icns"), "picture");
}

TEST_F(LauncherAppBuilderTest, KeepsALauncherThatOpensTheTargetAlready) {
    EXPECT_EQ(install(), "done");
    makeFile(launcher / "Contents/Info.plist", "changed");
    const std::string picture = test::pictureOf(applications);
    EXPECT_EQ(install(), "done");
    EXPECT_THAT(lines, ElementsAre("reuse-launcher\t" + launcher.native()));
    EXPECT_EQ(test::pictureOf(applications), picture);
    EXPECT_FALSE(Files::exists(world.trash->folder));
}

TEST_F(LauncherAppBuilderTest, ReplacesALauncherWhoseTextEndsInALineBreak) {
    EXPECT_EQ(install(), "done");
    makeFile(targetFile, app.native() + "\n");
    ASSERT_EQ(AppScanner::launcherShimTarget(launcher), app);
    EXPECT_EQ(install(), "done");
    EXPECT_EQ(lines.front(), "stash-existing-launcher\t" + launcher.native());
    EXPECT_EQ(contentOf(targetFile), app.native());
    EXPECT_TRUE(Files::exists(world.trash->folder / "Editor.app"));
}

TEST_F(LauncherAppBuilderTest, ReplacesALauncherWithoutItsProgram) {
    EXPECT_EQ(install(), "done");
    fs::remove(program);
    EXPECT_EQ(install(), "done");
    EXPECT_EQ(lines.front(), "stash-existing-launcher\t" + launcher.native());
    EXPECT_EQ(contentOf(program), "the program");
}

TEST_F(LauncherAppBuilderTest, ReplacesALauncherThatOpensSomethingElse) {
    EXPECT_EQ(install(), "done");
    const fs::path other = world.drive / "Other/Editor.app";
    test::makeBundle(other, {{"CFBundleName", "Other"}});
    EXPECT_EQ(install(launcher, other), "done");
    EXPECT_EQ(contentOf(targetFile), other.native());
    EXPECT_EQ(infoText("CFBundleName"), "Other");
    EXPECT_EQ(contentOf(world.trash->folder / "Editor.app/Contents/Resources/ExternalAppTarget.txt"), app.native());
}

TEST_F(LauncherAppBuilderTest, SetsAsideWhateverElseStandsAtThePlace) {
    const std::string stashed = "stash-existing-launcher\t" + launcher.native();
    makeFile(launcher / "Contents/Resources/ExternalAppTarget.txt", "\xFF\xFE");
    EXPECT_EQ(install(), "done");
    EXPECT_EQ(lines.front(), stashed);
    fs::remove_all(launcher);
    fs::remove_all(world.trash->folder);
    test::makeLink(launcher, world.drive / "nowhere");
    EXPECT_EQ(install(), "done");
    EXPECT_EQ(lines.front(), stashed);
    EXPECT_EQ(Files::linkText(world.trash->folder / "Editor.app"), world.drive / "nowhere");
    EXPECT_EQ(contentOf(targetFile), app.native());
}

TEST_F(LauncherAppBuilderTest, LeavesWhatWasPutThereMeanwhile) {
    EXPECT_EQ(install(), "done");
    const fs::path other = world.drive / "Other/Editor.app";
    test::makeBundle(other);
    const InstallerRunReporter meddler{[this](const std::string& line) {
        if (!line.starts_with("stash-existing-launcher")) return;
        fs::remove_all(launcher);
        makeFile(launcher / "Contents/MacOS/Editor", "a real application");
    }};
    EXPECT_THROW(LauncherAppBuilder::install(world.host, other, launcher, other, meddler), Failure);
    EXPECT_EQ(contentOf(launcher / "Contents/MacOS/Editor"), "a real application");
    EXPECT_THAT(Files::names(applications), ElementsAre("Editor.app"));
    EXPECT_FALSE(Files::exists(world.trash->folder / "Editor.app"));
}

TEST_F(LauncherAppBuilderTest, SetsAsideBesideItWhenTheTrashRefuses) {
    world.trash->refuses = true;
    makeFile(launcher, "in the way");
    EXPECT_EQ(install(), "done");
    EXPECT_EQ(contentOf(applications / ".TarvikTrash/Editor.app-launcher-replace-2026-11-15T174543Z"), "in the way");
    EXPECT_EQ(contentOf(targetFile), app.native());
}

TEST_F(LauncherAppBuilderTest, NeverWritesIntoWhatCannotBeSetAside) {
    world.trash->refuses = true;
    makeFile(applications / ".TarvikTrash", "no folder");
    test::makeBundle(launcher, {{"CFBundleName", "A real application"}});
    const std::string picture = test::pictureOf(applications);
    EXPECT_EQ(install(), "Could not put a launcher at " + launcher.native() + ": File exists");
    EXPECT_EQ(test::pictureOf(applications), picture);
}

TEST_F(LauncherAppBuilderTest, LogsWhatItDoes) {
    world.host.tools.codesign = world.tool("codesign", "echo \"$*\" >> '" + (world.folder / "calls").native() + "'");
    world.host.tools.lsregister =
        world.tool("lsregister", "echo \"$*\" >> '" + (world.folder / "calls").native() + "'; exit 3");
    const std::string path = launcher.native();
    EXPECT_EQ(install(), "done");
    EXPECT_THAT(lines, ElementsAre("launcher-app\t" + path + "\t" + app.native(), "signed-launcher\t" + path,
                                   "registered-launcher\t" + path));
    EXPECT_EQ(contentOf(world.folder / "calls"), "--force --sign - --timestamp=none " + path + "\n-f " + path + "\n");
    EXPECT_EQ(install(), "done");
    EXPECT_THAT(lines, ElementsAre("reuse-launcher\t" + path, "registered-launcher\t" + path));
    makeFile(targetFile, "elsewhere");
    EXPECT_EQ(install(), "done");
    EXPECT_THAT(lines, ElementsAre("stash-existing-launcher\t" + path, "launcher-app\t" + path + "\t" + app.native(),
                                   "signed-launcher\t" + path, "registered-launcher\t" + path));
}

TEST_F(LauncherAppBuilderTest, OnlyWarnsWhenItCannotSign) {
    world.host.tools.codesign = world.tool("codesign", "echo 'no identity found' >&2; exit 1");
    EXPECT_EQ(install(), "done");
    EXPECT_EQ(lines.at(1), "sign-launcher-warning\tno identity found\n");
    fs::remove_all(launcher);
    world.host.tools.codesign = world.folder / "missing";
    EXPECT_EQ(install(), "done");
    EXPECT_THAT(lines.at(1), StartsWith("sign-launcher-warning\tCould not "));
    EXPECT_THAT(lines, testing::SizeIs(2));
    EXPECT_EQ(contentOf(targetFile), app.native());
}

TEST_F(LauncherAppBuilderTest, FindsItsProgramThroughTheEnvironment) {
    const fs::path named = world.folder / "another program";
    makeFile(named, "another");
    const test::EnvironmentVariable variable("TARVIK_LAUNCHER_BINARY", named.native());
    EXPECT_EQ(install(), "done");
    EXPECT_EQ(contentOf(program), "the program");  // The one beside this program goes first.
    fs::remove(world.host.tools.externalAppLauncher);
    fs::remove_all(launcher);
    EXPECT_EQ(install(), "done");
    EXPECT_EQ(contentOf(program), "another");
}

TEST_F(LauncherAppBuilderTest, LeavesNothingWithoutAProgram) {
    fs::remove(world.host.tools.externalAppLauncher);
    const std::string picture = test::pictureOf(applications);
    for (const auto& value : {std::optional<std::string>(), std::optional<std::string>(""),
                              std::optional<std::string>(world.folder / "missing")}) {
        const test::EnvironmentVariable variable("TARVIK_LAUNCHER_BINARY", value);
        EXPECT_EQ(install(), "Launcher binary is missing.");
        EXPECT_EQ(lastFailure->domain(), "launcher");
        EXPECT_EQ(lastFailure->code(), 1);
        EXPECT_THAT(lines, IsEmpty());
        EXPECT_EQ(test::pictureOf(applications), picture);
    }
}

TEST_F(LauncherAppBuilderTest, LooksForItsProgramAfterTheFoldersAreMade) {
    fs::remove(world.host.tools.externalAppLauncher);
    makeFile(world.folder / "file");
    EXPECT_EQ(install(world.folder / "file/Editor.app", app),
              "Could not create the folder " + (world.folder / "file/Editor.app").native() + ": Not a directory");
}

TEST_F(LauncherAppBuilderTest, KeepsWhatStoodThereWhenItFails) {
    EXPECT_EQ(install(), "done");
    makeFile(targetFile, "/elsewhere");
    fs::remove(world.host.tools.externalAppLauncher);
    const std::string picture = test::pictureOf(applications);
    EXPECT_EQ(install(), "Launcher binary is missing.");
    EXPECT_EQ(test::pictureOf(applications), picture);
    EXPECT_FALSE(Files::exists(world.trash->folder));
}

TEST_F(LauncherAppBuilderTest, FailsWhereNothingMayBeWritten) {
    fs::permissions(applications, fs::perms::owner_read | fs::perms::owner_exec);
    const test::OrdinaryUser user(world.folder.path());
    EXPECT_EQ(install(), "Could not create the folder " + launcher.native() + ": Permission denied");
    EXPECT_EQ(lastFailure->domain(), "Files");
    EXPECT_EQ(lastFailure->code(), EACCES);
    EXPECT_THAT(Files::names(applications), IsEmpty());
}

TEST_F(LauncherAppBuilderTest, FailsOnAFullDiskAndLeavesNothing) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const auto volume = test::RealVolume::memory(world.folder.path(), 64 * 1024);
    test::makeFileOfSize(world.host.tools.externalAppLauncher, 200'000);
    launcher = volume / "Editor.app";
    EXPECT_EQ(install(),
              "Could not write " + launcher.native() + "/Contents/MacOS/ExternalAppLauncher: No space left on device");
    EXPECT_THAT(Files::names(volume.path()), IsEmpty());
}

TEST_F(LauncherAppBuilderTest, MakesTheFolderThatItStandsIn) {
    launcher = world.home / "Applications/Editor.app";
    EXPECT_EQ(install(), "done");
    EXPECT_EQ(AppScanner::launcherShimTarget(launcher), app);
}

TEST_F(LauncherAppBuilderTest, ServesNamesOfEveryKind) {
    TARVIK_NEEDS_NAMES_OF_ANY_BYTES();
    const std::vector<std::string> names = {"A b  c.app",
                                            "\"quoted\" & <'tagged'>.app",
                                            "line\nbreak.app",
                                            "\xFF\xFE.app",
                                            "\x01 \x1B[31m.app",
                                            "%s$(x)`y`.app",
                                            "E\u0301diteur.app",
                                            "写真館.app",
                                            std::string(251, 'n') + ".app"};
    for (const auto& name : names) {
        const fs::path target = world.drive / name;
        launcher = applications / name;
        test::makeFile(target / "Contents/MacOS/program");
        EXPECT_EQ(install(launcher, target), "done") << name;
        EXPECT_EQ(AppScanner::launcherShimTarget(launcher), target) << name;
        EXPECT_TRUE(infoText("CFBundleName")) << name;
        EXPECT_EQ(install(launcher, target), "done");
        EXPECT_THAT(lines, ElementsAre("reuse-launcher\t" + launcher.native()));
    }
    EXPECT_EQ(Files::names(applications).size(), names.size());
}

TEST_F(LauncherAppBuilderTest, WritesAListThatOthersRead) {
    if (!Files::exists("/usr/bin/python3")) TARVIK_SKIP_BECAUSE("python3 is not installed");
    describeInBinary({{"CFBundleIdentifier", "org.example.<editor>&\"co\""},
                      {"CFBundleDisplayName", "Ada's <Editor> & \"Co\"\nfor all \u5199\U0001F600"},
                      {"CFBundleShortVersionString", "1\t2"},
                      {"CFBundleVersion", ""}});
    EXPECT_EQ(install(), "done");
    const std::string name = R"('Ada\'s <Editor> & "Co"\nfor all \u5199\U0001f600')";
    EXPECT_EQ(readByPython(launcher / "Contents/Info.plist"),
              "'CFBundleDisplayName' " + name +
                  "\n"
                  "'CFBundleExecutable' 'ExternalAppLauncher'\n"
                  "'CFBundleIdentifier' 'org.example.<editor>&\"co\".externallauncher'\n"
                  "'CFBundleInfoDictionaryVersion' '6.0'\n"
                  "'CFBundleName' " +
                  name +
                  "\n"
                  "'CFBundlePackageType' 'APPL'\n"
                  "'CFBundleShortVersionString' '1\\t2'\n"
                  "'CFBundleVersion' ''\n"
                  "'LSMinimumSystemVersion' '10.13'\n");
}

TEST_F(LauncherAppBuilderTest, WritesAListThatOthersReadWhateverTheNamesHold) {
    TARVIK_NEEDS_NAMES_OF_ANY_BYTES();
    if (!Files::exists("/usr/bin/python3")) TARVIK_SKIP_BECAUSE("python3 is not installed");
    const fs::path target = world.drive / "\x01 \xFF\x7F.app";
    launcher = applications / target.filename();
    test::makeFile(target / "Contents/MacOS/program");
    EXPECT_EQ(install(launcher, target), "done");
    EXPECT_THAT(readByPython(launcher / "Contents/Info.plist"), HasSubstr("'CFBundleName' '\\ufffd \\ufffd\\x7f'\n"));
}

TEST_F(LauncherAppBuilderTest, LosesNothingToASweepOfAnotherAct) {
    std::atomic<bool> isDone = false;
    std::vector<std::thread> others;
    for (int other = 0; other < 4; ++other)
        others.emplace_back([&] {
            while (!isDone) Leftovers::sweep(world.host, applications);
        });
    for (int turn = 0; turn < 40 && !HasFailure(); ++turn) {
        EXPECT_EQ(install(), "done");
        EXPECT_THAT(Files::names(launcher / "Contents"), ElementsAre("Info.plist", "MacOS", "PkgInfo", "Resources"));
        fs::remove_all(launcher);
    }
    isDone = true;
    for (auto& other : others) other.join();
    EXPECT_THAT(Files::names(applications), IsEmpty());
    EXPECT_FALSE(Files::exists(world.trash->folder));
}

TEST_F(LauncherAppBuilderTest, ClearsWhatAKilledInstallHasLeft) {
    makeFile(applications / ".tarvik-moving-0123ABCD-Editor.app/Contents/PkgInfo", "APPL????");
    EXPECT_EQ(install(), "done");
    EXPECT_THAT(Files::names(applications), ElementsAre("Editor.app"));
}

}  // namespace tarvik
