#include "Window/WindowTest.h"

#include <QColor>
#include <QImage>
#include <gmock/gmock.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tarvik::test {

namespace {

class Shell : public WindowTest {
protected:
    /// The names of the tabs in the sidebar, from top to bottom.
    std::vector<std::string> tabs() {
        const auto* content = opened->item("tabList").property("contentItem").value<QQuickItem*>();
        std::map<double, std::string> rows;
        for (const QQuickItem* row : content->childItems())
            if (row->isVisible() && row->objectName().startsWith("tab-"))
                rows.emplace(row->y(), row->objectName().mid(4).toStdString());
        std::vector<std::string> names;
        for (const auto& [y, name] : rows) names.push_back(name);
        return names;
    }
};

TEST_F(Shell, ListsTheTabsThatExist) {
    auto& window = open();
    EXPECT_THAT(tabs(), testing::ElementsAre("apps", "folders", "uninstall", "dedupe", "symlinks", "health"));
    EXPECT_EQ(window.text("toolbarTitle"), "Apps");
    EXPECT_TRUE(window.item("tab-apps").property("isSelected").toBool());
    EXPECT_TRUE(window.isShown("appsTab"));
    const std::pair<const char*, const char*> others[] = {{"folders", "Folders"},
                                                          {"uninstall", "Uninstall"},
                                                          {"dedupe", "Dedupe"},
                                                          {"symlinks", "Symlinks"},
                                                          {"health", "Health"}};
    for (const auto& [name, label] : others) {
        window.openTab(name);
        EXPECT_EQ(window.text("toolbarTitle"), label);
        EXPECT_TRUE(window.isShown(QLatin1String(name) + "Tab"));
        EXPECT_FALSE(window.isShown("appsTab"));
    }
}

TEST_F(Shell, NamesItsParts) {
    auto& window = open();
    EXPECT_EQ(window.text("appName"), "Tarvik");
    EXPECT_EQ(window.text("drivesTitle"), "Target Drive");
    EXPECT_EQ(window.item("refreshAllButton").property("help"), "Refresh all");
}

TEST_F(Shell, ListsTheDrivesWithTheirCapacity) {
    auto& window = open();
    EXPECT_EQ(window.text("drive-Backup/driveName"), "Backup");
    EXPECT_EQ(window.text("drive-Backup/driveFree"), "412 GB free");
    EXPECT_EQ(window.text("drive-Backup/driveTotal"), "1,000 GB");
    EXPECT_NEAR(window.item("drive-Backup/driveCapacity").property("value").toDouble(), 0.588, 0.001);
    EXPECT_TRUE(window.isShown("drive-Media"));
    EXPECT_FALSE(window.isShown("noDrivesText"));
}

TEST_F(Shell, SelectsTheFirstDriveAtTheStart) {
    auto& window = open();
    EXPECT_TRUE(window.isShown("drive-Backup/driveCheckMark"));
    EXPECT_FALSE(window.isShown("drive-Media/driveCheckMark"));
}

TEST_F(Shell, SelectsADriveByAClick) {
    auto& window = open();
    window.click("drive-Media");
    EXPECT_TRUE(window.isShown("drive-Media/driveCheckMark"));
    EXPECT_FALSE(window.isShown("drive-Backup/driveCheckMark"));
}

TEST_F(Shell, DrawsTheIconOfTheSelectedDriveInColour) {
    addVolume("/Volumes/First", "A first");
    auto& window = open(small);
    const auto isColoured = [&](const QString& drive) {
        const QQuickItem& icon = window.item(drive + "/driveIcon");
        const QRect place = icon.mapRectToScene(icon.boundingRect()).toRect();
        const QImage picture = window.window().grabWindow().copy(place);
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x) {
                const QColor colour = picture.pixelColor(x, y);
                if (colour.blue() - colour.red() > 80) return true;
            }
        return false;
    };
    window.state().selectDrive(QString::fromStdString(backup.native()));
    move(makePhotos());
    EXPECT_TRUE(window.waitUntil([&] { return isColoured("drive-Backup") && !isColoured("drive-A first"); }));
    window.state().selectDrive(QString::fromStdString(media.native()));
    EXPECT_TRUE(window.waitUntil([&] { return !isColoured("drive-Backup") && isColoured("drive-Media"); }));
}

TEST_F(Shell, SelectsADriveByTheKeyboard) {
    auto& window = open();
    while (!window.hasFocus("driveList")) window.press(Qt::Key_Tab);
    window.press(Qt::Key_Down);
    EXPECT_TRUE(window.isShown("drive-Backup/driveCheckMark")) << "Walking the list is not choosing.";
    window.press(Qt::Key_Space);
    EXPECT_TRUE(window.isShown("drive-Media/driveCheckMark"));
}

TEST_F(Shell, OffersNeitherReadOnlyVolumesNorTheBootVolume) {
    addVolume("/", "Macintosh HD").isInternal = true;
    addVolume("/Volumes/Installer", "Installer").isReadOnly = true;
    auto& window = open();
    EXPECT_EQ(window.item("driveList").property("count").toInt(), 2);
    EXPECT_FALSE(window.isShown("drive-Macintosh HD"));
    EXPECT_FALSE(window.isShown("drive-Installer"));
}

TEST_F(Shell, OffersAWritableInternalSecondVolume) {
    addVolume("/Volumes/Second", "Second").isInternal = true;
    EXPECT_TRUE(open().waitUntilShown("drive-Second"));
}

TEST_F(Shell, SaysThatNoDriveIsConnected) {
    world.volumes->list.clear();
    auto& window = open(small);
    EXPECT_EQ(window.text("noDrivesText"), "No external drives connected.");
    EXPECT_EQ(window.item("driveList").property("count").toInt(), 0);
}

TEST_F(Shell, ListsADriveThatCameWhenAskedToLookAgain) {
    auto& window = open();
    addVolume("/Volumes/Late", "Late");
    window.click("refreshDrivesButton");
    EXPECT_TRUE(window.waitUntilShown("drive-Late"));
}

TEST_F(Shell, RefreshesAllByItsButtonAndByTheKeyboard) {
    auto& window = open();
    addVolume("/Volumes/Late", "Late");
    window.click("refreshAllButton");
    EXPECT_TRUE(window.waitUntilShown("drive-Late"));
    addVolume("/Volumes/Later", "Later");
    window.press(Qt::Key_R, Qt::ControlModifier);
    EXPECT_TRUE(window.waitUntilShown("drive-Later"));
}

TEST_F(Shell, TellsTheFreeSpaceOfTheBootVolume) {
    addVolume("/", "Macintosh HD").isInternal = true;
    auto& window = open();
    EXPECT_EQ(window.text("bootFree"), "Boot: " + window.state().bootFree() + " free");
    EXPECT_FALSE(window.state().bootFree().isEmpty());
}

TEST_F(Shell, KeepsALongDriveNameInItsCard) {
    addVolume("/Volumes/Long", "A drive with a name that is far longer\nthan any card of the sidebar could be");
    auto& window = open(small);
    const QString drive = "drive-A drive with a name that is far longer\nthan any card of the sidebar could be";
    const auto& card = window.item(drive);
    const auto& other = window.item("drive-Backup");
    EXPECT_EQ(card.height(), other.height());
    EXPECT_EQ(card.width(), other.width());
    const auto& name = window.item(drive + "/driveName");
    EXPECT_TRUE(name.property("truncated").toBool());
    EXPECT_EQ(name.property("lineCount").toInt(), 1);
}

}  // namespace

}  // namespace tarvik::test
