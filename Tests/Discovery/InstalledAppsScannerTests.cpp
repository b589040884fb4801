#include "Discovery/InstalledAppsScanner.h"
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

class InstalledAppsScannerTest : public testing::Test {
protected:
    /// The paths of what is found, in its order.
    std::vector<fs::path> found() const {
        std::vector<fs::path> paths;
        for (const AppRecord& record : InstalledAppsScanner::discover(world.host)) paths.push_back(record.bundlePath);
        return paths;
    }
    AppRecord only() const {
        const auto records = InstalledAppsScanner::discover(world.host);
        EXPECT_EQ(records.size(), 1U);
        return records.empty() ? AppRecord() : records.front();
    }

    test::World world;
    fs::path applications = world.folder / "Applications";
    fs::path onDrive = world.drive / "ExternalTarvik/Apps";
    fs::path support = world.home / "Library/Application Support";
};

TEST_F(InstalledAppsScannerTest, FindsNothingOnAnEmptySystem) {
    EXPECT_THAT(found(), IsEmpty());
    fs::remove_all(world.folder / "Users");
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(InstalledAppsScannerTest, FindsApplicationsInAllTheirFolders) {
    test::makeBundle(applications / "A.app");
    test::makeBundle(applications / "Utilities/B.app");
    test::makeBundle(world.folder / "System/Applications/C.app");
    test::makeBundle(world.home / "Applications/D.app");
    test::makeBundle(support / "Acme/e.app");
    test::makeBundle(world.home / "Downloads/F.app");
    EXPECT_THAT(found(), ElementsAre(applications / "A.app", applications / "Utilities/B.app",
                                     world.folder / "System/Applications/C.app", world.home / "Applications/D.app",
                                     support / "Acme/e.app"));
}

TEST_F(InstalledAppsScannerTest, TellsAllThatABundleSays) {
    const fs::path bundle = applications / "Edit.app";
    test::makeBundle(bundle, {{"CFBundleIdentifier", "com.acme.editor"},
                              {"CFBundleShortVersionString", "2.1"},
                              {"CFBundleVersion", "2100"},
                              {"CFBundleExecutable", "EditorMain"},
                              {"CFBundleDisplayName", "Acme Editor"},
                              {"CFBundleName", "Editor"},
                              {"NSHumanReadableCopyright", "Copyright © 2026 Acme"}});
    test::makeFile(bundle / "Contents/_MASReceipt/receipt");
    test::makeFile(bundle / "Contents/Library/LoginItems/Helper.app/x");
    test::makeFile(bundle / "Contents/Library/SystemExtensions/x");
    const auto modified = fs::file_time_type::clock::now() - std::chrono::hours(50);
    fs::last_write_time(bundle, modified);
    AppRecord expected{.id = bundle.native(),
                       .bundlePath = bundle,
                       .displayName = "Acme Editor",
                       .bundleIdentifier = "com.acme.editor",
                       .version = "2.1",
                       .executableName = "EditorMain",
                       .developer = "2026 Acme",
                       .kind = AppRecordKind::macAppStore,
                       .isMacAppStore = true,
                       .hasLoginItems = true,
                       .hasSystemExtension = true};
    AppRecord record = only();
    ASSERT_TRUE(record.modifiedAt);
    const auto age = std::chrono::system_clock::now() - *record.modifiedAt;
    EXPECT_GE(age, std::chrono::hours(50));
    EXPECT_LT(age, std::chrono::hours(51));
    record.modifiedAt.reset();
    EXPECT_EQ(record, expected);
}

TEST_F(InstalledAppsScannerTest, ShowsABundleWithoutAUsableListByItsFileName) {
    const char* const lists[] = {"", "no list at all", "<plist version=\"1.0\"><array/></plist>", "bplist00\xFF\xFF"};
    for (const char* list : lists) {
        test::makeFile(applications / "Broken.app/Contents/Info.plist", list);
        const AppRecord record = only();
        EXPECT_EQ(record.displayName, "Broken") << list;
        EXPECT_EQ(record.bundleIdentifier, std::nullopt) << list;
        EXPECT_EQ(record.kind, AppRecordKind::normal) << list;
    }
}

TEST_F(InstalledAppsScannerTest, TakesOnlyTextsForTexts) {
    test::makeBundle(applications / "Odd.app", {{"CFBundleIdentifier", 7},
                                                {"CFBundleShortVersionString", 2.5},
                                                {"CFBundleExecutable", PropertyList::List{"x"}},
                                                {"CFBundleDisplayName", true},
                                                {"CFBundleName", "Odd Name"},
                                                {"CFBundleVersion", "9"}});
    const AppRecord record = only();
    EXPECT_EQ(record.bundleIdentifier, std::nullopt);
    EXPECT_EQ(record.version, std::nullopt);
    EXPECT_EQ(record.executableName, std::nullopt);
    EXPECT_EQ(record.displayName, "Odd Name");
}

TEST_F(InstalledAppsScannerTest, ListsBundlesThatAreFilesAndNamesThatAreNoText) {
    TARVIK_NEEDS_NAMES_OF_ANY_BYTES();
    test::makeFile(applications / "File.app");
    test::makeFolder(applications / "日本語.app");
    test::makeFolder(applications / "\xFF\xFE.app");
    test::makePipe(applications / "Pipe.app/Contents/Info.plist");
    test::makePipe(applications / "Waiting.app/Contents/Resources/ExternalAppTarget.txt");
    EXPECT_THAT(found(), testing::UnorderedElementsAre(applications / "File.app", applications / "日本語.app",
                                                       applications / "\xFF\xFE.app", applications / "Pipe.app",
                                                       applications / "Waiting.app"));
}

TEST_F(InstalledAppsScannerTest, GoesDownTwoFoldersAndIntoNoBundle) {
    test::makeBundle(applications / "a/b/Two.app");
    test::makeBundle(applications / "a/b/c/Three.app");
    test::makeBundle(applications / "a/b/Two.app/Contents/Inner.app");
    test::makeBundle(applications / "a/b/Two.app/Inner.app");
    EXPECT_THAT(found(), ElementsAre(applications / "a/b/Two.app"));
}

TEST_F(InstalledAppsScannerTest, GoesDownFourFoldersBelowThoseOfApplicationSupport) {
    test::makeBundle(support / "Acme/a/b/c/d/four.app");
    test::makeBundle(support / "Acme/a/b/c/d/e/five.app");
    EXPECT_THAT(found(), ElementsAre(support / "Acme/a/b/c/d/four.app"));
}

TEST_F(InstalledAppsScannerTest, ShowsASupplementalInstallByItsSlug) {
    const fs::path bundle = support / "Acme/Tools/v2/Helper Tool.app";
    test::makeBundle(bundle, {{"CFBundleDisplayName", "The Helper Tool of Acme"}});
    test::makeFolder(support / "Acme/a/b/c/d/Deep/TooDeep.app");
    test::makeFolder(support / "Nothing/a/b/c/d");
    const AppRecord record = only();
    EXPECT_EQ(record.bundlePath, bundle);
    EXPECT_EQ(record.displayName, "helper tool");

    test::makeBundle(bundle, {{"CFBundleExecutable", "AcmeHelper"}});
    EXPECT_EQ(only().displayName, "acmehelper");
}

TEST_F(InstalledAppsScannerTest, KeepsTheLocalOneOfTwoCopies) {
    test::makeBundle(applications / "Editor.app", {{"CFBundleIdentifier", "com.acme.editor"}});
    test::makeBundle(onDrive / "Editor.app", {{"CFBundleIdentifier", "com.acme.editor"}});
    test::makeLink(applications / "Other.app", onDrive / "Editor.app");
    EXPECT_THAT(found(), ElementsAre(applications / "Editor.app"));
}

TEST_F(InstalledAppsScannerTest, KeepsTheRealBundleBehindALink) {
    test::makeBundle(onDrive / "Editor.app", {{"CFBundleIdentifier", "com.acme.editor"}});
    test::makeLink(applications / "Editor.app", onDrive / "Editor.app");
    const AppRecord record = only();
    EXPECT_EQ(record.bundlePath, onDrive / "Editor.app");
    EXPECT_EQ(record.kind, AppRecordKind::externalTarget);
    EXPECT_FALSE(record.isSymlink);
}

TEST_F(InstalledAppsScannerTest, KeepsTheRealBundleBehindALauncher) {
    test::makeBundle(onDrive / "Editor.app", {{"CFBundleIdentifier", "com.acme.editor"}});
    test::makeLauncher(applications / "Editor.app", onDrive / "Editor.app",
                       {{"CFBundleIdentifier", "com.acme.editor.externallauncher"}});
    const auto records = InstalledAppsScanner::discover(world.host);
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].bundlePath, applications / "Editor.app");
    EXPECT_TRUE(records[0].isTarvikLauncher);
    EXPECT_EQ(records[0].externalTargetPath, onDrive / "Editor.app");
    EXPECT_EQ(records[1].bundlePath, onDrive / "Editor.app");
}

