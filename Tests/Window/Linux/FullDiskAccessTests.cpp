#include "Support/Linux/KeptItems.h"
#include "Support/RealVolume.h"
#include "Window/AppsWindowTest.h"

#include <QGuiApplication>

#include <optional>

namespace tarvik::test {

namespace {

/// The window of a user whose mail is kept from the program.
class FullDiskAccessNotice : public AppsWindowTest, public testing::WithParamInterface<QSize> {
protected:
    void SetUp() override {
        TARVIK_NEEDS_KEPT_ITEMS();
        makeFolder(world.home / "Library/Mail");
        for (const char* name : {"Atlas", "Editor", "Player"}) app(name, 50'000, 9'000);
        kept.emplace(std::vector<fs::path>{world.home / "Library/Mail"});
    }
    /// The user has been elsewhere, and comes back.
    static void comeBack() { emit qGuiApp->applicationStateChanged(Qt::ApplicationActive); }

    std::optional<KeptItems> kept;
};

INSTANTIATE_TEST_SUITE_P(Sizes, FullDiskAccessNotice, testing::Values(small, large),
                         [](const auto& parameter) { return std::to_string(parameter.param.width()); });

TEST_P(FullDiskAccessNotice, StandsAboveTheListOfEveryTab) {
    auto& window = openScope("local", GetParam());
    for (const char* tab : {"symlinks", "folders", "apps"}) {
        window.openTab(tab);
        ASSERT_TRUE(window.waitUntilShown("fullDiskAccessNotice"));
        const QQuickItem& notice = window.item("fullDiskAccessNotice");
        EXPECT_LE(notice.mapToScene({0, notice.height()}).y(), window.item("tabContent").mapToScene({}).y());
    }
    EXPECT_EQ(
        window.text("fullDiskAccessNotice"),
        "Full Disk Access is missing: Mail, Messages, Safari and the data of many applications can be neither seen "
        "nor moved.");
    EXPECT_TRUE(window.isShown("app-Editor")) << "what can be seen is there";
    window.savePicture("FullDiskAccess-" + std::to_string(GetParam().width()));
}

TEST_P(FullDiskAccessNotice, LeadsToTheSettings) {
    auto& window = open(GetParam());
    window.click("fullDiskAccessNotice/openSettingsButton");
    EXPECT_EQ(window.desktop().openedPages,
              std::vector<QString>{"x-apple.systempreferences:com.apple.preference.security?Privacy_AllFiles"});
}

TEST_P(FullDiskAccessNotice, GoesWhenItHasBeenGiven) {
    auto& window = open(GetParam());
    ASSERT_TRUE(window.waitUntilShown("fullDiskAccessNotice"));
    app("Late");
    kept.reset();
    EXPECT_TRUE(window.isShown("fullDiskAccessNotice"));
    comeBack();
    EXPECT_TRUE(window.waitUntilHidden("fullDiskAccessNotice"));
    EXPECT_TRUE(window.waitUntil([&] { return window.appsState().apps().size() == 4; })) << "all is looked at anew";
}

TEST_P(FullDiskAccessNotice, StaysAwayOnceItIsSentAway) {
    auto& window = open(GetParam());
    window.click("fullDiskAccessNotice/sendNoticeAwayButton");
    EXPECT_TRUE(window.waitUntilHidden("fullDiskAccessNotice"));
    comeBack();
    window.click("refreshAllButton");
    EXPECT_TRUE(window.waitUntil([&] { return window.state().isIdle(); }));
    EXPECT_FALSE(window.isShown("fullDiskAccessNotice"));
}

}  // namespace

}  // namespace tarvik::test
