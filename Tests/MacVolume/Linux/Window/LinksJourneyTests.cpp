// Links and launchers in the window over a machine of a Mac's volumes.
#include "Discovery/AppScanner.h"
#include "MacWindow.h"
#include "Platform/Files/Files.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <string>

namespace tarvik::test {

namespace {

class MacLinksWindow : public MacWindow {
protected:
    MacLinksWindow() : MacWindow({.apps = 1, .files = 8}) {}
};

}  // namespace

TEST_F(MacLinksWindow, MakesLaunchersForASuiteAndTakesThemAwayWithItsWayBack) {
    const fs::path suite = mac->at("Applications/Studio Suite");
    const fs::path launcher = mac->at("Applications/Mixer.app");
    const std::string before = pictureOf(suite);
    auto& window = open();
    move(suite, "Extended");
    ASSERT_EQ(window.text("job-Studio Suite/transferStatus"), "Done")
        << window.text("job-Studio Suite/transferFailure").toStdString();
    EXPECT_EQ(AppScanner::launcherShimTarget(launcher),
              mac->extended / "ExternalTarvik/Folders/Studio Suite/Mixer.app");
    window.openTab("apps");
    window.click("viewPicker-onDrive");
    EXPECT_TRUE(window.waitUntilShown("app-Mixer")) << "the launcher stands for what is on the drive";

    window.openTab("symlinks");
    window.click("symlink-Studio Suite/symlinkMoveBackButton");
    window.click("alertButton-0");
    ASSERT_TRUE(window.waitForText("restoreRow/transferStatus", "Done"));
    EXPECT_EQ(pictureOf(suite), before);
    EXPECT_FALSE(Files::itemExists(launcher));
    EXPECT_TRUE(window.waitUntilHidden("symlink-Studio Suite"));
}

TEST_F(MacLinksWindow, ListsEachLinkOnceByTheNameThatTheDiskShows) {
    const fs::path songs = mac->atHome("Musique d'\u00E9t\u00E9");
    makeFile(songs / "\u00C9tude.txt", "la");
    makeOld(songs);
    auto& window = open();
    move(mac->atHome("MUSIQUE D'e\u0301te\u0301"), "Extended");
    window.openTab("symlinks");
    const QString shown = QString::fromStdString(songs.filename()).normalized(QString::NormalizationForm_D);
    ASSERT_TRUE(window.waitUntilShown("symlink-" + shown));
    EXPECT_EQ(window.text("symlink-" + shown + "/symlinkState"), "valid");
    window.click("symlink-" + shown + "/symlinkMoveBackButton");
    window.click("alertButton-0");
    ASSERT_TRUE(window.waitForText("restoreRow/transferStatus", "Done"));
    EXPECT_EQ(contentOf(songs / "\u00C9tude.txt"), "la");
}

TEST_F(MacLinksWindow, SaysWhyAFolderStaysOnADriveWhoseListingBreaksOff) {
    const fs::path films = mac->atHome("Films");
    for (const auto* name : {"a", "b", "c", "d"}) makeFile(films / "Holiday" / name, name);
    const std::string before = pictureOf(films);
    auto& window = open();
    move(films, "Extended");
    const fs::path moved = mac->extended / "ExternalTarvik/Folders/Films";
    breakListing(moved / "Holiday");
    window.openTab("symlinks");
    window.click("symlink-Films/symlinkMoveBackButton");
    ASSERT_TRUE(window.waitUntilShown("errorToast"));
    EXPECT_TRUE(window.text("errorToast/toastText").contains("can't be read"))
        << window.text("errorToast/toastText").toStdString();
    breakListing(moved / "Holiday", false);
    EXPECT_TRUE(leadsTo(films, moved));
    EXPECT_EQ(pictureOf(moved), before);
}

}  // namespace tarvik::test
