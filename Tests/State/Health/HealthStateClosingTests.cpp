#include "Platform/Bundles/CodesignVerifier.h"
#include "State/StateWorld.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace tarvik::test {

namespace {

class HealthStateClosing : public StateWorld {};

}  // namespace

TEST_F(HealthStateClosing, WaitsForNoToolThatTheCheckRuns) {
    const fs::path asked = world.folder / "asked";
    world.host.tools.codesign = world.tool("codesign", "touch '" + asked.native() + "'; exec sleep 100");
    state = std::make_unique<AppState>(world.host, dialogs);
    makeBundle(world.drive / "Foo.app");
    makeLink(world.folder / "Applications/Foo.app", world.drive / "Foo.app");
    healthTab().refreshHealth();
    EXPECT_TRUE(comesToStand(asked));
    const auto start = std::chrono::steady_clock::now();
    state.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, CodesignVerifier::toolTimeout);
}

}  // namespace tarvik::test
