#include "Platform/Processes/CommandRunner.h"
#include "Platform/Text/PropertyList.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <bit>
#include <chrono>
#include <limits>
#include <string>
#include <string_view>

namespace tarvik {
namespace {

using test::makeFile;

PropertyList::Date instant(std::int64_t seconds) {
    return PropertyList::Date(std::chrono::seconds(seconds));
}

/// One of everything.
PropertyList everything() {
    return PropertyList::Dictionary{
        {"yes", true},
        {"no", false},
        {"count", 42},
        {"below zero", -7},
        {"largest", std::numeric_limits<std::int64_t>::max()},
        {"smallest", std::numeric_limits<std::int64_t>::min()},
        {"half", 0.5},
        {"text", "Grüße & <tags> \"quoted\""},
        {"empty text", ""},
        {"when", instant(1794764743)},
        {"long ago", instant(-500'000'000)},
        {"bytes", PropertyList::Data{std::string("\0\1\xFF", 3)}},
        {"no bytes", PropertyList::Data{}},
        {"list", PropertyList::List{1, "two", PropertyList::Dictionary{{"three", 3}}, PropertyList::List{}}},
        {"ключ", PropertyList::Dictionary{}},
    };
}

std::string xmlOf(const std::string& content) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">" +
           content + "</plist>\n";
}

std::optional<PropertyList> parsedXml(const std::string& content) {
    return PropertyList::parsed(xmlOf(content));
}

/// A binary list from its objects, of which the first is the top one; one byte an offset and a reference.
std::string binaryOf(const std::vector<std::string>& objects) {
    std::string bytes = "bplist00";
    std::string offsets;
    for (const auto& object : objects) {
        offsets += static_cast<char>(bytes.size());
        bytes += object;
    }
    const char table = static_cast<char>(bytes.size());
    bytes += offsets;
    bytes += std::string(6, '\0') + "\1\1" + std::string(7, '\0') + static_cast<char>(objects.size());
    return bytes + std::string(15, '\0') + table;
}

std::string nested(std::size_t levels) {
    std::string text;
    for (std::size_t level = 0; level < levels; ++level) text += "<array>";
    for (std::size_t level = 0; level < levels; ++level) text += "</array>";
    return text;
}

TEST(PropertyList, IsAnEmptyDictionaryAtFirst) {
    EXPECT_EQ(PropertyList(), PropertyList(PropertyList::Dictionary{}));
    EXPECT_EQ(PropertyList().find("anything"), nullptr);
}

TEST(PropertyList, BothFormsComeBackAsTheyWere) {
    EXPECT_EQ(PropertyList::parsed(everything().xml()), everything());
    EXPECT_EQ(PropertyList::parsed(everything().binary()), everything());
    EXPECT_TRUE(everything().binary().starts_with("bplist00"));
}

TEST(PropertyList, BothFormsAreReadByAnotherProgram) {
    const test::TemporaryFolder folder;
    makeFile(folder / "binary", everything().binary());
    makeFile(folder / "xml", everything().xml());
    for (const char* name : {"binary", "xml"})
        for (const char* format : {"bin", "xml"}) {
            const fs::path converted = folder / "converted";
            const auto result = CommandRunner::run(
                "/usr/bin/plistutil", {"-i", (folder / name).native(), "-o", converted.native(), "-f", format});
            EXPECT_TRUE(result.succeeded()) << result.stderr;
            EXPECT_EQ(PropertyList::parsed(test::contentOf(converted)), everything()) << name << " as " << format;
        }
}

TEST(PropertyList, AValueIsOfItsOwnTypeAlone) {
    const PropertyList list = everything();
    EXPECT_EQ(list.text("text"), "Grüße & <tags> \"quoted\"");
    EXPECT_EQ(list.text("empty text"), "");
    EXPECT_EQ(list.text("count"), std::nullopt);
    EXPECT_EQ(list.text("missing"), std::nullopt);
    EXPECT_EQ(list.find("yes")->as<std::int64_t>(), nullptr);
    EXPECT_EQ(list.find("count")->as<bool>(), nullptr);
    EXPECT_EQ(list.find("count")->as<double>(), nullptr);
    EXPECT_EQ(*list.find("below zero")->as<std::int64_t>(), -7);
    EXPECT_EQ(list.find("list")->find("text"), nullptr);
    EXPECT_EQ(PropertyList("text").text("text"), std::nullopt);
}

TEST(PropertyList, AnIntegerTooLargeForASignedOneIsARealNumber) {
    const std::string most = "<integer>18446744073709551615</integer>";
    EXPECT_EQ(parsedXml(most), PropertyList(18446744073709551615.0));
    EXPECT_EQ(parsedXml("<integer>-1</integer>"), PropertyList(-1));
    EXPECT_EQ(parsedXml("<integer>0x10</integer>"), PropertyList(16));
}

TEST(PropertyList, DatesAreInWholeSeconds) {
    for (const std::int64_t seconds : {1'794'764'743, 978'307'199, -500'000'000}) {
        const PropertyList list(PropertyList::Date(std::chrono::seconds(seconds) + std::chrono::milliseconds(750)));
        EXPECT_EQ(PropertyList::parsed(list.binary()), PropertyList(instant(seconds))) << seconds;
        EXPECT_EQ(PropertyList::parsed(list.xml()), PropertyList(instant(seconds))) << seconds;
    }
}

TEST(PropertyList, DatesOfOtherCenturiesComeBackAsTheyWere) {
    using namespace std::chrono;
    for (const auto day : {sys_days(1700y / 3 / 1), sys_days(1900y / 6 / 1), sys_days(2200y / 12 / 31)}) {
        const PropertyList list{PropertyList::Date(day + 12h)};
        EXPECT_EQ(PropertyList::parsed(list.xml()), list) << list.xml();
        EXPECT_EQ(PropertyList::parsed(list.binary()), list) << list.xml();
    }
}

TEST(PropertyList, DatesFarAwayAreReadAsTheNearest) {
    using namespace std::chrono;
    const auto dateOf = [](const std::optional<PropertyList>& list) { return *list->as<PropertyList::Date>(); };
    EXPECT_EQ(dateOf(parsedXml("<date>2100-01-01T00:00:00Z</date>")), sys_days(2100y / 1 / 1));
    EXPECT_EQ(dateOf(parsedXml("<date>1900-06-01T12:00:00Z</date>")), sys_days(1900y / 6 / 1) + 12h);
    EXPECT_GT(dateOf(parsedXml("<date>4001-01-01T00:00:00Z</date>")), sys_days(2262y / 1 / 1));
    EXPECT_LT(dateOf(parsedXml("<date>0001-01-01T00:00:00Z</date>")), sys_days(1678y / 1 / 1));
}

TEST(PropertyList, AReferenceOfAnArchiveIsADictionary) {
    const PropertyList reference = PropertyList::Dictionary{{"CF$UID", 5}};
    EXPECT_EQ(PropertyList::parsed(binaryOf({"\x80\x05"})), reference);
    EXPECT_EQ(parsedXml("<dict><key>CF$UID</key><integer>5</integer></dict>"), reference);
}

TEST(PropertyList, ReadsWhatOthersWrite) {
    EXPECT_EQ(parsedXml("<!-- a <comment> --><string>a&lt;b&#233;&amp;</string>"), PropertyList("a<bé&"));
    EXPECT_EQ(parsedXml("<string><![CDATA[a</string>]]></string>"), PropertyList("a</string>"));
    EXPECT_EQ(PropertyList::parsed("\xEF\xBB\xBF" + xmlOf("<true/>")), PropertyList(true));
    EXPECT_EQ(PropertyList::parsed("\n " + xmlOf("<true />")), PropertyList(true));
    EXPECT_EQ(parsedXml("<data>\n\tAP8=\n</data>"), PropertyList(PropertyList::Data{std::string("\0\xFF", 2)}));
    EXPECT_EQ(parsedXml("<string>two\nlines</string>"), PropertyList("two\nlines"));
}

/// The text in UTF-16, behind a byte order mark.
std::string inUtf16(std::u16string_view text, std::endian order) {
    std::string bytes;
    for (const char16_t unit : u'\uFEFF' + std::u16string(text)) {
        const char high = static_cast<char>(unit >> 8);
        const char low = static_cast<char>(unit & 0xFF);
        bytes += order == std::endian::big ? high : low;
        bytes += order == std::endian::big ? low : high;
    }
    return bytes;
}

TEST(PropertyList, ReadsUtf16BehindAByteOrderMark) {
    const std::u16string list =
        u"<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n<!DOCTYPE plist PUBLIC "
        u"\"-//Apple//DTD PLIST 1.0//EN\" "
        u"\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">"
        u"<dict><key>CFBundleName</key><string>Über 写真 \U0001F600</string></dict></plist>\n";
    const PropertyList expected = PropertyList::Dictionary{{"CFBundleName", "Über 写真 \U0001F600"}};
    for (const auto order : {std::endian::little, std::endian::big}) {
        const std::string bytes = inUtf16(list, order);
        EXPECT_EQ(PropertyList::parsed(bytes), expected);
        EXPECT_EQ(PropertyList::parsed(bytes.substr(2)), std::nullopt) << "without the mark";
        EXPECT_EQ(PropertyList::parsed(bytes.substr(0, bytes.size() - 1)), std::nullopt) << "half a unit at the end";
        EXPECT_EQ(PropertyList::parsed(bytes.substr(0, bytes.size() / 2 / 2 * 2)), std::nullopt) << "cut off";
        EXPECT_EQ(PropertyList::parsed(bytes.substr(0, 2)), std::nullopt) << "the mark alone";
        const std::u16string halfAPair = u"<plist><string>\xD83D</string></plist>";
        EXPECT_EQ(PropertyList::parsed(inUtf16(halfAPair, order)), std::nullopt);
        const std::u16string nul(u"<plist><string>a\0b</string></plist>", 35);
        EXPECT_EQ(PropertyList::parsed(inUtf16(nul, order)), std::nullopt);
    }
}

TEST(PropertyList, TheLastOfTwoEqualKeysCounts) {
    EXPECT_EQ(parsedXml("<dict><key>a</key><integer>1</integer><key>a</key><integer>2</integer></dict>"),
              PropertyList(PropertyList::Dictionary{{"a", 2}}));
}

TEST(PropertyList, WhatIsCutOffIsNone) {
    const std::string binary = everything().binary();
    for (std::size_t length = 0; length < binary.size(); ++length)
        EXPECT_EQ(PropertyList::parsed(binary.substr(0, length)), std::nullopt) << length;
    const std::string xml = everything().xml();
    for (std::size_t length = 0; length < xml.rfind("</plist>"); ++length)
        EXPECT_EQ(PropertyList::parsed(xml.substr(0, length)), std::nullopt) << length;
}

TEST(PropertyList, OtherBytesAreNone) {
    for (const std::string& bytes : {std::string(),
                                     std::string("\0", 1),
                                     std::string(100, '\0'),
                                     std::string("{ a = 1; }"),
                                     std::string("{\"a\":1}"),
                                     std::string("<html><body>hello</body></html>"),
                                     xmlOf(""),
                                     xmlOf("<nothing/>"),
                                     xmlOf("text"),
                                     xmlOf("<dict><string>no key</string></dict>"),
                                     xmlOf("<dict><key>no value</key></dict>"),
                                     xmlOf("<string>a</integer>"),
                                     xmlOf("<integer>seven</integer>"),
                                     xmlOf("<integer/>"),
                                     xmlOf("<real>1,5</real>"),
                                     xmlOf("<date>yesterday</date>"),
                                     xmlOf("<data>?</data>"),
                                     xmlOf("<integer><true/></integer>"),
                                     xmlOf("<true/><true/>"),
                                     xmlOf("<key>a</key>"),
                                     xmlOf("<array><key>a</key></array>"),
                                     xmlOf("<string key=\"value\">a</string>"),
                                     xmlOf("<true/>") + xmlOf("<true/>"),
                                     std::string("bplist00"),
                                     std::string(40, 'x'),
                                     "bplist00" + std::string(32, '\xFF')})
        EXPECT_EQ(PropertyList::parsed(bytes), std::nullopt) << bytes;
}

TEST(PropertyList, TextsThatAreNoUtf8AreNone) {
    EXPECT_EQ(parsedXml("<string>caf\xE9</string>"), std::nullopt);
    EXPECT_EQ(parsedXml("<dict><key>\xFF</key><true/></dict>"), std::nullopt);
    EXPECT_EQ(PropertyList::parsed(binaryOf({"\x51\xE9"})), std::nullopt);
    EXPECT_EQ(PropertyList::parsed(binaryOf({"\x61\xD8\x01"})), std::nullopt);  // Half a pair of surrogates.
}

TEST(PropertyList, TextsWithANulAreNone) {
    EXPECT_EQ(parsedXml(std::string("<string>a\0b</string>", 20)), std::nullopt);
    EXPECT_EQ(parsedXml("<string>a&#0;b</string>"), std::nullopt);
    EXPECT_EQ(PropertyList::parsed(binaryOf({std::string("\x53"
                                                         "a\0b",
                                                         4)})),
              std::nullopt);
    EXPECT_EQ(PropertyList::parsed(binaryOf({std::string("\x61\0\0", 3)})), std::nullopt);
}

TEST(PropertyList, WritesNoTextThatItCouldNotRead) {
    const PropertyList list(std::string("a\0b\xFF", 4));
    for (const auto& bytes : {list.xml(), list.binary()})
        EXPECT_EQ(PropertyList::parsed(bytes), PropertyList("ab\uFFFD"));
}

TEST(PropertyList, WritesNoCharacterThatXmlDoesNotKnow) {
    const PropertyList list("\x01\x1F\t\n\x7F \uFFFE\uFFFF\uFFFD\U0001F600");
    for (const auto& bytes : {list.xml(), list.binary()})
        EXPECT_EQ(PropertyList::parsed(bytes), PropertyList("\uFFFD\uFFFD\t\n\x7F \uFFFD\uFFFD\uFFFD\U0001F600"));
}

TEST(PropertyList, NestsAsDeepAsAnyoneNeedsAndNoDeeper) {
    EXPECT_NE(parsedXml(nested(100)), std::nullopt);
    EXPECT_EQ(parsedXml(nested(1'000'000)), std::nullopt);
    PropertyList list;
    for (int level = 0; level < 100; ++level) list = PropertyList::List{list};
    EXPECT_EQ(PropertyList::parsed(list.binary()), list);
    for (int level = 0; level < 100; ++level) list = PropertyList::List{list};
    EXPECT_EQ(PropertyList::parsed(list.binary()), std::nullopt);
    EXPECT_EQ(PropertyList::parsed(list.xml()), std::nullopt);
}

TEST(PropertyList, ABinaryThatHoldsItselfIsNone) {
    EXPECT_EQ(PropertyList::parsed(binaryOf({std::string("\xA1\0", 2)})), std::nullopt);
    EXPECT_EQ(PropertyList::parsed(binaryOf({"\xA1\1", std::string("\xA1\0", 2)})), std::nullopt);
}

TEST(PropertyList, AFewBytesThatStandForVeryManyAreNone) {
    std::vector<std::string> objects;  // Each holds the next one fourteen times.
    for (char next = 1; next <= 12; ++next) objects.push_back('\xAE' + std::string(14, next));
    objects.emplace_back("\x09");
    EXPECT_EQ(PropertyList::parsed(binaryOf(objects)), std::nullopt);
}

TEST(PropertyList, ABinaryMayNameOneObjectSeveralTimes) {
    EXPECT_EQ(PropertyList::parsed(binaryOf({"\xA2\1\1", "\x09"})), PropertyList(PropertyList::List{true, true}));
}

TEST(PropertyList, AKeyThatIsNoTextIsNone) {
    EXPECT_EQ(PropertyList::parsed(binaryOf({"\xD1\1\1", "\x09"})), std::nullopt);
}

TEST(PropertyList, TakesTheDictionaryFromAFile) {
    const test::TemporaryFolder folder;
    makeFile(folder / "list", everything().binary());
    test::makeLink(folder / "link", "list");
    EXPECT_EQ(PropertyList::dictionaryAt(folder / "list"), everything());
    EXPECT_EQ(PropertyList::dictionaryAt(folder / "link"), everything());
}

TEST(PropertyList, WhatIsNoDictionaryInAFileIsAnEmptyOne) {
    const test::TemporaryFolder folder;
    makeFile(folder / "text", xmlOf("<string>text</string>"));
    makeFile(folder / "empty", "");
    makeFile(folder / "huge", everything().xml());
    fs::resize_file(folder / "huge", std::uintmax_t{1} << 40);
    test::makeFolder(folder / "folder");
    test::makePipe(folder / "pipe");
    test::makeSocket(folder / "socket");
    test::makeLink(folder / "dangling", "nowhere");
    test::makeLink(folder / "loop", "loop");
    for (const char* name : {"text", "empty", "huge", "folder", "pipe", "socket", "dangling", "loop", "missing"})
        EXPECT_EQ(PropertyList::dictionaryAt(folder / name), PropertyList()) << name;
    EXPECT_EQ(PropertyList::dictionaryAt("/dev/zero"), PropertyList());
}

}  // namespace
}  // namespace tarvik
