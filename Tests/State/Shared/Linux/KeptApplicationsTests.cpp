#include "MovePlan/AppManagement.h"
#include "State/EventLoop.h"
#include "State/Shared/KeptApplications.h"
#include "State/Threads/TaskGroup.h"
#include "Support/Bundles.h"
#include "Support/Linux/KeptItems.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <optional>
#include <string>
#include <vector>

namespace tarvik::test {
namespace {

class KeptApplicationsTest : public testing::Test {
protected:
    void SetUp() override {
        TARVIK_NEEDS_KEPT_ITEMS();
        for (const fs::path& bundle : {editor, player}) {
            makeBundle(bundle);
            makeFile(bundle / "Contents/_CodeSignature/CodeResources");
        }
    }
    static std::string reasonFor(const fs::path& bundle) { return *AppManagement::refusalAfter({{bundle, EPERM}}); }
    void keep(const std::vector<fs::path>& bundles) {
        std::vector<fs::path> lists;
        for (const fs::path& bundle : bundles) lists.push_back(bundle / "Contents/Info.plist");
        closed.emplace(lists);
    }
    void waitForAll() {
        spinUntil([&] { return flows.isEmpty(); });
    }
    std::string told() const { return kept.text().toStdString(); }

    const TemporaryFolder folder;
    const fs::path editor = folder / "Editor.app";
    const fs::path player = folder / "Player.app";
    std::optional<KeptItems> closed;
    TaskGroup flows{[](const std::exception& failure) { ADD_FAILURE() << failure.what(); }};
    KeptApplications kept{[this](QCoro::Task<> flow) { flows.add(std::move(flow)); }};
};

TEST_F(KeptApplicationsTest, AreThoseWhoseMoveHasFailedForThat) {
    keep({editor, player});
    kept.add({{player, "Player.app can't be moved: it is locked."}, {editor, reasonFor(editor)}});
    waitForAll();
    EXPECT_EQ(told(), reasonFor(editor));
}

TEST_F(KeptApplicationsTest, AreForgottenOnlyWhenTheyMayBeChanged) {
    keep({editor, player});
    kept.add({{editor, reasonFor(editor)}, {player, reasonFor(player)}});
    waitForAll();
    kept.lookAgain();
    waitForAll();
    EXPECT_EQ(told(), reasonFor(editor));
    closed.reset();
    keep({player});
    kept.lookAgain();
    waitForAll();
    EXPECT_EQ(told(), reasonFor(player));
    closed.reset();
    kept.lookAgain();
    waitForAll();
    EXPECT_EQ(told(), "");
}

TEST_F(KeptApplicationsTest, AreKeptOnceEachHoweverOftenTheyFail) {
    keep({editor, player});
    kept.add({{editor, reasonFor(editor)}});
    waitForAll();
    kept.add({{editor, reasonFor(editor)}, {player, reasonFor(player)}});
    waitForAll();
    ASSERT_EQ(kept.applications().size(), 2U);
    EXPECT_EQ(kept.applications().front().item, editor);
}

TEST_F(KeptApplicationsTest, DoNotComeBackByALookThatWasUnderWay) {
    keep({editor});
    kept.add({{editor, reasonFor(editor)}});
    waitForAll();
    kept.lookAgain();
    kept.forget();
    waitForAll();
    EXPECT_EQ(told(), "");
}

}  // namespace
}  // namespace tarvik::test
