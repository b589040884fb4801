#include "CommandLine/Grammar/BashLine.h"

#include <gtest/gtest.h>

namespace tarvik::CommandLine {

namespace {

using Words = std::vector<std::string>;

/// As bash has it by default.
constexpr std::string_view wordBreaks = " \t\n\"'@><=;|&(:";

BashLine readLine(std::string_view text) {
    return readBashLine(text, wordBreaks);
}

std::optional<std::string> replacement(std::string_view line, std::string_view word) {
    return replacementIn(readLine(line), word);
}

}  // namespace

TEST(BashLine, ReadsWordsWithoutTheirQuotes) {
    EXPECT_EQ(readLine("tarvik apps Log").words, (Words{"tarvik", "apps", "Log"}));
    EXPECT_EQ(readLine("tarvik apps ").words, (Words{"tarvik", "apps", ""}));
    EXPECT_EQ(readLine("tarvik  'a  b' \"c d\" e\\ f x").words, (Words{"tarvik", "a  b", "c d", "e f", "x"}));
    EXPECT_EQ(readLine(R"(tarvik "a\"b\$c\d" 'e\f' '')").words, (Words{"tarvik", R"(a"b$c\d)", R"(e\f)", ""}));
    EXPECT_EQ(readLine("tarvik --root=/a:b --drive=S").words, (Words{"tarvik", "--root=/a:b", "--drive=S"}));
    EXPECT_EQ(readLine("tarvik Übung\\ 1").words, (Words{"tarvik", "Übung 1"}));
}

TEST(BashLine, KnowsTheOpenQuote) {
    EXPECT_EQ(readLine("tarvik \"Stu").quote, '"');
    EXPECT_EQ(readLine("tarvik 'Stu").quote, '\'');
    EXPECT_EQ(readLine("tarvik 'Stu'").quote, 0);
    EXPECT_EQ(readLine("tarvik \"it's").quote, '"');
    EXPECT_EQ(readLine("tarvik it\\'s").quote, 0);
}

TEST(BashLine, QuotesAWordAsItsPlaceNeedsIt) {
    const std::string word = R"(Zoë's "Box" & $5!)";
    EXPECT_EQ(replacement("tarvik Z", word), R"(Zoë\'s\ \"Box\"\ \&\ \$5\!)");
    EXPECT_EQ(replacement("tarvik 'Z", word), R"(Zoë'\''s "Box" & $5!)");
    EXPECT_EQ(replacement("tarvik \"Z", word), R"(Zoë's \"Box\" & \$5"'!'")");
}

TEST(BashLine, ReplacesOnlyWhatBashReplaces) {
    EXPECT_EQ(replacement("tarvik --drive=Stu", "--drive=Studio Drive"), "Studio\\ Drive");
    EXPECT_EQ(replacement("tarvik --drive=\"Stu", "--drive=Studio Drive"), "Studio Drive");
    EXPECT_EQ(replacement("tarvik Disk: S", "Studio"), "Studio");
    EXPECT_EQ(replacement("tarvik Disk:S", "Disk:Studio"), "Studio");
    EXPECT_EQ(replacement("tarvik \"Disk:S", "Disk:Studio"), "Disk:Studio");
    EXPECT_EQ(replacement("tarvik Disk\\:S", "Disk:Studio"), "Disk:Studio");
    EXPECT_EQ(replacement("tarvik disk:S", "Disk:Studio"), std::nullopt);
}

}  // namespace tarvik::CommandLine
