// Ways back of applications that were ticked.
#include "Platform/Files/Files.h"
#include "State/Apps/AppsStateTest.h"

#include <gmock/gmock.h>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class AppsStateWayBack : public AppsStateTest {};

}  // namespace

TEST_F(AppsStateWayBack, ComeBackOneByOne) {
    const auto editor = app("Editor");
    begin();
    move({editor});
    appsTab().restoreApp(FilePath(editor));
    settle();
    EXPECT_EQ(dialogs.asked.back().title, "Move Editor.app back?");
    EXPECT_TRUE(Files::isFolder(editor));
    EXPECT_EQ(state->lastInfo(), "Restored Editor.app");
    EXPECT_FALSE(appsTab().apps()[0].entry.isAlreadySymlinked);
    appsTab().restoreApp(FilePath(editor));
    settle();
    EXPECT_EQ(state->lastError(), "No symlink found for Editor.");
}

TEST_F(AppsStateWayBack, OfOneMovedFolderComeBackTogether) {
    const fs::path suite = world.drive / "ExternalTarvik/Apps/Suite";
    makeBundle(suite / "One.app");
    makeBundle(suite / "Two.app");
    makeFolder(applications);
    makeLink(applications / "Suite", suite);
    begin();
    ASSERT_THAT(appsTab().apps(), SizeIs(2));
    select({applications / "Suite/One.app", applications / "Suite/Two.app"});
    appsTab().restoreSelectedApps();
    settle();
    ASSERT_THAT(dialogs.asked, SizeIs(1));
    EXPECT_EQ(dialogs.asked[0].title, "Move 1 item back?");
    EXPECT_EQ(state->lastInfo(), "Moved 1 item back.");
    EXPECT_TRUE(Files::isFolder(applications / "Suite"));
    EXPECT_THAT(appsTab().selectedAppIDs(), IsEmpty());
    EXPECT_THAT(state->jobs(), IsEmpty());
}

TEST_F(AppsStateWayBack, OfAFolderWithLaunchersComeBackTogetherToo) {
    const fs::path suite = world.drive / "ExternalTarvik/Apps/Suite";
    makeBundle(suite / "Mixer.app", {{"CFBundleIdentifier", "org.example.Mixer"}});
    makeFolder(applications);
    makeLink(applications / "Suite", suite);
    makeLauncher(applications / "Mixer.app", suite / "Mixer.app");
    begin();
    ASSERT_THAT(appsTab().apps(), SizeIs(2));
    for (const auto* first : {"Mixer.app", "Suite/Mixer.app"}) {
        select({applications / first});
        appsTab().restoreSelectedApps();
        settle();
        EXPECT_EQ(dialogs.asked.back().title, "Move 1 item back?");
        EXPECT_EQ(state->lastInfo(), "Moved 1 item back.");
        EXPECT_TRUE(Files::isFolder(applications / "Suite/Mixer.app"));
        EXPECT_FALSE(Files::itemExists(applications / "Mixer.app"));
        fs::remove_all(world.trash->folder);
        fs::rename(applications / "Suite", suite);
        makeLink(applications / "Suite", suite);
        makeLauncher(applications / "Mixer.app", suite / "Mixer.app");
        state->refreshAll();
        settle();
    }
}

TEST_F(AppsStateWayBack, BehindLaunchersAreAskedAboutByTheFolderThatComesBack) {
    const fs::path suite = world.drive / "ExternalTarvik/Apps/Suite";
    for (const auto* name : {"Mixer.app", "Tuner.app"}) {
        makeBundle(suite / name);
        makeLauncher(applications / name, suite / name);
    }
    makeLink(applications / "Suite", suite);
    begin();
    select({applications / "Mixer.app", applications / "Tuner.app"});
    appsTab().restoreSelectedApps();
    settle();
    ASSERT_THAT(dialogs.asked, SizeIs(1));
    EXPECT_EQ(dialogs.asked[0].title, "Move 1 item back?");
    EXPECT_THAT(dialogs.asked[0].text, testing::EndsWith("\n\nSuite"));
    EXPECT_EQ(state->lastInfo(), "Moved 1 item back.");
    EXPECT_EQ(state->lastError(), "");
    EXPECT_THAT(Files::names(applications), ElementsAre("Suite"));
}

TEST_F(AppsStateWayBack, ComeBackAlsoAfterOneThatCannot) {
    const auto editor = app("Editor");
    const auto player = app("Player");
    begin();
    move({editor, player});
    fs::remove_all(onDrive("Editor"));
    select({editor, player});
    appsTab().restoreSelectedApps();
    settle();
    EXPECT_EQ(state->lastError(), "Move back completed with 1 failure.");
    EXPECT_EQ(state->restore().outcome(), "Move back completed with 1 failure.");
    EXPECT_TRUE(Files::isSymbolicLink(editor));
    EXPECT_TRUE(Files::isFolder(player));
}

TEST_F(AppsStateWayBack, ComeBackFromTheirLauncherToo) {
    makeBundle(onDrive("Editor"));
    makeLauncher(applications / "Editor.app", onDrive("Editor"));
    begin();
    appsTab().restoreApp(FilePath(applications / "Editor.app"));
    settle();
    EXPECT_EQ(state->lastInfo(), "Restored Editor.app");
    EXPECT_FALSE(Files::exists(applications / "Editor.app/Contents/Resources/ExternalAppTarget.txt"));
    EXPECT_FALSE(Files::exists(onDrive("Editor")));
}

TEST_F(AppsStateWayBack, AreAskedAboutWhenNoMoveHasLeftTheirLink) {
    const fs::path own = world.folder / "Elsewhere/Own.app";
    makeBundle(own);
    makeFolder(applications);
    makeLink(applications / "Own.app", own);
    begin();
    select({applications / "Own.app"});
    dialogs.answers = {1};
    appsTab().restoreSelectedApps();
    settle();
    ASSERT_THAT(dialogs.asked, SizeIs(1));
    EXPECT_THAT(dialogs.asked[0].details, ElementsAre("Own.app is not a symlink that Tarvik has left."));
}

}  // namespace tarvik::test
