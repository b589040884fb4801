#include "StandIns/StandInRun.h"
#include "StandIns/codesign/SignedApp.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarvik::test {
namespace {

TEST(SpctlAssessment, RejectsWhatNobodyVouchesFor) {
    const SignedApp app;
    for (int i = 0; i < 2; ++i) {
        const auto result = runStandIn("spctl", {"-a", "-vv", app.path});
        EXPECT_EQ(result.status, 3);
        EXPECT_EQ(result.stdout, "");
        EXPECT_EQ(result.stderr, app.path.native() + ": rejected\nsource=no usable signature\n");
        fs::remove_all(app.signature);
    }
    EXPECT_EQ(runStandIn("spctl", {"--assess", app.path}).stderr, app.path.native() + ": rejected\n");
}

TEST(SpctlAssessment, DoesNotJudgeASignatureThatItCannotRead) {
    const SignedApp app;
    makeFile(app / "Contents/MacOS/Editor", "\xFE\xED\xFA\xCF and so on");
    fs::remove(app.signature / "CodeDirectory");
    const auto result = runStandIn("spctl", {"-a", "-vv", app.path});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.stderr, app.path.native() + ": internal error in Code Signing subsystem\n");
}

TEST(SpctlAssessment, TellsWhatCannotBeJudged) {
    const auto missing = runStandIn("spctl", {"-a", "-vv", "/nowhere"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.stderr, "/nowhere: No such file or directory\n");
    const TemporaryFolder folder;
    const auto noBundle = runStandIn("spctl", {"-a", folder.path()});
    EXPECT_EQ(noBundle.status, 1);
    EXPECT_EQ(noBundle.stderr, folder.path().native() + ": bundle format unrecognized, invalid, or unsuitable\n");
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{}, {"-a"}, {"-x", "/a"}, {"/a"}, {"-a", ""}})
        EXPECT_EQ(runStandIn("spctl", arguments).status, 2);
}

}  // namespace
}  // namespace tarvik::test