TEST_F(InstalledAppsScannerTest, KeepsTheLauncherThatIsNamedLikeItsFileOfTwoWithoutARealBundle) {
    const PropertyList identifier = "com.acme.editor.externallauncher";
    for (const char* other : {"A.app", "Z.app"}) {
        test::makeLauncher(applications / other, "/Volumes/Unplugged/Editor.app",
                           {{"CFBundleIdentifier", identifier}, {"CFBundleDisplayName", "Acme Editor"}});
        test::makeLauncher(applications / "Editor.app", "/Volumes/Unplugged/Editor.app",
                           {{"CFBundleIdentifier", identifier}, {"CFBundleDisplayName", "Editor"}});
        EXPECT_THAT(found(), ElementsAre(applications / "Editor.app")) << other;
        fs::remove_all(applications / other);
    }
}

TEST_F(InstalledAppsScannerTest, NeverMergesBundlesWithoutAnIdentifierWhateverTheirNames) {
    for (const char* folder : {"One", "Two"})
        test::makeBundle(applications / folder / "Editor.app", {{"CFBundleDisplayName", "The Acme Editor"}});
    for (const char* folder : {"Four", "Three"})
        test::makeBundle(applications / folder / "Editor.app",
                         {{"CFBundleDisplayName", "The Acme Editor"}, {"CFBundleIdentifier", ""}});
    EXPECT_THAT(found(), ElementsAre(applications / "Four/Editor.app", applications / "One/Editor.app",
                                     applications / "Three/Editor.app", applications / "Two/Editor.app"));
}

