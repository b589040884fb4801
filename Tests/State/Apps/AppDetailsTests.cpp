#include "State/Apps/AppDetails.h"
#include "State/EventLoop.h"
#include "State/StateWorld.h"
#include "State/Threads/Background.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <chrono>

namespace tarvik::test {

namespace {

class AppDetailsTest : public StateWorld {
protected:
    /// Gives the machine tools that tell of signatures.
    void withTools(const std::string& codesign, const std::string& spctl) {
        world.host.tools.codesign = world.tool("codesign", codesign);
        world.host.tools.spctl = world.tool("spctl", spctl);
        state = std::make_unique<AppState>(world.host, dialogs);
    }
    void open(AppDetails& details) const {
        details.setState(&appsTab());
        details.setBundle(FilePath(world.folder / "Applications/Editor.app"));
    }

    fs::path sign = world.folder / "sign";
};

}  // namespace

TEST_F(AppDetailsTest, TellsWhoSigned) {
    withTools("echo 'Authority=Developer ID Application: Example (1)' >&2", "echo rejected >&2");
    AppDetails details;
    open(details);
    EXPECT_TRUE(details.isVerifying());
    spinUntil([&] { return !details.isVerifying(); });
    EXPECT_EQ(details.developer(), "Example");
    EXPECT_EQ(details.notarization(), "Not signed");
}

TEST_F(AppDetailsTest, AsksNoFurtherToolOnceItIsClosed) {
    const fs::path goOn = world.folder / "go on";
    withTools("touch '" + sign.native() + "'\n" + waitFor(goOn), "touch '" + sign.native() + " of spctl'");
    {
        AppDetails details;
        open(details);
        spinUntil([&] { return fs::exists(sign); });
    }
    makeFile(goOn);
    Background::finish();
    EXPECT_FALSE(fs::exists(sign.native() + " of spctl"));
}

TEST_F(AppDetailsTest, KnowsNothingFromToolsThatDoNotAnswer) {
    withTools("exec sleep 600", "exec sleep 600");
    AppDetails details;
    details.setToolLimit(std::chrono::milliseconds(100));
    open(details);
    spinUntil([&] { return !details.isVerifying(); });
    EXPECT_EQ(details.developer(), "Unknown");
    EXPECT_EQ(details.notarization(), "Unknown");
}

}  // namespace tarvik::test
