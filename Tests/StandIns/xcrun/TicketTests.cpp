#include "Signatures/CodeDirectory.h"
#include "StandIns/StandInRun.h"
#include "StandIns/codesign/SignedApp.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarvik::test {
namespace {

CommandResult validate(const fs::path& path) {
    return runStandIn("xcrun", {"stapler", "validate", path});
}

std::string codeHashOf(const SignedApp& app) {
    return signatures::CodeDirectory::parsed(contentOf(app.signature / "CodeDirectory"))->hash();
}

TEST(XcrunTicket, TellsWhereThereIsNone) {
    const SignedApp app;
    const auto result = validate(app.path);
    EXPECT_EQ(result.status, 65);
    EXPECT_EQ(result.stdout,
              "Processing: " + app.path.native() + "\nEditor.app does not have a ticket stapled to it.\n");
}

TEST(XcrunTicket, OneThatNamesTheCodeFits) {
    const SignedApp app;
    makeFile(app / "Contents/CodeResources", "s8ch\1\0 more " + codeHashOf(app) + " and more");
    const auto result = validate(app.path);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.stdout, "Processing: " + app.path.native() + "\nThe validate action worked!\n");
}

TEST(XcrunTicket, OneOfOtherCodeOrOfNoFormDoesNotFit) {
    const SignedApp app;
    const std::string fitting = "s8ch" + codeHashOf(app);
    makeFile(app / "Contents/Info.plist", contentOf(app / "Contents/Info.plist") + "\n");
    app.sign();
    for (const std::string& ticket : {fitting, "text" + codeHashOf(app), std::string()}) {
        makeFile(app / "Contents/CodeResources", ticket);
        const auto result = validate(app.path);
        EXPECT_EQ(result.status, 65);
        EXPECT_THAT(result.stdout, testing::HasSubstr("\nCould not validate ticket for Editor.app\n"));
    }
    makeFile(app / "Contents/CodeResources", "s8ch" + codeHashOf(app));
    EXPECT_EQ(validate(app.path).status, 0);
    fs::remove_all(app.signature);
    EXPECT_EQ(validate(app.path).status, 65);
}

TEST(XcrunTicket, WhatIsNoFileIsNoTicket) {
    const SignedApp app;
    const fs::path ticket = app / "Contents/CodeResources";
    makePipe(ticket);
    EXPECT_THAT(validate(app.path).stdout, testing::HasSubstr("Could not validate"));
    fs::remove(ticket);
    makeFolder(ticket);
    EXPECT_THAT(validate(app.path).stdout, testing::HasSubstr("Could not validate"));
    fs::remove(ticket);
    makeLink(ticket, "_CodeSignature/CodeResources");
    EXPECT_THAT(validate(app.path).stdout, testing::HasSubstr("does not have a ticket"));
}

TEST(XcrunTicket, FailsWithTheStatusOfItsManual) {
    EXPECT_EQ(validate("/nowhere/Editor.app").status, 66);
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"stapler"}, {"stapler", "staple", "/a"}, {"stapler", "validate"}})
        EXPECT_EQ(runStandIn("xcrun", arguments).status, 64);
    EXPECT_EQ(runStandIn("xcrun", {"notarytool"}).status, 72);
    EXPECT_EQ(runStandIn("xcrun", {}).status, 72);
}

}  // namespace
}  // namespace tarvik::test
