#include "Discovery/AppScanner.h"
#include "Platform/Storage/SizingService.h"
#include "Support/Bundles.h"
#include "Support/OrdinaryUser.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AppScannerTest : public testing::Test {
protected:
    std::vector<fs::path> found() const {
        std::vector<fs::path> paths;
        for (const AppEntry& entry : AppScanner::discoverMetadata(world.host)) paths.push_back(entry.bundlePath);
        return paths;
    }
    std::optional<AppEntry> entryOf(const fs::path& bundle) const {
        return AppScanner::metadataEntry(world.host, bundle);
    }
    bool isLinked(const fs::path& bundle) const { return AppScanner::isSymbolicLinkOrInsideOne(world.host, bundle); }

    test::World world;
    fs::path applications = world.folder / "Applications";
    fs::path ownApplications = world.home / "Applications";
    fs::path onDrive = world.drive / "ExternalTarvik/Apps";
};

TEST_F(AppScannerTest, LooksWhereTheUserKeepsApplications) {
    EXPECT_THAT(AppScanner::scanRoots(world.host), ElementsAre(applications));
    test::makeFolder(ownApplications);
    EXPECT_THAT(AppScanner::scanRoots(world.host), ElementsAre(applications, ownApplications));
}

TEST_F(AppScannerTest, FindsBundlesByNameAndThenByPath) {
    test::makeBundle(applications / "b.app", {{"CFBundleName", "Same"}});
    test::makeBundle(applications / "a.app", {{"CFBundleName", "same"}});
    test::makeBundle(applications / "z.app", {{"CFBundleName", "Äpfel"}});
    test::makeBundle(applications / "one/two/c.app", {{"CFBundleName", "Zoo"}});
    test::makeBundle(applications / "one/two/three/d.app");
    test::makeBundle(ownApplications / "e.app", {{"CFBundleName", "Berlin"}});
    test::makeBundle(world.folder / "System/Applications/f.app");
    EXPECT_THAT(found(), ElementsAre(applications / "z.app", ownApplications / "e.app", applications / "a.app",
                                     applications / "b.app", applications / "one/two/c.app"));
}

