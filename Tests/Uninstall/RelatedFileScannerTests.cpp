#include "Platform/Files/Files.h"
#include "Platform/Storage/SizingService.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"
#include "Uninstall/AppFootprintCalculator.h"
#include "Uninstall/RelatedFileScanner.h"
#include "Uninstall/ScanWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>
#include <thread>

namespace tarvik {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class RelatedFileScan : public testing::Test {
protected:
    /// What belongs to the application apart from its bundle, which is always the first.
    std::vector<std::string> linesBesideBundle() const {
        auto all = world.scan();
        EXPECT_EQ(all.front().path, world.app.bundlePath);
        all.erase(all.begin());
        return test::candidateLines(all, world.folder.path());
    }
    std::vector<std::string> pathsBesideBundle() const {
        std::vector<std::string> paths;
        for (const auto& candidate : world.scan())
            if (candidate.path != world.app.bundlePath)
                paths.push_back(candidate.path.lexically_relative(world.folder.path()));
        return paths;
    }
    /// A file at each of the paths, below the home or, with a leading "/", below the root.
    void make(std::initializer_list<const char*> paths) const {
        for (const std::string path : paths)
            test::makeFile(path.front() == '/' ? world.folder / path.substr(1) : world.home / path);
    }

    test::ScanWorld world;
};

TEST_F(RelatedFileScan, NeverOffersTheRecordsOfThisProgram) {
    make({"Library/Application Support/Tarvik/UninstallSessions/one/session.json", "Library/Caches/Tarvik/data"});
    world.app.displayName = "Tarvik";
    EXPECT_THAT(pathsBesideBundle(), ElementsAre("Users/ada/Library/Caches/Tarvik"));
    world.app.displayName = "Editor";
    world.app.bundleIdentifier = "Tarvik";
    EXPECT_THAT(pathsBesideBundle(), ElementsAre("Users/ada/Library/Caches/Tarvik"));
}

TEST_F(RelatedFileScan, FindsAThingInEveryPlaceInOrder) {
    make({"Library/Application Support/Editor/data",
          "Library/Application Support/com.acme.editor/data",
          "Library/Caches/Editor/data",
          "Library/Caches/com.acme.editor/data",
          "Library/Logs/Editor/log",
          "Library/Logs/com.acme.editor/log",
          "Library/Preferences/com.acme.editor.plist",
          "Library/Preferences/ByHost/com.acme.editor.0000.plist",
          "Library/Containers/com.acme.editor/data",
          "Library/Group Containers/com.acme.editor/data",
          "Library/HTTPStorages/com.acme.editor/data",
          "Library/WebKit/com.acme.editor/data",
          "Library/Saved Application State/Editor.savedState/data",
          "Library/LaunchAgents/com.acme.editor.plist",
          ".acmeedit/data",
          ".acmeedit.json",
          ".acmeedit.json.backup",
          ".acmeeditrc",
          ".acmeedit.log",
          "Library/Caches/acmeedit-cli-nodejs/data",
          "Library/Caches/acmeedit-cli/data",
          "Library/Caches/acmeedit-nodejs/data",
          "/Library/LaunchDaemons/com.acme.editor.plist",
          "/Library/LaunchAgents/com.acme.editor.plist",
          "/Library/Application Support/com.acme.editor/data",
          "/Library/PrivilegedHelperTools/com.acme.editor"});
    world.answerOfPkgutil("com.acme.editor\\n");
    EXPECT_THAT(
        test::candidateLines(world.scan(), world.folder.path()),
        ElementsAre(
            "executable high Applications/Editor.app: App bundle; selected",
            "applicationSupport medium Users/ada/Library/Application Support/Editor: Matches app name; selected",
            "applicationSupport high Users/ada/Library/Application Support/com.acme.editor: Matches bundle id; "
            "selected",
            "caches medium Users/ada/Library/Caches/Editor: Matches app name; selected",
            "caches high Users/ada/Library/Caches/com.acme.editor: Matches bundle id; selected",
            "logs medium Users/ada/Library/Logs/Editor: Matches app name; selected",
            "logs high Users/ada/Library/Logs/com.acme.editor: Matches bundle id; selected",
            "preferences high Users/ada/Library/Preferences/com.acme.editor.plist: Preferences plist; selected",
            "preferences high Users/ada/Library/Preferences/ByHost/com.acme.editor.0000.plist: ByHost preferences; "
            "selected",
            "containers high Users/ada/Library/Containers/com.acme.editor: Matches bundle id; selected",
            "groupContainers high Users/ada/Library/Group Containers/com.acme.editor: Matches bundle id; selected",
            "httpStorages high Users/ada/Library/HTTPStorages/com.acme.editor: Matches bundle id; selected",
            "webKit high Users/ada/Library/WebKit/com.acme.editor: Matches bundle id; selected",
            "savedAppState medium Users/ada/Library/Saved Application State/Editor.savedState: Saved application "
            "state; selected",
            "launchAgents high Users/ada/Library/LaunchAgents/com.acme.editor.plist: User launch agent; selected",
            "applicationSupport high Users/ada/.acmeedit: Dotfile install matching app name",
            "applicationSupport high Users/ada/.acmeedit.json: Dotfile install matching app name",
            "applicationSupport high Users/ada/.acmeedit.json.backup: Dotfile install matching app name",
            "applicationSupport high Users/ada/.acmeeditrc: Dotfile install matching app name",
            "applicationSupport high Users/ada/.acmeedit.log: Dotfile install matching app name",
            "caches high Users/ada/Library/Caches/acmeedit-cli-nodejs: Node CLI cache; selected",
            "caches high Users/ada/Library/Caches/acmeedit-cli: Node CLI cache; selected",
            "caches high Users/ada/Library/Caches/acmeedit-nodejs: Node CLI cache; selected",
            "launchDaemons medium Library/LaunchDaemons/com.acme.editor.plist: System path matches bundle id; "
            "privileged",
            "launchAgents medium Library/LaunchAgents/com.acme.editor.plist: System path matches bundle id; privileged",
            "applicationSupport medium Library/Application Support/com.acme.editor: System path matches bundle id; "
            "selected; privileged",
            "launchDaemons medium Library/PrivilegedHelperTools/com.acme.editor: System path matches bundle id; "
            "privileged",
            "receipts medium com.acme.editor: pkgutil receipt for bundle id; privileged"));
    EXPECT_EQ(world.askedOfPkgutil(), "--pkgs=com\\.acme\\.editor\n");
}

TEST_F(RelatedFileScan, FindsNothingThatIsOnlyLikeIt) {
    make({"Library/Caches/Editor 2/data", "Library/Caches/com.acme.editor2/data", "Library/Caches/com.acme/data",
          "Library/Caches/editor.bak/data", "Library/Application Support/My Editor/data",
          "Library/Preferences/com.acme.editor.helper.plist", "Library/Group Containers/group.com.acme.editor/data",
          "Library/Saved Application State/com.acme.editor.savedState/data", ".acmeedit2",
          "/Library/Caches/com.acme.editor/data", "/Library/LaunchDaemons/com.acme.editor.helper.plist"});
    EXPECT_THAT(pathsBesideBundle(), testing::IsEmpty());
}

TEST_F(RelatedFileScan, OffersTheBundleThoughItIsGone) {
    fs::remove_all(world.app.bundlePath);
    const auto all = world.scan();
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all.front().sizeBytes, 0);
    EXPECT_EQ(all.front().seen, std::nullopt);
}

