#include "Support/Bundles.h"
#include "Window/AppsWindowTest.h"
#include "Window/HealthRows.h"

namespace tarvik::test {

namespace {

class HealthTab : public AppsWindowTest {
protected:
    WindowUnderTest& openTab(QSize size = large) {
        makeFolder(applications);
        open(size).openTab("health");
        return *opened;
    }
    WindowUnderTest& scanned(QSize size = large) {
        HealthRows::scan(openTab(size));
        return *opened;
    }
    void breakLink(const std::string& name) const { makeLink(applications / name, backup / "nowhere" / name); }

    const fs::path appsOnBackup = backup / "ExternalTarvik/Apps";
};

TEST_F(HealthTab, AsksToScanAtFirst) {
    auto& window = openTab();
    EXPECT_EQ(window.text("healthHeading"), "Health");
    EXPECT_EQ(window.text("healthText"),
              "Verify every moved app is intact. Detects dangling, empty, corrupted, reverted, and orphaned bundles.");
    EXPECT_EQ(window.text("scanButton"), "Scan");
    EXPECT_EQ(window.text("neverScanned/emptyTitle"), "Click Scan to check the health of moved apps.");
    EXPECT_FALSE(window.isShown("healthSummary"));
    EXPECT_FALSE(window.isShown("scanningHealth"));
}

TEST_F(HealthTab, SaysThatEverythingIsHealthy) {
    appOnDrive("One");
    appOnDrive("Two");
    auto& window = scanned();
    EXPECT_EQ(window.text("healthyTile/tileValue"), "2");
    EXPECT_EQ(window.text("problemsTile/tileValue"), "0");
    EXPECT_EQ(window.text("scannedTile/tileValue"), "2");
    EXPECT_EQ(window.text("allHealthyTitle"), "All moved apps are healthy.");
    EXPECT_EQ(window.text("allHealthyText"), "Nothing to repair.");
    EXPECT_EQ(window.text("topLargestTitle"), "Top 10 largest healthy symlinked apps");
    EXPECT_TRUE(window.waitUntilShown("largest-One.app"));
}

TEST_F(HealthTab, ShowsNoTopListWithoutLinks) {
    auto& window = scanned();
    EXPECT_EQ(window.text("scannedTile/tileValue"), "0");
    EXPECT_TRUE(window.isShown("allHealthy"));
    EXPECT_FALSE(window.isShown("topLargest"));
}

TEST_F(HealthTab, ShowsEachFindingInItsSection) {
    breakLink("Lost.app");
    auto& window = scanned();
    EXPECT_EQ(window.text("problemsTile/tileValue"), "1");
    EXPECT_FALSE(window.isShown("allHealthy"));
    EXPECT_EQ(window.text("healthSection-dangling/sectionTitle"), "Dangling symlinks (1)");
    EXPECT_FALSE(window.isShown("healthSection-dangling/sectionTotal"));
    const QString row = "issue-dangling-Lost.app/";
    EXPECT_EQ(window.text(row + "issueName"), "Lost.app");
    EXPECT_EQ(window.text(row + "issueLocation").toStdString(), (applications / "Lost.app").native());
    EXPECT_EQ(window.text(row + "issueDetail"),
              "Target does not exist. The external drive may be unmounted, or the file was deleted.");
    EXPECT_EQ(window.text(row + "issueTarget").toStdString(), "→ " + (backup / "nowhere/Lost.app").native());
    EXPECT_FALSE(window.isShown(row + "issueSize"));
    EXPECT_EQ(window.text(row + "repairButton-0"), "Remove dead symlink");
    EXPECT_FALSE(window.isShown(row + "repairButton-1"));
}

TEST_F(HealthTab, RepairsAtOnceAndScansAgain) {
    breakLink("Lost.app");
    auto& window = scanned();
    window.click("issue-dangling-Lost.app/repairButton-0");
    EXPECT_TRUE(window.waitForText("infoToast/toastText", "Removed dead symlink Lost.app."));
    EXPECT_TRUE(window.waitUntilShown("allHealthy"));
    EXPECT_FALSE(fs::is_symlink(applications / "Lost.app"));
}

TEST_F(HealthTab, TellsOfAFailedCopyAsInformation) {
    makeFile(backup / "Data/org.example.foo/file");
    makeLink(world.home / "Library/Containers/org.example.foo", backup / "Data/org.example.foo");
    world.withDitto("exit 1");
    auto& window = scanned();
    window.click("issue-sandboxExternalSymlink-org.example.foo/repairButton-0");
    EXPECT_TRUE(window.waitForText("infoToast/toastText", "ditto failed restoring org.example.foo; reverted."));
    EXPECT_FALSE(window.isShown("errorToast"));
}

TEST_F(HealthTab, OffersTwoRepairsForWhatWasReverted) {
    makeBundle(appsOnBackup / "Reverted.app");
    makeBundle(applications / "Reverted.app");
    auto& window = scanned();
    EXPECT_TRUE(window.text("healthSection-reverted/sectionTotal").startsWith("Total reclaimable: "));
    EXPECT_EQ(window.text("issue-reverted-Reverted.app/repairButton-0"), "Reclaim SSD space");
    EXPECT_EQ(window.text("issue-reverted-Reverted.app/repairButton-1"), "Re-symlink to SSD");
    window.click("issue-reverted-Reverted.app/repairButton-1");
    EXPECT_TRUE(window.waitForText("infoToast/toastText", "Re-symlinked Reverted.app to SSD."));
    EXPECT_TRUE(window.waitUntilShown("allHealthy"));
    EXPECT_TRUE(fs::is_symlink(applications / "Reverted.app"));
}

TEST_F(HealthTab, LetsTheButtonsOfAFindingRestWhileItIsBeingRepaired) {
    makeBundle(appsOnBackup / "Reverted.app");
    makeBundle(applications / "Reverted.app");
    breakLink("Lost.app");
    const fs::path go = world.folder / "copies-may-end";
    world.withDitto(waitFor(go) + "\ncp -aT \"$2\" \"$3\"");
    auto& window = scanned();
    const QString row = "issue-reverted-Reverted.app/";
    EXPECT_FALSE(window.isShown(row + "repairSpinner"));
    window.click(row + "repairButton-1");
    EXPECT_TRUE(window.waitUntilShown(row + "repairSpinner"));
    for (const char* button : {"repairButton-0", "repairButton-1"}) EXPECT_FALSE(window.isEnabled(row + button));
    EXPECT_TRUE(window.isEnabled("issue-dangling-Lost.app/repairButton-0")) << "another one can be repaired meanwhile";
    makeFile(go);
    EXPECT_TRUE(window.waitForText("infoToast/toastText", "Re-symlinked Reverted.app to SSD."));
    EXPECT_TRUE(window.waitUntilHidden("issue-reverted-Reverted.app"));
}

TEST_F(HealthTab, LeavesTheOtherTabsWhereTheyWereScrolledTo) {
    for (int number = 10; number < 50; ++number) appOnDrive("App " + std::to_string(number));
    breakLink("Lost.app");
    auto& window = open();
    window.openTab("symlinks");
    window.item("symlinkList").setProperty("contentY", 500);
    const auto links = [&] { return window.item("symlinkList").property("count").toInt(); };
    EXPECT_EQ(links(), 41);
    HealthRows::scan(window);
    window.click("issue-dangling-Lost.app/repairButton-0");
    EXPECT_TRUE(window.waitUntilShown("allHealthy"));
    window.openTab("symlinks");
    EXPECT_TRUE(window.waitUntil([&] { return links() == 40; }));
    EXPECT_EQ(window.item("symlinkList").property("contentY").toDouble(), 500);
}

TEST_F(HealthTab, KeepsTheReportInSightDuringARescan) {
    breakLink("Lost.app");
    auto& window = scanned();
    window.click("scanButton");
    EXPECT_TRUE(window.isShown("issue-dangling-Lost.app"));
    EXPECT_FALSE(window.isShown("scanningHealth"));
}

TEST_F(HealthTab, KeepsLongNamesInTheirCards) {
    const std::string name(120, 'W');
    breakLink(name + ".app");
    auto& window = scanned(small);
    const QString row = QString::fromStdString("issue-dangling-" + name + ".app/");
    EXPECT_TRUE(window.item(row + "issueName").property("truncated").toBool());
    EXPECT_TRUE(window.item(row + "issueTarget").property("truncated").toBool());
}

}  // namespace

}  // namespace tarvik::test
