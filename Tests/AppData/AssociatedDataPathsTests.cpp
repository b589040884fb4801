#include "AppData/AssociatedDataPaths.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AssociatedDataPathsTest : public testing::Test {
protected:
    std::vector<fs::path> located(const AppIdentity& identity) const {
        return AssociatedDataPaths::locate(world.host, identity);
    }
    fs::path applications() const { return world.folder / "Applications"; }
    fs::path library() const { return world.folder / "Library"; }
    fs::path ownLibrary() const { return world.home / "Library"; }

    test::World world;
};

TEST_F(AssociatedDataPathsTest, FindWhatIsThereInAFixedOrder) {
    const fs::path expected[] = {
        ownLibrary() / "HTTPStorages/com.acme.editor",
        ownLibrary() / "Caches/com.acme.editor",
        ownLibrary() / "WebKit/com.acme.editor",
        ownLibrary() / "Preferences/com.acme.editor.plist",
        ownLibrary() / "Application Support/Editor",
        ownLibrary() / "Caches/Editor",
        ownLibrary() / "Logs/Editor",
        ownLibrary() / "Saved Application State/Editor.savedState",
        library() / "Application Support/com.acme.editor",
        library() / "Caches/com.acme.editor",
        library() / "Preferences/com.acme.editor.plist",
        library() / "Logs/com.acme.editor",
        library() / "Application Support/Editor",
        library() / "Caches/Editor",
        library() / "Logs/Editor",
        world.home / ".edit",
        world.home / ".edit.json",
        world.home / ".edit.json.backup",
        world.home / ".editrc",
        world.home / ".edit.log",
        ownLibrary() / "Caches/edit-cli-nodejs",
        ownLibrary() / "Caches/edit-cli",
        ownLibrary() / "Caches/edit-nodejs",
    };
    for (const fs::path& path : expected) test::makeFile(path);
    EXPECT_THAT(located({applications() / "Editor.app", "Editor", "com.acme.editor", "Edit"}),
                testing::ElementsAreArray(expected));
}

TEST_F(AssociatedDataPathsTest, AreNoneWhenNothingIsThere) {
    EXPECT_THAT(located({applications() / "Editor.app", "Editor", "com.acme.editor", "Edit"}), IsEmpty());
}

TEST_F(AssociatedDataPathsTest, AreNeverContainers) {
    test::makeFolder(ownLibrary() / "Containers/com.acme.editor");
    test::makeFolder(ownLibrary() / "Group Containers/com.acme.editor");
    EXPECT_THAT(located({applications() / "Editor.app", "Editor", "com.acme.editor", "Edit"}), IsEmpty());
}

TEST_F(AssociatedDataPathsTest, AreFoundByNamesAloneWithoutAnIdentifier) {
    test::makeFolder(ownLibrary() / "Application Support/Editor");
    test::makeFile(world.home / ".editorrc");
    test::makeFolder(ownLibrary() / "Caches/editor-cli");
    EXPECT_THAT(located({applications() / "Editor.app", "Editor", std::nullopt, std::nullopt}),
                ElementsAre(ownLibrary() / "Application Support/Editor", world.home / ".editorrc",
                            ownLibrary() / "Caches/editor-cli"));
}

TEST_F(AssociatedDataPathsTest, LeaveDotfilesToTheProgramThatAHandlerOpens) {
    test::makeFile(world.home / ".claude.json");
    test::makeFolder(ownLibrary() / "Caches/claude-cli-nodejs");
    const fs::path bundle = applications() / "Claude.app";
    for (const char* identifier :
         {"com.anthropic.claude-code-url-handler", "com.anthropic.claudefordesktop", "com.acme.Claude.URLHandler"})
        EXPECT_THAT(located({bundle, "Claude", identifier, "claude"}), IsEmpty()) << identifier;
    EXPECT_THAT(located({bundle, "Claude", "com.acme.claude", "claude"}), testing::SizeIs(2));
}

TEST_F(AssociatedDataPathsTest, HoldTheExtraFoldersOfAKnownApplicationThatExist) {
    test::makeFolder(library() / "Application Support/GarageBand");
    EXPECT_THAT(located({applications() / "Logic Pro.app", "Logic Pro", "com.apple.Logic10", std::nullopt}),
                ElementsAre(library() / "Application Support/GarageBand"));
}

TEST_F(AssociatedDataPathsTest, DoNotClaimTheFolderThatASupplementalInstallLivesIn) {
    const fs::path bundle = ownLibrary() / "Application Support/Acme/Acme.app";
    test::makeFolder(bundle);
    test::makeFolder(library() / "Application Support/Acme");
    test::makeFolder(library() / "Caches/Acme");
    test::makeFolder(library() / "Logs/Acme");
    test::makeFolder(library() / "Logs/com.acme.helper");
    test::makeFolder(ownLibrary() / "Logs/Acme");
    EXPECT_THAT(located({bundle, "Acme", "com.acme.helper", "helper"}),
                ElementsAre(ownLibrary() / "Logs/Acme", library() / "Logs/com.acme.helper"));
}

TEST_F(AssociatedDataPathsTest, StandTwiceWhenTwoNamesAreOne) {
    test::makeFolder(ownLibrary() / "Caches/Editor");
    EXPECT_THAT(located({applications() / "Editor.app", "Editor", "Editor", std::nullopt}),
                ElementsAre(ownLibrary() / "Caches/Editor", ownLibrary() / "Caches/Editor"));
}

TEST_F(AssociatedDataPathsTest, AreNeverTheLibraryOfAnApplicationWithoutProperNames) {
    for (const char* folder : {"Caches", "Logs", "WebKit", "HTTPStorages", "Application Support"}) {
        test::makeFolder(ownLibrary() / folder);
        test::makeFolder(library() / folder);
    }
    for (const char* name : {"", ".", "..", "/", "../Documents"})
        EXPECT_THAT(located({applications() / "A.app", name, name, name}), IsEmpty()) << name;
}

}  // namespace
}  // namespace tarvik
