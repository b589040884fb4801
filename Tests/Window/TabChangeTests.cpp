#include "State/Apps/ShownApps.h"
#include "Window/AppsWindowTest.h"

#include <QTest>

#include <string>

namespace tarvik::test {

namespace {

/// What a user has set up in a tab is still there when they come back to it.
class TabChange : public AppsWindowTest {
protected:
    void leaveAndComeBack(const QString& tab) {
        opened->openTab(tab == "folders" ? "symlinks" : "folders");
        ASSERT_FALSE(opened->isShown(tab + "Tab"));
        opened->openTab(tab);
        ASSERT_TRUE(opened->waitUntilShown(tab + "Tab"));
        QTest::qWait(50);  // What is laid out anew is laid out.
    }
    void scrollTo(const QString& list, double place) {
        opened->item(list).setProperty("contentY", place);
        ASSERT_EQ(opened->item(list).property("contentY").toDouble(), place);
    }
    double placeOf(const QString& list) { return opened->item(list).property("contentY").toDouble(); }
};

TEST_F(TabChange, KeepsTheScope) {
    app("Editor");
    auto& window = openScope("local");
    leaveAndComeBack("apps");
    EXPECT_EQ(window.item("viewPicker").property("choice"), "local");
    EXPECT_TRUE(window.isShown("app-Editor"));
}

TEST_F(TabChange, KeepsTheSearch) {
    app("Editor");
    app("Player");
    auto& window = openScope("local");
    window.click("appSearch");
    window.type("play");
    leaveAndComeBack("apps");
    EXPECT_EQ(window.text("appSearch"), "play");
    EXPECT_TRUE(window.isShown("app-Player"));
    EXPECT_FALSE(window.isShown("app-Editor"));
}

TEST_F(TabChange, KeepsTheOrderAndWhatIsHidden) {
    makeRiskyApps();
    auto& window = openScope("local");
    window.click("sortPicker-name");
    window.click("hideRiskyBox");
    leaveAndComeBack("apps");
    EXPECT_EQ(window.item("sortPicker").property("choice"), "name");
    EXPECT_EQ(window.item("hideRiskyBox").property("checkState").toInt(), Qt::Checked);
}

TEST_F(TabChange, KeepsWhatIsOpen) {
    app("Editor", 4096, 4096);
    makeFile(world.home / "Library/Caches/Editor/deep/inside");
    auto& window = openScope("local");
    window.click("app-Editor/appChevron");
    window.click("moreInfoButton");
    window.click("file-Editor/fileChevron");
    ASSERT_TRUE(window.waitUntilShown("file-deep"));
    window.click("file-deep/fileChevron");
    ASSERT_TRUE(window.waitUntilShown("file-inside"));
    leaveAndComeBack("apps");
    EXPECT_TRUE(window.waitUntilShown("app-Editor/appExpansion"));
    EXPECT_TRUE(window.isShown("moreInfo"));
    EXPECT_TRUE(window.isShown("file-inside"));
}

TEST_F(TabChange, KeepsThePlaceInTheApplications) {
    for (int number = 10; number < 40; ++number) app("App " + std::to_string(number));
    openScope("local", small);
    scrollTo("appList", 400);
    leaveAndComeBack("apps");
    EXPECT_EQ(placeOf("appList"), 400);
}

TEST_F(TabChange, KeepsThePlaceInTheLinks) {
    for (int number = 10; number < 40; ++number)
        makeLink(world.home / ("Link " + std::to_string(number)), backup / "nothing");
    open(small).openTab("symlinks");
    scrollTo("symlinkList", 300);
    leaveAndComeBack("symlinks");
    EXPECT_EQ(placeOf("symlinkList"), 300);
}

TEST_F(TabChange, KeepsTheChosenFolderAndItsSize) {
    auto& window = openFolders();
    window.chooseFolder(makePhotos());
    ASSERT_TRUE(window.waitForText("sourceSize", "5 MB"));
    leaveAndComeBack("folders");
    EXPECT_EQ(window.text("sourceName"), "Photos");
    EXPECT_EQ(window.text("sourceSize"), "5 MB");
}

TEST_F(TabChange, TakesTheKeyboardAwayFromWhatIsNotSeenAnyMore) {
    auto& window = openScope("local");
    window.click("appSearch");
    window.press(Qt::Key_2, Qt::ControlModifier);
    window.type("play");
    window.press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(window.text("appSearch"), "");
}

TEST_F(TabChange, LeavesEachTabAmongTheChildrenOfTheWindow) {
    // Where benchmarks look for what they drive.
    auto& window = open();
    window.openTab("folders");
    EXPECT_NE(window.window().findChild<ShownApps*>(), nullptr);
    EXPECT_NE(window.window().findChild<QQuickItem*>("foldersTab"), nullptr);
}

TEST_F(TabChange, FollowsWhatHasChangedMeanwhile) {
    app("Editor");
    auto& window = openScope("local");
    window.openTab("folders");
    app("Player");
    window.state().refreshAll();
    ASSERT_TRUE(window.waitUntil([&] { return window.state().isIdle(); }));
    window.openTab("apps");
    EXPECT_TRUE(window.waitUntilShown("app-Player"));
}

}  // namespace

}  // namespace tarvik::test
