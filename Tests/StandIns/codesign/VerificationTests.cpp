#include "StandIns/StandInRun.h"
#include "StandIns/codesign/SignedApp.h"
#include "Support/OrdinaryUser.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarvik::test {
namespace {

const std::string resourceChanged = "a sealed resource is missing or invalid\n";

TEST(CodesignVerification, SaysNothingOfAValidBundleUnlessAsked) {
    const SignedApp app;
    EXPECT_EQ(app.flaw(), "valid");
    const auto told = runStandIn("codesign", {"-vv", app.path});
    EXPECT_EQ(told.status, 0);
    EXPECT_EQ(told.stdout, "");
    EXPECT_EQ(told.stderr,
              app.path.native() + ": valid on disk\n" + app.path.native() + ": satisfies its Designated Requirement\n");
}

TEST(CodesignVerification, FindsOneChangedByteAnywhere) {
    const SignedApp app;
    for (const char* name :
         {"Contents/Info.plist", "Contents/MacOS/Editor", "Contents/version.plist", "Contents/Resources/abc.txt",
          "Contents/Resources/.hidden", "Contents/Resources/de.lproj/words.strings",
          "Contents/Resources/Base.lproj/Main.nib", "Contents/Resources/Deep.bundle/inside.txt",
          "Contents/Frameworks/Text.framework/Versions/A/Text",
          "Contents/Frameworks/Text.framework/Versions/A/Resources/Info.plist",
          "Contents/Frameworks/Text.framework/Versions/A/_CodeSignature/CodeResources",
          "Contents/PlugIns/Export.bundle/Contents/Resources/in plug-in.txt",
          "Contents/PlugIns/Export.bundle/Contents/MacOS/Export", "Contents/_CodeSignature/CodeResources",
          "Contents/_CodeSignature/CodeRequirements"}) {
        const std::size_t size = fs::file_size(app / name);
        for (const std::size_t at : {std::size_t{0}, size / 2, size - 1}) {
            flipByte(app / name, at);
            EXPECT_NE(app.flaw(), "valid") << name << " at " << at;
            flipByte(app / name, at);
        }
    }
    EXPECT_EQ(app.flaw(), "valid");
}

TEST(CodesignVerification, FindsEachChangedByteOfTheRecord) {
    const SignedApp app;
    const fs::path record = app.signature / "CodeDirectory";
    for (std::size_t at = 0; at < fs::file_size(record); ++at) {
        flipByte(record, at);
        EXPECT_NE(app.flaw(), "valid") << at;
        flipByte(record, at);
    }
    EXPECT_EQ(app.flaw(), "valid");
}

TEST(CodesignVerification, NamesEachResourceThatHasChanged) {
    const SignedApp app;
    makeFile(app / "Contents/Resources/abc.txt", "abd");
    makeFile(app / "Contents/Resources/new/file.txt");
    fs::remove(app / "Contents/Resources/empty");
    fs::remove(app / "Contents/version.plist");
    EXPECT_EQ(app.flaw(), resourceChanged +
                              "file modified: Contents/Resources/abc.txt\n"
                              "file added: Contents/Resources/new/file.txt\n"
                              "file missing: Contents/Resources/empty\n"
                              "file missing: Contents/version.plist\n");
}

TEST(CodesignVerification, AllowsWhatNoSealCovers) {
    const SignedApp app;
    makeFile(app / "Contents/Resources/.DS_Store", "changed");
    makeFile(app / "Contents/.DS_Store");
    makeFile(app / "Contents/PkgInfo", "changed!");
    makeFile(app / "Contents/Resources/fr.lproj/locversion.plist");
    makeFile(app / "Contents/CodeResources", "a ticket");
    makeFile(app / "Contents/_MASReceipt/receipt");
    makeFolder(app / "Contents/Resources/empty folder");
    fs::remove_all(app / "Contents/Resources/de.lproj");
    EXPECT_EQ(app.flaw(), "valid");
}

TEST(CodesignVerification, FindsALanguageThatHasChanged) {
    const SignedApp app;
    makeFile(app / "Contents/Resources/de.lproj/words.strings", "Worte");
    EXPECT_EQ(app.flaw(), resourceChanged + "file modified: Contents/Resources/de.lproj/words.strings\n");
    fs::remove_all(app / "Contents/Resources/Base.lproj");
    EXPECT_THAT(app.flaw(), testing::HasSubstr("file missing: Contents/Resources/Base.lproj/Main.nib\n"));
}

TEST(CodesignVerification, FindsALinkThatIsNotAsItWas) {
    const SignedApp app;
    const std::string modified = resourceChanged + "file modified: Contents/Resources/link\n";
    fs::remove(app / "Contents/Resources/link");
    makeLink(app / "Contents/Resources/link", "empty");
    EXPECT_EQ(app.flaw(), modified);
    fs::remove(app / "Contents/Resources/link");
    makeFile(app / "Contents/Resources/link", "abc");
    EXPECT_EQ(app.flaw(), modified);
}

TEST(CodesignVerification, FindsAFileThatHasBecomeALinkToItsOwnContent) {
    const SignedApp app;
    fs::rename(app / "Contents/Resources/abc.txt", app / "Contents/Resources/de.lproj/locversion.plist");
    makeLink(app / "Contents/Resources/abc.txt", "de.lproj/locversion.plist");
    EXPECT_EQ(app.flaw(), resourceChanged + "file modified: Contents/Resources/abc.txt\n");
}

TEST(CodesignVerification, TellsProgramAndListApartFromResources) {
    const SignedApp app;
    flipByte(app / "Contents/Info.plist", 60);
    flipByte(app / "Contents/Info.plist", 60);
    makeFile(app / "Contents/Info.plist", contentOf(app / "Contents/Info.plist") + "\n");
    EXPECT_EQ(app.flaw(), "invalid Info.plist (plist or signature have been modified)\n");
    app.sign();
    makeFile(app / "Contents/MacOS/Editor", "#!/bin/sh\n\n");
    EXPECT_EQ(app.flaw(), "invalid signature (code or signature have been modified)\n");
    app.sign();
    makeFile(app.seal, contentOf(app.seal) + "\n");
    EXPECT_EQ(app.flaw(), "invalid resource directory (directory or signature have been modified)\n");
    fs::remove(app.seal);
    EXPECT_EQ(app.flaw(), "code has no resources but signature indicates they must be present\n");
    fs::remove_all(app.signature);
    EXPECT_EQ(app.flaw(), "code object is not signed at all\n");
}

TEST(CodesignVerification, LooksIntoNestedCodeWhenItGoesDeep) {
    const SignedApp app;
    makeFile(app.plugIn / "Contents/Resources/in plug-in.txt", "changed");
    EXPECT_EQ(app.flaw(), resourceChanged +
                              "In subcomponent: Contents/PlugIns/Export.bundle\n"
                              "file modified: Contents/PlugIns/Export.bundle/Contents/Resources/in plug-in.txt\n");
    EXPECT_EQ(runStandIn("codesign", {"--verify", "--strict", app.path}).status, 0);
}

TEST(CodesignVerification, FindsNestedCodeThatWasSignedAnewOrHasLostItsSignature) {
    const SignedApp app;
    makeFile(app.plugIn / "Contents/Resources/in plug-in.txt", "another version");
    EXPECT_EQ(runStandIn("codesign", {"--force", "--sign", "-", app.plugIn}).status, 0);
    const std::string changed = "nested code is modified or invalid\nfile modified: Contents/PlugIns/Export.bundle\n";
    EXPECT_EQ(app.flaw(), changed);
    EXPECT_EQ(runStandIn("codesign", {"--verify", app.path}).status, 1);
    fs::remove_all(app.plugIn / "Contents/_CodeSignature");
    EXPECT_EQ(app.flaw(), "code object is not signed at all\nIn subcomponent: Contents/PlugIns/Export.bundle\n");
    fs::remove_all(app.plugIn);
    EXPECT_EQ(app.flaw(), resourceChanged + "file missing: Contents/PlugIns/Export.bundle\n");
}

TEST(CodesignVerification, FindsNewCode) {
    const SignedApp app;
    makeUnsignedBundle(app / "Contents/PlugIns/New.bundle");
    makeFile(app / "Contents/MacOS/helper");
    EXPECT_EQ(app.flaw(),
              resourceChanged + "file added: Contents/MacOS/helper\nfile added: Contents/PlugIns/New.bundle\n");
}

TEST(CodesignVerification, AllowsNothingBesideTheSealedFolder) {
    const SignedApp app;
    makeFile(app / "Icon\r");
    EXPECT_EQ(app.flaw(), "unsealed contents present in the bundle root\n");
    EXPECT_EQ(app.sign().status, 1);
    fs::remove(app / "Icon\r");
    makeFile(app.framework / "stray");
    EXPECT_EQ(app.flaw(),
              "unsealed contents present in the bundle root\nIn subcomponent: "
              "Contents/Frameworks/Text.framework\n");
}

TEST(CodesignVerification, WhatCannotBeReadIsNoPass) {
    // A leak sanitizer, which cannot trace a program of such a user, complains behind it.
    const SignedApp app;
    fs::permissions(app / "Contents/Resources/abc.txt", fs::perms::none);
    {
        const OrdinaryUser user(app.folder.path());
        EXPECT_THAT(app.flaw(),
                    testing::StartsWith("Permission denied\nIn subcomponent: Contents/Resources/abc.txt\n"));
    }
    fs::permissions(app / "Contents/Resources/abc.txt", fs::perms(0644));
    fs::permissions(app / "Contents/Resources/de.lproj", fs::perms::none);
    {
        const OrdinaryUser user(app.folder.path());
        EXPECT_THAT(app.flaw(),
                    testing::StartsWith("Permission denied\nIn subcomponent: Contents/Resources/de.lproj\n"));
    }
    fs::permissions(app / "Contents/Resources/de.lproj", fs::perms::owner_all);
}

TEST(CodesignVerification, TellsWhatIsNoSignedBundle) {
    const TemporaryFolder folder;
    makeFile(folder / "file");
    makeFile(folder / "folder/file");
    makeUnsignedBundle(folder / "No program.app");
    fs::remove_all(folder / "No program.app/Contents/MacOS");
    for (const auto& [name, sentence] :
         {std::pair("missing", "No such file or directory"), std::pair("file", "code object is not signed at all"),
          std::pair("folder", "bundle format unrecognized, invalid, or unsuitable"),
          std::pair("No program.app", "bundle format unrecognized, invalid, or unsuitable")})
        for (const char* operation : {"--verify", "-dv", "-fs-"}) {
            const auto result = runStandIn("codesign", {operation, folder / name});
            EXPECT_EQ(result.status, 1) << name;
            EXPECT_EQ(result.stderr, (folder / name).native() + ": " + sentence + "\n");
        }
}

TEST(CodesignVerification, FollowsALinkToTheBundleAndTakesAnySpelling) {
    const SignedApp app;
    makeLink(app.folder / "link.app", app.path);
    for (const std::string& spelling : {(app.folder / "link.app").native(), app.path.native() + "/",
                                        (app.folder / "./Editor.app/Contents/..").native()})
        EXPECT_EQ(runStandIn("codesign", {"--verify", "--deep", "--strict", spelling}).status, 0) << spelling;
}

TEST(CodesignVerification, TellsOfEachPathAndFailsWithOne) {
    const SignedApp app;
    const auto result = runStandIn("codesign", {"-v", "-v", "/nowhere", app.path});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.stderr, "/nowhere: No such file or directory\n" + app.path.native() + ": valid on disk\n" +
                                 app.path.native() + ": satisfies its Designated Requirement\n");
}

TEST(CodesignVerification, HoldsWhereverTheBundleIsMoved) {
    const SignedApp app;
    fs::rename(app.path, app.folder / "Other name.app");
    EXPECT_EQ(runStandIn("codesign", {"--verify", "--deep", "--strict", app.folder / "Other name.app"}).status, 0);
}

}  // namespace
}  // namespace tarvik::test
