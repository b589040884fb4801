#include "CommandLine/Options.h"

#include <gtest/gtest.h>

namespace tarvik::CommandLine {

namespace {

using Arguments = std::vector<std::string>;

Options optionsOf(const Arguments& arguments) {
    return std::get<Options>(parse(arguments));
}

std::string sentenceOf(const Arguments& arguments) {
    try {
        parse(arguments);
    } catch (const WrongUse& use) {
        return use.description();
    }
    return "understood";
}

}  // namespace

TEST(Options, TakesGlobalOptionsBeforeAndAfterTheVerb) {
    const Arguments before = {"--root", "/r",   "--home", "/h", "--format", "tsv",
                              "--yes",  "move", "folder", "/f", "--drive",  "D"};
    const Arguments after = {"move", "folder", "/f", "--drive", "D", "--yes", "--format=tsv", "--home=/h", "--root=/r"};
    const Arguments between = {"move",    "--root", "/r",    "folder", "--home",   "/h",
                               "--drive", "D",      "--yes", "/f",     "--format", "tsv"};
    const Options expected{.verb = Options::Verb::moveFolder,
                           .path = "/f",
                           .drive = "D",
                           .root = "/r",
                           .home = "/h",
                           .format = Format::tsv,
                           .yes = true};
    EXPECT_EQ(optionsOf(before), expected);
    EXPECT_EQ(optionsOf(after), expected);
    EXPECT_EQ(optionsOf(between), expected);
}

TEST(Options, KnowsTheVerbs) {
    EXPECT_EQ(optionsOf({"drives"}).verb, Options::Verb::drives);
    EXPECT_EQ(optionsOf({"move", "folder", "/f", "--drive", "D"}).verb, Options::Verb::moveFolder);
    EXPECT_EQ(optionsOf({"move", "restore", "/f"}).verb, Options::Verb::moveRestore);
}

TEST(Options, TakesAPathThatBearsTheNameOfAVerb) {
    for (const auto* name : {"drives", "move", "folder", "restore"}) {
        EXPECT_EQ(optionsOf({"move", "folder", name, "--drive", "D"}).path, name);
        EXPECT_EQ(optionsOf({"move", "restore", name}).path, name);
    }
}

TEST(Options, TakesEveryNameByteForByte) {
    for (const auto* name : {"a b", " ", "-", "[x]", "{}", "[]", "a,b", "%%", "\"quoted\"", "'", "a=b", "\\n", "é",
                             "\xFF\xFE", "a\nb", "~"}) {
        EXPECT_EQ(optionsOf({"move", "restore", name}).path, name);
        EXPECT_EQ(optionsOf({"move", "folder", "/f", "--drive", name}).drive, name);
        EXPECT_EQ(optionsOf({"--root", name, "drives"}).root, name);
    }
    EXPECT_EQ(optionsOf({"move", "restore", "--", "--yes"}).path, "--yes");
}

TEST(Options, SaysWhatIsWrong) {
    EXPECT_EQ(sentenceOf({}), "What shall be done? Name one of: drives, move folder, move restore.");
    EXPECT_EQ(sentenceOf({"frobnicate"}), "There is no \"frobnicate\". There is: drives, move folder, move restore.");
    EXPECT_EQ(sentenceOf({"move"}), "What shall be done? Name one of: move folder, move restore.");
    EXPECT_EQ(sentenceOf({"move", "app"}), "There is no \"move app\". There is: move folder, move restore.");
    EXPECT_EQ(sentenceOf({"move", "folder", "--drive", "D"}), "move folder needs a PATH.");
    EXPECT_EQ(sentenceOf({"move", "restore"}), "move restore needs a PATH.");
    EXPECT_EQ(sentenceOf({"move", "folder", "/f"}), "move folder needs --drive DRIVE.");
    EXPECT_EQ(sentenceOf({"--format", "yaml", "drives"}), "\"yaml\" is no format. There is: human, tsv, toml.");
    EXPECT_EQ(sentenceOf({"drives", "extra"}), "What \"extra\" means is not clear.");
    EXPECT_EQ(sentenceOf({"drives", "--quick"}), "What \"--quick\" means is not clear.");
    EXPECT_EQ(sentenceOf({"move", "folder", "/f", "/g", "--drive", "D"}), "What \"/g\" means is not clear.");
    EXPECT_EQ(sentenceOf({"drives", "--drive", "D"}), "What \"--drive\" means is not clear.");
}

TEST(Options, RefusesEmptyPaths) {
    EXPECT_EQ(sentenceOf({"move", "restore", ""}), "move restore needs a PATH.");
    EXPECT_EQ(sentenceOf({"move", "folder", "", "--drive", "D"}), "move folder needs a PATH.");
    EXPECT_EQ(sentenceOf({"move", "folder", "/f", "--drive", ""}), "move folder needs --drive DRIVE.");
    EXPECT_EQ(sentenceOf({"--root", "", "drives"}), "--root needs a path that is not empty.");
    EXPECT_EQ(sentenceOf({"--home", "", "drives"}), "--home needs a path that is not empty.");
}

TEST(Options, RefusesAnOptionWithoutItsValueOrGivenTwice) {
    EXPECT_NE(sentenceOf({"drives", "--root"}), "understood");
    EXPECT_NE(sentenceOf({"drives", "--root", "/a", "--root", "/b"}), "understood");
    EXPECT_NE(sentenceOf({"move", "folder", "/f", "--drive", "A", "--drive", "B"}), "understood");
}

TEST(Options, GivesHelpAndVersionAsText) {
    const auto help = std::get<Information>(parse({"--help"})).text;
    for (const auto* word : {"drives", "move", "--root", "--home", "--format", "--yes", "--version", "Exit status"})
        EXPECT_NE(help.find(word), std::string::npos) << word;
    EXPECT_EQ(std::get<Information>(parse({"--version"})).text, "tarvik " TARVIK_VERSION "\n");
    const auto verbHelp = std::get<Information>(parse({"move", "folder", "--help"})).text;
    EXPECT_NE(verbHelp.find("--drive"), std::string::npos);
    EXPECT_NE(verbHelp.find("PATH"), std::string::npos);
}

}  // namespace tarvik::CommandLine