TEST_F(InstalledAppsScannerTest, FindsTheRealBundleOnceBehindSeveralLinksAndAlsoBehindARelativeOne) {
    test::makeBundle(onDrive / "Editor.app");
    test::makeLink(applications / "A.app", onDrive / "Editor.app");
    test::makeLink(applications / "B.app", "../Volumes/Backup/ExternalTarvik/Apps/Editor.app");
    test::makeLink(applications / "C.app", onDrive / "Editor.app/");
    EXPECT_THAT(found(), ElementsAre(applications / "A.app", applications / "B.app", applications / "C.app",
                                     onDrive / "Editor.app"));
}

TEST_F(InstalledAppsScannerTest, DoesNotFollowAChainToItsEnd) {
    test::makeBundle(world.drive / "End.app");
    test::makeLink(world.drive / "Middle.app", world.drive / "End.app");
    test::makeLink(applications / "First.app", world.drive / "Middle.app");
    EXPECT_THAT(found(), ElementsAre(applications / "First.app", world.drive / "Middle.app"));
}

TEST_F(InstalledAppsScannerTest, ListsALinkWithoutItsMissingTarget) {
    test::makeLink(applications / "Editor.app", "/Volumes/Unplugged/Editor.app");
    const AppRecord record = only();
    EXPECT_EQ(record.kind, AppRecordKind::symlink);
    EXPECT_TRUE(record.isSymlink);
    EXPECT_EQ(record.symlinkTarget, "/Volumes/Unplugged/Editor.app");
    EXPECT_EQ(record.externalTargetPath, "/Volumes/Unplugged/Editor.app");
    EXPECT_EQ(record.displayName, "Editor");
}

