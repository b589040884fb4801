#include "State/EventLoop.h"
#include "State/Shared/WindowDialogs.h"

#include <gtest/gtest.h>

#include <optional>

namespace tarvik::test {

namespace {

const Dialog question{"Move Music to Backup?", "Total 12 MB.", {"Move", "Cancel"}, {"From /home/Music"}};

QCoro::Task<> keepAnswer(WindowDialogs& dialogs, Dialog dialog, std::optional<int>& answer) {
    answer = co_await dialogs.ask(std::move(dialog));
}

}  // namespace

TEST(WindowDialogs, ShowAQuestionUntilItIsAnswered) {
    WindowDialogs dialogs{nullptr};
    std::optional<int> answer;
    keepAnswer(dialogs, question, answer);
    EXPECT_TRUE(dialogs.isOpen());
    EXPECT_EQ(dialogs.title(), "Move Music to Backup?");
    EXPECT_EQ(dialogs.text(), "Total 12 MB.");
    EXPECT_EQ(dialogs.buttons(), (QStringList{"Move", "Cancel"}));
    EXPECT_EQ(dialogs.details(), QStringList{"From /home/Music"});
    EXPECT_FALSE(answer);

    dialogs.answer(0);
    EXPECT_FALSE(dialogs.isOpen());
    EXPECT_EQ(dialogs.title(), "");
    spinUntil([&] { return answer.has_value(); });
    EXPECT_EQ(answer, 0);
}

TEST(WindowDialogs, AskOneQuestionAfterTheOther) {
    WindowDialogs dialogs{nullptr};
    std::optional<int> first;
    std::optional<int> second;
    keepAnswer(dialogs, {"First?", "", {"Yes", "No"}}, first);
    keepAnswer(dialogs, {"Second?", "", {"Yes", "No"}}, second);
    EXPECT_EQ(dialogs.title(), "First?");
    dialogs.answer(1);
    EXPECT_EQ(dialogs.title(), "Second?");
    dialogs.answer(0);
    spinUntil([&] { return first && second; });
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 0);
}

TEST(WindowDialogs, TakeAnAnswerToNothingCalmly) {
    WindowDialogs dialogs{nullptr};
    dialogs.answer(0);
    EXPECT_FALSE(dialogs.isOpen());
}

TEST(WindowDialogs, AnswerCancelToEveryQuestionThatIsTakenAway) {
    WindowDialogs dialogs{nullptr};
    std::optional<int> first;
    std::optional<int> second;
    keepAnswer(dialogs, question, first);
    keepAnswer(dialogs, {"Quit?", "", {"Quit & Move", "Cancel", "Move Anyway"}}, second);
    dialogs.dismissAll();
    EXPECT_FALSE(dialogs.isOpen());
    spinUntil([&] { return first && second; });
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 1);
}

}  // namespace tarvik::test
