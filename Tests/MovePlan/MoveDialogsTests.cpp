#include "MovePlan/MoveDialogs.h"

#include <gtest/gtest.h>

namespace tarvik {

namespace {

using Names = std::vector<std::string>;

Names names(std::size_t count) {
    const Names all = {"One", "Two", "Three", "Four", "Five", "Six", "Seven"};
    return {all.begin(), all.begin() + static_cast<std::ptrdiff_t>(count)};
}

Dialog moveOf(std::int64_t count, const Names& risky) {
    return MoveDialogs::confirmAppMove(count, 3'500'000, "Studio", "/Volumes/Studio/ExternalTarvik/Apps", risky);
}

constexpr const char* plain =
    "Total 3.5 MB. Originals will be replaced with symlinks pointing at /Volumes/Studio/ExternalTarvik/Apps/.";

}  // namespace

TEST(MoveDialogs, AskAboutAMove) {
    EXPECT_EQ(moveOf(1, {}), (Dialog{"Move 1 item to Studio?", plain, {"Move", "Cancel"}}));
    EXPECT_EQ(moveOf(0, {}).title, "Move 0 items to Studio?");
    EXPECT_EQ(moveOf(2, {}).title, "Move 2 items to Studio?");
}

TEST(MoveDialogs, NameAtMostFiveRiskyOnes) {
    const auto warningOf = [](std::size_t count) {
        return moveOf(7, names(count)).text.substr(std::string(plain).size());
    };
    EXPECT_EQ(warningOf(0), "");
    EXPECT_EQ(warningOf(1), "\n\n⚠ 1 item has warnings: One");
    EXPECT_EQ(warningOf(2), "\n\n⚠ 2 items have warnings: One, Two");
    EXPECT_EQ(warningOf(5), "\n\n⚠ 5 items have warnings: One, Two, Three, Four, Five");
    EXPECT_EQ(warningOf(6), "\n\n⚠ 6 items have warnings: One, Two, Three, Four, Five and 1 more.");
    EXPECT_EQ(warningOf(7), "\n\n⚠ 7 items have warnings: One, Two, Three, Four, Five and 2 more.");
}

TEST(MoveDialogs, AskAboutRunningApplications) {
    const auto textOf = [](const std::string& list) {
        return "Moving a running app can corrupt it.\n\n" + list + "\n\nQuit them automatically before moving?";
    };
    const Names buttons = {"Quit & Move", "Cancel", "Move Anyway"};
    EXPECT_EQ(MoveDialogs::handleRunningApps(names(1)), (Dialog{"1 selected app is running", textOf("One"), buttons}));
    EXPECT_EQ(MoveDialogs::handleRunningApps(names(2)),
              (Dialog{"2 selected apps are running", textOf("One, Two"), buttons}));
    EXPECT_EQ(MoveDialogs::handleRunningApps(names(6)).text, textOf("One, Two, Three, Four, Five, Six"));
    EXPECT_EQ(MoveDialogs::handleRunningApps(names(7)),
              (Dialog{"7 selected apps are running", textOf("One, Two, Three, Four, Five, Six and 1 more"), buttons}));
    EXPECT_EQ(MoveDialogs::handleRunningApps({}), (Dialog{"0 selected apps are running", textOf(""), buttons}));
}

TEST(MoveDialogs, TakeEveryOtherButtonForANo) {
    using Choice = MoveDialogs::RunningChoice;
    EXPECT_EQ(MoveDialogs::runningChoice(0), Choice::quitAndMove);
    EXPECT_EQ(MoveDialogs::runningChoice(1), Choice::cancel);
    EXPECT_EQ(MoveDialogs::runningChoice(2), Choice::moveAnyway);
    EXPECT_EQ(MoveDialogs::runningChoice(3), Choice::cancel);
    EXPECT_EQ(MoveDialogs::runningChoice(-1), Choice::cancel);
}

TEST(MoveDialogs, AskAboutTheWayBack) {
    EXPECT_EQ(MoveDialogs::confirmRestore("Editor.app", "/Volumes/Studio/Editor.app"),
              (Dialog{"Move Editor.app back?",
                      "Moves the contents back from /Volumes/Studio/Editor.app and removes the symlink.",
                      {"Move Back", "Cancel"}}));
    const Names buttons = {"Move Back", "Cancel"};
    EXPECT_EQ(MoveDialogs::confirmRestore(1, names(1)),
              (Dialog{"Move 1 item back?",
                      "Moves the selected app back from the external drive and removes the symlink.\n\nOne", buttons}));
    EXPECT_EQ(MoveDialogs::confirmRestore(2, names(2)),
              (Dialog{"Move 2 items back?",
                      "Moves the selected apps back from the external drive and removes the symlinks.\n\nOne, Two",
                      buttons}));
    EXPECT_EQ(MoveDialogs::confirmRestore(6, names(6)).text,
              "Moves the selected apps back from the external drive and removes the symlinks.\n\n"
              "One, Two, Three, Four, Five, Six");
    EXPECT_EQ(MoveDialogs::confirmRestore(7, names(7)).text,
              "Moves the selected apps back from the external drive and removes the symlinks.\n\n"
              "One, Two, Three, Four, Five, Six and 1 more");
    EXPECT_EQ(MoveDialogs::confirmRestore(0, {}),
              (Dialog{"Move 0 items back?",
                      "Moves the selected apps back from the external drive and removes the symlinks.\n\n", buttons}));
}

}  // namespace tarvik