TEST_F(AppScannerTest, FindsNothingOnAnEmptySystem) {
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(AppScannerTest, TellsAllThatABundleSays) {
    const fs::path bundle = applications / "Edit.app";
    test::makeBundle(bundle, {{"CFBundleIdentifier", "com.acme.editor"},
                              {"CFBundleShortVersionString", "2.1"},
                              {"CFBundleExecutable", "EditorMain"},
                              {"CFBundleDisplayName", "Acme Editor"},
                              {"CFBundleName", "Editor"}});
    test::makeFile(bundle / "Contents/_MASReceipt/receipt");
    test::makeFile(bundle / "Contents/Library/LoginItems/x");
    test::makeFile(bundle / "Contents/Library/Extensions/x");
    test::makeFolder(world.home / "Library/Application Support/Acme Editor");
    test::makeFolder(world.home / ".editormain");
    const AppEntry expected{
        .id = "com.acme.editor",
        .name = "Acme Editor",
        .bundlePath = bundle,
        .bundleIdentifier = "com.acme.editor",
        .version = "2.1",
        .dataPaths = {world.home / "Library/Application Support/Acme Editor", world.home / ".editormain"},
        .isMacAppStore = true,
        .hasLoginItems = true,
        .hasSystemExtension = true,
        .isAlreadySymlinked = false};
    EXPECT_THAT(AppScanner::discoverMetadata(world.host), ElementsAre(expected));
    EXPECT_EQ(entryOf(bundle), expected);
}

TEST_F(AppScannerTest, NamesABundleByTheFirstTextThatIsNotEmpty) {
    struct Row {
        PropertyList::Dictionary info;
        const char* name;
    };
    const Row rows[] = {
        {{{"CFBundleDisplayName", "Display"}, {"CFBundleName", "Name"}}, "Display"},
        {{{"CFBundleDisplayName", ""}, {"CFBundleName", "Name"}}, "Name"},
        {{{"CFBundleDisplayName", 7}, {"CFBundleName", "Name"}}, "Name"},
        {{{"CFBundleName", ""}}, "Edit 2.0"},
        {{}, "Edit 2.0"},
    };
    for (const Row& row : rows) {
        test::makeBundle(applications / "Edit 2.0.app", row.info);
        EXPECT_EQ(entryOf(applications / "Edit 2.0.app")->name, row.name);
    }
}

TEST_F(AppScannerTest, TellsABundleWithoutAnIdentifierByItsPath) {
    const fs::path bundle = applications / "Editor.app";
    test::makeBundle(bundle);
    EXPECT_EQ(entryOf(bundle)->id, bundle.native());
    test::makeBundle(bundle, {{"CFBundleIdentifier", 7}, {"CFBundleShortVersionString", 2}});
    EXPECT_EQ(entryOf(bundle)->id, bundle.native());
    EXPECT_EQ(entryOf(bundle)->version, std::nullopt);
}

TEST_F(AppScannerTest, TakesAnEmptyIdentifierForNone) {
    const fs::path bundle = applications / "Editor.app";
    test::makeBundle(bundle);
    const auto without = entryOf(bundle);
    test::makeBundle(bundle, {{"CFBundleIdentifier", ""}});
    EXPECT_EQ(entryOf(bundle), without);
    EXPECT_EQ(without->bundleIdentifier, std::nullopt);
}

TEST_F(AppScannerTest, ReadsABundleWhosePathEndsWithASlash) {
    const fs::path bundle = applications / "Editor.app";
    test::makeBundle(bundle);
    EXPECT_EQ(entryOf(bundle / ""), entryOf(bundle));
    EXPECT_EQ(entryOf(bundle / "")->name, "Editor");
    test::makeFolder(applications / "Other.app");
    EXPECT_EQ(entryOf(applications / "Other.app//")->id, (applications / "Other.app").native());
}

TEST_F(AppScannerTest, ReadsAnInformationListInUtf16) {
    std::string list;
    for (const char16_t unit :
         std::u16string(u"\uFEFF<plist><dict><key>CFBundleName</key><string>Größer</string></dict></plist>")) {
        list += static_cast<char>(unit & 0xFF);
        list += static_cast<char>(unit >> 8);
    }
    test::makeFile(applications / "Editor.app/Contents/Info.plist", list);
    EXPECT_EQ(entryOf(applications / "Editor.app")->name, "Größer");
}

TEST_F(AppScannerTest, GivesTwoBundlesOfOneIdentifierTwoRows) {
    for (const char* name : {"One.app", "Two.app"})
        test::makeBundle(applications / name, {{"CFBundleIdentifier", "com.acme.editor"}});
    const auto entries = AppScanner::discoverMetadata(world.host);
    ASSERT_THAT(entries, testing::SizeIs(2));
    EXPECT_EQ(entries[0].id, entries[1].id);
}

TEST_F(AppScannerTest, GivesARowToWhateverIsNamedLikeABundle) {
    TARVIK_NEEDS_NAMES_OF_ANY_BYTES();
    test::makeFile(applications / "File.app");
    test::makeFile(applications / "Broken.app/Contents/Info.plist", "<plist>");
    test::makeFile(applications / "List.app/Contents/Info.plist", PropertyList(PropertyList::List{"a"}).xml());
    test::makePipe(applications / "Pipe.app/Contents/Info.plist");
    test::makeLink(applications / "Dangling.app", "/missing");
    test::makeFolder(applications / "\xFF.app");
    test::makeFolder(applications / "日本語.app");
    EXPECT_THAT(found(), testing::UnorderedElementsAre(applications / "File.app", applications / "Broken.app",
                                                       applications / "List.app", applications / "Pipe.app",
                                                       applications / "Dangling.app", applications / "\xFF.app",
                                                       applications / "日本語.app"));
    EXPECT_EQ(entryOf(applications / "\xFF.app")->name, "\xFF");
    EXPECT_TRUE(entryOf(applications / "Dangling.app")->isAlreadySymlinked);
    EXPECT_FALSE(entryOf(applications / "File.app")->isAlreadySymlinked);
}

TEST_F(AppScannerTest, GivesARowToABundleThatHasGone) {
    EXPECT_EQ(entryOf(applications / "Gone.app")->name, "Gone");
}

TEST_F(AppScannerTest, ShowsALauncherAsTheBundleThatItOpens) {
    test::makeBundle(onDrive / "Editor.app", {{"CFBundleIdentifier", "com.acme.editor"},
                                              {"CFBundleName", "Editor"},
                                              {"CFBundleShortVersionString", "2.1"},
                                              {"CFBundleExecutable", "editormain"}});
    test::makeFile(onDrive / "Editor.app/Contents/_MASReceipt/receipt");
    test::makeFolder(world.home / ".editormain");
    const fs::path launcher = applications / "Start.app";
    test::makeLauncher(launcher, onDrive / "Editor.app",
                       {{"CFBundleIdentifier", "com.acme.editor.externallauncher"},
                        {"CFBundleName", "Launcher"},
                        {"CFBundleExecutable", "ExternalAppLauncher"}});
    const auto entries = AppScanner::discoverMetadata(world.host);
    ASSERT_THAT(entries, testing::SizeIs(1));
    EXPECT_EQ(entries[0].bundlePath, launcher);
    EXPECT_EQ(entries[0].id, "com.acme.editor");
    EXPECT_EQ(entries[0].name, "Editor");
    EXPECT_EQ(entries[0].version, "2.1");
    EXPECT_TRUE(entries[0].isAlreadySymlinked);
    EXPECT_FALSE(entries[0].isMacAppStore);
    EXPECT_THAT(entries[0].dataPaths, ElementsAre(world.home / ".editormain"));
}

TEST_F(AppScannerTest, NamesALauncherOfANamelessBundleByItsOwnFile) {
    test::makeBundle(onDrive / "Editor.app");
    test::makeLauncher(applications / "Start.app", onDrive / "Editor.app", {{"CFBundleName", "Launcher"}});
    EXPECT_EQ(entryOf(applications / "Start.app")->name, "Start");
}

TEST_F(AppScannerTest, FollowsOneLauncherToAnotherAndNoFurther) {
    test::makeBundle(onDrive / "End.app", {{"CFBundleName", "End"}});
    test::makeLauncher(onDrive / "Second.app", onDrive / "End.app", {{"CFBundleName", "Second"}});
    test::makeLauncher(applications / "First.app", onDrive / "Second.app");
    EXPECT_EQ(entryOf(applications / "First.app")->name, "Second");
    test::makeLauncher(applications / "Self.app", applications / "Self.app", {{"CFBundleName", "Itself"}});
    EXPECT_EQ(entryOf(applications / "Self.app")->name, "Itself");
}

TEST_F(AppScannerTest, GivesNoRowToALauncherThatLeadsNowhere) {
    const fs::path launcher = applications / "Start.app";
    for (const char* target : {"", " \n", "/Volumes/Unplugged/Editor.app", "relative"}) {
        test::makeLauncher(launcher, target);
        EXPECT_THAT(found(), IsEmpty()) << target;
        EXPECT_EQ(entryOf(launcher), std::nullopt) << target;
    }
    fs::remove_all(launcher);
    test::makeBundle(launcher, {{"CFBundleExecutable", "ExternalAppLauncher"}});
    EXPECT_THAT(found(), IsEmpty());
    test::makeBundle(launcher, {{"CFBundleIdentifier", "com.acme.externallauncher"}});
    EXPECT_THAT(found(), IsEmpty());
    test::makeBundle(launcher, {{"CFBundleIdentifier", "com.acme.externallauncher.tool"}});
    EXPECT_THAT(found(), ElementsAre(launcher));
    test::makePipe(launcher / "Contents/Resources/ExternalAppTarget.txt");
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(AppScannerTest, ReadsWhereALauncherLeads) {
    const fs::path launcher = applications / "Start.app";
    const fs::path bundle = onDrive / "Editor.app";
    EXPECT_EQ(AppScanner::launcherShimTarget(launcher), std::nullopt);
    test::makeLauncher(launcher, bundle);
    EXPECT_EQ(AppScanner::launcherShimTarget(launcher), std::nullopt);
    test::makeBundle(bundle);
    EXPECT_EQ(AppScanner::launcherShimTarget(launcher), bundle);
    test::makeLauncher(launcher, " \t" + (onDrive / "../Apps/./Editor.app").native() + "/\r\n\n");
    EXPECT_EQ(AppScanner::launcherShimTarget(launcher), bundle);
    test::makeLauncher(launcher, fs::relative(bundle));
    EXPECT_EQ(AppScanner::launcherShimTarget(launcher), std::nullopt);
    test::makeLink(onDrive / "Link.app", "Editor.app");
    test::makeLauncher(launcher, onDrive / "Link.app");
    EXPECT_EQ(AppScanner::launcherShimTarget(launcher), onDrive / "Link.app");
    test::makeFile(launcher / "Contents/Resources/ExternalAppTarget.txt", bundle.native() + std::string("\0x", 2));
    EXPECT_EQ(AppScanner::launcherShimTarget(launcher), std::nullopt);
}

TEST_F(AppScannerTest, SeesLinksFromABundleUpToTheApplicationsFolder) {
    test::makeBundle(world.drive / "Suite/Editor.app");
    test::makeBundle(applications / "real/Editor.app");
    test::makeLink(applications / "Suite", world.drive / "Suite");
    test::makeLink(applications / "Editor.app", world.drive / "Suite/Editor.app");
    test::makeLink(ownApplications / "Suite", world.drive / "Suite");
    test::makeLink(world.folder / "Applications2/Suite", world.drive / "Suite");
    EXPECT_TRUE(isLinked(applications / "Editor.app"));
    EXPECT_TRUE(isLinked(applications / "Suite/Editor.app"));
    EXPECT_TRUE(isLinked(applications / "real/../Suite/Editor.app/"));
    EXPECT_FALSE(isLinked(applications / "real/Editor.app"));
    EXPECT_FALSE(isLinked(applications / "missing/Editor.app"));
    EXPECT_FALSE(isLinked(applications));
    // Only below /Applications: the user's own folder is not searched, one whose name begins alike is.
    EXPECT_FALSE(isLinked(ownApplications / "Suite/Editor.app"));
    EXPECT_TRUE(isLinked(world.folder / "Applications2/Suite/Editor.app"));
    EXPECT_FALSE(isLinked(world.drive / "Suite/Editor.app"));
}

TEST_F(AppScannerTest, ShowsABundleInALinkedFolderAsLinked) {
    test::makeBundle(world.drive / "Suite/Editor.app");
    test::makeLink(applications / "Suite", world.drive / "Suite");
    test::makeLink(ownApplications / "Suite", world.drive / "Suite");
    EXPECT_TRUE(entryOf(applications / "Suite/Editor.app")->isAlreadySymlinked);
    EXPECT_FALSE(entryOf(ownApplications / "Suite/Editor.app")->isAlreadySymlinked);
    EXPECT_THAT(found(), ElementsAre(applications / "Suite/Editor.app", ownApplications / "Suite/Editor.app"));
}

TEST_F(AppScannerTest, LooksForLinksFromTheRootOfTheMachine) {
    Host host = world.host;
    host.root = "/";
    EXPECT_FALSE(AppScanner::isSymbolicLinkOrInsideOne(host, "/"));
    EXPECT_FALSE(AppScanner::isSymbolicLinkOrInsideOne(host, "/Applications/no such folder/No Such Editor.app"));
    EXPECT_FALSE(AppScanner::isSymbolicLinkOrInsideOne(host, world.home / "Editor.app"));
}

TEST_F(AppScannerTest, SeesLinksWhereverTheRootOfTheMachineIsSpelled) {
    test::makeBundle(applications / "real/Editor.app");
    test::makeLink(applications / "link", "real");
    Host host = world.host;
    host.root = world.folder / "Users/.." / "";
    EXPECT_TRUE(AppScanner::isSymbolicLinkOrInsideOne(host, host.root / "Applications/link/Editor.app"));
    EXPECT_FALSE(AppScanner::isSymbolicLinkOrInsideOne(host, host.root / "Applications/real/Editor.app"));
}

TEST_F(AppScannerTest, MeasuresTheBundleAndEachOfItsDataPaths) {
    const fs::path bundle = applications / "Editor.app";
    test::makeFileOfSize(world.drive / "Editor.app/program", 300'000);
    test::makeLink(bundle, world.drive / "Editor.app");
    test::makeFileOfSize(world.home / "folder/file", 50'000);
    test::makeFileOfSize(world.home / "file", 20'000);
    test::makeLink(world.home / "link", "folder");
    test::makePipe(world.home / "pipe");
    test::makeFileOfSize(world.home / ".editor/file", 30'000);
    test::makeFileOfSize(world.home / ".editor/.hidden", 90'000);
    const std::vector<fs::path> dataPaths = {world.home / "folder", world.home / "missing", world.home / "file",
                                             world.home / "link",   world.home / "pipe",    world.home / ".editor"};
    const AppEntry entry{.id = "x", .name = "Editor", .bundlePath = bundle, .dataPaths = dataPaths};
    const AppEntry sized = AppScanner::computeSizes(world.host, entry);

    const std::int64_t folder = SizingService::size(world.host, world.home / "folder");
    const std::int64_t file = SizingService::size(world.host, world.home / "file");
    const std::int64_t hidden = SizingService::size(world.host, world.home / ".editor");
    EXPECT_GE(folder, 50'000);
    EXPECT_GE(file, 20'000);
    EXPECT_GE(hidden, 30'000);
    EXPECT_LT(hidden, 90'000);
    AppEntry expected = entry;
    expected.appSize = SizingService::size(world.host, world.drive / "Editor.app");
    expected.dataPathSizes = {{dataPaths[0], folder}, {dataPaths[1], 0}, {dataPaths[2], file},
                              {dataPaths[3], folder}, {dataPaths[4], 0}, {dataPaths[5], hidden}};
    expected.dataSize = 2 * folder + file + hidden;
    EXPECT_GE(expected.appSize, 300'000);
    EXPECT_EQ(sized, expected);
}

TEST_F(AppScannerTest, MeasuresNothingOnceCancelled) {
    test::makeFileOfSize(applications / "Editor.app/Contents/file", 50'000);
    test::makeFileOfSize(world.home / "folder/file", 50'000);
    Cancellation cancellation;
    cancellation.cancel();
    const AppEntry entry{.bundlePath = applications / "Editor.app", .dataPaths = {world.home / "folder"}};
    EXPECT_EQ(AppScanner::computeSizes(world.host, entry, cancellation).totalSize(), 0);
}

TEST_F(AppScannerTest, YieldsWhatCanBeReadAndPassesOverTheRest) {
    test::makeBundle(applications / "Open.app");
    test::makeBundle(applications / "closed/Hidden.app");
    test::makeBundle(applications / "Sealed.app", {{"CFBundleName", "A name that cannot be read"}});
    for (const char* name : {"closed", "Sealed.app"}) fs::permissions(applications / name, fs::perms::none);
    {
        const test::OrdinaryUser user(world.folder.path());
        EXPECT_THAT(found(), ElementsAre(applications / "Open.app", applications / "Sealed.app"));
    }
    for (const char* name : {"closed", "Sealed.app"}) fs::permissions(applications / name, fs::perms::owner_all);
}

}  // namespace
}  // namespace tarvik
