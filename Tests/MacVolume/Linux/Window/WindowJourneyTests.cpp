// The window over a machine of a Mac's volumes.
#include "MacWindow.h"
#include "Platform/Files/Files.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <string>
#include <sys/xattr.h>

namespace tarvik::test {

TEST_F(MacWindow, MovesAFolderToEachDriveAndBringsItBack) {
    auto& window = open();
    for (const auto* drive : {"Extended", "Card"}) {
        const fs::path photos = mac->atHome(std::string("Photos d'\u00E9t\u00E9 ") + drive);
        makeFile(photos / "Lac L\u00E9man.raw", "water");
        makeOld(photos);
        const std::string before = contentsOf(photos);
        // As the volume of the home lists it.
        const QString name = QString::fromStdString(photos.filename()).normalized(QString::NormalizationForm_D);
        const QString job = "job-" + name;
        move(photos, drive);
        ASSERT_TRUE(window.waitForText(job + "/transferStatus", "Done"));
        EXPECT_TRUE(leadsTo(photos, mac->at("Volumes") / drive / "ExternalTarvik/Folders" / photos.filename()));
        EXPECT_EQ(contentsOf(photos / "."), before);
        window.click(job + "/moveBackButton");
        window.click("alertButton-0");
        ASSERT_TRUE(window.waitForText("restoreRow/transferStatus", "Done"));
        EXPECT_FALSE(Files::isSymbolicLink(photos));
        EXPECT_EQ(contentsOf(photos), before);
        window.click("closeRunButton");
        ASSERT_TRUE(window.waitUntilHidden("jobsPanel"));
    }
}

TEST_F(MacWindow, BringsAttributesBackFromExFat) {
    const fs::path photo = mac->atHome("Photos/lake.raw");
    makeFile(photo, "water");
    ASSERT_EQ(::setxattr(photo.c_str(), "user.color", "blue", 4, 0), 0);
    makeOld(photo.parent_path());
    auto& window = open();
    move(photo.parent_path(), "Card");
    ASSERT_TRUE(window.waitForText("job-Photos/transferStatus", "Done"));
    EXPECT_TRUE(Files::itemExists(mac->exFat / "ExternalTarvik/Folders/Photos/._lake.raw"));
    makeOld(mac->exFat / "ExternalTarvik/Folders/Photos");
    window.click("job-Photos/moveBackButton");
    window.click("alertButton-0");
    ASSERT_TRUE(window.waitForText("restoreRow/transferStatus", "Done"));
    char color[5] = {};
    EXPECT_EQ(::getxattr(photo.c_str(), "user.color", color, 4), 4);
    EXPECT_STREQ(color, "blue");
    EXPECT_EQ(contentOf(photo), "water");
}

TEST_F(MacWindow, SaysWhatPrivacyKeepsFromBeingMoved) {
    const fs::path letters = mac->atHome("Letters");
    makeFile(letters / "one", "dear");
    keepPrivate(letters);
    auto& window = open();
    window.click("drive-Extended");
    window.chooseFolder(letters);
    ASSERT_TRUE(window.waitUntil([&] { return window.isEnabled("moveButton"); }));
    window.click("moveButton");
    EXPECT_TRUE(window.waitUntilShown("errorToast"));
    EXPECT_TRUE(window.text("errorToast/toastText").contains("Letters can't be moved"))
        << window.text("errorToast/toastText").toStdString();
    EXPECT_FALSE(Files::itemExists(mac->extended / "ExternalTarvik"));
}

}  // namespace tarvik::test
