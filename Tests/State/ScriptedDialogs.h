#pragma once

#include "State/Shared/Dialogs.h"

#include <deque>
#include <vector>

namespace tarvik::test {

/// Answers from a script and keeps what was asked. Without a script it goes ahead.
class ScriptedDialogs : public Dialogs {
public:
    QCoro::Task<int> ask(Dialog dialog) override {
        asked.push_back(std::move(dialog));
        int answer = 0;
        if (!answers.empty()) {
            answer = answers.front();
            answers.pop_front();
        }
        co_return answer;
    }
    void dismissAll() override {}

    std::deque<int> answers;
    std::vector<Dialog> asked;
};

}  // namespace tarvik::test
