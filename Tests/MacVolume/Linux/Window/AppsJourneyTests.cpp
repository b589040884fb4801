// An application on its way through the window over a machine of a Mac's volumes.
#include "MacWindow.h"
#include "Platform/Files/Files.h"
#include "Support/Tree.h"

namespace tarvik::test {

namespace {

class MacAppsWindow : public MacWindow {
protected:
    MacAppsWindow() : MacWindow({.apps = 1, .files = 8}) {}
};

}  // namespace

TEST_F(MacAppsWindow, MovesAnApplicationAndBringsItBack) {
    const fs::path app = mac->at("Applications/Full House.app");
    const std::string before = pictureOf(app);
    auto& window = open();
    window.click("drive-Extended");
    window.click("viewPicker-local");
    window.click("appSearch");
    window.type("full");
    window.click("app-Full House/appBox");
    window.click("moveAppsButton");
    agree();
    ASSERT_EQ(window.text("job-Full House/transferStatus"), "Done")
        << window.text("job-Full House/transferFailure").toStdString();
    EXPECT_EQ(pictureOf(mac->extended / "ExternalTarvik/Apps/Full House.app"), before);

    window.click("viewPicker-onDrive");
    window.click("app-Full House/appMoveBackButton");
    window.click("alertButton-0");
    ASSERT_TRUE(window.waitForText("restoreRow/transferStatus", "Done"));
    EXPECT_EQ(pictureOf(app), before);
}

}  // namespace tarvik::test
