// The script that makes a Mac's disk image, run with doubles of a Mac's tools that write down how they are called.
#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

namespace tarvik {

namespace {

using test::makeFile;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

const std::string app = "build/package/image/Tarvik.app";

/// A source tree as far as the script looks at it, and the tools. Every tool writes a line into `calls` and fails when
/// it is the call that FAIL_AT names.
class PackageScript : public testing::Test {
protected:
    PackageScript() {
        fs::create_directories(tree / "Scripts");
        fs::copy_file(fs::path(TARVIK_SOURCE) / "Scripts/package-mac", tree / "Scripts/package-mac");
        tool(tree / "Scripts/build",
             "cd build/release/bin; mkdir -p Tarvik.app/Contents/MacOS; echo list >Tarvik.app/Contents/Info.plist\n"
             "for name in tarvik Tarvik.app/Contents/MacOS/Tarvik "
             "Tarvik.app/Contents/MacOS/external-app-launcher; do\n"
             "printf '#!/bin/sh\\n# machine code\\n[ $1 != --version ] || exit ${DOES_NOT_START:-0}\\necho tells "
             "$*\\n' >$name\n"
             "chmod +x $name; done");
        fs::create_directories(tree / "build/release/bin");
        tool(tree / "Scripts/install-dependencies", "");
        makeDouble("ditto", "cp -R \"$1\" \"$2\"");
        makeDouble("macdeployqt",
                   "for file in Frameworks/QtCore.framework/Versions/A/QtCore Frameworks/libplist.dylib "
                   "PlugIns/platforms/libcocoa.dylib; do mkdir -p \"$1/Contents/${file%/*}\"\n"
                   "echo 'machine code' >\"$1/Contents/$file\"; done");
        makeDouble("file",
                   "for file; do if grep -q 'machine code' \"$file\"; then echo \"$file: Mach-O 64-bit\"\n"
                   "else echo \"$file: XML\"; fi; done");
        makeDouble(
            "otool",
            "if [ $1 = -L ]; then printf '%s:\\n\\t@executable_path/../Frameworks/libplist.dylib (x)\\n"
            "\\t/usr/lib/libSystem.B.dylib (x)\\n' \"$2\"; case $2 in *libplist*) cat foreign 2>/dev/null || true;; "
            "esac\nelse printf '    minos %s\\n      sdk 99.0\\n' \"${MINOS:-13.0}\"; case $2 in "
            "*/MacOS/Tarvik) printf '     path @executable_path/../Frameworks (offset 12)\\n"
            "     path /opt/homebrew/lib (offset 12)\\n'; esac; fi");
        makeDouble("plutil", "case $2 in LSMinimum*) echo 13.0;; CFBundleShort*) echo 1.2.3;; esac");
        makeDouble("hdiutil", "for image; do :; done; echo image >\"$image\"");
        makeDouble("xcrun", "[ $1 = stapler ] || printf '  id: 7\\n  status: %s\\n' \"${ANSWER:-Accepted}\"");
        for (const char* name : {"codesign", "install_name_tool"}) makeDouble(name, "");
        makeFile(tree / "doubles/uname", "#!/bin/sh\necho arm64\n");
        fs::permissions(tree / "doubles/uname", fs::perms::owner_all);
    }

    void tool(const fs::path& path, const std::string& script) const {
        const std::string calls = "'" + (tree / "calls").native() + "'";
        makeFile(path, "#!/bin/sh\necho \"${0##*/} $*\" >>" + calls + "\n[ \"$(wc -l <" + calls +
                           ")\" -ne \"${FAIL_AT:-0}\" ] || exit 9\n" + script + "\n");
        fs::permissions(path, fs::perms::owner_all);
    }
    void makeDouble(const std::string& name, const std::string& script) const { tool(tree / "doubles" / name, script); }

    CommandResult run(EnvironmentChange change = {}) const {
        fs::remove(tree / "calls");
        for (const char* name : {"TARVIK_SIGN_IDENTITY", "TARVIK_NOTARY_PROFILE"}) change.emplace(name, std::nullopt);
        change["PATH"] = (tree / "doubles").native() + ":/usr/bin:/bin";
        return CommandRunner::run(tree / "Scripts/package-mac", {}, std::chrono::seconds(60), change);
    }

