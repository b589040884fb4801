// A repair of an application that the system keeps from programs.
#include "State/EventLoop.h"
#include "State/StateWorld.h"
#include "Support/Bundles.h"
#include "Support/Linux/KeptItems.h"
#include "Support/Tree.h"

namespace tarvik::test {

namespace {

class KeptRepair : public StateWorld {};

}  // namespace

TEST_F(KeptRepair, IsTurnedToTheSettingsAsAMoveIs) {
    TARVIK_NEEDS_KEPT_ITEMS();
    const fs::path local = world.folder / "Applications/Foo.app";
    const fs::path copy = world.drive / "ExternalTarvik/Apps/Foo.app";
    for (const fs::path& bundle : {local, copy}) makeBundle(bundle);
    makeFile(local / "Contents/_CodeSignature/CodeResources");
    healthTab().refreshHealth();
    settle();
    const auto issue = healthTab().healthReport()->problems().at(0);
    ASSERT_EQ(issue.kind, HealthIssue::Kind::reverted);
    {
        const KeptItems closed({local / "Contents/Info.plist"});
        healthTab().repairHealth(issue, HealthRepairStrategy::reSymlinkReverted);
        settle();
        EXPECT_NE(state->lastError(), "");
        EXPECT_EQ(state->keptApplications()->text(), state->lastError());
        EXPECT_TRUE(fs::exists(copy));
    }
    state->keptApplications()->lookAgain();
    settle();
    EXPECT_EQ(state->keptApplications()->text(), "");
}

}  // namespace tarvik::test
