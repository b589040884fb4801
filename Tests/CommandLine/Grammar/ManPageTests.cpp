#include "CommandLine/Grammar/ManPage.h"
#include "CommandLine/Grammar/Options.h"
#include "CommandLine/RunningProgram.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <set>

namespace tarvik::CommandLine {

namespace {

using testing::HasSubstr;

/// The page as a reader sees it, without the marks for bold and italics; what the formatter has to say is its errors.
test::Finished formatted(const std::string& page) {
    const test::TemporaryFolder folder;
    test::makeFile(folder / "tarvik.1", page);
    return test::runProgram(
        "/usr/bin/env", {"LC_ALL=C.UTF-8", "mandoc", "-Tutf8", "-Owidth=400", "-Wall", (folder / "tarvik.1").native()});
}

std::string withoutOverstrikes(const std::string& text) {
    return std::regex_replace(text, std::regex(".\b"), "");
}

std::string pageOfCommand() {
    return std::get<Information>(parse({"--man"})).text;
}

/// Every option and every verb that help shows, of the whole command and of each verb.
void gather(const CommandDescription& command, std::vector<std::string> words, std::set<std::string>& found) {
    words.emplace_back("--help");
    const auto help = std::get<Information>(parse(words)).text;
    words.pop_back();
    const std::regex option(R"((^|[ ,\[])(--?[a-z][a-z-]*))");
    for (std::sregex_iterator at(help.begin(), help.end(), option), end; at != end; ++at) found.insert((*at)[2]);
    for (const auto& verb : command.verbs) {
        EXPECT_THAT(help, HasSubstr(verb.name));
        auto longer = words;
        longer.push_back(verb.name);
        if (verb.verbs.empty()) found.insert("\n   " + verb.words + "\n");
        gather(verb, longer, found);
    }
}

/// How often each text of help stands in it: that of an argument or an option may be there for several verbs.
void countTexts(const CommandDescription& command, std::map<std::string, int>& counts) {
    for (const auto& argument : command.arguments) ++counts[argument.text];
    for (const auto& option : command.options) ++counts[option.text];
    for (const auto& verb : command.verbs) {
        if (verb.verbs.empty()) ++counts[verb.text];
        countTexts(verb, counts);
    }
}

int timesIn(const std::string& text, const std::string& part) {
    int times = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++times;
    return times;
}

}  // namespace

TEST(ManPage, HasEachTextOfHelpAsOftenAsHelpHasIt) {
    const auto page = formatted(pageOfCommand());
    if (page.status == 127) TARVIK_SKIP_BECAUSE("mandoc is not installed");
    std::map<std::string, int> counts;
    countTexts(describe(), counts);
    EXPECT_GT(counts.size(), 20U);
    const auto text = withoutOverstrikes(page.output);
    for (const auto& [part, count] : counts) EXPECT_GE(timesIn(text, part), count) << part;
}

TEST(ManPage, HasEachVerbAndEachOptionOfHelp) {
    const auto page = formatted(pageOfCommand());
    if (page.status == 127) TARVIK_SKIP_BECAUSE("mandoc is not installed");
    const auto text = withoutOverstrikes(page.output);
    std::set<std::string> expected;
    gather(describe(), {}, expected);
    EXPECT_GT(expected.size(), 15U);
    for (const auto& each : expected) EXPECT_THAT(text, HasSubstr(each));
}

TEST(ManPage, LeavesTheFormatterNothingToSay) {
    const auto page = formatted(pageOfCommand());
    if (page.status == 127) TARVIK_SKIP_BECAUSE("mandoc is not installed");
    EXPECT_EQ(page.errors, "");
    EXPECT_EQ(page.status, 0);
}

TEST(ManPage, HasTheSectionsThatReadersLookFor) {
    for (const auto* section : {"NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "VERBS", "EXIT STATUS", "ENVIRONMENT",
                                "FILES", "EXAMPLES", "SEE ALSO"})
        EXPECT_THAT(pageOfCommand(), HasSubstr(std::string(".SH ") + section + "\n"));
}

TEST(ManPage, ShowsTextToTheLetter) {
    CommandDescription command{.name = "tarvik", .usages = {"tarvik x"}};
    command.verbs.push_back({.name = "x", .words = "x", .usages = {"tarvik x"}, .text = ".SH it's a \\n \"-\" ~"});
    const auto page = formatted(ManPage::of(command));
    if (page.status == 127) TARVIK_SKIP_BECAUSE("mandoc is not installed");
    EXPECT_THAT(withoutOverstrikes(page.output), HasSubstr(".SH it's a \\n \"-\" ~."));
}

}  // namespace tarvik::CommandLine