    std::vector<std::string> calls() const {
        std::vector<std::string> lines;
        std::istringstream text(test::contentOf(tree / "calls"));
        for (std::string line; std::getline(text, line);) lines.push_back(line);
        return lines;
    }
    /// The calls of one tool, in order.
    std::vector<std::string> callsOf(const std::string& name) const {
        auto lines = calls();
        std::erase_if(lines, [&](const std::string& line) { return !line.starts_with(name + " "); });
        return lines;
    }
    std::vector<std::string> images() const {
        auto names = Files::names(tree / "build/package");
        std::erase_if(names, [](const std::string& name) { return !name.ends_with(".dmg"); });
        return names;
    }

    const test::TemporaryFolder folder;
    const fs::path tree = folder / "a tree";
};

}  // namespace

TEST_F(PackageScript, PutsEverythingIntoTheBundleBeforeItIsSignedAndSignsFromTheInsideOut) {
    const auto result = run();
    EXPECT_EQ(result.status, 0) << result.stderr;
    auto steps = calls();
    std::erase_if(steps, [](const std::string& step) {
        return step.starts_with("install-dependencies ") || step.starts_with("otool ") || step.starts_with("file ") ||
               step.starts_with("plutil ");
    });
    const std::string sign = "codesign --force --sign - --timestamp=none ";
    EXPECT_THAT(steps,
                ElementsAre("build release tarvik tarvik-window external-app-launcher",
                            "ditto build/release/bin/Tarvik.app " + app,
                            "ditto build/release/bin/tarvik " + app + "/Contents/Helpers/tarvik",
                            "macdeployqt " + app + " -qmldir=Tarvik/Views -executable=" + app +
                                "/Contents/Helpers/tarvik -always-overwrite",
                            "install_name_tool -delete_rpath /opt/homebrew/lib " + app + "/Contents/MacOS/Tarvik",
                            sign + app + "/Contents/Frameworks/libplist.dylib", sign + app + "/Contents/Helpers/tarvik",
                            sign + app + "/Contents/MacOS/external-app-launcher",
                            sign + app + "/Contents/PlugIns/platforms/libcocoa.dylib",
                            sign + app + "/Contents/Frameworks/QtCore.framework",
                            sign + "--entitlements Tarvik/macOS/Tarvik.entitlements " + app,
                            "codesign --verify --deep --strict " + app,
                            "hdiutil create -quiet -volname Tarvik -srcfolder build/package/image -format UDZO "
                            "build/package/unfinished.dmg"));
    EXPECT_THAT(images(), ElementsAre("Tarvik-1.2.3-arm64.dmg"));
    EXPECT_THAT(result.stdout, HasSubstr("The disk image is build/package/Tarvik-1.2.3-arm64.dmg\n"));
    EXPECT_EQ(fs::read_symlink(tree / "build/package/image/Applications"), "/Applications");
    EXPECT_TRUE(fs::exists(tree / app / "Contents/Helpers/external-app-launcher")) << "a link inside of the bundle";
}

TEST_F(PackageScript, SignsWithAnIdentityAndNotarizes) {
    const auto result = run({{"TARVIK_SIGN_IDENTITY", "Acme Inc"}, {"TARVIK_NOTARY_PROFILE", "a profile"}});
    EXPECT_EQ(result.status, 0) << result.stderr;
    const auto signatures = callsOf("codesign");
    EXPECT_THAT(signatures, Contains("codesign --force --sign Acme Inc --timestamp --options runtime " + app +
                                     "/Contents/Helpers/tarvik"));
    EXPECT_EQ(signatures.back(), "codesign --force --sign Acme Inc --timestamp build/package/unfinished.dmg");
    EXPECT_THAT(callsOf("xcrun"),
                ElementsAre("xcrun notarytool submit build/package/unfinished.dmg --keychain-profile a profile --wait",
                            "xcrun stapler staple build/package/unfinished.dmg"));
}

TEST_F(PackageScript, EndsAtEveryStepThatFailsAndLeavesNoImage) {
    const EnvironmentChange given = {{"TARVIK_SIGN_IDENTITY", "Acme"}, {"TARVIK_NOTARY_PROFILE", "profile"}};
    ASSERT_EQ(run(given).status, 0);
    const std::size_t count = calls().size();
    ASSERT_GT(count, 30U);
    for (std::size_t step = 1; step <= count; ++step) {
        auto change = given;
        change["FAIL_AT"] = std::to_string(step);
        EXPECT_NE(run(change).status, 0) << step;
        EXPECT_EQ(calls().size(), step) << "went on after: " << calls()[step - 1];
        EXPECT_THAT(images(), testing::Not(Contains(StartsWith("Tarvik")))) << calls().back();
    }
}

TEST_F(PackageScript, RefusesToNotarizeWhatNobodySigned) {
    const auto result = run({{"TARVIK_NOTARY_PROFILE", "profile"}});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.stderr,
              "Only what is signed with an identity can be notarized: name one in TARVIK_SIGN_IDENTITY.\n");
    EXPECT_FALSE(fs::exists(tree / "calls"));
}

