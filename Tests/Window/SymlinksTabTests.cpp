#include "Window/AppsWindowTest.h"

namespace tarvik::test {

namespace {

class SymlinksTab : public AppsWindowTest {
protected:
    WindowUnderTest& openTab(QSize size = large) {
        open(size).openTab("symlinks");
        return *opened;
    }
};

TEST_F(SymlinksTab, SaysWhatItListsAndThatThereIsNothing) {
    auto& window = openTab();
    EXPECT_EQ(window.text("symlinksHeading"), "Symlinks");
    EXPECT_EQ(window.text("symlinksText"), "All symbolic links found in the standard locations the mover writes to.");
    EXPECT_EQ(window.text("rescanButton"), "Rescan");
    EXPECT_EQ(window.text("noSymlinks/emptyTitle"), "No symlinks found.");
}

TEST_F(SymlinksTab, ListsLinksWithTheirTargetsAndStates) {
    const auto there = appOnDrive("Far");
    makeLink(applications / "Lost.app", backup / "ExternalTarvik/Apps/Lost.app");
    auto& window = openTab();
    EXPECT_FALSE(window.isShown("noSymlinks"));
    EXPECT_EQ(window.text("symlink-Far.app/symlinkPath").toStdString(), (applications / "Far.app").native());
    EXPECT_EQ(window.text("symlink-Far.app/symlinkTarget").toStdString(), there.native());
    EXPECT_TRUE(window.isShown("symlink-Far.app/symlinkArrow"));
    EXPECT_EQ(window.text("symlink-Far.app/symlinkState"), "valid");
    EXPECT_EQ(window.text("symlink-Lost.app/symlinkState"), "broken");
    EXPECT_EQ(window.text("symlink-Far.app/symlinkMoveBackButton"), "Move Back");
}

TEST_F(SymlinksTab, MovesBackWhatALinkLeadsTo) {
    appOnDrive("Far");
    auto& window = openTab();
    window.click("symlink-Far.app/symlinkMoveBackButton");
    EXPECT_EQ(window.text("alertTitle"), "Move Far.app back?");
    window.click("alertButton-0");
    EXPECT_TRUE(window.waitForText("infoToast/toastText", "Restored Far.app"));
    EXPECT_TRUE(window.waitUntilShown("noSymlinks"));
    EXPECT_TRUE(fs::is_directory(fs::symlink_status(applications / "Far.app")));
}

TEST_F(SymlinksTab, SaysThatABrokenLinkLeadsNowhere) {
    makeFolder(applications);
    makeLink(applications / "Lost.app", backup / "ExternalTarvik/Apps/Lost.app");
    auto& window = openTab();
    window.click("symlink-Lost.app/symlinkMoveBackButton");
    EXPECT_TRUE(window.waitUntilShown("errorToast"));
    EXPECT_TRUE(fs::is_symlink(applications / "Lost.app"));
}

TEST_F(SymlinksTab, LooksAgainWhenAsked) {
    auto& window = openTab();
    appOnDrive("Late");
    window.click("rescanButton");
    EXPECT_TRUE(window.waitUntilShown("symlink-Late.app"));
}

TEST_F(SymlinksTab, IsUsedByTheKeyboardAlone) {
    appOnDrive("Far");
    appOnDrive("Near");
    auto& window = openTab();
    for (int i = 0; i < 20 && !window.hasFocus("symlinkList"); ++i) window.press(Qt::Key_Tab);
    window.press(Qt::Key_Down);
    window.press(Qt::Key_Return);
    EXPECT_EQ(window.text("alertTitle"), "Move Near.app back?");
}

TEST_F(SymlinksTab, KeepsLongPathsInTheirRow) {
    const std::string name(80, 'W');
    appOnDrive(name);
    appOnDrive("Short");
    auto& window = openTab(small);
    const QString row = QString::fromStdString("symlink-" + name + ".app");
    EXPECT_EQ(window.item(row).height(), window.item("symlink-Short.app").height());
    EXPECT_TRUE(window.item(row + "/symlinkPath").property("truncated").toBool());
    EXPECT_EQ(window.item(row + "/symlinkState").mapToScene({}).x(),
              window.item("symlink-Short.app/symlinkState").mapToScene({}).x());
}

}  // namespace

}  // namespace tarvik::test
