#include "Installers/Inspection/PackageTrustInspector.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// Tools that answer with fixed bytes.
struct Tools {
    World world;

    Tools() {
        world.host.tools.pkgutil = world.folder / "none";
        world.host.tools.xar = world.folder / "none";
    }
    void signature(const std::string& output, const std::string& complaint = "", int status = 0) {
        makeFile(world.folder / "signature", output);
        makeFile(world.folder / "complaint", complaint);
        world.host.tools.pkgutil =
            world.tool("pkgutil", fmt::format("cat '{0}/signature'\ncat '{0}/complaint' >&2\nexit {1}\n",
                                              world.folder.path().native(), status));
    }
    void listing(const std::string& output, const std::string& end = "exit 0") {
        makeFile(world.folder / "listing", output);
        world.host.tools.xar =
            world.tool("xar", fmt::format("cat '{}/listing'\n{}\n", world.folder.path().native(), end));
    }
    TrustSummary verdict() const { return PackageTrustInspector::inspect(world.host, "/Downloads/Tool.pkg"); }
    bool hasScripts(const std::string& entries) {
        listing(entries);
        return verdict().hasScripts;
    }
    bool isPrivileged(const std::string& entries) {
        listing(entries);
        return verdict().hasPrivilegedPayload;
    }
    std::string statusOf(const std::string& words) {
        signature(words);
        return verdict().status;
    }
};

TEST(PackageTrustInspector, AsksTheToolsAboutThePackage) {
    Tools tools;
    const std::string said = (tools.world.folder / "said").native();
    tools.world.host.tools.pkgutil = tools.world.tool("pkgutil", "echo pkgutil \"$@\" >> '" + said + "'");
    tools.world.host.tools.xar = tools.world.tool("xar", "echo xar \"$@\" >> '" + said + "'");
    tools.verdict();
    EXPECT_EQ(contentOf(said), "pkgutil --check-signature /Downloads/Tool.pkg\nxar -tf /Downloads/Tool.pkg\n");
}

TEST(PackageTrustInspector, TrustsWhatTheToolCallsSigned) {
    Tools tools;
    EXPECT_EQ(tools.statusOf("Package \"Tool.pkg\":\n   Status: signed by a developer certificate\n"), "trusted");
    EXPECT_EQ(tools.statusOf("   STATUS: SIGNED\n"), "trusted");
    EXPECT_EQ(tools.statusOf("   Notarization: Trusted by the notary service\n"), "trusted");
    EXPECT_EQ(tools.statusOf("   Status: no signature\n"), "untrusted");
    EXPECT_EQ(tools.statusOf("   Status:  signed\n"), "untrusted");
    EXPECT_EQ(tools.statusOf(""), "untrusted");
}

TEST(PackageTrustInspector, TakesUntrustedForTheWordInIt) {
    Tools tools;
    EXPECT_EQ(tools.statusOf("   Status: an Untrusted certificate signed it\n"), "trusted");
}

TEST(PackageTrustInspector, LooksForTheWordsWithinOneLine) {
    Tools tools;
    EXPECT_EQ(tools.statusOf("Status:\nsigned\ntrus\xE2\x80\xA8ted\n"), "untrusted");
}

TEST(PackageTrustInspector, CountsTheWordsAlone) {
    Tools tools;
    tools.signature("", "Status: signed\n", 1);
    EXPECT_EQ(tools.verdict().status, "trusted");
}

TEST(PackageTrustInspector, KeepsEveryLineOfWhatIsSaid) {
    Tools tools;
    tools.signature(
        "one\r\n\n two \x0Bthree\x0C"
        "four\xC2\x85"
        "five\xE2\x80\xA8six\xE2\x80\xA9seven, not ended",
        ": eight\n\nnine");
    EXPECT_THAT(tools.verdict().details,
                ElementsAre("one", " two ", "three", "four", "five", "six", "seven, not ended: eight", "nine"));
}

TEST(PackageTrustInspector, FindsScriptsInTheListing) {
    Tools tools;
    EXPECT_TRUE(tools.hasScripts("Bom\nScripts\nPayload\n"));
    EXPECT_TRUE(tools.hasScripts("base.pkg/Scripts\n"));
    EXPECT_TRUE(tools.hasScripts("base.pkg/Scripts/preinstall\n"));
    EXPECT_FALSE(tools.hasScripts("base.pkg/ScriptsExtra\n"));
    EXPECT_FALSE(tools.hasScripts("MyScripts\nScripts/\nscripts\nbase.pkg/scripts\n"));
}

TEST(PackageTrustInspector, FindsPlacesOfTheSystemInTheListing) {
    Tools tools;
    for (const char* place : {"LaunchDaemons", "PrivilegedHelperTools", "SystemExtensions", "Extensions"})
        EXPECT_TRUE(tools.isPrivileged(fmt::format("Bom\n./Library/{}/com.acme.tool\n", place))) << place;
    EXPECT_FALSE(tools.isPrivileged("Library/LaunchAgents/a\nlibrary/launchdaemons/a\nLibrary/\nLaunchDaemons\n"));
}

TEST(PackageTrustInspector, SeesNothingInAPackageThatCannotBeListed) {
    Tools tools;
    tools.signature("Status: signed\n");
    const TrustSummary plain = tools.verdict();
    EXPECT_EQ(plain, (TrustSummary{.status = "trusted", .details = {"Status: signed"}}));
    tools.listing("Scripts\nLibrary/Extensions/a\n", "exit 1");
    EXPECT_EQ(tools.verdict(), plain);
    tools.listing("Scripts\nLibrary/Extensions/a\n");
    EXPECT_TRUE(tools.verdict().hasScripts && tools.verdict().hasPrivilegedPayload);
    EXPECT_EQ(tools.verdict().status, "trusted") << "the flags do not change it";
}

TEST(PackageTrustInspector, TrustsNothingWithoutAnAnswer) {
    const Tools tools;
    const TrustSummary trust = tools.verdict();
    EXPECT_EQ(trust.status, "untrusted");
    EXPECT_THAT(trust.details, SizeIs(1)) << "why the tool could not be started";
    EXPECT_FALSE(trust.hasScripts || trust.hasPrivilegedPayload);
}

TEST(PackageTrustInspector, ReadsNoMoreThanMemoryCanTake) {
    Tools tools;
    tools.world.host.tools.pkgutil =
        tools.world.tool("pkgutil", "echo 'Status: signed'\nhead -c 60000000 /dev/zero | tr '\\0' 'x'");
    const TrustSummary trust = tools.verdict();
    EXPECT_EQ(trust.status, "trusted");
    ASSERT_THAT(trust.details, SizeIs(2));
    EXPECT_LT(trust.details.back().size(), 3'000'000U);
}

}  // namespace
}  // namespace tarvik