TEST_F(RelatedFileScan, LooksByNameForAnApplicationWithoutAnIdentifier) {
    make({"Library/Application Support/Editor/data", "Library/Caches/com.acme.editor/data",
          "Library/Preferences/com.acme.editor.plist", "Library/Preferences/.plist",
          "Library/Preferences/ByHost/some.plist", "Library/Containers/data", "Library/LaunchAgents/.plist",
          "Library/Saved Application State/Editor.savedState/data", ".acmeeditrc",
          "/Library/LaunchDaemons/com.acme.editor.plist", "/Library/LaunchDaemons/.plist"});
    world.app.bundleIdentifier.reset();
    world.answerOfPkgutil("com.acme.editor\\n");
    EXPECT_THAT(pathsBesideBundle(),
                ElementsAre("Users/ada/Library/Application Support/Editor",
                            "Users/ada/Library/Saved Application State/Editor.savedState", "Users/ada/.acmeeditrc"));
    EXPECT_EQ(world.askedOfPkgutil(), "") << "nobody asks for the receipts of nothing";
}

TEST_F(RelatedFileScan, TakesANameThatIsTheIdentifierForTheIdentifier) {
    make({"Library/Caches/com.acme.editor/data"});
    world.app.displayName = "com.acme.editor";
    EXPECT_THAT(linesBesideBundle(),
                ElementsAre("caches high Users/ada/Library/Caches/com.acme.editor: Matches bundle id; selected"));
}

