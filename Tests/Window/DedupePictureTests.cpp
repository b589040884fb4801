#include "Practice/PracticeMachine.h"
#include "State/Dedupe/DedupeState.h"
#include "State/Threads/BusyThreads.h"
#include "Support/Bundles.h"
#include "Support/Gate.h"
#include "Support/TemporaryFolder.h"
#include "Window/AppsWindowTest.h"

namespace tarvik::test {

namespace {

std::string nameOfDedupePicture(QSize size, const char* more = "") {
    const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
    return "Dedupe" + test.substr(0, test.find('/')) + more + "-" + std::to_string(size.width());
}

std::string nameOfWidth(const testing::TestParamInfo<QSize>& size) {
    return std::to_string(size.param.width());
}

/// The Dedupe tab in each of its states, in the smallest and in a comfortable size, for people to look at.
class DedupePicture : public AppsWindowTest, public testing::WithParamInterface<QSize> {
protected:
    DedupePicture() { addVolume("/", "Macintosh HD").isInternal = true; }
    void TearDown() override {
        if (opened) opened->savePicture(nameOfDedupePicture(GetParam()));
        opened.reset();
    }
    void addDuplicate(const std::string& name, std::size_t bytes = 4096) {
        app(name, bytes);
        makeLauncher(own / (name + ".app"), backup / "ExternalTarvik/Apps" / (name + ".app"),
                     {{"CFBundleIdentifier", "org.example." + name + ".externallauncher"}});
    }
    WindowUnderTest& openTab() {
        open(GetParam()).openTab("dedupe");
        return *opened;
    }
    WindowUnderTest& openInFirstLook() {
        opened.emplace(world.host, GetParam(), false, WindowUnderTest::FirstLook::isUnderWay).openTab("dedupe");
        return *opened;
    }
    WindowUnderTest& scanned() {
        EXPECT_TRUE(openTab().waitUntilShown("dedupeSummary"));
        EXPECT_TRUE(opened->waitUntil([&] { return opened->isEnabled("dedupeScanButton"); }));
        return *opened;
    }

    const fs::path own = world.home / "Applications";
};

INSTANTIATE_TEST_SUITE_P(Sizes, DedupePicture, testing::Values(small, large), nameOfWidth);

TEST_P(DedupePicture, FirstScan) {
    BusyThreads busyThreads;
    auto& window = openInFirstLook();
    EXPECT_TRUE(window.waitUntilShown("scanningDuplicates"));
    EXPECT_EQ(window.text("scanningDuplicates/scanningDuplicatesText"), "Scanning duplicates...");
    EXPECT_FALSE(window.isEnabled("dedupeScanButton"));
    EXPECT_FALSE(window.isShown("dedupeSummary"));
    window.savePicture(nameOfDedupePicture(GetParam(), "-now"));
    busyThreads.end();
    EXPECT_TRUE(window.waitUntilShown("noDuplicates"));
}

TEST_P(DedupePicture, NeverScanned) {
    BusyThreads busyThreads;
    auto& window = openInFirstLook();
    window.state().tab<DedupeState>().stop();
    busyThreads.end();
    EXPECT_TRUE(window.waitUntilShown("duplicatesNeverScanned"));
    EXPECT_EQ(window.text("duplicatesNeverScanned/emptyTitle"), "Scan to find duplicate launcher apps.");
    EXPECT_FALSE(window.isShown("dedupeSummary"));
}

TEST_P(DedupePicture, Nothing) {
    app("Edit");
    EXPECT_TRUE(scanned().isShown("noDuplicates"));
}

TEST_P(DedupePicture, Some) {
    addDuplicate("Atlas", 3'000'000);
    addDuplicate("Brush");
    makeLauncher(own / "Older/Atlas.app", applications / "Atlas.app", {{"CFBundleIdentifier", "org.example.Atlas"}});
    EXPECT_EQ(scanned().text("removeTile/tileValue"), "3");
    opened->item("dedupeList").forceActiveFocus(Qt::TabFocusReason);
}

TEST_P(DedupePicture, Rescan) {
    addDuplicate("Atlas");
    auto& window = scanned();
    BusyThreads busyThreads;
    window.click("dedupeScanButton");
    EXPECT_TRUE(window.waitUntilShown("rescanningDuplicates"));
    window.savePicture(nameOfDedupePicture(GetParam(), "-now"));
}

TEST_P(DedupePicture, Removing) {
    addDuplicate("Atlas");
    const auto gate = std::make_shared<Gate>();
    world.host.trash = std::make_shared<GatedTrash>(world.trash, gate);
    auto& window = scanned();
    gate->close();
    window.click("removeDuplicatesButton");
    EXPECT_TRUE(window.waitUntilShown("dedupeSpinner"));
    window.savePicture(nameOfDedupePicture(GetParam(), "-now"));
    gate->open();
    EXPECT_TRUE(window.waitUntilShown("noDuplicates"));
}

TEST_P(DedupePicture, Failures) {
    addDuplicate("Atlas");
    addDuplicate("Brush");
    auto& window = scanned();
    world.trash->refuses = true;
    window.click("removeDuplicatesButton");
    EXPECT_TRUE(window.waitUntilShown("dedupeFailure-1"));
    const auto topOf = [&](const char* name) { return window.item(name).mapToScene({0, 0}).y(); };
    EXPECT_TRUE(window.waitUntil([&] { return topOf("dedupeFailure-0") >= topOf("dedupeList"); }));
}

TEST_P(DedupePicture, LongNames) {
    const std::string name =
        "An application whose name\nhas a line break and is far longer than any card is wide, "
        "whatever the window's size may be, so that something of it has to be left out";
    addDuplicate(name, 1'234'567);
    EXPECT_EQ(scanned().text("groupsTile/tileValue"), "1");
}

TEST_P(DedupePicture, Hundreds) {
    for (int number = 1; number <= 200; ++number) addDuplicate("App " + std::to_string(number));
    EXPECT_EQ(scanned().text("removeTile/tileValue"), "200");
    const auto rows = opened->item("dedupeList").property("contentItem").value<QQuickItem*>()->childItems();
    EXPECT_LT(rows.size(), 40) << "only the rows that are seen are made";
}

/// The window over a practice machine, which has some duplicates and much that looks like them.
TEST(DedupePicturePractice, ShowsItsDuplicates) {
    const TemporaryFolder folder;
    const auto machine = Practice::build(folder / "machine", {.apps = 2, .files = 20, .appFiles = 0});
    WindowUnderTest window{Host::rootedAt(machine.root, machine.home), large};
    window.openTab("dedupe");
    EXPECT_TRUE(window.waitUntilShown("dedupeGroup-Compass"));
    EXPECT_EQ(window.text("groupsTile/tileValue"), "2");
    EXPECT_EQ(window.text("removeTile/tileValue"), "3");
    window.savePicture("DedupePractice");
}

}  // namespace

}  // namespace tarvik::test
