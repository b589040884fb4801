#include "CommandLine/Grammar/CompletionPlace.h"
#include "CommandLine/Grammar/Options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik::CommandLine {

namespace {

using Words = std::vector<std::string>;

Options uninstallOptions(const Words& words) {
    return std::get<Options>(parse(words));
}

std::string refusalOf(const Words& words) {
    try {
        parse(words);
    } catch (const WrongUse& use) {
        return use.description();
    }
    return "understood";
}

CompletionPlace uninstallPlace(const Words& words) {
    return placeIn(describe(), words);
}

Words offeredFor(const Words& words) {
    Words found;
    for (const auto& candidate : uninstallPlace(words).candidates) found.push_back(candidate.word);
    return found;
}

}  // namespace

TEST(UninstallOptions, TakeOneApplicationAndWhatGoesWithIt) {
    const auto options = uninstallOptions(
        {"uninstall", "Full House", "--with", "receipts", "--with=/a[b]", "--with", "[/c]", "--only-app", "--yes"});
    EXPECT_EQ(options.verb, Verb::uninstall);
    EXPECT_EQ(options.names, Words{"Full House"});
    EXPECT_EQ(options.with, (Words{"receipts", "/a[b]", "[/c]"}));
    EXPECT_TRUE(options.onlyApp);
    EXPECT_FALSE(options.isDryRun);
    EXPECT_TRUE(uninstallOptions({"uninstall", "--dry-run", "A"}).isDryRun);
    EXPECT_TRUE(uninstallOptions({"uninstall", "A", "--quit-running"}).quitsRunning);
}

TEST(UninstallOptions, KnowTheVerbsBelowTheirOwn) {
    EXPECT_EQ(uninstallOptions({"uninstall", "apps"}).verb, Verb::uninstallApps);
    EXPECT_EQ(uninstallOptions({"uninstall", "apps", "A"}).names, Words{"A"});
    EXPECT_EQ(uninstallOptions({"uninstall", "list"}).verb, Verb::uninstallList);
    EXPECT_EQ(uninstallOptions({"uninstall", "list", "20261115_174543"}).names, Words{"20261115_174543"});
    EXPECT_EQ(uninstallOptions({"uninstall", "undo", "20261115_174543"}).verb, Verb::uninstallUndo);
}

TEST(UninstallOptions, TakeAnApplicationThatBearsTheNameOfAVerb) {
    const auto options = uninstallOptions({"uninstall", "--", "list"});
    EXPECT_EQ(options.verb, Verb::uninstall);
    EXPECT_EQ(options.names, Words{"list"});
    EXPECT_EQ(uninstallOptions({"uninstall", "drives"}).names, Words{"drives"});
}

TEST(UninstallOptions, SayWhatIsWrong) {
    EXPECT_EQ(refusalOf({"uninstall"}), "Name the application that shall go: a NAME is missing.");
    EXPECT_EQ(refusalOf({"uninstall", "undo"}), "Name the uninstall that shall be taken back: an ID is missing.");
    EXPECT_EQ(refusalOf({"uninstall", ""}), "A NAME is empty.");
    EXPECT_EQ(refusalOf({"uninstall", "undo", ""}), "An ID is empty.");
    EXPECT_EQ(refusalOf({"uninstall", "list", ""}), "An ID is empty.");
    EXPECT_EQ(refusalOf({"uninstall", "A", "--with"}), "--with needs a value: --with WHAT.");
    EXPECT_EQ(refusalOf({"uninstall", "A", "--with", "--yes"}), "--with needs a value: --with WHAT.");
    EXPECT_EQ(refusalOf({"uninstall", "A", "--with", ""}), "--with needs a value: --with WHAT.");
    EXPECT_EQ(refusalOf({"uninstall", "A", "--only-app=1"}), "--only-app takes no value.");
    EXPECT_EQ(refusalOf({"uninstall", "A", "B"}),
              "\"B\" is one word too many: one NAME at a time, and in quotes when it holds a space.");
    EXPECT_EQ(refusalOf({"uninstall", "undo", "A", "B"}),
              "\"B\" is one word too many: one ID at a time, and in quotes when it holds a space.");
    EXPECT_EQ(refusalOf({"uninstall", "--dry-run", "undo", "A"}), "--dry-run does not belong to uninstall undo.");
    EXPECT_EQ(refusalOf({"uninstall", "A", "list"}), "\"A\" stands before the verb uninstall list.");
    EXPECT_EQ(refusalOf({"uninstall", "list", "--with", "x"}), "--with does not belong to uninstall list.");
    EXPECT_EQ(refusalOf({"links", "--only-app"}), "--only-app belongs to uninstall alone.");
    EXPECT_EQ(refusalOf({"links", "--with", "x"}), "--with belongs to uninstall alone.");
}

TEST(UninstallOptions, AreOfferedToWhoeverTypes) {
    EXPECT_THAT(offeredFor({"uninstall", ""}), testing::ElementsAre("apps", "list", "undo"));
    EXPECT_EQ(uninstallPlace({"uninstall", ""}).kind, CompletionPlace::Kind::application);
    EXPECT_THAT(offeredFor({"uninstall", "A", ""}), testing::Contains("--with"));
    EXPECT_THAT(offeredFor({"uninstall", "A", "--with", ""}),
                testing::ElementsAre("receipts", "launch-daemons", "external-target"));
    EXPECT_EQ(uninstallPlace({"uninstall", "A", "--with", ""}).kind, CompletionPlace::Kind::path);
    EXPECT_EQ(uninstallPlace({"uninstall", "undo", ""}).kind, CompletionPlace::Kind::uninstall);
    EXPECT_EQ(uninstallPlace({"uninstall", "apps", ""}).kind, CompletionPlace::Kind::application);
}

}  // namespace tarvik::CommandLine
