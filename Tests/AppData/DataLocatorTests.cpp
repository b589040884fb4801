#include "AppData/DataLocator.h"
#include "Records/InstallsDB.h"
#include "Support/TrackingDatabase.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DataLocatorTest : public testing::Test {
protected:
    std::vector<fs::path> located(const std::optional<std::string>& identifier = "com.acme.editor") const {
        return DataLocator::locate(world.host, {bundle, "Editor", identifier, "editor"});
    }

    /// Makes the database with one install and its files.
    void track(const std::string& identifier, const std::string& name, const std::vector<std::string>& files) {
        const fs::path database = InstallsDB::defaultPath(world.host);
        test::makeTrackingDatabase(database);
        std::string sql = fmt::format(
            "INSERT INTO installs (install_id, app_name, bundle_id, installed_at) VALUES ('1', '{}', {}, '2026');",
            name, identifier.empty() ? "NULL" : "'" + identifier + "'");
        for (const std::string& file : files)
            sql += fmt::format("INSERT INTO tracked_files (install_id, file_path) VALUES ('1', '{}');", file);
        test::askDatabase(database, sql);
    }

    fs::path made(const fs::path& path) const {
        test::makeFile(path);
        return path;
    }

    test::World world;
    fs::path bundle = world.folder / "Applications/Editor.app";
    fs::path caches = world.home / "Library/Caches/com.acme.editor";
};

TEST_F(DataLocatorTest, FindsDataByNamesWithoutADatabase) {
    test::makeFolder(caches);
    EXPECT_THAT(located(), ElementsAre(caches));
}

TEST_F(DataLocatorTest, FindsDataByNamesBesideAFileThatIsNoDatabase) {
    test::makeFolder(caches);
    test::makeFile(InstallsDB::defaultPath(world.host), "no database");
    EXPECT_THAT(located(), ElementsAre(caches));
}

TEST_F(DataLocatorTest, PutsTrackedFilesFirst) {
    test::makeFolder(caches);
    const fs::path tracked = made(world.home / "Documents/Editor templates");
    track("com.acme.editor", "Other", {tracked.native()});
    EXPECT_THAT(located(), ElementsAre(tracked, caches));
}

TEST_F(DataLocatorTest, TakesAnEmptyIdentifierForNone) {
    const fs::path tracked = made(world.home / "Documents/Editor templates");
    track("", "Editor", {tracked.native()});
    EXPECT_THAT(located(std::nullopt), ElementsAre(tracked));
    EXPECT_THAT(located(""), ElementsAre(tracked));
    test::askDatabase(InstallsDB::defaultPath(world.host), "UPDATE installs SET bundle_id = '', app_name = 'Other';");
    EXPECT_THAT(located(""), IsEmpty());
}

TEST_F(DataLocatorTest, GivesAPathOnceAtItsTrackedPlace) {
    const fs::path plist = made(world.home / "Library/Preferences/com.acme.editor.plist");
    test::makeFolder(caches);
    const fs::path tracked = made(world.home / "tracked");
    track("com.acme.editor", "Other",
          {tracked.native(), plist.native(),
           (world.home / "Library/./Preferences/../Preferences").native() + "/com.acme.editor.plist"});
    EXPECT_THAT(located(), ElementsAre(tracked, plist, caches));
}

TEST_F(DataLocatorTest, LeavesOutTheFoldersOfEverybodyAlsoBehindALink) {
    test::makeFolder(world.home / "Library/Containers/com.acme.editor");
    const fs::path home = world.folder / "home";
    test::makeLink(home, world.home);
    const fs::path tracked = made(home / "tracked");
    track("com.acme.editor", "Other",
          {(home / "Library").native(), (home / "Library/Containers/com.acme.editor").native(), tracked.native()});
    EXPECT_THAT(located(), ElementsAre(tracked));
}

TEST_F(DataLocatorTest, LeavesOutTheBundleAndWhatIsInIt) {
    made(bundle / "Contents/Info.plist");
    const fs::path sibling = made(world.folder / "Applications/Editor.app.data");
    track("com.acme.editor", "Other",
          {bundle.native(), bundle.native() + "/", (bundle / "Contents/Info.plist").native(), sibling.native()});
    EXPECT_THAT(located(), ElementsAre(sibling));
}

