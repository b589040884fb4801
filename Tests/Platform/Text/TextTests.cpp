#include "Platform/Text/Text.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace tarvik {
namespace {

using namespace std::chrono_literals;

const std::string combiningAcute = "\u0301";
const std::string family = "\U0001F468\u200D\U0001F469\u200D\U0001F467";

TEST(Text, IsSplitIntoItsLines) {
    using Lines = std::vector<std::string_view>;
    EXPECT_EQ(Text::lines("one\ntwo\n"), (Lines{"one", "two"}));
    EXPECT_EQ(Text::lines("one\n\ntwo"), (Lines{"one", "", "two"}));
    EXPECT_EQ(Text::lines("one\r\n\n"), (Lines{"one\r", ""}));
    EXPECT_EQ(Text::lines("\n"), Lines{""});
    EXPECT_EQ(Text::lines(""), Lines());
}

TEST(Text, HasOneWordReplacedByAnotherFromLeftToRight) {
    EXPECT_EQ(Text::replacing("Tarvik and Tarvik", "Tarvik", "App"), "App and App");
    EXPECT_EQ(Text::replacing("aaa", "aa", "a"), "aa");
    EXPECT_EQ(Text::replacing("aa", "a", "aa"), "aaaa");
    EXPECT_EQ(Text::replacing("\xff one \xff", "one ", ""), "\xff \xff");
    EXPECT_EQ(Text::replacing("plain", "", "x"), "plain");
    EXPECT_EQ(Text::replacing("", "a", "x"), "");
}

TEST(Text, OfManyNamesSaysTheFirstAndHowManyMore) {
    EXPECT_EQ(Text::listed({}, 2), "");
    EXPECT_EQ(Text::listed({"One", "Two"}, 2), "One, Two");
    EXPECT_EQ(Text::listed({"One", "Two", "Three", "Four"}, 2), "One, Two and 2 more");
}

TEST(Text, TrimsUnicodeWhiteSpaceAndLineBreaksAtBothEnds) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"", ""},
        {"plain", "plain"},
        {" \t\r\n\v\fboth \n", "both"},
        {"inner  stays", "inner  stays"},
        {"\u00A0\u2003\u3000wide\u2028\u2029\u0085", "wide"},
        {" \u2003 ", ""},
        {"\u200Bno space\u200B", "\u200Bno space\u200B"},
        {" \u00E9 ", "\u00E9"},
        {" \xFF ", "\xFF"},
        {" \x80", "\x80"},
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(Text::trimmed(text), expected) << text;
}

TEST(Text, TellsValidUtf8FromOtherBytes) {
    for (const std::string text :
         {"", "ASCII only, longer than one word", "caf\u00E9", "\U0001F600", "\uFFFD", "\U0010FFFF"})
        EXPECT_TRUE(Text::isValidUtf8(text)) << text;
    EXPECT_TRUE(Text::isValidUtf8(std::string(1, '\0')));
    for (const std::string bytes : {"\xFF", "\x80", "12345678\xC3", "\xC3(", "\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80",
                                    "\xF4\x90\x80\x80", "\xF0\x9F\x98", "12345678\xC3\xA9 \xE2\x82"})
        EXPECT_FALSE(Text::isValidUtf8(bytes)) << Text::displayable(bytes);
}

TEST(Text, ShowsEachBadByteAsOneReplacementCharacter) {
    EXPECT_EQ(Text::displayable("good \u00E9\n"), "good \u00E9\n");
    EXPECT_EQ(Text::displayable("a\xFFz"), "a\uFFFDz");
    EXPECT_EQ(Text::displayable("\xE2\x82"), "\uFFFD\uFFFD");
    EXPECT_EQ(Text::displayable("\xC3\u00E9"), "\uFFFD\u00E9");
}

