#include "Platform/Text/PropertyList.h"
#include "Support/Mutator.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace tarvik {
namespace {

constexpr int mutantsOfAList = 1500;

PropertyList sample() {
    using Dictionary = PropertyList::Dictionary;
    const Dictionary type{{"CFBundleTypeName", "Grüße & <more>"}, {"LSHandlerRank", "Owner"}};
    return Dictionary{{"CFBundleIdentifier", "org.example.Editor"},
                      {"CFBundleDocumentTypes", PropertyList::List{type, type, PropertyList::List{1, 2.5, false}}},
                      {"Built", PropertyList::Date(std::chrono::seconds(1794764743))},
                      {"Icon", PropertyList::Data{std::string(40, '\xA1')}},
                      {"Size", std::int64_t{1} << 40},
                      {"Smaller", -70000},
                      {"Long", std::string(300, 'x')},
                      {"Deep", PropertyList::List{PropertyList::List{PropertyList::List{Dictionary{{"a", true}}}}}}};
}

/// What means something in a list.
const std::vector<std::string> pieces = {
    "<dict>",  "</dict>", "<array>",   "</array>",  "<key>a</key>", "<key/>",     "<string>",     "</string>",
    "<data>",  "<!--",    "-->",       "<![CDATA[", "]]>",          "&#x110000;", "&#0;",         "&lt;",
    "&bogus;", "<?",      "<!DOCTYPE", "<real>nan", "<date>",       "<integer>-", "\xF0\x9F\x98", "bplist00"};

/// Whatever is read can be written and read again, and the library keeps its troubles to itself.
void feed(const std::string& good, unsigned seed) {
    ASSERT_TRUE(PropertyList::parsed(good));
    test::Mutator mutator(seed, pieces);
    testing::internal::CaptureStderr();
    for (int round = 0; round < mutantsOfAList; ++round) {
        const std::string bytes = mutator.mutated(good);
        if (const auto list = PropertyList::parsed(bytes)) {
            EXPECT_TRUE(PropertyList::parsed(list->binary())) << "seed " << seed << ", round " << round;
            EXPECT_TRUE(PropertyList::parsed(list->xml())) << "seed " << seed << ", round " << round;
        }
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(PropertyListFuzz, BrokenXmlIsReadOrRefused) {
    for (const unsigned seed : {1U, 2U}) feed(sample().xml(), seed);
}

TEST(PropertyListFuzz, BrokenBinariesAreReadOrRefused) {
    for (const unsigned seed : {3U, 4U}) feed(sample().binary(), seed);
}

}  // namespace
}  // namespace tarvik
