#include "StandIns/StandInRun.h"
#include "StandIns/codesign/SignedApp.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace tarvik::test {
namespace {

std::string described(const SignedApp& app, const char* operation) {
    const auto result = runStandIn("codesign", {operation, app.path});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.stdout, "");
    return result.stderr;
}

TEST(CodesignDisplay, TellsWhatTheSignatureSaysOfItself) {
    const SignedApp app;
    const std::string executable = "Executable=" + (app / "Contents/MacOS/Editor").native() + "\n";
    const std::string facts = executable +
                              "Identifier=org.example.Editor\n"
                              "Format=app bundle with generic\n"
                              "CodeDirectory v=20400 size=235 flags=0x2(adhoc) hashes=1+3 location=embedded\n"
                              "Signature=adhoc\n"
                              "Info.plist entries=2\n"
                              "TeamIdentifier=not set\n"
                              "Sealed Resources version=2 rules=13 files=10\n"
                              "Internal requirements count=0 size=12\n";
    EXPECT_EQ(described(app, "-d"), executable);
    EXPECT_EQ(described(app, "-dv"), facts);
    EXPECT_EQ(described(app, "-dvv"), facts);
    EXPECT_THAT(described(app, "-dvvv"), testing::ContainsRegex("\nCDHash=[0-9a-f]+\nSignature=adhoc\n"));
}

TEST(CodesignDisplay, DescribesABrokenSignatureToo) {
    const SignedApp app;
    makeFile(app / "Contents/Resources/abc.txt", "changed");
    makeFile(app / "Contents/MacOS/Editor", "changed");
    EXPECT_THAT(described(app, "-dv"), testing::HasSubstr("\nSignature=adhoc\n"));
    fs::remove(app.seal);
    EXPECT_THAT(described(app, "-dv"), testing::HasSubstr("\nSealed Resources=none\n"));
}

TEST(CodesignDisplay, FailsWithoutASignature) {
    const TemporaryFolder folder;
    makeUnsignedBundle(folder / "Plain.app");
    const auto result = runStandIn("codesign", {"-dv", folder / "Plain.app"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.stderr, (folder / "Plain.app").native() + ": code object is not signed at all\n");
}

}  // namespace
}  // namespace tarvik::test