TEST_F(DataLocatorTest, TakesNoPathFromTheWorkingFolder) {
    const fs::path tracked = made(world.home / "tracked");
    track("com.acme.editor", "Other", {fs::relative(tracked).native()});
    EXPECT_THAT(located(), IsEmpty());
}

TEST_F(DataLocatorTest, LeavesOutWhatIsMissingOrLeadsNowhere) {
    test::makeLink(world.home / "dangling", "missing");
    track("com.acme.editor", "Other", {(world.home / "missing").native(), (world.home / "dangling").native(), ""});
    EXPECT_THAT(located(), IsEmpty());
}

TEST_F(DataLocatorTest, LeavesOutFoldersOfEverybodyThatAnInstallerNames) {
    const fs::path library = world.folder / "Library";
    test::makeFolder(library / "Application Support/Acme");
    const fs::path agent = made(library / "LaunchAgents/com.acme.plist");
    const fs::path settings = made(library / "Preferences/com.acme.plist");
    track("com.acme.editor", "Other",
          {world.folder.path().native(), (world.folder / "Applications").native(), world.home.native(),
           library.native(), (library / "Application Support").native(), (library / "LaunchAgents").native(),
           agent.native(), settings.native(), (library / "Application Support/Acme").native()});
    EXPECT_THAT(located(), ElementsAre(agent, settings, library / "Application Support/Acme"));
}

TEST_F(DataLocatorTest, LeavesOutWhatIsSandboxed) {
    const fs::path library = world.home / "Library";
    const fs::path file = made(library / "Containers/com.acme.editor/Data/file");
    const fs::path shared = made(library / "Group Containers/group.com.acme/file");
    const fs::path alike = made(library / "Containers (old)/file");
    track("com.acme.editor", "Other",
          {(library / "Containers").native(), file.parent_path().parent_path().native(),
           file.parent_path().native() + "/", file.native(), (library / "Group Containers").native(),
           shared.parent_path().native(), (library / "Caches/../Group Containers").native() + "/group.com.acme/file",
           alike.native()});
    EXPECT_THAT(located(), ElementsAre(alike));
}

TEST_F(DataLocatorTest, LeavesOutTheFoldersOfTheUserAndOfBothLibrariesButNotWhatIsInThem) {
    std::vector<std::string> tracked;
    std::vector<fs::path> expected;
    const fs::path common = world.folder / "Library";
    for (const auto& folder :
         {world.home / "Desktop", world.home / "Documents", world.home / "Downloads", world.home / "Movies",
          world.home / "Music", world.home / "Pictures", world.home / "Public", world.home / "Library/Caches",
          world.home / "Library/Application Support", world.home / "Library/Fonts", world.home / "Library/Acme",
          common / "Caches", common / "Fonts", common / "Acme"}) {
        test::makeFolder(folder / "Own");
        tracked.insert(tracked.end(), {folder.native(), (folder / "Own").native()});
        expected.push_back(folder / "Own");
    }
    for (const auto& own : {made(world.home / "Library/acme.settings"), made(common / "acme.settings"),
                            made(world.home / "Documents (old)/file").parent_path()}) {
        tracked.push_back(own.native());
        expected.push_back(own);
    }
    track("com.acme.editor", "Other", tracked);
    EXPECT_EQ(located(), expected);
}

TEST_F(DataLocatorTest, AsksByNameOnlyWithoutAnIdentifier) {
    const fs::path tracked = made(world.home / "tracked");
    track("", "Editor", {tracked.native()});
    EXPECT_THAT(located(std::nullopt), ElementsAre(tracked));
    EXPECT_THAT(located("com.acme.editor"), IsEmpty());
}

TEST_F(DataLocatorTest, GivesTheAssociatedPathsAsTheyAreWhenNothingIsTracked) {
    test::makeFolder(world.home / "Library/Caches/Editor");
    EXPECT_THAT(DataLocator::locate(world.host, {bundle, "Editor", "Editor", std::nullopt}),
                ElementsAre(world.home / "Library/Caches/Editor", world.home / "Library/Caches/Editor"));
}

}  // namespace
}  // namespace tarvik