TEST(Text, CountsCharactersAsAUserSeesThem) {
    const std::vector<std::pair<std::string, std::int64_t>> cases = {
        {"", 0},           {"abc", 3},        {"a\r\nb", 3},
        {"\n\r", 2},       {"caf\u00E9", 4},  {"cafe" + combiningAcute, 4},
        {family + "!", 2}, {"\u00E9\r\n", 2}, {"\xFF\xFE", 2},
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(Text::characterCount(text), expected) << text;
}

TEST(Text, DropsWholeCharacters) {
    EXPECT_EQ(Text::droppingCharacters("abc", 0), "abc");
    EXPECT_EQ(Text::droppingCharacters("abc", -1), "abc");
    EXPECT_EQ(Text::droppingCharacters("abc", 2), "c");
    EXPECT_EQ(Text::droppingCharacters("abc", 3), "");
    EXPECT_EQ(Text::droppingCharacters("abc", 4), "");
    EXPECT_EQ(Text::droppingCharacters("\r\nz", 1), "z");
    EXPECT_EQ(Text::droppingCharacters("e" + combiningAcute + family + "z", 0), "e" + combiningAcute + family + "z");
    EXPECT_EQ(Text::droppingCharacters("e" + combiningAcute + family + "z", 1), family + "z");
    EXPECT_EQ(Text::droppingCharacters("e" + combiningAcute + family + "z", 2), "z");
    EXPECT_EQ(Text::droppingCharacters("e" + combiningAcute, 1), "");
    EXPECT_EQ(Text::droppingCharacters("\u00E9", 9), "");
    EXPECT_EQ(Text::droppingCharacters("\xFFz", 1), "z");
}

TEST(Text, TakesWholeCharacters) {
    EXPECT_EQ(Text::firstCharacters("abc", 2), "ab");
    EXPECT_EQ(Text::firstCharacters("abc", 3), "abc");
    EXPECT_EQ(Text::firstCharacters("abc", 4), "abc");
    EXPECT_EQ(Text::firstCharacters("abc", 0), "");
    EXPECT_EQ(Text::firstCharacters("", 1), "");
    EXPECT_EQ(Text::firstCharacters("\r\nb", 1), "\r\n");
    EXPECT_EQ(Text::firstCharacters("e\u0301e\u0301", 1), "e\u0301");
    EXPECT_EQ(Text::firstCharacters("\xFFz", 1), "\uFFFD");
}

TEST(Text, WritesUpperCaseWithoutRegardToLocale) {
    EXPECT_EQ(Text::upperCased("aZ9-i"), "AZ9-I");
    EXPECT_EQ(Text::upperCased("\u00E9\u00DF"), "\u00C9SS");
    EXPECT_EQ(Text::upperCased("\xFFz"), "\uFFFDZ");
    EXPECT_EQ(Text::upperCased(""), "");
}

TEST(Text, LowersCaseWithoutRegardToLocaleAndKeepsBadBytes) {
    EXPECT_EQ(Text::lowerCased("Finder AZ@[`{"), "finder az@[`{");
    EXPECT_EQ(Text::lowerCased("\u00C9T\u00C9 Stra\u00DFe"), "\u00E9t\u00E9 stra\u00DFe");
    EXPECT_EQ(Text::lowerCased("I\u00C9\xFF\xC3Z"), "i\u00E9\xFF\xC3z");
    EXPECT_EQ(Text::lowerCased(""), "");
}

TEST(Text, FoldsCaseWithoutRegardToLocale) {
    EXPECT_EQ(Text::caseFolded("Finder AZ@[`{"), "finder az@[`{");
    EXPECT_EQ(Text::caseFolded("\u00C9T\u00C9"), "\u00E9t\u00E9");
    EXPECT_EQ(Text::caseFolded("Stra\u00DFe"), "strasse");
    EXPECT_EQ(Text::caseFolded("\u00C9I\xFF"), "\u00E9i\uFFFD");
}

TEST(Text, ComposesCharactersAndKeepsBadBytes) {
    EXPECT_EQ(Text::composed("Cafe\u0301"), "Caf\u00E9");
    EXPECT_EQ(Text::composed("Caf\u00E9"), "Caf\u00E9");
    EXPECT_EQ(Text::composed("plain"), "plain");
    EXPECT_EQ(Text::composed("e\u0301\xFF"), "e\u0301\xFF");
}

TEST(Text, HasOneKeyForTheNamesThatAVolumeTakesForOne) {
    for (const char* name : {"CAFE\u0301.app", "caf\u00E9.APP", "Caf\u00C9.app", "cafe\u0301.app"})
        EXPECT_EQ(Text::nameKey(name), Text::nameKey("Caf\u00E9.app")) << name;
    EXPECT_NE(Text::nameKey("Cafe.app"), Text::nameKey("Caf\u00E9.app"));
    EXPECT_NE(Text::nameKey("a\xFF"), Text::nameKey("a\xFE"));
}

TEST(Text, FindsTextsWithoutRegardToCaseAndAccents) {
    const std::vector<std::pair<std::string, std::string>> found = {
        {"Final Cut", "final"},
        {"Final Cut", "L C"},
        {"anything", ""},
        {"", ""},
        {"R\u00E9sum\u00E9", "resume"},
        {"resume", "R\u00C9S"},
        {"cafe\u0301 bar", "CAF\u00E9 B"},
        {"a\nb", "a\nb"},
        {"x\xFF", "\xFF"},
        {"any", combiningAcute},
    };
    for (const auto& [text, needle] : found)
        EXPECT_TRUE(Text::localizedContains(text, needle)) << text << " / " << needle;
    const std::vector<std::pair<std::string, std::string>> missing = {
        {"", "a"}, {"ab", "abc"}, {"Final Cut", "finalcut"}, {"\u00E9t\u00E9", "ta"}, {"", "\u00E9"}, {"ab", "a b"},
    };
    for (const auto& [text, needle] : missing)
        EXPECT_FALSE(Text::localizedContains(text, needle)) << text << " / " << needle;
}

TEST(Text, OrdersTextsAsAReaderExpects) {
    const std::vector<std::string> ordered = {"_under", "10", "apple", "\u00C4pple", "Banana", "zebra"};
    for (std::size_t i = 0; i + 1 < ordered.size(); ++i) {
        EXPECT_LT(Text::localizedCompare(ordered[i], ordered[i + 1]), 0) << ordered[i];
        EXPECT_GT(Text::localizedCompare(ordered[i + 1], ordered[i]), 0) << ordered[i];
    }
    EXPECT_EQ(Text::localizedCompare("Finder", "fINDER"), 0);
    EXPECT_EQ(Text::localizedCompare("\u00C9", "e" + combiningAcute), 0);
    EXPECT_NE(Text::localizedCompare("e", "\u00E9"), 0);
}

// The locale is read once in a process, so each language gets a process of its own.
class TextInLocale : public testing::Test {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    static void exitWith(const char* locale, bool (*fact)()) {
        ::setenv("LC_ALL", locale, 1);
        std::exit(fact() ? 0 : 1);
    }
};

TEST_F(TextInLocale, SwedishSortsItsOwnLettersLast) {
    const auto fact = [] { return Text::localizedCompare("z", "\u00F6") < 0; };
    EXPECT_EXIT(exitWith("sv_SE.UTF-8", fact), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(exitWith("en_GB.UTF-8", fact), testing::ExitedWithCode(1), "");
}

TEST_F(TextInLocale, TheCLocaleCountsAsEnglish) {
    const auto fact = [] { return Text::localizedCompare("a", "B") < 0 && Text::localizedCompare("\u00F6", "z") < 0; };
    for (const char* locale : {"C", "POSIX", "C.UTF-8", "%%%"})
        EXPECT_EXIT(exitWith(locale, fact), testing::ExitedWithCode(0), "") << locale;
}

TEST_F(TextInLocale, ALetterOfTwoSignsIsFoundAsOneWhereTheLanguageHasIt) {
    const auto fact = [] { return Text::localizedContains("Chata", "c"); };
    EXPECT_EXIT(exitWith("cs_CZ.UTF-8", fact), testing::ExitedWithCode(1), "");
    EXPECT_EXIT(exitWith("en_US.UTF-8", fact), testing::ExitedWithCode(0), "");
}

TEST(Text, WritesByteCountsInDecimalUnits) {
    constexpr std::int64_t giga = 1'000'000'000;
    const std::vector<std::pair<std::int64_t, std::string>> cases = {
        {0, "Zero KB"},
        {1, "1 KB"},
        {999, "1 KB"},
        {1'000, "1 KB"},
        {1'499, "1 KB"},
        {1'500, "2 KB"},
        {999'499, "999 KB"},
        {999'500, "1 MB"},
        {999'999, "1 MB"},
        {1'000'000, "1 MB"},
        {1'049'999, "1 MB"},
        {1'050'000, "1.1 MB"},
        {1'200'000, "1.2 MB"},
        {20'000'000, "20 MB"},
        {999'949'999, "999.9 MB"},
        {999'950'000, "1 GB"},
        {giga, "1 GB"},
        {1'004'999'999, "1 GB"},
        {1'005'000'000, "1.01 GB"},
        {1'500'000'000, "1.5 GB"},
        {12'345'678'901, "12.35 GB"},
        {999'999'999'999, "1,000 GB"},
        {1'234'567 * giga, "1,234,567 GB"},
        {1'234 * giga + 560'000'000, "1,234.56 GB"},
        {-1, "-1 KB"},
        {-1'200'000, "-1.2 MB"},
        {std::numeric_limits<std::int64_t>::max(), "9,223,372,036.85 GB"},
        {std::numeric_limits<std::int64_t>::min(), "-9,223,372,036.85 GB"},
    };
    for (const auto& [bytes, expected] : cases) EXPECT_EQ(Text::byteCount(bytes), expected) << bytes;
}

TEST(Text, WritesDatesInUtc) {
    const std::chrono::system_clock::time_point instant(1'794'764'743s);
    EXPECT_EQ(Text::date(instant), "2026-11-15 17:45:43 +0000");
    EXPECT_EQ(Text::isoDate(instant), "2026-11-15T17:45:43Z");
    EXPECT_EQ(Text::isoDate(instant + 999ms), "2026-11-15T17:45:43Z");
    EXPECT_EQ(Text::isoDate({}), "1970-01-01T00:00:00Z");
    EXPECT_EQ(Text::isoDate(std::chrono::system_clock::time_point(-1ms)), "1969-12-31T23:59:59Z");
}

TEST(Text, CountsInSingularForExactlyOne) {
    EXPECT_EQ(Text::counted(0, "item"), "0 items");
    EXPECT_EQ(Text::counted(1, "item"), "1 item");
    EXPECT_EQ(Text::counted(2, "item"), "2 items");
    EXPECT_EQ(Text::counted(-1, "item"), "-1 items");
}

}  // namespace
}  // namespace tarvik