TEST_F(InstalledAppsScannerTest, ListsAnInteriorLinkWhoseTargetIsMissing) {
    test::makeLink(world.drive / "Gone.app", "/Volumes/Unplugged/Gone.app");
    test::makeLink(applications / "Editor.app", world.drive / "Gone.app");
    EXPECT_THAT(found(), ElementsAre(applications / "Editor.app", world.drive / "Gone.app"));
}

TEST_F(InstalledAppsScannerTest, PassesOverLaunchersThatLeadNowhere) {
    for (const char* target : {"", "  ", "relative.app", "/missing/Editor.app"}) {
        test::makeLauncher(applications / "Editor.app", target);
        EXPECT_THAT(found(), ElementsAre(applications / "Editor.app")) << target;
    }
}

TEST_F(InstalledAppsScannerTest, EndsWhereLinksRunInCircles) {
    test::makeLink(applications / "Loop.app", "Loop.app");
    test::makeLink(applications / "One.app", "Two.app");
    test::makeLink(applications / "Two.app", "One.app");
    test::makeLink(applications / "self", ".");
    EXPECT_THAT(found(), ElementsAre(applications / "Loop.app", applications / "One.app", applications / "Two.app"));
}

TEST_F(InstalledAppsScannerTest, SortsByNameInTheUsersLanguageAndThenByPath) {
    for (const char* bundle : {"zebra.app", "Éclair.app", "alpha.app", "Beta.app", "sub/alpha.app"})
        test::makeBundle(applications / bundle);
    EXPECT_THAT(found(),
                ElementsAre(applications / "alpha.app", applications / "sub/alpha.app", applications / "Beta.app",
                            applications / "Éclair.app", applications / "zebra.app"));
}

TEST_F(InstalledAppsScannerTest, YieldsWhatCanBeReadAndPassesOverTheRest) {
    test::makeBundle(applications / "Open.app");
    test::makeBundle(applications / "closed/Hidden.app");
    test::makeBundle(applications / "Sealed.app", {{"CFBundleDisplayName", "A name that cannot be read"}});
    for (const char* name : {"closed", "Sealed.app"}) fs::permissions(applications / name, fs::perms::none);
    {
        const test::OrdinaryUser user(world.folder.path());
        EXPECT_THAT(found(), ElementsAre(applications / "Open.app", applications / "Sealed.app"));
    }
    for (const char* name : {"closed", "Sealed.app"}) fs::permissions(applications / name, fs::perms::owner_all);
}

TEST_F(InstalledAppsScannerTest, InspectsOneBundleWhereverItStands) {
    test::makeBundle(world.home / "Downloads/Editor.app", {{"CFBundleIdentifier", "com.acme.editor"}});
    const auto record = InstalledAppsScanner::inspect(world.host, world.home / "Downloads/Editor.app/");
    ASSERT_TRUE(record);
    EXPECT_EQ(record->id, (world.home / "Downloads/Editor.app").native());
    EXPECT_EQ(record->bundleIdentifier, "com.acme.editor");
    EXPECT_EQ(record->displayName, "Editor");
}

TEST_F(InstalledAppsScannerTest, InspectsADanglingLinkButNothingThatIsMissing) {
    test::makeLink(world.home / "Editor.app", "/missing");
    const auto record = InstalledAppsScanner::inspect(world.host, world.home / "Editor.app");
    ASSERT_TRUE(record);
    EXPECT_EQ(record->kind, AppRecordKind::symlink);
    EXPECT_FALSE(InstalledAppsScanner::inspect(world.host, world.home / "Missing.app"));
}

}  // namespace
}  // namespace tarvik
