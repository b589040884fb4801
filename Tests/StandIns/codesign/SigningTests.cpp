#include "Platform/Text/PropertyList.h"
#include "StandIns/StandInRun.h"
#include "StandIns/codesign/SignedApp.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace tarvik::test {
namespace {

using namespace std::string_view_literals;
using testing::ElementsAre;

/// The items that a list of the seal names.
std::vector<std::string> sealedIn(const SignedApp& app, const char* list) {
    std::vector<std::string> paths;
    const auto seal = PropertyList::dictionaryAt(app.seal);
    if (const auto* items = seal.find(list))
        for (const auto& [path, item] : *items->as<PropertyList::Dictionary>()) paths.push_back(path);
    return paths;
}

PropertyList sealedAs(const SignedApp& app, const char* list, const std::string& path) {
    return *PropertyList::dictionaryAt(app.seal).find(list)->find(path);
}

constexpr std::string_view sha1OfAbc =
    "\xA9\x99\x3E\x36\x47\x06\x81\x6A\xBA\x3E\x25\x71\x78\x50\xC2\x6C\x9C\xD0\xD8\x9D"sv;
constexpr std::string_view sha256OfAbc =
    "\xBA\x78\x16\xBF\x8F\x01\xCF\xEA\x41\x41\x40\xDE\x5D\xAE\x22\x23\xB0\x03\x61\xA3\x96\x17\x7A\x9C\xB4\x10\xFF\x61"
    "\xF2\x00\x15\xAD"sv;

TEST(CodesignSigning, SealsEverythingButWhatTheRulesLeaveOut) {
    const SignedApp app;
    EXPECT_THAT(sealedIn(app, "files2"),
                ElementsAre("Frameworks/Text.framework", "PlugIns/Export.bundle", "Resources/.hidden",
                            "Resources/Base.lproj/Main.nib", "Resources/Deep.bundle/inside.txt", "Resources/abc.txt",
                            "Resources/de.lproj/words.strings", "Resources/empty", "Resources/link", "version.plist"));
    EXPECT_THAT(
        sealedIn(app, "files"),
        ElementsAre("Resources/.hidden", "Resources/Base.lproj/Main.nib", "Resources/Deep.bundle/inside.txt",
                    "Resources/abc.txt", "Resources/de.lproj/words.strings", "Resources/empty", "version.plist"));
}

TEST(CodesignSigning, SealsAFileByBothDigests) {
    const SignedApp app;
    const auto item = sealedAs(app, "files2", "Resources/abc.txt");
    EXPECT_EQ(item, (PropertyList::Dictionary{{"hash", PropertyList::Data{std::string(sha1OfAbc)}},
                                              {"hash2", PropertyList::Data{std::string(sha256OfAbc)}}}));
    EXPECT_EQ(sealedAs(app, "files", "Resources/abc.txt"), (PropertyList::Data{std::string(sha1OfAbc)}));
}

TEST(CodesignSigning, LetsLanguagesGoButTheBaseOne) {
    const SignedApp app;
    EXPECT_EQ(*sealedAs(app, "files2", "Resources/de.lproj/words.strings").find("optional"), PropertyList(true));
    EXPECT_EQ(*sealedAs(app, "files", "Resources/de.lproj/words.strings").find("optional"), PropertyList(true));
    EXPECT_EQ(sealedAs(app, "files2", "Resources/Base.lproj/Main.nib").find("optional"), nullptr);
}

TEST(CodesignSigning, SealsALinkByItsText) {
    const SignedApp app;
    EXPECT_EQ(sealedAs(app, "files2", "Resources/link"), (PropertyList::Dictionary{{"symlink", "abc.txt"}}));
}

TEST(CodesignSigning, SealsNestedCodeByItsOwnRecord) {
    const SignedApp app;
    const auto described = runStandIn("codesign", {"-dvvv", app.framework});
    const auto item = sealedAs(app, "files2", "Frameworks/Text.framework");
    const std::string requirement = item.text("requirement").value_or("");
    ASSERT_EQ(requirement.size(), std::string("cdhash H\"\"").size() + 40);
    EXPECT_THAT(described.stderr, testing::HasSubstr("\nCDHash=" + requirement.substr(9, 40) + "\n"));
    EXPECT_EQ(item.find("cdhash")->as<PropertyList::Data>()->bytes.size(), 20U);
}

TEST(CodesignSigning, WritesTheStandardRules) {
    const SignedApp app;
    const auto seal = PropertyList::dictionaryAt(app.seal);
    const auto& rules = *seal.find("rules2")->as<PropertyList::Dictionary>();
    EXPECT_EQ(rules.size(), 13U);
    EXPECT_EQ(rules.at("^Resources/"), (PropertyList::Dictionary{{"weight", 20.0}}));
    EXPECT_EQ(rules.at("^.*"), PropertyList(true));
    EXPECT_EQ(rules.at("^(.*/)?\\.DS_Store$"), (PropertyList::Dictionary{{"omit", true}, {"weight", 2000.0}}));
    EXPECT_EQ(rules.at("^[^/]+$"), (PropertyList::Dictionary{{"nested", true}, {"weight", 10.0}}));
    EXPECT_EQ(seal.find("rules")->as<PropertyList::Dictionary>()->size(), 5U);
}

TEST(CodesignSigning, WantsCodeInsideToBeSignedUnlessItGoesDeep) {
    const TemporaryFolder folder;
    const fs::path app = folder / "Editor.app";
    const fs::path helper = app / "Contents/Helpers/Helper.app";
    makeUnsignedBundle(app);
    makeUnsignedBundle(helper);
    const auto refused = runStandIn("codesign", {"--sign", "-", app});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.stderr,
              app.native() + ": code object is not signed at all\nIn subcomponent: " + helper.native() + "\n");
    EXPECT_FALSE(fs::exists(app / "Contents/_CodeSignature"));
    EXPECT_EQ(runStandIn("codesign", {"--deep", "--sign", "-", app}).status, 0);
    EXPECT_EQ(runStandIn("codesign", {"--verify", "--deep", app}).status, 0);
    EXPECT_EQ(runStandIn("codesign", {"--verify", helper}).status, 0);
}

