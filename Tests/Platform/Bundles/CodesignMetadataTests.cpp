#include "Platform/Bundles/CodesignMetadata.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <chrono>

namespace tarvik {
namespace {

using test::World;

/// What the team's name is when the tool prints this on standard error.
std::string teamNameFrom(const std::string& answer) {
    World world;
    test::makeFile(world.folder / "answer", answer);
    world.host.tools.codesign =
        world.tool("codesign", "[ \"$*\" = '-dvv /Editor.app' ] && cat \"$(dirname \"$0\")/../answer\" >&2");
    return CodesignMetadata::teamName(world.host, "/Editor.app");
}

std::string statusFrom(const std::string& answer) {
    World world;
    test::makeFile(world.folder / "answer", answer);
    world.host.tools.spctl =
        world.tool("spctl", "[ \"$*\" = '-a -vv /Editor.app' ] && cat \"$(dirname \"$0\")/../answer\" >&2; exit 3");
    return CodesignMetadata::notarizationStatus(world.host, "/Editor.app");
}

TEST(CodesignMetadata, NamesTheDeveloperWithoutTheTeamsNumber) {
    EXPECT_EQ(teamNameFrom("Identifier=org.example.Editor\n"
                           "Authority=Developer ID Application: Example Works  (AB12CD34EF)\n"
                           "Authority=Developer ID Certification Authority\n"),
              "Example Works");
    EXPECT_EQ(teamNameFrom("Authority=Developer ID Application: Grüße & Söhne"), "Grüße & Söhne");
}

TEST(CodesignMetadata, ReadsWhatAMacPrints) {
    // The form of `codesign -dvv` and of `spctl -a -vv` on macOS, see codesign(1) and spctl(8).
    EXPECT_EQ(teamNameFrom("Executable=/Editor.app/Contents/MacOS/Editor\n"
                           "Identifier=org.example.Editor\n"
                           "Format=app bundle with Mach-O universal (x86_64 arm64)\n"
                           "CodeDirectory v=20500 size=1786 flags=0x10000(runtime) hashes=45+7 location=embedded\n"
                           "Signature size=9046\n"
                           "Authority=Developer ID Application: Example Works (AB12CD34EF)\n"
                           "Authority=Developer ID Certification Authority\n"
                           "Authority=Apple Root CA\n"
                           "Timestamp=15 Nov 2026 at 17:45:43\n"
                           "Info.plist entries=29\n"
                           "TeamIdentifier=AB12CD34EF\n"
                           "Runtime Version=14.0.0\n"
                           "Sealed Resources version=2 rules=13 files=310\n"
                           "Internal requirements count=1 size=184\n"),
              "Example Works");
    EXPECT_EQ(statusFrom("/Editor.app: accepted\nsource=Notarized Developer ID\n"
                         "origin=Developer ID Application: Example Works (AB12CD34EF)\n"),
              "Notarized");
}

TEST(CodesignMetadata, NamesTheStore) {
    EXPECT_EQ(teamNameFrom("Authority=Apple Mac OS Application Signing\n"), "Apple (Mac App Store)");
}

TEST(CodesignMetadata, TheFirstAuthorityDecides) {
    const std::string developer = "Authority=Developer ID Application: Example (1)\n";
    const std::string store = "Authority=Apple Mac OS Application Signing\n";
    EXPECT_EQ(teamNameFrom(developer + store), "Example");
    EXPECT_EQ(teamNameFrom(store + developer), "Apple (Mac App Store)");
}

TEST(CodesignMetadata, WithoutAnAuthorityNobodySigned) {
    for (const char* answer : {"", "Signature=adhoc\n", " Authority=Developer ID Application: Indented (1)\n",
                               "Authority=Software Signing\n", "/Editor.app: No such file or directory\n", "\xFF"})
        EXPECT_EQ(teamNameFrom(answer), "Unsigned / Ad-hoc") << answer;
}

TEST(CodesignMetadata, TellsTheNotarizationInOrder) {
    EXPECT_EQ(statusFrom("/Editor.app: accepted\nsource=Notarized Developer ID\n"), "Notarized");
    EXPECT_EQ(statusFrom("/Editor.app: accepted\nsource=Mac App Store\n"), "Mac App Store");
    EXPECT_EQ(statusFrom("/Editor.app: rejected\nsource=no usable signature\n"), "Not signed");
    EXPECT_EQ(statusFrom("/accepted.app: rejected\n"), "Not signed");
    EXPECT_EQ(statusFrom("/Editor.app: accepted\nsource=Developer ID\n"), "Accepted");
    EXPECT_EQ(statusFrom("/Editor.app: internal error\n"), "Unknown");
    EXPECT_EQ(statusFrom("rejected \xFF"), "Unknown");
}

TEST(CodesignMetadata, ReadsStandardErrorAloneHoweverMuchTheToolPrints) {
    World world;
    world.host.tools.spctl = world.tool(
        "spctl",
        "i=0; while [ $i -lt 300 ]; do printf '%01000d' 0; printf '%01000d' 0 >&2; i=$((i+1)); done; echo rejected");
    EXPECT_EQ(CodesignMetadata::notarizationStatus(world.host, "/Editor.app"), "Unknown");
}

TEST(CodesignMetadata, NothingIsKnownFromAToolThatDoesNotAnswerInTime) {
    World world;
    const auto limit = std::chrono::milliseconds(200);
    world.host.tools.codesign = world.host.tools.spctl = world.tool("hung", "exec sleep 600");
    EXPECT_EQ(CodesignMetadata::teamName(world.host, "/Editor.app", limit), "Unknown");
    EXPECT_EQ(CodesignMetadata::notarizationStatus(world.host, "/Editor.app", limit), "Unknown");
}

TEST(CodesignMetadata, AMissingToolTellsNothing) {
    World world;
    world.host.tools.codesign = world.host.tools.spctl = world.folder / "rejected";
    EXPECT_EQ(CodesignMetadata::teamName(world.host, "/Editor.app"), "Unsigned / Ad-hoc");
    EXPECT_EQ(CodesignMetadata::notarizationStatus(world.host, "/Editor.app"), "Unknown");
}

}  // namespace
}  // namespace tarvik
