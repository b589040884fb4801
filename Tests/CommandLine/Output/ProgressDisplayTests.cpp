#include "CommandLine/Output/Columns.h"
#include "CommandLine/Output/ProgressDisplay.h"

#include <gtest/gtest.h>

#include <thread>

namespace tarvik::CommandLine {

namespace {

/// What a display writes, by a clock that a test turns on.
struct Screen {
    std::string text;
    std::size_t columns = 80;
    ProgressDisplay::Clock::time_point now{};

    ProgressDisplay::Output terminal() {
        return {[this](std::string_view part) { text += part; }, [this] { return columns; }, [this] { return now; }};
    }
    ProgressDisplay::Output pipe() {
        return {[this](std::string_view part) { text += part; }, {}, [this] { return now; }};
    }
    std::size_t drawings() const {
        std::size_t count = 0;
        for (auto at = text.find('\r'); at != std::string::npos; at = text.find('\r', at + 1)) ++count;
        return count;
    }
};

}  // namespace

TEST(ProgressDisplay, WritesAPlainLineForEachStepIntoAPipe) {
    Screen screen;
    ProgressDisplay display(screen.pipe(), "Music");
    display.step("copying");
    display.progress({1, 2});
    display.step("copying");
    display.step("verifying");
    display.end();
    EXPECT_EQ(screen.text, "copying\nverifying\n");
}

TEST(ProgressDisplay, RedrawsOneLineOnATerminalAndTakesItOffAtTheEnd) {
    Screen screen;
    {
        ProgressDisplay display(screen.terminal(), "Music");
        display.step("copying");
        screen.now += std::chrono::seconds(1);
        display.progress({500, 1000});
    }
    EXPECT_EQ(screen.text.find('\n'), std::string::npos);
    EXPECT_NE(screen.text.find(" 50 %"), std::string::npos);
    EXPECT_TRUE(screen.text.ends_with("\r\x1B[K"));
}

TEST(ProgressDisplay, ShowsABarFromTheFirstStepOnWhenTheWholeIsKnown) {
    Screen screen;
    ProgressDisplay display(screen.terminal(), "Music");
    display.progress({0, 1'000'000});
    EXPECT_EQ(screen.text, "");
    display.step("moving back");
    EXPECT_NE(screen.text.find("moving back Music  [---"), std::string::npos) << screen.text;
    EXPECT_NE(screen.text.find("  0 %  Zero KB of 1 MB"), std::string::npos) << screen.text;
}

TEST(ProgressDisplay, DrawsAtMostTenTimesASecond) {
    Screen screen;
    ProgressDisplay display(screen.terminal(), "Music");
    display.step("copying");
    for (int millisecond = 1; millisecond <= 1000; ++millisecond) {
        screen.now += std::chrono::milliseconds(1);
        display.progress({millisecond, 1000});
    }
    EXPECT_EQ(screen.drawings(), 11U);  // the step and ten more
}

TEST(ProgressDisplay, NeverFillsTheLastColumn) {
    for (std::size_t columns = 0; columns < 200; ++columns) {
        Screen screen{.columns = columns};
        ProgressDisplay display(screen.terminal(), "Logic Pro 写真 Library.bundle");
        display.step("copying");
        screen.now += std::chrono::seconds(1);
        display.progress({123456789, 987654321000});
        const auto line = screen.text.substr(screen.text.rfind("\r\x1B[K") + 4);
        EXPECT_LT(Columns::width(line), std::max<std::size_t>(columns, 2)) << line;
    }
}

TEST(ProgressDisplay, ShowsNothingAfterItsEnd) {
    Screen screen;
    ProgressDisplay display(screen.terminal(), "Music");
    display.step("copying");
    display.end();
    const auto before = screen.text;
    display.step("linking");
    display.progress({1, 2});
    display.end();
    EXPECT_EQ(screen.text, before);
}

TEST(ProgressDisplay, TakesReportsFromEveryThread) {
    Screen screen;
    ProgressDisplay display(screen.pipe(), "Music");
    std::thread reporter([&] {
        for (int part = 0; part < 1000; ++part) display.progress({part, 1000});
    });
    for (int part = 0; part < 1000; ++part) display.step(part % 2 ? "verifying" : "copying");
    reporter.join();
    EXPECT_EQ(screen.text.size(), 500 * std::string("copying\nverifying\n").size());
}

TEST(ProgressLine, ShowsTheShareAndTheBytes) {
    EXPECT_EQ(progressLine("copying", "Music", {500'000, 1'000'000}, 60),
              "copying Music  [##########-----------]  50 %  500 KB of 1 MB");
    EXPECT_EQ(progressLine("copying", "Music", {0, 0}, 60), "copying Music");
}

TEST(ProgressLine, CountsItemsToo) {
    EXPECT_EQ(progressLine("measuring", "links", {10, 40}, 60, ProgressUnit::items),
              "measuring links  [######-------------------]  25 %  10 of 40");
    Screen screen;
    ProgressDisplay display(screen.terminal(), "links", ProgressUnit::items);
    display.progress({0, 3});
    display.step("measuring");
    EXPECT_NE(screen.text.find("  0 %  0 of 3"), std::string::npos) << screen.text;
}

TEST(ProgressLine, StaysWithinItsShare) {
    EXPECT_NE(progressLine("copying", "Music", {5, 4}, 80).find("100 %"), std::string::npos);
    EXPECT_NE(progressLine("copying", "Music", {-5, 4}, 80).find("  0 %"), std::string::npos);
}

}  // namespace tarvik::CommandLine