TEST_F(RelatedFileScan, LeavesAPathWithTheFirstThatFindsIt) {
    make({"Library/Caches/acmeedit-cli/data"});
    world.app.displayName = "acmeedit-cli";
    EXPECT_THAT(linesBesideBundle(),
                ElementsAre("caches medium Users/ada/Library/Caches/acmeedit-cli: Matches app name; selected"));
}

TEST_F(RelatedFileScan, TellsALinkFromTheCopyThatItLeadsTo) {
    const fs::path copy = world.drive / "ExternalTarvik/Apps/Editor.app";
    fs::remove_all(world.app.bundlePath);
    test::makeBundle(copy);
    test::makeLink(world.app.bundlePath, copy);
    world.app.isSymlink = true;
    world.app.externalTargetPath = copy;
    const auto all = world.scan();
    EXPECT_THAT(test::candidateLines(all, world.folder.path()),
                ElementsAre("executable high Applications/Editor.app: App bundle symlink; selected; link",
                            "executable high Volumes/Backup/ExternalTarvik/Apps/Editor.app: External target app"));
    EXPECT_EQ(all[0].seen->type, Files::ItemType::symbolicLink);
    EXPECT_EQ(all[1].seen->type, Files::ItemType::folder);
    EXPECT_EQ(all[0].sizeBytes, all[1].sizeBytes) << "what the link leads to is measured";
    EXPECT_GT(all[0].sizeBytes, 0);
}

TEST_F(RelatedFileScan, OffersNoCopyThatIsTheBundleOrNothingOrGone) {
    for (const fs::path& target : {world.app.bundlePath, fs::path(), world.drive / "Gone.app"}) {
        world.app.externalTargetPath = target;
        EXPECT_THAT(pathsBesideBundle(), testing::IsEmpty()) << target;
    }
}

TEST_F(RelatedFileScan, OffersOnlyAnApplicationForTheCopyThatALinkOrLauncherNames) {
    make({"Documents/letter", "/System/Applications/Mail.app/Contents/Info.plist"});
    for (const fs::path& target :
         {fs::path("/"), fs::path("/usr"), world.home, world.home / "Documents", world.home / "Documents/letter",
          world.folder.path(), world.folder / "Applications", world.folder / "System/Applications/Mail.app",
          world.drive, fs::path("relative/Editor.app"), fs::path("..")}) {
        world.app.externalTargetPath = target;
        EXPECT_THAT(pathsBesideBundle(), testing::IsEmpty()) << target;
    }
}

TEST_F(RelatedFileScan, ReadsARelativeLinkFromWhereItStands) {
    test::makeBundle(world.folder / "Other/Editor.app");
    fs::remove_all(world.app.bundlePath);
    world.app.isSymlink = true;
    world.app.externalTargetPath = "../Other/Editor.app";
    test::makeLink(world.app.bundlePath, *world.app.externalTargetPath);
    EXPECT_THAT(pathsBesideBundle(), ElementsAre("Other/Editor.app"));
    // Behind a link, ".." leads elsewhere than its text says.
    test::makeBundle(world.folder / "Deep/Other/Editor.app");
    test::makeFolder(world.folder / "Deep/Applications");
    test::makeLink(world.folder / "Linked", "Deep/Applications");
    world.app.bundlePath = world.folder / "Linked/Editor.app";
    test::makeLink(world.app.bundlePath, *world.app.externalTargetPath);
    EXPECT_THAT(pathsBesideBundle(), testing::IsEmpty());
}

