#include "Platform/Bundles/CodesignVerifier.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <chrono>

namespace tarvik {
namespace {

using CodesignVerifier::Result;
using test::World;

constexpr const char* accepts = "exit 0";
constexpr const char* hangs = "exec sleep 100";

/// Answers of the three calls, each a piece of a shell script.
struct Answers {
    std::string display = accepts;
    std::string verify = accepts;
    std::string ticket = accepts;
};

Result verified(const Answers& answers, std::chrono::duration<double> limit = std::chrono::seconds(20)) {
    World world;
    world.host.tools.codesign =
        world.tool("codesign", "case \"$*\" in\n\"-dv /Editor.app\") " + answers.display +
                                   ";;\n\"--verify --deep --strict /Editor.app\") " + answers.verify +
                                   ";;\n*) echo \"unexpected $*\"; exit 9;;\nesac");
    world.host.tools.xcrun =
        world.tool("xcrun", "[ \"$*\" = 'stapler validate /Editor.app' ] || { echo \"unexpected $*\"; exit 9; }\n" +
                                answers.ticket);
    return CodesignVerifier::verify(world.host, "/Editor.app", limit);
}

// The words of `stapler validate` are those of sessions that developers have published. stapler(1) says of them only
// that its exit status is 0 or one of sysexits(3): 65 is EX_DATAERR.
TEST(CodesignVerifier, ASignedAndNotarizedBundlePasses) {
    const Result result = verified({.verify = "echo ' valid on disk'; echo 'satisfies its requirement ' >&2",
                                    .ticket = "echo 'Processing: /Editor.app'; echo 'The validate action worked!'"});
    EXPECT_EQ(result, (Result{true, true, true, "valid on disk\nsatisfies its requirement",
                              "Processing: /Editor.app\nThe validate action worked!"}));
    EXPECT_TRUE(result.passed());
}

TEST(CodesignVerifier, AnUnsignedBundleDoesNotPass) {
    const std::string refuses = "echo '/Editor.app: code object is not signed at all' >&2; exit 1";
    const Result result = verified({.display = refuses, .verify = refuses});
    EXPECT_FALSE(result.isSigned);
    EXPECT_FALSE(result.codesignOK);
    EXPECT_EQ(result.codesignDetail, "/Editor.app: code object is not signed at all");
    EXPECT_FALSE(result.passed());
}

TEST(CodesignVerifier, ABrokenSignatureDoesNotPass) {
    const Result result = verified({.verify = "echo 'a sealed resource is missing or invalid' >&2; exit 1"});
    EXPECT_TRUE(result.isSigned);
    EXPECT_FALSE(result.codesignOK);
    EXPECT_FALSE(result.passed());
}

TEST(CodesignVerifier, WithoutATicketThereIsNothingToJudge) {
    for (const char* sentence : {"Editor.app does not have a ticket stapled to it.", "Editor.app does not contain one"})
        for (const char* status : {"0", "65"}) {
            const Result result = verified(
                {.ticket = "echo 'Processing: /Editor.app'; echo '" + std::string(sentence) + "'; exit " + status});
            EXPECT_EQ(result.staplerOK, std::nullopt) << sentence;
            EXPECT_TRUE(result.passed());
        }
}

TEST(CodesignVerifier, ATicketThatDoesNotFitDoesNotPass) {
    const Result result = verified({.ticket = "echo 'Processing: /Editor.app'; echo 'Could not validate'; exit 65"});
    EXPECT_EQ(result.staplerOK, false);
    EXPECT_TRUE(result.codesignOK);
    EXPECT_FALSE(result.passed());
}

TEST(CodesignVerifier, ATicketCheckThatOnlyNamesTheBundleJudgesNothing) {
    EXPECT_EQ(verified({.ticket = "printf '\\n  Processing: /Editor.app \\n\\n'; exit 1"}).staplerOK, std::nullopt);
    EXPECT_EQ(verified({.ticket = "echo 'Processing: /Editor.app' >&2; exit 1"}).staplerOK, std::nullopt);
    EXPECT_EQ(verified({.ticket = "echo 'Processing: /Editor.app'; echo more >&2; exit 1"}).staplerOK, false);
    EXPECT_EQ(verified({.ticket = "echo 'Not processing: /Editor.app'; exit 1"}).staplerOK, false);
    EXPECT_EQ(verified({.ticket = "exit 1"}).staplerOK, false);
    EXPECT_EQ(verified({.ticket = "echo 'Processing: /Editor.app'"}).staplerOK, true);
}

TEST(CodesignVerifier, AnAnswerThatTakesTooLongIsNoFailure) {
    const Result timedOut{false, true, std::nullopt, "verification timed out", "", true};
    EXPECT_EQ(verified({.verify = hangs}, std::chrono::milliseconds(50)), timedOut);
    EXPECT_EQ(verified({.ticket = hangs}, std::chrono::milliseconds(50)), timedOut);
    EXPECT_TRUE(timedOut.passed());
}

TEST(CodesignVerifier, GivesEachToolTwentySeconds) {
    EXPECT_EQ(CodesignVerifier::toolTimeout, std::chrono::seconds(20));
}

TEST(CodesignVerifier, AToolThatWouldNotTellTheSignatureInTimeFoundNone) {
    const std::string endsWellLate = "trap 'exit 0' TERM; while :; do sleep 0.01; done";
    EXPECT_FALSE(verified({.display = endsWellLate}, std::chrono::milliseconds(500)).isSigned);
}

TEST(CodesignVerifier, WithoutItsToolsNothingIsSigned) {
    World world;
    world.host.tools.codesign = world.host.tools.xcrun = world.folder / "missing";
    const Result result = CodesignVerifier::verify(world.host, "/Editor.app");
    EXPECT_FALSE(result.isSigned);
    EXPECT_FALSE(result.codesignOK);
    EXPECT_EQ(result.staplerOK, false);
    EXPECT_NE(result.codesignDetail, "");
}

}  // namespace
}  // namespace tarvik
