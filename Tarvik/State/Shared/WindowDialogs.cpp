#include "State/Shared/WindowDialogs.h"

#include "State/Lists/ScreenText.h"
#include "State/Shared/EngineObjects.h"
#include "State/Threads/UiThread.h"

namespace tarvik {

namespace {

QStringList screenTexts(const std::vector<std::string>& texts) {
    QStringList shown;
    for (const auto& text : texts) shown.push_back(screenText(text));
    return shown;
}

}  // namespace

/// Awaited by `ask`: puts the question in line and suspends until `answer` resumes it.
struct WindowDialogs::Answered {
    WindowDialogs& dialogs;
    Question& question;

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> asker) {
        question.asker = asker;
        dialogs.m_questions.push_back(&question);
        if (dialogs.m_questions.size() == 1) emit dialogs.changed();
    }
    void await_resume() const noexcept {}
};

WindowDialogs::WindowDialogs(QObject* parent) : QObject(parent) {}

WindowDialogs::~WindowDialogs() {
    dismissAll();
}

WindowDialogs* WindowDialogs::create(QQmlEngine* engine, QJSEngine*) {
    return EngineObjects::dialogsOf(*engine);
}

QString WindowDialogs::title() const {
    return isOpen() ? screenText(m_questions.front()->dialog.title) : QString();
}

QString WindowDialogs::text() const {
    return isOpen() ? screenText(m_questions.front()->dialog.text) : QString();
}

QStringList WindowDialogs::details() const {
    return isOpen() ? screenTexts(m_questions.front()->dialog.details) : QStringList();
}

QStringList WindowDialogs::buttons() const {
    return isOpen() ? screenTexts(m_questions.front()->dialog.buttons) : QStringList();
}

void WindowDialogs::answer(int button) {
    if (m_questions.empty()) return;
    Question* const question = m_questions.front();
    m_questions.pop_front();
    question->answer = button;
    emit changed();
    // Later, so that the flow does not go on inside the handler of the button that has just been pressed.
    UiThread::post([asker = question->asker] { asker.resume(); });
}

QCoro::Task<int> WindowDialogs::ask(Dialog dialog) {
    Question question{std::move(dialog), 0, {}};
    Answered answered{*this, question};
    co_await answered;
    co_return question.answer;
}

void WindowDialogs::dismissAll() {
    while (isOpen()) cancel();
}

}  // namespace tarvik
