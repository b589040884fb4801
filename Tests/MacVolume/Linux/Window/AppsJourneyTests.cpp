// An application on its way through the window over a machine of a Mac's volumes.
#include "MacWindow.h"
#include "Platform/Files/Files.h"
#include "Support/Tree.h"

#include <QGuiApplication>

namespace tarvik::test {

namespace {

class MacAppsWindow : public MacWindow {
protected:
    MacAppsWindow() : MacWindow({.apps = 1, .files = 8}) {}

    void moveFullHouse(WindowUnderTest& window) {
        window.click("drive-Extended");
        window.click("viewPicker-local");
        window.click("appSearch");
        window.type("full");
        window.click("app-Full House/appBox");
        window.click("moveAppsButton");
        agree();
    }
};

void comeBack() {
    emit qGuiApp->applicationStateChanged(Qt::ApplicationActive);
}

}  // namespace

TEST_F(MacAppsWindow, MovesAnApplicationAndBringsItBack) {
    const fs::path app = mac->at("Applications/Full House.app");
    const std::string before = pictureOf(app);
    auto& window = open();
    moveFullHouse(window);
    ASSERT_EQ(window.text("job-Full House/transferStatus"), "Done")
        << window.text("job-Full House/transferFailure").toStdString();
    EXPECT_EQ(pictureOf(mac->extended / "ExternalTarvik/Apps/Full House.app"), before);

    window.click("viewPicker-onDrive");
    window.click("app-Full House/appMoveBackButton");
    window.click("alertButton-0");
    ASSERT_TRUE(window.waitForText("restoreRow/transferStatus", "Done"));
    EXPECT_EQ(pictureOf(app), before);
}

TEST_F(MacAppsWindow, LeadsToTheSettingsThatLetAnApplicationOfAnotherMakerGo) {
    const fs::path app = mac->at("Applications/Full House.app");
    makeFile(app / "Contents/_CodeSignature/CodeResources", "seal");
    mac->disk.set(MacVolume::Habit::guardsSignedBundles, true);
    const std::string before = pictureOf(app);
    auto& window = open();
    moveFullHouse(window);
    ASSERT_TRUE(window.waitUntilShown("appManagementNotice"));
    EXPECT_EQ(window.text("job-Full House/transferStatus"), "Failed");
    EXPECT_EQ(pictureOf(app), before);
    window.click("appManagementNotice/openSettingsButton");
    EXPECT_EQ(window.desktop().openedPages.size(), 1U);

    mac->disk.set(MacVolume::Habit::guardsSignedBundles, false);
    comeBack();
    EXPECT_TRUE(window.waitUntilHidden("appManagementNotice"));
    window.click("closeRunButton");
    ASSERT_TRUE(window.waitUntilHidden("jobsPanel"));
    window.click("app-Full House/appBox");
    window.click("moveAppsButton");
    agree();
    EXPECT_EQ(window.text("job-Full House/transferStatus"), "Done");
    EXPECT_EQ(pictureOf(mac->extended / "ExternalTarvik/Apps/Full House.app"), before);
}

}  // namespace tarvik::test
