#include "State/Threads/BusyThreads.h"
#include "Window/AppsWindowTest.h"

#include <QTest>

namespace tarvik::test {

namespace {

/// The Apps and the Symlinks tab in each of their states, in the smallest and in a comfortable size, for people to look
/// at.
class AppsPicture : public AppsWindowTest, public testing::WithParamInterface<QSize> {
protected:
    AppsPicture() {
        addVolume("/", "Macintosh HD").isInternal = true;
        signApps();
    }
    void TearDown() override {
        if (opened) opened->savePicture(name() + "-" + std::to_string(GetParam().width()));
        letCopyEnd();
        opened.reset();
    }
    static std::string name() {
        const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
        return "Apps" + test.substr(0, test.find('/'));
    }
    WindowUnderTest& openScope(const char* scope) { return AppsWindowTest::openScope(scope, GetParam()); }

    /// Applications of all kinds.
    void makeApps() {
        const char* const names[] = {"Atlas",  "Blender", "Cadence", "Darkroom", "Editor", "Figures",
                                     "Garden", "Harbour", "Ink",     "Journal",  "Kiln",   "Lantern"};
        std::size_t size = 3'900'000;
        int hue = 0;
        for (const char* each : names) {
            makeIcon(app(each, size, size / 3), QColor::fromHsv(hue, 160, 210), std::string("org.example.") + each);
            size = size * 2 / 3;
            hue += 29;
        }
        makeRiskyApps();
        app("No picture", 123'456);
        app("An application whose name is far longer than any row of this list could ever show in full", 2'222'222,
            1'000'000);
        makeIcon(applications / "Moved.app", Qt::darkCyan, "org.example.Moved");
        appOnDrive("Moved", 1'500'000);
        appOnDrive("Gone with the drive", 700'000);
    }
    void makeEditorData() {
        makeFileOfSize(world.home / "Library/Caches/Editor/deep/one", 812'000);
        makeFileOfSize(world.home / "Library/Caches/Editor/deep/two", 31'000);
        makeFileOfSize(world.home / "Library/Caches/Editor/index of everything that was ever opened.db", 99'000);
        makeFile(world.home / "Library/Preferences/org.example.Editor.plist");
        makeFile(world.home / "Library/Logs/Editor/log");
        makeFileOfSize(backup / "ExternalTarvik/Data/Editor/project", 400'000);
        makeFolder(world.home / "Library/Application Support");
        makeLink(world.home / "Library/Application Support/Editor", backup / "ExternalTarvik/Data/Editor");
    }
};

INSTANTIATE_TEST_SUITE_P(Sizes, AppsPicture, testing::Values(small, large),
                         [](const auto& parameter) { return std::to_string(parameter.param.width()); });

TEST_P(AppsPicture, Fresh) {
    app("Editor");
    EXPECT_TRUE(open(GetParam()).waitUntilShown("noAppsShown"));
}

TEST_P(AppsPicture, Discovering) {
    auto& window = open(GetParam());
    BusyThreads busyThreads(BusyThreads::all(), Priority::userInitiated);
    window.appsState().refreshApps();
    EXPECT_TRUE(window.waitUntilShown("discoveringText"));
    window.savePicture("AppsDiscovering-now-" + std::to_string(GetParam().width()));
}

TEST_P(AppsPicture, Measuring) {
    auto& window = open(GetParam());
    makeApps();
    BusyThreads busyThreads;
    window.click("viewPicker-all");
    window.appsState().refreshApps();
    EXPECT_TRUE(window.waitUntilShown("app-Atlas/appSizeSpinner"));
    window.savePicture("AppsMeasuring-now-" + std::to_string(GetParam().width()));
}

TEST_P(AppsPicture, None) {
    EXPECT_TRUE(open(GetParam()).waitUntilShown("emptyApps"));
}

TEST_P(AppsPicture, NotFound) {
    app("Editor");
    auto& window = openScope("all");
    window.click("appSearch");
    window.type("zzz");
    EXPECT_TRUE(window.waitUntilShown("noAppsShown"));
}

TEST_P(AppsPicture, Full) {
    makeApps();
    auto& window = openScope("all");
    window.click("sortPicker-risk");
    window.click("app-Store/appBox");
    window.click("app-Atlas/appBox");
    EXPECT_TRUE(GetParam() == small || window.isShown("app-Moved"));
    EXPECT_TRUE(window.waitUntil([&] { return !window.item("app-Atlas/appIcon").property("isNeutral").toBool(); }));
}

TEST_P(AppsPicture, OnDrive) {
    makeApps();
    auto& window = openScope("onDrive");
    window.click("app-Moved/appBox");
    EXPECT_TRUE(window.isShown("app-Moved/appMoveBackButton"));
}

TEST_P(AppsPicture, Opened) {
    makeApps();
    makeEditorData();
    auto& window = openScope("local");
    window.click("appSearch");
    window.type("edit");
    window.click("app-Editor/appChevron");
    ASSERT_TRUE(window.waitUntilShown("file-Editor/fileNote"));
    window.click("moreInfoButton");
    window.appsState().setAppSelected(FilePath(applications / "Editor.app"), true);
    QTest::qWait(100);
    auto* tree = &window.item("dataTree");
    tree->forceActiveFocus(Qt::TabFocusReason);
    EXPECT_TRUE(window.waitUntilShown("category-Caches"));
    window.press(Qt::Key_Down);
    window.press(Qt::Key_Down);
    window.press(Qt::Key_Down);
    window.press(Qt::Key_Right);
    ASSERT_TRUE(window.waitUntilShown("file-deep"));
    window.press(Qt::Key_Down);
    window.press(Qt::Key_Space);
    EXPECT_TRUE(window.waitForText("checkedText", "1 item selected"));
}

TEST_P(AppsPicture, OpenedWithoutData) {
    app("Bare");
    app("Other", 100'000);
    auto& window = openScope("local");
    window.click("app-Bare/appChevron");
    EXPECT_TRUE(window.waitUntilShown("noDataText"));
}

TEST_P(AppsPicture, Running) {
    makeApps();
    holdCopies();
    auto& window = openScope("local");
    window.click("app-Atlas/appBox");
    window.click("app-Blender/appBox");
    window.click("moveAppsButton");
    window.click("alertButton-0");
    EXPECT_TRUE(window.waitForText("jobsTitle", "Moving"));
}

TEST_P(AppsPicture, Failed) {
    makeApps();
    world.withDitto("echo 'ditto: Contents/Resources/filling: Input/output error' >&2; exit 1");
    auto& window = openScope("local");
    window.click("app-Atlas/appBox");
    window.click("moveAppsButton");
    window.click("alertButton-0");
    EXPECT_TRUE(window.waitUntilShown("errorToast"));
}

TEST_P(AppsPicture, Symlinks) {
    makeApps();
    makeEditorData();
    makeLink(applications / "Lost.app", backup / "ExternalTarvik/Apps/Lost.app");
    appOnDrive("A link whose name is so long that the path of it does not fit into the row of this small window");
    open(GetParam()).openTab("symlinks");
    EXPECT_TRUE(opened->waitUntilShown("symlink-Lost.app"));
}

TEST_P(AppsPicture, NoSymlinks) {
    open(GetParam()).openTab("symlinks");
    EXPECT_TRUE(opened->waitUntilShown("noSymlinks"));
}

}  // namespace

}  // namespace tarvik::test