TEST(CodesignSigning, RefusesAFileWithoutASignatureWhereCodeBelongs) {
    for (const char* name : {"Contents/MacOS/helper", "Contents/Frameworks/libtext.dylib", "Contents/stray"}) {
        const TemporaryFolder folder;
        const fs::path app = folder / "Editor.app";
        makeUnsignedBundle(app);
        makeFile(app / name);
        const auto refused = runStandIn("codesign", {"--force", "--deep", "--sign", "-", app});
        EXPECT_EQ(refused.status, 1);
        EXPECT_EQ(refused.stderr, app.native() + ": code object is not signed at all\nIn subcomponent: " +
                                      (app / name).native() + "\n");
    }
}

TEST(CodesignSigning, ReplacesASignatureOnlyWhenForced) {
    const SignedApp app;
    makeFile(app / "Contents/Resources/abc.txt", "changed");
    const auto refused = runStandIn("codesign", {"--sign", "-", app.path});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.stderr, app.path.native() + ": is already signed\n");
    EXPECT_NE(app.flaw(), "valid");
    const auto signedAgain = app.sign();
    EXPECT_EQ(signedAgain.status, 0);
    EXPECT_EQ(signedAgain.stderr, app.path.native() + ": replacing existing signature\n");
    EXPECT_EQ(app.flaw(), "valid");
}

TEST(CodesignSigning, SignsTheSameBundleInTheSameWay) {
    const SignedApp app;
    const std::string picture = pictureOf(app.path);
    app.sign();
    EXPECT_EQ(pictureOf(app.path), picture);
}

TEST(CodesignSigning, HasNobodysIdentity) {
    const SignedApp app;
    const auto refused = runStandIn("codesign", {"-fs", "Example Works", app.path});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.stderr, "Example Works: no identity found\n");
}

TEST(CodesignSigning, RefusesLinksThatLeadOutOfTheBundle) {
    for (const char* text :
         {"../../../outside", "/etc/passwd", "../Resources/../../../outside", "/System", "/Libraryx/a"}) {
        const SignedApp app;
        makeLink(app / "Contents/Resources/out", text);
        const auto refused = app.sign();
        EXPECT_EQ(refused.status, 1) << text;
        EXPECT_EQ(refused.stderr, app.path.native() + ": invalid destination for symbolic link in bundle\n");
    }
}

TEST(CodesignSigning, AllowsLinksIntoTheBundleAndTheSystem) {
    const SignedApp app;
    makeLink(app / "Contents/Resources/up", "../../Contents/PkgInfo");
    makeLink(app / "Contents/Resources/nowhere", "nowhere");
    makeLink(app / "Contents/Resources/loop", "loop");
    makeLink(app / "Contents/Resources/system", "/System/Library/none");
    EXPECT_EQ(app.sign().status, 0);
    EXPECT_EQ(app.flaw(), "valid");
}

TEST(CodesignSigning, NeverWritesThroughALink) {
    const SignedApp app;
    const SignedApp other;
    fs::remove_all(app.signature);
    makeLink(app.signature, other.signature);
    const std::string picture = pictureOf(other.path);
    EXPECT_EQ(app.sign().status, 1);
    EXPECT_EQ(pictureOf(other.path), picture);
}

TEST(CodesignSigning, RefusesANameThatNoSealCanHold) {
    const SignedApp app;
    makeFile(app / "Contents/Resources/\x01name");
    const auto refused = app.sign();
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(app.flaw(), "valid");
}

TEST(CodesignSigning, LeavesAProgramThatAMacHasSignedAsItIs) {
    const TemporaryFolder folder;
    const fs::path app = folder / "Editor.app";
    makeUnsignedBundle(app);
    makeFile(app / "Contents/MacOS/Editor", "\xCF\xFA\xED\xFE and so on");
    makeFile(app / "Contents/_CodeSignature/CodeResources", "a Mac's");
    const std::string picture = pictureOf(app);
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"--force", "--sign", "-", app}, {"--verify", app}, {"-dv", app}}) {
        const auto refused = runStandIn("codesign", arguments);
        EXPECT_EQ(refused.status, 1);
        EXPECT_EQ(refused.stderr, app.native() + ": invalid or unsupported format for signature\n");
    }
    EXPECT_EQ(pictureOf(app), picture);
}

TEST(CodesignSigning, TellsWrongUsageByStatusTwo) {
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{},
                                                      {"--verify"},
                                                      {"-d"},
                                                      {"/a"},
                                                      {"--sign", "-"},
                                                      {"--sign"},
                                                      {"--verify", "-d", "/a"},
                                                      {"--remove-everything", "/a"},
                                                      {"-x", "/a"},
                                                      {"--verify", ""}}) {
        const auto refused = runStandIn("codesign", arguments);
        EXPECT_EQ(refused.status, 2) << testing::PrintToString(arguments);
        EXPECT_THAT(refused.stderr, testing::StartsWith("Usage: codesign "));
    }
}

}  // namespace
}  // namespace tarvik::test