TEST_F(RelatedFileScan, TakesEveryPreferenceOfAHostThatBeginsWithTheIdentifier) {
    make({"Library/Preferences/ByHost/com.acme.editor.1.plist", "Library/Preferences/ByHost/com.acme.editor2.1.plist",
          "Library/Preferences/ByHost/com.acme.edito.1.plist", "Library/Preferences/ByHost/x.com.acme.editor.1.plist"});
    test::makeLink(world.library / "Preferences/ByHost/com.acme.editor.gone", "nowhere");
    EXPECT_THAT(pathsBesideBundle(), ElementsAre("Users/ada/Library/Preferences/ByHost/com.acme.editor.1.plist",
                                                 "Users/ada/Library/Preferences/ByHost/com.acme.editor2.1.plist"))
        << "each is shown with its path";
}

TEST_F(RelatedFileScan, LeavesTheApplicationSupportThatASupplementalInstallLivesIn) {
    const fs::path bundle = world.library / "Application Support/Acme/Editor.app";
    test::makeBundle(bundle);
    make({"Library/Application Support/Editor/data", "Library/Application Support/com.acme.editor/data",
          "Library/Caches/Editor/data", "/Library/Application Support/com.acme.editor/data"});
    world.app.bundlePath = bundle;
    EXPECT_THAT(pathsBesideBundle(),
                ElementsAre("Users/ada/Library/Caches/Editor", "Library/Application Support/com.acme.editor"));
}

TEST_F(RelatedFileScan, LeavesDotfilesToTheCommandThatAHandlerOfUrlsOpens) {
    make({".acmeeditrc", "Library/Caches/acmeedit-cli/data"});
    world.app.bundleIdentifier = "com.acme.URL-Handler";
    EXPECT_THAT(pathsBesideBundle(), testing::IsEmpty());
}

TEST_F(RelatedFileScan, LeavesWhatEveryProgramKeepsInTheHome) {
    make({".ssh/id", ".config/file", ".Trash/old", ".local/file"});
    for (const char* slug : {"ssh", "config", "Trash", "local"}) {
        world.app.executableName = slug;
        EXPECT_THAT(pathsBesideBundle(), testing::IsEmpty()) << slug;
    }
}

TEST_F(RelatedFileScan, LeavesADanglingLinkAndFollowsOthers) {
    make({"Library/Logs/.keep", "Library/Caches/.keep"});
    test::makeFile(world.drive / "Data/Editor/file");
    test::makeLink(world.library / "Caches/Editor", world.drive / "Data/Editor");
    test::makeLink(world.library / "Logs/Editor", world.drive / "gone");
    const auto all = world.scan();
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all[1].path, world.library / "Caches/Editor");
    EXPECT_FALSE(all[1].isSymlink);
    EXPECT_EQ(all[1].seen->type, Files::ItemType::symbolicLink);
    EXPECT_EQ(all[1].sizeBytes, SizingService::size(world.host, world.drive / "Data/Editor"));
}

TEST_F(RelatedFileScan, TakesForAwayWhatIsOnADriveThatDoesNotAnswer) {
    const fs::path copy = world.drive / "ExternalTarvik/Apps/Editor.app";
    fs::remove_all(world.app.bundlePath);
    test::makeBundle(copy);
    test::makeLink(world.app.bundlePath, copy);
    world.app.isSymlink = true;
    world.app.externalTargetPath = copy;
    make({"Library/Caches/.keep"});
    test::makeFile(world.drive / "Data/Editor/file");
    test::makeLink(world.library / "Caches/Editor", world.drive / "Data/Editor");
    EXPECT_EQ(world.scan().size(), 3U);
    world.host.silentVolumes = {world.drive};
    const auto all = world.scan();
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0].path, world.app.bundlePath);
    EXPECT_EQ(all[0].sizeBytes, 0);
}

TEST_F(RelatedFileScan, FindsThingsInAPlaceThatIsALink) {
    test::makeFile(world.drive / "Caches/Editor/file");
    test::makeLink(world.library / "Caches", world.drive / "Caches");
    EXPECT_THAT(pathsBesideBundle(), ElementsAre("Users/ada/Library/Caches/Editor"));
}

