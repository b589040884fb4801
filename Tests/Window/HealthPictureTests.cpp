#include "Practice/PracticeMachine.h"
#include "State/Threads/BusyThreads.h"
#include "Support/Bundles.h"
#include "Support/TemporaryFolder.h"
#include "Window/AppsWindowTest.h"
#include "Window/HealthRows.h"

namespace tarvik::test {

namespace {

std::string nameOfPicture(QSize size, const char* more = "") {
    const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
    return "Health" + test.substr(0, test.find('/')) + more + "-" + std::to_string(size.width());
}

std::string nameOfSize(const testing::TestParamInfo<QSize>& size) {
    return std::to_string(size.param.width());
}

/// The Health tab in each of its states, in the smallest and in a comfortable size, for people to look at.
class HealthPicture : public AppsWindowTest, public testing::WithParamInterface<QSize> {
protected:
    HealthPicture() {
        addVolume("/", "Macintosh HD").isInternal = true;
        makeFolder(applications);
    }
    void TearDown() override {
        if (opened) opened->savePicture(nameOfPicture(GetParam()));
        opened.reset();
    }
    WindowUnderTest& openTab() {
        open(GetParam()).openTab("health");
        return *opened;
    }
    WindowUnderTest& scanned() {
        HealthRows::scan(openTab());
        return *opened;
    }
    void breakLink(const std::string& name) const { makeLink(applications / name, backup / "nowhere" / name); }
};

INSTANTIATE_TEST_SUITE_P(Sizes, HealthPicture, testing::Values(small, large), nameOfSize);

TEST_P(HealthPicture, NeverScanned) {
    EXPECT_TRUE(openTab().isShown("neverScanned"));
}

TEST_P(HealthPicture, FirstScan) {
    auto& window = openTab();
    BusyThreads busyThreads;
    window.click("scanButton");
    EXPECT_TRUE(window.waitUntilShown("scanningHealth"));
    EXPECT_FALSE(window.isEnabled("scanButton"));
    window.savePicture(nameOfPicture(GetParam(), "-now"));
}

TEST_P(HealthPicture, Rescan) {
    breakLink("Lost.app");
    appOnDrive("Atlas", 3'000'000);
    auto& window = scanned();
    BusyThreads busyThreads;
    window.click("scanButton");
    EXPECT_TRUE(window.waitUntil([&] { return !window.isEnabled("scanButton"); }));
    EXPECT_TRUE(window.isShown("issue-dangling-Lost.app")) << "the last report stays in sight";
    window.savePicture(nameOfPicture(GetParam(), "-now"));
}

TEST_P(HealthPicture, Repairing) {
    makeBundle(applications / "Reverted.app");
    makeBundle(backup / "ExternalTarvik/Apps/Reverted.app");
    breakLink("Lost.app");
    const fs::path go = world.folder / "copies-may-end";
    world.withDitto(waitFor(go) + "\ncp -aT \"$2\" \"$3\"");
    auto& window = scanned();
    HealthRows::repair(window, HealthIssue::Kind::reverted, "Reverted.app", 1);
    EXPECT_TRUE(window.waitUntilShown("repairSpinner"));
    window.item("healthList").forceActiveFocus(Qt::TabFocusReason);
    window.press(Qt::Key_Tab);
    window.savePicture(nameOfPicture(GetParam(), "-now"));
    makeFile(go);
    EXPECT_TRUE(window.waitUntilHidden("issue-reverted-Reverted.app"));
}

TEST_P(HealthPicture, AllHealthy) {
    std::size_t size = 3'900'000;
    for (const char* name : {"Atlas", "Blender", "Cadence", "Darkroom", "Editor", "Figures", "Garden", "Harbour", "Ink",
                             "Journal", "Kiln", "Lantern"}) {
        appOnDrive(name, size);
        size = size * 2 / 3;
    }
    auto& window = scanned();
    EXPECT_EQ(window.text("healthyTile/tileValue"), "12");
    EXPECT_TRUE(window.isShown("allHealthy"));
    EXPECT_TRUE(window.waitUntilShown("largest-Journal.app"));
    EXPECT_FALSE(window.isShown("largest-Kiln.app")) << "it is the eleventh";
}

TEST_P(HealthPicture, NothingMoved) {
    EXPECT_EQ(scanned().text("scannedTile/tileValue"), "0");
}

TEST_P(HealthPicture, LongNames) {
    const std::string name =
        "An application whose name\nhas a line break and is far longer than any card is wide, "
        "whatever the window's size may be.app";
    breakLink(name);
    makeBundle(applications / ("Reverted " + name));
    makeFileOfSize(backup / "ExternalTarvik/Apps" / ("Reverted " + name) / "large", 1'234'567);
    appOnDrive(
        "Healthy application whose name is far longer than any card is wide, whatever the size of the window "
        "may be that shows it to somebody",
        2'345'678);
    EXPECT_EQ(scanned().text("problemsTile/tileValue"), "2");
}

TEST_P(HealthPicture, Hundreds) {
    for (int number = 1; number <= 300; ++number) breakLink("App " + std::to_string(number) + ".app");
    auto& window = scanned();
    EXPECT_EQ(window.text("problemsTile/tileValue"), "300");
    EXPECT_EQ(window.text("healthSection-dangling/sectionTitle"), "Dangling symlinks (300)");
    EXPECT_LT(HealthRows::made(window).size(), 30U) << "only the rows that are seen are made";
}

/// The window over a practice machine on which one thing of each kind has gone wrong.
class BrokenMachinePicture : public testing::TestWithParam<QSize> {
protected:
    BrokenMachinePicture() { HealthRows::scan(window); }

    TemporaryFolder folder;
    Practice::Machine machine =
        Practice::build(folder / "machine", {.apps = 2, .broken = true, .files = 20, .appFiles = 0});
    WindowUnderTest window{Host::rootedAt(machine.root, machine.home), GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Sizes, BrokenMachinePicture, testing::Values(small, large), nameOfSize);

TEST_P(BrokenMachinePicture, AllKinds) {
    EXPECT_EQ(window.text("problemsTile/tileValue"), "11");
    window.savePicture(nameOfPicture(GetParam(), "-1"));
    int picture = 1;
    for (const HealthIssue::Kind kind : HealthIssueKind::sections()) {
        const QString section = "healthSection-" + QString::fromUtf8(HealthIssueKind::rawValue(kind).data());
        HealthRows::scrollTo(window, kind);
        EXPECT_TRUE(window.waitUntilShown(section)) << section.toStdString();
        EXPECT_TRUE(window.text(section + "/sectionTitle").endsWith(" (1)"));
        if (kind == HealthIssue::Kind::signatureBroken || kind == HealthIssue::Kind::missingSpotlightLaunchers)
            window.savePicture(nameOfPicture(GetParam(), ("-" + std::to_string(++picture)).c_str()));
    }
    HealthRows::scrollToEnd(window);
    EXPECT_TRUE(window.waitUntilShown("largest-Orchestra.app"));
    window.savePicture(nameOfPicture(GetParam(), "-end"));
}

}  // namespace

}  // namespace tarvik::test
