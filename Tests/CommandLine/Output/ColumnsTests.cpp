#include "CommandLine/Output/Columns.h"

#include <gtest/gtest.h>

namespace tarvik::CommandLine {

TEST(Columns, CountsWhatATerminalTakes) {
    EXPECT_EQ(Columns::width(""), 0U);
    EXPECT_EQ(Columns::width("Backup"), 6U);
    EXPECT_EQ(Columns::width("Größe"), 5U);
    EXPECT_EQ(Columns::width("e\u0301te\u0301"), 3U);
    EXPECT_EQ(Columns::width("写真"), 4U);
    EXPECT_EQ(Columns::width("🎹"), 2U);
}

TEST(Columns, CutsWithAnEllipsis) {
    EXPECT_EQ(Columns::cut("Backup", 6), "Backup");
    EXPECT_EQ(Columns::cut("Backup", 5), "Back…");
    EXPECT_EQ(Columns::cut("Backup", 1), "…");
    EXPECT_EQ(Columns::cut("Backup", 0), "");
    EXPECT_EQ(Columns::cut("写真写真", 4), "写…");
    EXPECT_EQ(Columns::cut("e\u0301te\u0301x", 3), "e\u0301t…");
}

TEST(Columns, LetsNothingSteerTheTerminal) {
    EXPECT_EQ(Columns::printable("a\x1B[2Jb\rc\nd"), "a\uFFFD[2Jb\uFFFDc\nd");
    EXPECT_EQ(Columns::oneLine("a\nb\u2028c\x7F"), "a\uFFFDb\uFFFDc\uFFFD");
    EXPECT_EQ(Columns::printable("x\u202Egnp.exe"), "x\uFFFDgnp.exe");
    EXPECT_EQ(Columns::printable("bad\xFF"
                                 "byte"),
              "bad\uFFFDbyte");
}

TEST(Columns, AlignsWideAndNarrowNames) {
    const auto text = Columns::table({{"Name"}, {"Size", Columns::Align::right}, {"Kind"}},
                                     {{"写真", "5 KB", "external"}, {"Backup", "1.5 GB", ""}});
    EXPECT_EQ(text,
              "Name      Size  Kind\n"
              "写真      5 KB  external\n"
              "Backup  1.5 GB\n");
}

TEST(Columns, MakesATableOfTitlesAlone) {
    EXPECT_EQ(Columns::table({{"A"}, {"B"}}, {}), "A  B\n");
}

}  // namespace tarvik::CommandLine
