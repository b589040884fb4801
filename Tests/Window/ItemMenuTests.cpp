#include "Window/AppsWindowTest.h"
#include "Window/HealthRows.h"

namespace tarvik::test {

namespace {

using Paths = std::vector<fs::path>;

class ItemMenu : public AppsWindowTest {
protected:
    void tabTo(const QString& name) {
        for (int i = 0; i < 20 && !opened->hasFocus(name); ++i) opened->press(Qt::Key_Tab);
        EXPECT_TRUE(opened->hasFocus(name)) << name.toStdString();
    }
    void openMenuOf(const QString& name) {
        opened->click(name, Qt::RightButton);
        EXPECT_TRUE(opened->waitUntilShown("itemMenu"));
    }
};

TEST_F(ItemMenu, ShowsAnApplicationInTheFileManager) {
    const auto editor = app("Editor");
    auto& window = openScope("local");
    openMenuOf("app-Editor/appName");
    EXPECT_EQ(window.text("revealItem"), "Show in File Manager");
    EXPECT_EQ(window.text("copyPathItem"), "Copy Path");
    window.click("revealItem");
    EXPECT_EQ(window.desktop().revealed, Paths{editor});
    EXPECT_TRUE(window.waitUntilHidden("revealItem"));
    EXPECT_EQ(window.appsState().selectedApps().size(), 0u) << "a right click ticks nothing";
}

TEST_F(ItemMenu, CopiesThePathOfALink) {
    appOnDrive("Far");
    auto& window = open();
    window.openTab("symlinks");
    openMenuOf("symlink-Far.app/symlinkPath");
    window.click("copyPathItem");
    EXPECT_EQ(window.desktop().copied, Paths{applications / "Far.app"});
    EXPECT_EQ(window.desktop().revealed, Paths{});
}

TEST_F(ItemMenu, KnowsTheRowThatItWasOpenedFor) {
    app("Atlas", 90'000);
    const auto editor = app("Editor", 10'000);
    auto& window = openScope("local");
    openMenuOf("app-Atlas/appName");
    window.press(Qt::Key_Escape);
    EXPECT_TRUE(window.waitUntilHidden("revealItem"));
    openMenuOf("app-Editor/appName");
    window.click("revealItem");
    EXPECT_EQ(window.desktop().revealed, Paths{editor});
}

TEST_F(ItemMenu, ShowsACommonFolder) {
    makeFolder(world.home / "Downloads");
    auto& window = openFolders();
    openMenuOf("quickPick-Downloads");
    window.click("revealItem");
    EXPECT_EQ(window.desktop().revealed, Paths{world.home / "Downloads"});
    EXPECT_EQ(window.text("sourceName"), "No folder selected");
}

TEST_F(ItemMenu, ShowsAFindingInTheFileManager) {
    appOnDrive("Far");
    makeLink(applications / "Lost.app", backup / "nowhere/Lost.app");
    auto& window = open();
    HealthRows::scan(window);
    openMenuOf("issue-dangling-Lost.app/issueName");
    window.click("revealItem");
    EXPECT_EQ(window.desktop().revealed, Paths{applications / "Lost.app"});
    EXPECT_TRUE(window.waitUntilHidden("revealItem"));
    openMenuOf("largest-Far.app/largestName");
    window.click("copyPathItem");
    EXPECT_EQ(window.desktop().copied, Paths{applications / "Far.app"});
    EXPECT_TRUE(fs::is_symlink(applications / "Lost.app")) << "a right click repairs nothing";
}

TEST_F(ItemMenu, BelongsToTheInnerOfTwoRows) {
    app("Editor", 4096, 5000);
    auto& window = openScope("local");
    window.click("app-Editor/appChevron");
    ASSERT_TRUE(window.waitUntilShown("category-Caches"));
    window.item("dataTree").forceActiveFocus(Qt::TabFocusReason);
    window.press(Qt::Key_Right);
    ASSERT_TRUE(window.waitUntilShown("file-Editor"));
    openMenuOf("file-Editor/fileName");
    window.click("revealItem");
    EXPECT_EQ(window.desktop().revealed, Paths{world.home / "Library/Caches/Editor"});
}

TEST_F(ItemMenu, IsOpenedAndUsedByTheKeyboardAlone) {
    const auto atlas = app("Atlas", 90'000);
    const auto editor = app("Editor", 10'000);
    auto& window = openScope("local");
    tabTo("appList");
    window.press(Qt::Key_Down);
    window.press(Qt::Key_Menu);
    ASSERT_TRUE(window.waitUntilShown("revealItem"));
    window.press(Qt::Key_Down);
    window.press(Qt::Key_Return);
    EXPECT_EQ(window.desktop().revealed, Paths{editor});
    ASSERT_TRUE(window.waitUntilHidden("revealItem"));
    EXPECT_TRUE(window.hasFocus("appList")) << "the keyboard goes on where it was";
    window.press(Qt::Key_Up);
    window.press(Qt::Key_F10, Qt::ShiftModifier);
    ASSERT_TRUE(window.waitUntilShown("revealItem"));
    window.press(Qt::Key_Down);
    window.press(Qt::Key_Down);
    window.press(Qt::Key_Return);
    EXPECT_EQ(window.desktop().copied, Paths{atlas});
}

TEST_F(ItemMenu, IsNotThereWhereARowIsNoItem) {
    auto& window = open();
    window.click("tab-folders", Qt::RightButton);
    window.click("drive-Media", Qt::RightButton);
    EXPECT_FALSE(window.isShown("revealItem"));
}

TEST_F(ItemMenu, StaysWithinTheWindow) {
    makeFolder(applications);
    for (const char* name : {"A", "B", "C", "D", "E", "F", "G", "H", "I", "J"}) app(name);
    auto& window = openScope("local", small);
    tabTo("appList");
    for (int i = 0; i < 9; ++i) window.press(Qt::Key_Down);
    window.press(Qt::Key_Menu);
    ASSERT_TRUE(window.waitUntilShown("copyPathItem"));
    const QQuickItem& last = window.item("copyPathItem");
    EXPECT_LE(last.mapToScene({0, last.height()}).y(), small.height());
}

}  // namespace

}  // namespace tarvik::test
