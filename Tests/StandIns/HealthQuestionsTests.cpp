#include "Health/SpotlightHealthCheck.h"
#include "Launchers/LauncherAppBuilder.h"
#include "Platform/Bundles/CodesignMetadata.h"
#include "Platform/Bundles/CodesignVerifier.h"
#include "Platform/Machine/Host.h"
#include "StandIns/codesign/SignedApp.h"
#include "Support/EnvironmentVariable.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik::test {
namespace {

using testing::IsEmpty;
using testing::StartsWith;

/// What the health check asks, answered for a machine in a folder by the programs that it really gets.
class HealthQuestions : public testing::Test {
protected:
    SignedApp app;
    Host host = Host::rootedAt(app.folder.path(), app.folder / "Users/me");
};

TEST_F(HealthQuestions, ASignedBundleHoldsUntilAByteOfItChanges) {
    const auto whole = CodesignVerifier::verify(host, app.path);
    EXPECT_TRUE(whole.isSigned);
    EXPECT_TRUE(whole.passed());
    EXPECT_EQ(whole.staplerOK, std::nullopt);
    flipByte(app / "Contents/Resources/abc.txt", 1);
    const auto broken = CodesignVerifier::verify(host, app.path);
    EXPECT_TRUE(broken.isSigned);
    EXPECT_FALSE(broken.passed());
    EXPECT_THAT(broken.codesignDetail, StartsWith(app.path.native() + ": a sealed resource is missing or invalid\n"));
}

TEST_F(HealthQuestions, AnUnsignedBundleIsToldFromABrokenOne) {
    makeUnsignedBundle(app.folder / "Plain.app");
    for (const char* name : {"Plain.app", "Missing.app"}) {
        const auto result = CodesignVerifier::verify(host, app.folder / name);
        EXPECT_FALSE(result.isSigned) << name;
        EXPECT_FALSE(result.codesignOK);
    }
}

TEST_F(HealthQuestions, ATicketOfOtherCodeBreaksTheBundle) {
    makeFile(app / "Contents/CodeResources", "s8ch of other code");
    const auto result = CodesignVerifier::verify(host, app.path);
    EXPECT_TRUE(result.codesignOK);
    EXPECT_EQ(result.staplerOK, false);
}

TEST_F(HealthQuestions, NobodyVouchesForIt) {
    EXPECT_EQ(CodesignMetadata::teamName(host, app.path), "Unsigned / Ad-hoc");
    EXPECT_EQ(CodesignMetadata::notarizationStatus(host, app.path), "Not signed");
}

TEST_F(HealthQuestions, ALauncherIsSignedAsItIsMadeAndHolds) {
    const fs::path launcher = app.folder / "Applications/Editor.app";
    makeFolder(launcher.parent_path());
    host.tools.externalAppLauncher = app.folder / "external-app-launcher";
    makeFile(host.tools.externalAppLauncher, "the program");
    std::string log;
    LauncherAppBuilder::install(host, app.path, launcher, app.path,
                                {[&](const std::string& line) { log += line + "\n"; }});
    EXPECT_THAT(log, testing::HasSubstr("\nsigned-launcher\t"));
    const auto whole = CodesignVerifier::verify(host, launcher);
    EXPECT_TRUE(whole.isSigned);
    EXPECT_EQ(whole.codesignDetail, "");
    makeFile(launcher / "Contents/Resources/ExternalAppTarget.txt", "/elsewhere");
    EXPECT_FALSE(CodesignVerifier::verify(host, launcher).passed());
}

TEST_F(HealthQuestions, TheSearchKnowsTheMachineInTheFolder) {
    const EnvironmentVariable root("TARVIK_ROOT", app.folder.path().native());
    EXPECT_THAT(SpotlightHealthCheck::warnings(host), IsEmpty());
    makeFile(app.folder / ".metadata_never_index", "");
    EXPECT_THAT(SpotlightHealthCheck::warnings(host),
                testing::ElementsAre(StartsWith("Spotlight indexing is disabled for ")));
}

}  // namespace
}  // namespace tarvik::test
