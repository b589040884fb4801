// A bundle that a Mac lets nobody but its maker change, and what the window says of it.
#include "Support/Linux/KeptItems.h"
#include "Support/RealVolume.h"
#include "Window/AppsWindowTest.h"

#include <QGuiApplication>

#include <optional>

namespace tarvik::test {

namespace {

class AppManagementNotice : public AppsWindowTest, public testing::WithParamInterface<QSize> {
protected:
    void SetUp() override { TARVIK_NEEDS_KEPT_ITEMS(); }
    void keep(const fs::path& bundle) {
        makeFile(bundle / "Contents/_CodeSignature/CodeResources");
        kept.emplace(std::vector<fs::path>{bundle / "Contents/Info.plist"});
    }
    /// Ticks an application and moves it, to the end of the run.
    void moveApp(const QString& name) {
        auto& window = opened ? *opened : openScope("local", GetParam());
        window.click("app-" + name + "/appBox");
        window.click("moveAppsButton");
        window.click("alertButton-0");
        ASSERT_TRUE(window.waitUntilShown("job-" + name));
        ASSERT_TRUE(window.waitUntil([&] { return window.state().isIdle(); }));
    }
    /// The user has been elsewhere, and comes back.
    static void comeBack() { emit qGuiApp->applicationStateChanged(Qt::ApplicationActive); }

    std::optional<KeptItems> kept;
};

constexpr auto sentence =
    "Editor.app can't be moved until Tarvik, or the terminal it runs in, may change applications: allow it under "
    "System Settings > Privacy & Security > App Management.";

INSTANTIATE_TEST_SUITE_P(Sizes, AppManagementNotice, testing::Values(small, large),
                         [](const auto& parameter) { return std::to_string(parameter.param.width()); });

TEST_P(AppManagementNotice, StandsAboveEveryTabOnceAMoveHasFailed) {
    keep(app("Editor"));
    openScope("local", GetParam());
    EXPECT_FALSE(opened->isShown("appManagementNotice"));
    moveApp("Editor");
    for (const char* tab : {"symlinks", "apps"}) {
        opened->openTab(tab);
        ASSERT_TRUE(opened->waitUntilShown("appManagementNotice"));
    }
    EXPECT_EQ(opened->text("appManagementNotice"), sentence);
    opened->savePicture("AppManagement-" + std::to_string(GetParam().width()));
    opened->click("appManagementNotice/openSettingsButton");
    EXPECT_EQ(opened->desktop().openedPages,
              std::vector<QString>{"x-apple.systempreferences:com.apple.preference.security?Privacy_AppBundles"});
}

TEST_P(AppManagementNotice, GoesWhenItHasBeenGiven) {
    keep(app("Editor"));
    moveApp("Editor");
    ASSERT_TRUE(opened->waitUntilShown("appManagementNotice"));
    comeBack();
    EXPECT_TRUE(opened->waitUntil([&] { return opened->state().isIdle(); }));
    EXPECT_TRUE(opened->isShown("appManagementNotice"));
    kept.reset();
    comeBack();
    EXPECT_TRUE(opened->waitUntilHidden("appManagementNotice"));
    moveApp("Editor");
    EXPECT_TRUE(opened->waitForText("job-Editor/transferStatus", "Done"));
}

TEST_P(AppManagementNotice, ComesAgainOnlyWithTheNextFailure) {
    keep(app("Editor"));
    moveApp("Editor");
    opened->click("appManagementNotice/sendNoticeAwayButton");
    EXPECT_TRUE(opened->waitUntilHidden("appManagementNotice"));
    comeBack();
    EXPECT_TRUE(opened->waitUntil([&] { return opened->state().isIdle(); }));
    EXPECT_FALSE(opened->isShown("appManagementNotice"));
    moveApp("Editor");
    EXPECT_TRUE(opened->waitUntilShown("appManagementNotice"));
}

TEST_P(AppManagementNotice, IsNotShownForOtherFailures) {
    app("Editor");
    world.withDitto("exit 1");
    moveApp("Editor");
    EXPECT_EQ(opened->text("job-Editor/transferStatus"), "Failed");
    EXPECT_FALSE(opened->isShown("appManagementNotice"));
}

TEST_P(AppManagementNotice, StandsThereForAWayBackToo) {
    keep(appOnDrive("Editor"));
    auto& window = openScope("onDrive", GetParam());
    window.click("app-Editor/appMoveBackButton");
    window.click("alertButton-0");
    EXPECT_TRUE(window.waitUntilShown("appManagementNotice"));
    EXPECT_EQ(window.text("appManagementNotice"), sentence);
}

}  // namespace

}  // namespace tarvik::test
