#include "CommandLine/Grammar/CompletionPlace.h"
#include "CommandLine/Grammar/Options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik::CommandLine {

namespace {

using InstallWords = std::vector<std::string>;

Options installOptions(const InstallWords& words) {
    return std::get<Options>(parse(words));
}

std::string refusalOfInstall(const InstallWords& words) {
    try {
        parse(words);
    } catch (const WrongUse& use) {
        return use.description();
    }
    return "understood";
}

}  // namespace

TEST(InstallOptions, TakeOneSource) {
    EXPECT_EQ(installOptions({"install", "inspect", "/a b.dmg"}),
              (Options{.verb = Verb::installInspect, .path = "/a b.dmg"}));
    EXPECT_EQ(installOptions({"install", "options"}), Options{.verb = Verb::installOptions});
    EXPECT_EQ(installOptions({"install", "plan", "--drive", "D", "/a.dmg", "--option=mine"}),
              (Options{.verb = Verb::installPlan, .path = "/a.dmg", .drive = "D", .option = "mine"}));
    EXPECT_EQ(installOptions({"install", "plan", "/a.dmg", "--drive", "D"}).option, "");
    for (const char* name : {"inspect", "options", "install", "[a]"}) {
        EXPECT_EQ(installOptions({"install", "inspect", name}).path, name);
        EXPECT_EQ(installOptions({"install", "plan", "--drive", "D", name}).path, name);
    }
    EXPECT_EQ(installOptions({"install", "inspect", "--", "--yes"}).path, "--yes");
    EXPECT_EQ(installOptions({"install", "plan", "--drive", "D", "--", "-a"}).path, "-a");
}

TEST(InstallOptions, SayWhatIsWrong) {
    EXPECT_EQ(refusalOfInstall({"install"}),
              "What shall be done? Name one of: install inspect, install options, install plan.");
    EXPECT_EQ(refusalOfInstall({"install", "/a.dmg"}),
              "There is no \"install /a.dmg\". There is: install inspect, install options, install plan.");
    for (const InstallWords& words : {InstallWords{"install", "inspect"}, InstallWords{"install", "inspect", ""},
                                      InstallWords{"install", "plan", "--drive", "D"}})
        EXPECT_EQ(refusalOfInstall(words), "Name the installer: a SOURCE is missing.");
    EXPECT_EQ(refusalOfInstall({"install", "plan", "/a.dmg"}),
              "Name the drive that applications shall go to, with --drive DRIVE.");
    EXPECT_EQ(refusalOfInstall({"install", "inspect", "/a", "/b"}),
              "\"/b\" is one word too many: one SOURCE at a time, and in quotes when it holds a space.");
    EXPECT_EQ(refusalOfInstall({"install", "options", "/a"}), "\"/a\" is one word too many.");
    EXPECT_EQ(refusalOfInstall({"install", "inspect", "/a", "--option", "x"}),
              "--option belongs to install plan alone.");
    EXPECT_EQ(refusalOfInstall({"install", "inspect", "/a", "--drive", "x"}),
              "--drive belongs to move app, move folder, backup and install plan.");
    EXPECT_EQ(refusalOfInstall({"install", "plan", "/a", "--drive", "D", "--option"}),
              "--option needs a value: --option ID.");
    EXPECT_EQ(refusalOfInstall({"install", "plan", "/a", "--drive", "D", "--option="}),
              "--option needs a value: --option ID.");
    EXPECT_EQ(refusalOfInstall({"install", "plan", "/a", "--drive", "D", "--option", "x", "--option", "y"}),
              "--option can be given only once.");
}

TEST(InstallOptions, AreOfferedToWhoeverTypes) {
    using Kind = CompletionPlace::Kind;
    const auto placeOf = [](const InstallWords& words) { return placeIn(describe(), words); };
    InstallWords verbs;
    for (const auto& candidate : placeOf({"install", ""}).candidates) verbs.push_back(candidate.word);
    EXPECT_THAT(verbs, testing::ElementsAre("inspect", "options", "plan"));
    EXPECT_EQ(placeOf({"install", "inspect", ""}).kind, Kind::path);
    EXPECT_EQ(placeOf({"install", "plan", "/a.dmg", "--drive", ""}).kind, Kind::drive);
    EXPECT_EQ(placeOf({"install", "plan", "/a.dmg", "--option", ""}).kind, Kind::installerOption);
    EXPECT_EQ(placeOf({"install", "plan", "/a.dmg", "--option=s"}).kind, Kind::installerOption);
    EXPECT_EQ(placeOf({"uninstall", "undo", ""}).kind, Kind::uninstall);
}

}  // namespace tarvik::CommandLine