TEST_F(PackageScript, TakesNoOtherAnswerOfTheNotaryForAYes) {
    const auto result = run({{"TARVIK_SIGN_IDENTITY", "A"}, {"TARVIK_NOTARY_PROFILE", "p"}, {"ANSWER", "Invalid"}});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.stderr, HasSubstr("status: Invalid\nIt was not notarized.\n"));
    EXPECT_EQ(callsOf("xcrun").size(), 1U);
    EXPECT_THAT(images(), ElementsAre("unfinished.dmg"));
}

TEST_F(PackageScript, RefusesABundleThatNeedsALibraryOfThisMachine) {
    makeFile(tree / "foreign", "\t/opt/homebrew/lib/libfmt.dylib (x)\n");
    const auto result = run();
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.stderr, "\t/opt/homebrew/lib/libfmt.dylib (x)\n" + app +
                                 "/Contents/Frameworks/libplist.dylib needs these, which are not in the bundle.\n");
    EXPECT_THAT(callsOf("codesign"), IsEmpty());
}

TEST_F(PackageScript, PromisesNoOlderSystemThanItsLibrariesRunOn) {
    EXPECT_EQ(run().status, 0);
    EXPECT_THAT(callsOf("plutil"), testing::Not(Contains(StartsWith("plutil -replace"))));
    EXPECT_EQ(run({{"MINOS", "11.0"}}).status, 0);
    EXPECT_THAT(callsOf("plutil"), testing::Not(Contains(StartsWith("plutil -replace"))));
    EXPECT_THAT(run({{"MINOS", "13.0.10\n    minos 13.0.9"}}).stdout, HasSubstr("It needs macOS 13.0.10: "));
    const auto result = run({{"MINOS", "14.10"}});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.stdout, HasSubstr("It needs macOS 14.10: libraries in it were built for that.\n"));
    EXPECT_THAT(callsOf("plutil"),
                Contains("plutil -replace LSMinimumSystemVersion -string 14.10 " + app + "/Contents/Info.plist"));
}

TEST_F(PackageScript, BringsTheManualPageAndTheCompletionsOfShells) {
    EXPECT_EQ(run().status, 0);
    const fs::path shared = tree / app / "Contents/SharedSupport";
    EXPECT_EQ(test::contentOf(shared / "man/man1/tarvik.1"), "tells --man\n");
    EXPECT_EQ(test::contentOf(shared / "completions/tarvik"), "tells completion bash\n");
    EXPECT_EQ(test::contentOf(shared / "completions/_tarvik"), "tells completion zsh\n");
    EXPECT_EQ(test::contentOf(shared / "completions/tarvik.fish"), "tells completion fish\n");
}

TEST_F(PackageScript, TriesWhetherThePackagedProgramsStart) {
    const auto result = run({{"DOES_NOT_START", "1"}});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.stderr, app + "/Contents/MacOS/Tarvik does not start.\n");
    EXPECT_THAT(callsOf("hdiutil"), IsEmpty());
}

}  // namespace tarvik
