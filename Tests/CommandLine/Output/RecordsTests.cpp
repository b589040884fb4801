#include "CommandLine/Output/Records.h"

#include <gtest/gtest.h>
#include <toml++/toml.h>

#include <limits>

namespace tarvik::CommandLine {

TEST(Records, WritesAHeaderAndALineForEachRecord) {
    const Record one = {{"name", "Disk"}, {"bytes", std::int64_t{12}}, {"writable", true}};
    const Record two = {{"name", ""}, {"bytes", std::int64_t{-1}}, {"writable", false}};
    EXPECT_EQ(tsv({"name", "bytes", "writable"}, {one, two}), "name\tbytes\twritable\nDisk\t12\ttrue\n\t-1\tfalse\n");
    EXPECT_EQ(tsv({"name"}, {}), "name\n");
}

TEST(Records, EscapesWhatWouldBreakALineOfTsv) {
    EXPECT_EQ(tsv({{"name", "a\tb\nc\\d\re\xFF"}}), "name\na\\tb\\nc\\\\d\\re\xFF\n");
}

TEST(Records, WritesTomlThatReadsBackTheSame) {
    for (const std::string name : {"plain", "", "a\nb", "\nx", "x\n", "a\tb\nc\\d\"e'f", "'''", "\"\"\"", "\x01\x7F",
                                   "写真 é 🎹", "true", "12", "[x]"}) {
        const Record record = {
            {"name", name}, {"bytes", std::numeric_limits<std::int64_t>::max()}, {"writable", false}};
        const auto table = toml::parse(toml(record));
        EXPECT_EQ(table["name"].value<std::string>(), name);
        EXPECT_EQ(table["bytes"].value<std::int64_t>(), std::numeric_limits<std::int64_t>::max());
        EXPECT_EQ(table["writable"].value<bool>(), false);
        const auto tables = toml::parse(toml("drives", {record, record}));
        ASSERT_TRUE(tables["drives"].is_array_of_tables());
        EXPECT_EQ(tables["drives"].as_array()->size(), 2U);
        EXPECT_EQ(tables["drives"][1]["name"].value<std::string>(), name);
    }
}

TEST(Records, WritesAnEmptyArrayOfToml) {
    EXPECT_TRUE(toml::parse(toml("drives", {}))["drives"].is_array());
}

TEST(Records, KeepsTomlValidWhateverTheBytesAre) {
    EXPECT_EQ(toml::parse(toml({{"name", "a\xFF"}}))["name"].value<std::string>(), "a\xEF\xBF\xBD");
}

TEST(Records, WritesAListAsLinesInOneCellAndAsAnArray) {
    const Record record = {{"warnings", std::vector<std::string>{"a\tb", "c\xFF"}},
                           {"none", std::vector<std::string>{}}};
    EXPECT_EQ(tsv(record), "warnings\tnone\na\\tb\\nc\xFF\t\n");
    const auto table = toml::parse(toml(record));
    EXPECT_EQ(table["warnings"].as_array()->size(), 2U);
    EXPECT_EQ(table["warnings"][0].value<std::string>(), "a\tb");
    EXPECT_TRUE(table["none"].as_array()->empty());
}

TEST(Records, KeepsTheOrderOfKeysInToml) {
    EXPECT_EQ(toml({{"b", std::int64_t{1}}, {"a", true}}), "b = 1\na = true\n");
}

}  // namespace tarvik::CommandLine