TEST_F(RelatedFileScan, SeesWhatStandsThere) {
    make({"Library/Caches/Editor/data", "Library/Preferences/com.acme.editor.plist"});
    world.answerOfPkgutil("com.acme.editor\\n");
    for (const auto& candidate : world.scan()) {
        if (candidate.category == UninstallCategory::receipts)
            EXPECT_EQ(candidate.seen, std::nullopt);
        else
            EXPECT_TRUE(Files::isSameItem(candidate.seen, Files::info(candidate.path))) << candidate.path;
    }
}

TEST_F(RelatedFileScan, CountsTheLengthOfSomeFilesAndTheRoomOfOthers) {
    const std::string content(5000, 'x');
    const fs::path cache = world.library / "Caches/Editor";
    const fs::path byHost = world.library / "Preferences/ByHost/com.acme.editor.1.plist";
    const fs::path dotfile = world.home / ".acmeeditrc";
    const fs::path preferences = world.library / "Preferences/com.acme.editor.plist";
    for (const fs::path& path : {cache, byHost, dotfile, preferences}) {
        test::makeFile(path, content);
        test::flush(path);
    }
    for (const fs::path& path : {cache, byHost, dotfile}) EXPECT_EQ(world.candidateAt(path).sizeBytes, 5000) << path;
    EXPECT_EQ(world.candidateAt(preferences).sizeBytes, SizingService::size(world.host, preferences));
    EXPECT_EQ(world.candidateAt(preferences).sizeBytes % 512, 0);
}

TEST_F(RelatedFileScan, CountsAPipeAsNothing) {
    test::makeFolder(world.library / "Caches");
    test::makePipe(world.library / "Caches/Editor");
    EXPECT_EQ(world.candidateAt(world.library / "Caches/Editor").sizeBytes, 0);
}

TEST_F(RelatedFileScan, MeasuresNothingWhereSizesAreLeftOut) {
    make({"Library/Caches/Editor/data"});
    const auto all = RelatedFileScanner::scan(world.host, world.app, RelatedFileScanner::Sizes::leftOut);
    ASSERT_EQ(all.size(), 2U);
    for (const auto& candidate : all) EXPECT_EQ(candidate.sizeBytes, 0);
}

TEST_F(RelatedFileScan, EndsWhenItIsCancelledThoughTheToolHangs) {
    world.host.tools.pkgutil =
        world.tool("pkgutil", "echo here > '" + (world.folder / "begun").native() + "'\nexec sleep 600");
    const Cancellation cancellation;
    std::vector<UninstallCandidate> all;
    std::thread scan([&] {
        all = RelatedFileScanner::scan(world.host, world.app, RelatedFileScanner::Sizes::measured, cancellation);
    });
    EXPECT_TRUE(test::comesToStand(world.folder / "begun"));
    cancellation.cancel();
    scan.join();
    EXPECT_EQ(all.size(), 1U) << "what it had found stays";
    EXPECT_TRUE(
        RelatedFileScanner::scan(world.host, world.app, RelatedFileScanner::Sizes::measured, cancellation).empty());
}

TEST_F(RelatedFileScan, WithoutReceiptsAsksNoToolAndIsTheFootprint) {
    make({"Library/Caches/Editor/data", "Library/Logs/com.acme.editor/log"});
    world.answerOfPkgutil("com.acme.editor\\n");
    const auto all = world.scan();
    auto onDisk = RelatedFileScanner::onDisk(world.host, world.app);
    EXPECT_EQ(onDisk, std::vector(all.begin(), all.end() - 1));
    const auto sum = std::accumulate(all.begin(), all.end(), std::int64_t{0},
                                     [](std::int64_t bytes, const auto& each) { return bytes + each.sizeBytes; });
    fs::remove(world.folder / "asked");
    EXPECT_GT(sum, 0);
    EXPECT_EQ(AppFootprintCalculator::footprint(world.host, world.app), sum);
    EXPECT_EQ(world.askedOfPkgutil(), "");
}

}  // namespace
}  // namespace tarvik
