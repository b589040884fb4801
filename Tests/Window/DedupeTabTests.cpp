#include "State/Dedupe/DedupeState.h"
#include "State/Threads/BusyThreads.h"
#include "Support/Bundles.h"
#include "Support/Gate.h"
#include "Window/AppsWindowTest.h"

namespace tarvik::test {

namespace {

class DedupeTab : public AppsWindowTest {
protected:
    void addApp(const std::string& name) const {
        makeBundle(applications / (name + ".app"), {{"CFBundleIdentifier", "org.example." + name}});
    }
    void addLauncher(const std::string& file, const std::string& name) const {
        makeLauncher(own / (file + ".app"), backup / "gone" / (name + ".app"),
                     {{"CFBundleIdentifier", "org.example." + name + ".externallauncher"}});
    }
    void addDuplicate(const std::string& name) const {
        addApp(name);
        addLauncher(name, name);
    }
    /// With the tab in sight and the first scan done.
    WindowUnderTest& openTab(QSize size = large) {
        open(size).openTab("dedupe");
        EXPECT_TRUE(opened->waitUntilShown("dedupeSummary"));
        EXPECT_TRUE(opened->waitUntil([&] { return opened->isEnabled("dedupeScanButton"); }));
        return *opened;
    }

    const fs::path own = world.home / "Applications";
};

TEST_F(DedupeTab, TellsWhatItIsFor) {
    auto& window = openTab();
    EXPECT_EQ(window.text("dedupeHeading"), "Dedupe");
    EXPECT_EQ(window.text("dedupeText"),
              "Remove duplicate launcher apps when a real local app with the same bundle id exists.");
    EXPECT_EQ(window.text("dedupeScanButton"), "Scan");
    EXPECT_EQ(window.text("removeDuplicatesButton"), "Remove Duplicates");
}

TEST_F(DedupeTab, SaysThatThereIsNothing) {
    auto& window = openTab();
    EXPECT_EQ(window.text("noDuplicates/emptyTitle"), "No duplicate launchers found.");
    EXPECT_EQ(window.text("groupsTile/tileValue"), "0");
    EXPECT_EQ(window.text("removeTile/tileValue"), "0");
    EXPECT_EQ(window.text("spaceTile/tileValue"), "Zero KB");
    window.click("removeDuplicatesButton");
    EXPECT_TRUE(window.waitForText("errorToast/toastText", "No duplicate launchers to remove."));
}

TEST_F(DedupeTab, ShowsACardForEachGroup) {
    addDuplicate("Edit");
    addLauncher("Another", "Edit");
    addDuplicate("Draw");
    auto& window = openTab();
    EXPECT_FALSE(window.isShown("noDuplicates"));
    EXPECT_EQ(window.text("groupsTile/tileTitle"), "Groups");
    EXPECT_EQ(window.text("groupsTile/tileValue"), "2");
    EXPECT_EQ(window.text("removeTile/tileTitle"), "Remove");
    EXPECT_EQ(window.text("removeTile/tileValue"), "3");
    EXPECT_EQ(window.text("spaceTile/tileTitle"), "Space");
    EXPECT_TRUE(window.text("spaceTile/tileValue").endsWith(" KB"));
    EXPECT_EQ(window.text("dedupeGroup-Draw/dedupeCount"), "1 duplicate");

    const QString group = "dedupeGroup-Edit/";
    EXPECT_EQ(window.text(group + "dedupeName"), "Edit");
    EXPECT_EQ(window.text(group + "dedupeCount"), "2 duplicates");
    EXPECT_EQ(window.text(group + "dedupeKeep/dedupeVerb"), "Keep");
    EXPECT_EQ(window.text(group + "dedupeKeep/dedupePath").toStdString(), (applications / "Edit.app").native());
    EXPECT_FALSE(window.isShown(group + "dedupeKeep/dedupeTarget"));
    EXPECT_EQ(window.text(group + "dedupeRemove-0/dedupeVerb"), "Remove");
    EXPECT_EQ(window.text(group + "dedupeRemove-0/dedupePath").toStdString(), (own / "Another.app").native());
    EXPECT_TRUE(window.text(group + "dedupeRemove-0/dedupeSize").endsWith(" KB"));
    EXPECT_EQ(window.text(group + "dedupeRemove-0/dedupeTarget").toStdString(),
              "target: " + (backup / "gone/Edit.app").native());
    EXPECT_EQ(window.text(group + "dedupeRemove-1/dedupePath").toStdString(), (own / "Edit.app").native());
}

TEST_F(DedupeTab, RemovesAtOnceAndScansAgain) {
    addDuplicate("Edit");
    addDuplicate("Draw");
    auto& window = openTab();
    window.click("removeDuplicatesButton");
    EXPECT_TRUE(window.waitForText("infoToast/toastText", "Removed 2 duplicate launchers."));
    EXPECT_TRUE(window.waitUntilShown("noDuplicates"));
    EXPECT_FALSE(window.isShown("alertDialog"));
    EXPECT_FALSE(fs::exists(own / "Edit.app"));
    EXPECT_TRUE(fs::exists(applications / "Edit.app"));
}

TEST_F(DedupeTab, FindsWhatCameMeanwhileWhenTheUserScans) {
    auto& window = openTab();
    addDuplicate("Edit");
    window.click("dedupeScanButton");
    EXPECT_TRUE(window.waitUntilShown("dedupeGroup-Edit"));
    EXPECT_FALSE(window.isShown("noDuplicates"));
}

TEST_F(DedupeTab, TellsWhyALauncherStayed) {
    addDuplicate("Edit");
    addDuplicate("Draw");
    auto& window = openTab();
    EXPECT_FALSE(window.isShown("dedupeFailure-0"));
    makeBundle(own / "Edit.app", {{"CFBundleIdentifier", "org.example.Edit"}});
    fs::remove_all(own / "Edit.app/Contents/Resources");
    window.click("removeDuplicatesButton");
    EXPECT_TRUE(window.waitForText("errorToast/toastText", "Dedupe completed with 1 failure."));
    EXPECT_EQ(window.text("dedupeFailure-0").toStdString(),
              (own / "Edit.app").native() + " is not a launcher any more.");
    EXPECT_FALSE(window.isShown("dedupeFailure-1"));
}

TEST_F(DedupeTab, LetsItsButtonsRestWhileItIsAtWork) {
    addDuplicate("Edit");
    const auto gate = std::make_shared<Gate>();
    world.host.trash = std::make_shared<GatedTrash>(world.trash, gate);
    auto& window = openTab();
    EXPECT_FALSE(window.isShown("dedupeSpinner"));
    gate->close();
    window.click("removeDuplicatesButton");
    gate->waitForSomebody();
    EXPECT_TRUE(window.waitUntilShown("dedupeSpinner"));
    EXPECT_FALSE(window.isEnabled("removeDuplicatesButton"));
    EXPECT_FALSE(window.isEnabled("dedupeScanButton"));
    gate->open();
    EXPECT_TRUE(window.waitUntilShown("noDuplicates"));
    EXPECT_TRUE(window.waitUntil([&] { return window.isEnabled("dedupeScanButton"); }));
    EXPECT_TRUE(window.isEnabled("removeDuplicatesButton"));
}

TEST_F(DedupeTab, SaysThatItScans) {
    addDuplicate("Edit");
    auto& window = openTab();
    BusyThreads busyThreads;
    window.click("dedupeScanButton");
    EXPECT_TRUE(window.waitUntilShown("rescanningDuplicates"));
    EXPECT_EQ(window.text("rescanningDuplicates/scanningDuplicatesText"), "Scanning duplicates...");
    EXPECT_FALSE(window.isEnabled("dedupeScanButton"));
    EXPECT_TRUE(window.waitUntilShown("dedupeGroup-Edit")) << "the last plan stays in sight";
    busyThreads.end();
    EXPECT_TRUE(window.waitUntilHidden("rescanningDuplicates"));
}

TEST_F(DedupeTab, IsUsedByTheKeyboardAlone) {
    addDuplicate("Edit");
    addDuplicate("Draw");
    auto& window = openTab();
    window.item("dedupeScanButton").forceActiveFocus(Qt::TabFocusReason);
    window.press(Qt::Key_Tab);
    EXPECT_TRUE(window.hasFocus("removeDuplicatesButton"));
    window.press(Qt::Key_Tab);
    EXPECT_TRUE(window.hasFocus("dedupeList"));
    window.press(Qt::Key_Down);
    EXPECT_EQ(window.item("dedupeList").property("currentIndex").toInt(), 1);
    window.press(Qt::Key_Backtab);
    window.press(Qt::Key_Space);
    EXPECT_TRUE(window.waitForText("infoToast/toastText", "Removed 2 duplicate launchers."));
}

TEST_F(DedupeTab, ShowsTheRealApplicationInTheFileManager) {
    addDuplicate("Edit");
    auto& window = openTab();
    window.click("dedupeGroup-Edit", Qt::RightButton);
    window.click("copyPathItem");
    EXPECT_EQ(window.desktop().copied, std::vector<fs::path>{applications / "Edit.app"});
}

}  // namespace

}  // namespace tarvik::test
