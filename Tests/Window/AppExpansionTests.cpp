#include "Window/AppsWindowTest.h"

#include <gmock/gmock.h>

namespace tarvik::test {

namespace {

using testing::IsEmpty;

class AppExpansion : public AppsWindowTest {
protected:
    AppExpansion() { signApps(); }
    /// Opens the window and the row of an application.
    WindowUnderTest& openRow(const QString& name, const char* scope = "local") {
        openScope(scope).click("app-" + name + "/appChevron");
        EXPECT_TRUE(opened->waitUntilShown("appExpansion"));
        EXPECT_TRUE(opened->waitUntilHidden("verificationSpinner"));
        EXPECT_TRUE(opened->waitUntil([&] { return opened->state().isIdle(); }));
        return *opened;
    }
    QString value(const char* row) { return opened->text(QLatin1String(row) + "/metadataValue"); }
    int stateOf(const char* box) { return opened->item(box).property("checkState").toInt(); }
    bool isTrashed(const char* name) const { return fs::exists(world.trash->folder / name); }
    /// An application with data in three categories, one of them with a folder of files.
    void makeEditor() {
        app("Editor", 4096, 30'000);
        makeFileOfSize(caches / "deep/one", 8192);
        makeFileOfSize(caches / "deep/two", 8192);
        makeFile(world.home / "Library/Preferences/org.example.Editor.plist");
        makeFileOfSize(world.home / "Library/Caches/org.example.Editor/more", 5000);
        makeFile(world.home / "Library/Logs/Editor/log");
    }

    fs::path caches = world.home / "Library/Caches/Editor";
};

TEST_F(AppExpansion, NamesItsPartsAndSaysThatThereIsNoData) {
    app("Bare");
    auto& window = openRow("Bare");
    EXPECT_EQ(window.text("filesTitle"), "Apps files and folders");
    EXPECT_EQ(window.text("verificationTitle"), "App verification");
    EXPECT_EQ(window.text("notarization"), "Notarized");
    EXPECT_EQ(window.text("dataCount"), "0 items");
    EXPECT_EQ(window.text("noDataText"), "No tracked data paths.");
    EXPECT_FALSE(window.isShown("trashButton"));
    window.click("app-Bare/appChevron");
    EXPECT_TRUE(window.waitUntilHidden("appExpansion"));
}

TEST_F(AppExpansion, TellsMoreOnDemand) {
    app("Editor");
    auto& window = openRow("Editor");
    EXPECT_FALSE(window.isShown("bundleIdRow"));
    EXPECT_EQ(window.text("moreInfoButton"), "More info");
    window.click("moreInfoButton");
    EXPECT_EQ(window.text("bundleIdRow/metadataLabel"), "Bundle ID");
    EXPECT_EQ(value("bundleIdRow"), "org.example.Editor");
    EXPECT_EQ(window.text("developerRow/metadataLabel"), "Developer");
    EXPECT_EQ(value("developerRow"), "Ada Apps");
    EXPECT_FALSE(window.isShown("appStoreRow"));
    EXPECT_FALSE(window.isShown("symlinkedRow"));
    window.click("moreInfoButton");
    EXPECT_FALSE(window.isShown("bundleIdRow"));
}

TEST_F(AppExpansion, TellsMoreWhileTheApplicationsAreReadAnew) {
    app("Editor", 4096, 4096);
    app("Player");
    auto& window = openRow("Editor");
    window.click("moreInfoButton");
    makeFile(world.home / "Library/Caches/Editor/more", std::string(100'000, 'x'));
    app("Newer");
    window.state().refreshAll();
    ASSERT_TRUE(window.waitUntil([&] { return window.state().isIdle(); }));
    ASSERT_TRUE(window.waitUntilShown("app-Newer"));
    EXPECT_TRUE(window.isShown("moreInfo"));
}

TEST_F(AppExpansion, WarnsOfTheStoreAndTellsThatABundleIsAway) {
    makeBundle(backup / "ExternalTarvik/Apps/Shop.app");
    makeFile(backup / "ExternalTarvik/Apps/Shop.app/Contents/_MASReceipt/receipt");
    makeFolder(applications);
    makeLink(applications / "Shop.app", backup / "ExternalTarvik/Apps/Shop.app");
    auto& window = openRow("Shop", "onDrive");
    window.click("moreInfoButton");
    EXPECT_EQ(value("bundleIdRow"), "(none)");
    EXPECT_EQ(window.text("appStoreRow/metadataLabel"), "Mac App Store");
    EXPECT_EQ(value("appStoreRow"), "Yes (moving may break receipt)");
    EXPECT_EQ(window.text("symlinkedRow/metadataLabel"), "Symlinked");
    EXPECT_EQ(value("symlinkedRow"), "Yes — bundle is external");
}

TEST_F(AppExpansion, ListsTheDataByCategory) {
    makeEditor();
    auto& window = openRow("Editor");
    EXPECT_EQ(window.text("dataCount"), "4 items");
    ASSERT_TRUE(window.waitForText("category-Caches/categorySummary", "0 files and 2 folders"));
    EXPECT_EQ(window.text("category-Preferences/categorySummary"), "1 file and 0 folders");
    EXPECT_EQ(window.text("category-Logs/categorySummary"), "0 files and 1 folder");
    EXPECT_EQ(window.text("category-Caches/categoryHelp"),
              "Disposable cached files. Safe to remove; will be regenerated.");
    EXPECT_EQ(window.text("category-Logs/categoryHelp"), "App log files. Safe to remove.");
    EXPECT_FALSE(window.isShown("category-Cookies"));
    EXPECT_NE(window.text("file-Editor/fileSize"), "");
    window.click("category-Caches/categoryChevron");
    EXPECT_TRUE(window.waitUntilHidden("file-org.example.Editor"));
}

TEST_F(AppExpansion, TicksACategoryAsAWhole) {
    makeEditor();
    auto& window = openRow("Editor");
    EXPECT_EQ(window.text("checkedText"), "0 items selected");
    EXPECT_FALSE(window.isEnabled("trashButton"));
    window.click("category-Caches/categoryBox");
    EXPECT_EQ(stateOf("category-Caches/categoryBox"), Qt::Checked);
    EXPECT_EQ(stateOf("file-Editor/fileBox"), Qt::Checked);
    EXPECT_EQ(window.text("checkedText"), "2 items selected");
    EXPECT_EQ(window.text("checkedSize"), window.text("category-Caches/categorySize"));
    EXPECT_TRUE(window.isEnabled("trashButton"));

    window.click("file-org.example.Editor/fileBox");
    EXPECT_EQ(stateOf("category-Caches/categoryBox"), Qt::PartiallyChecked);
    EXPECT_EQ(window.text("checkedText"), "1 item selected");
    window.click("category-Caches/categoryBox");
    EXPECT_EQ(stateOf("category-Caches/categoryBox"), Qt::Checked);
    window.click("category-Caches/categoryBox");
    EXPECT_EQ(stateOf("category-Caches/categoryBox"), Qt::Unchecked);
    window.click("category-Logs/categoryBox");
    EXPECT_EQ(window.text("clearCheckedButton"), "Clear");
    window.click("clearCheckedButton");
    EXPECT_EQ(window.text("checkedText"), "0 items selected");
}

TEST_F(AppExpansion, ReadsAFolderWhenItIsOpened) {
    makeEditor();
    auto& window = openRow("Editor");
    EXPECT_FALSE(window.isShown("file-deep"));
    window.click("file-Editor/fileChevron");
    ASSERT_TRUE(window.waitUntilShown("file-deep"));
    EXPECT_TRUE(window.isShown("file-cache"));
    EXPECT_FALSE(window.isShown("file-cache/fileChevron"));
    window.click("file-deep/fileChevron");
    ASSERT_TRUE(window.waitUntilShown("file-one"));
    EXPECT_TRUE(window.waitForText("file-one/fileSize", "8 KB"));
    window.click("file-Editor/fileChevron");
    EXPECT_TRUE(window.waitUntilHidden("file-deep"));
    window.click("file-Editor/fileChevron");
    EXPECT_TRUE(window.waitUntilShown("file-one")) << "what was read and opened is kept";
}

TEST_F(AppExpansion, TicksAFolderWithAllThatIsInIt) {
    makeEditor();
    auto& window = openRow("Editor");
    window.click("file-Editor/fileChevron");
    ASSERT_TRUE(window.waitUntilShown("file-deep"));
    window.click("file-deep/fileChevron");
    ASSERT_TRUE(window.waitUntilShown("file-one"));
    window.click("file-Editor/fileBox");
    EXPECT_EQ(stateOf("file-one/fileBox"), Qt::Checked);
    EXPECT_EQ(window.text("checkedText"), "1 item selected");
    window.click("file-one/fileBox");
    EXPECT_EQ(stateOf("file-one/fileBox"), Qt::Unchecked);
    EXPECT_EQ(stateOf("file-two/fileBox"), Qt::Checked);
    EXPECT_EQ(stateOf("file-deep/fileBox"), Qt::PartiallyChecked);
    EXPECT_EQ(stateOf("file-Editor/fileBox"), Qt::PartiallyChecked);
    EXPECT_EQ(window.text("checkedText"), "2 items selected") << "the file beside the folder, and the other file";
}

TEST_F(AppExpansion, AsksAndThenMovesWhatIsTickedToTheTrash) {
    makeEditor();
    auto& window = openRow("Editor");
    window.click("category-Logs/categoryBox");
    window.click("file-Editor/fileChevron");
    ASSERT_TRUE(window.waitUntilShown("file-deep"));
    window.click("file-deep/fileBox");
    EXPECT_EQ(window.text("trashButton"), "Move to Trash");
    window.click("trashButton");
    EXPECT_EQ(window.text("alertTitle"), "Move 2 items to Trash?");
    EXPECT_EQ(window.text("alertButton-0"), "Move to Trash");
    window.click("alertButton-0");
    EXPECT_TRUE(window.waitForText("infoToast/toastText", "Moved 2 items to Trash."));
    EXPECT_TRUE(isTrashed("deep/one"));
    EXPECT_TRUE(isTrashed("Editor/log"));
    EXPECT_TRUE(fs::exists(caches / "cache"));
    EXPECT_EQ(window.text("checkedText"), "0 items selected");
    EXPECT_TRUE(window.waitUntilHidden("category-Logs")) << "the list shows what is left";
    EXPECT_TRUE(window.waitUntilHidden("file-deep"));
    EXPECT_EQ(window.text("dataCount"), "3 items");
}

TEST_F(AppExpansion, TrashesNothingWhenItIsCancelled) {
    makeEditor();
    auto& window = openRow("Editor");
    window.click("category-Caches/categoryBox");
    window.click("trashButton");
    window.click("alertButton-1");
    EXPECT_TRUE(window.waitUntil([&] { return window.state().isIdle(); }));
    EXPECT_TRUE(fs::exists(caches / "cache"));
    EXPECT_EQ(window.text("checkedText"), "2 items selected");
    EXPECT_EQ(window.state().lastInfo(), "");
}

TEST_F(AppExpansion, SaysInOneSentenceWhatCouldNotBeTrashed) {
    makeEditor();
    auto& window = openRow("Editor");
    window.click("category-Caches/categoryBox");
    world.trash->refuses = true;
    window.click("trashButton");
    window.click("alertButton-0");
    ASSERT_TRUE(window.waitUntilShown("errorToast"));
    EXPECT_TRUE(window.state().lastError().startsWith("2 items could not be moved to Trash: "));
    EXPECT_EQ(window.state().lastInfo(), "");
    EXPECT_TRUE(fs::exists(caches / "cache"));
    EXPECT_EQ(window.text("checkedText"), "0 items selected");
}

TEST_F(AppExpansion, KeepsLinksToDrivesOutOfTheTrash) {
    app("Editor");
    makeFile(backup / "ExternalTarvik/Data/Editor/cache");
    makeFolder(caches.parent_path());
    makeLink(caches, backup / "ExternalTarvik/Data/Editor");
    makeFileOfSize(world.home / "Library/Caches/org.example.Editor/more", 5000);
    auto& window = openRow("Editor");
    ASSERT_TRUE(window.waitForText("file-Editor/fileNote", "on a drive, use Move Back"));
    EXPECT_FALSE(window.isEnabled("file-Editor/fileBox"));
    EXPECT_FALSE(window.isShown("file-Editor/fileChevron"));
    window.click("category-Caches/categoryBox");
    EXPECT_EQ(window.text("checkedText"), "1 item selected");
    EXPECT_EQ(stateOf("category-Caches/categoryBox"), Qt::Checked);
    window.click("trashButton");
    window.click("alertButton-0");
    EXPECT_TRUE(window.waitForText("infoToast/toastText", "Moved 1 item to Trash."));
    EXPECT_TRUE(fs::is_symlink(caches));
}

TEST_F(AppExpansion, KeepsTheTicksOfItsOwnApplicationOnly) {
    makeEditor();
    app("Player", 4096, 5000);
    auto& window = openRow("Editor");
    window.click("category-Logs/categoryBox");
    window.click("app-Player/appChevron");
    ASSERT_TRUE(window.waitUntilShown("app-Player/checkedText"));
    EXPECT_EQ(window.text("app-Player/checkedText"), "0 items selected");
    window.openTab("symlinks");
    window.openTab("apps");
    window.click("viewPicker-local");
    EXPECT_EQ(window.text("app-Editor/checkedText"), "1 item selected") << "another tab changes no tick";
    window.click("app-Editor/appChevron");
    EXPECT_TRUE(window.waitUntilHidden("app-Editor/appExpansion"));
    EXPECT_THAT(window.appsState().checkedDataPaths().within({world.home}), IsEmpty()) << "nothing unseen stays ticked";
}

TEST_F(AppExpansion, IsUsedByTheKeyboardAlone) {
    makeEditor();
    auto& window = openRow("Editor");
    window.item("dataTree").forceActiveFocus(Qt::TabFocusReason);
    window.press(Qt::Key_Space);
    EXPECT_EQ(window.text("checkedText"), "2 items selected");
    window.press(Qt::Key_Left);
    EXPECT_TRUE(window.waitUntilHidden("file-org.example.Editor"));
    EXPECT_TRUE(window.isShown("appExpansion")) << "the arrow closes the category, not the row";
    window.press(Qt::Key_Right);
    window.press(Qt::Key_Down);
    window.press(Qt::Key_Right);
    EXPECT_TRUE(window.waitUntilShown("file-deep"));
    window.click("app-Editor/appName");
    window.item("moreInfoButton").forceActiveFocus(Qt::TabFocusReason);
    window.press(Qt::Key_Left);
    EXPECT_TRUE(window.isShown("appExpansion")) << "an arrow in a control within the row belongs there";
    window.press(Qt::Key_Space);
    EXPECT_TRUE(window.isShown("bundleIdRow"));
}

TEST_F(AppExpansion, ShowsTheBeginningOfAVeryLargeFolder) {
    app("Editor", 4096, 4096);
    for (int number = 0; number < 600; ++number) makeFile(caches / ("file " + std::to_string(number)));
    auto& window = openRow("Editor");
    window.click("file-Editor/fileChevron");
    ASSERT_TRUE(window.waitUntil([&] { return window.item("dataTree").property("count").toInt() > 100; }));
    EXPECT_EQ(window.item("dataTree").property("count").toInt(), 503)
        << "a category, a folder, 500 files, and a line for the rest";
    QMetaObject::invokeMethod(&window.item("dataTree"), "positionViewAtEnd");
    EXPECT_TRUE(window.waitUntilShown("moreFiles"));
    EXPECT_LE(window.item("dataTree").height(), 320);
}

}  // namespace

}  // namespace tarvik::test
