#include "Platform/Bundles/RunningBundle.h"
#include "Platform/Machine/RunningApplications.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tarvik {
namespace {

TEST(SystemRunningApplications, AreWhateverRunsFromABundleAnywhere) {
    const test::TemporaryFolder folder;
    const auto runs = [&] {
        const auto applications = makeSystemRunningApplications()->running();
        return std::any_of(applications.begin(), applications.end(), [&](const RunningApplication& application) {
            return application.bundlePath == folder / "Editor.app";
        });
    };
    EXPECT_FALSE(runs());
    const ChildProcess program = test::runSleeperIn(folder / "Editor.app");
    EXPECT_TRUE(runs());
}

}  // namespace
}  // namespace tarvik
