// The acts of `UninstallState`: a run, and the way back of a past one.

#include "Platform/Basics/Failure.h"
#include "Platform/Text/Text.h"
#include "State/Lists/ScreenText.h"
#include "State/Shared/AppState.h"
#include "State/Shared/Dialogs.h"
#include "State/Threads/Background.h"
#include "State/Threads/LineStream.h"
#include "State/Uninstall/UninstallState.h"
#include "UninstallRun/AppUninstallRunner.h"
#include "UninstallRun/UninstallHistory.h"
#include "UninstallRun/UninstallQuestions.h"

#include <QScopeGuard>
#include <QStringList>

#include <algorithm>
#include <exception>
#include <utility>

namespace tarvik {

namespace {

using PutBackItems = std::vector<UninstallUndo::Item>;

QString itemsText(std::size_t count) {
    return screenText(Text::counted(static_cast<std::int64_t>(count), "item"));
}

std::size_t countIn(const PutBackItems& items, UninstallUndo::Item::State state) {
    return static_cast<std::size_t>(
        std::count_if(items.begin(), items.end(), [&](const auto& item) { return item.state == state; }));
}

}  // namespace

struct UninstallState::Run {
    AppUninstallPlan plan;
    std::set<std::string> checked;
    /// The application in the list, which a link may stand for in the plan.
    std::string appId;
    std::vector<UninstallQuestions::Running> running = {};
};

struct UninstallState::Outcome {
    AppUninstallSession session;
    std::size_t receiptsThatStayed = 0;
};

void UninstallState::runUninstall(bool dryRun) {
    if (m_isUninstalling || app().isClosing()) return;
    if (!m_planned.plan()) return app().setError(QStringLiteral("Select an app first."));
    if (m_planned.checked().empty()) return app().setError(QStringLiteral("Nothing checked to remove."));
    Run run{*m_planned.plan(), m_planned.checked(), m_planned.app()->id};
    follow(dryRun ? carryOut(std::move(run), true) : removeChecked(std::move(run)));
}

QCoro::Task<bool> UninstallState::confirmDestructive(AppUninstallPlan plan, std::set<std::string> checked) {
    const auto look = [plan, checked = std::move(checked)] { return UninstallQuestions::leftBehind(plan, checked); };
    Dialog question = UninstallQuestions::confirm(plan);
    question.details = co_await inBackground(Priority::userInitiated, look);
    const int answer = co_await app().dialogs().ask(question);
    co_return answer == 0 && !app().isClosing();
}

QCoro::Task<> UninstallState::removeChecked(Run run) {
    {
        const auto preparing = app().prepare();
        const bool hasAgreed = co_await confirmDestructive(run.plan, run.checked);
        if (!hasAgreed) co_return;
        const auto look = [host = host(), run] { return UninstallQuestions::running(host, run.plan, run.checked); };
        run.running = co_await inBackground(Priority::userInitiated, look);
        if (app().isClosing()) co_return;
        if (!run.running.empty()) {
            const Dialog question = UninstallQuestions::quitRunning(run.running);
            const int answer = co_await app().dialogs().ask(question);
            if (answer != 0 || app().isClosing()) co_return;
        }
    }
    const auto held = app().act({"Quit while an application is being uninstalled?",
                                 "The uninstall will come to its end before the window closes.",
                                 {"Finish and Quit", "Cancel"}});
    co_await carryOut(std::move(run), false);
}

QCoro::Task<> UninstallState::carryOut(Run run, bool dryRun) {
    setUninstalling(true);
    const auto end = qScopeGuard([this] { setUninstalling(false); });
    appendUninstallLog({dryRun ? "dry-run-start" : "run-start"});
    const LineStream lines([this](const LineStream::Lines& told) { appendUninstallLog(told); });
    const auto act = [host = host(), run, selection = m_selection, dryRun, lines] {
        if (!run.running.empty()) UninstallQuestions::quit(host, run.running);
        Outcome outcome;
        const AppUninstallReporter reporter{[&](const std::string& line) {
            if (line.starts_with("forget-receipt-fail\t") || line.starts_with("receipt-stays\t"))
                ++outcome.receiptsThatStayed;
            lines.send(line);
        }};
        outcome.session = AppUninstallRunner::run(host, run.plan, selection, dryRun, run.checked, reporter);
        return outcome;
    };
    std::optional<Outcome> outcome;
    std::string description;
    try {
        outcome = co_await inBackground(Priority::userInitiated, act);
    } catch (const std::exception& failure) {
        description = failure.what();
    }
    if (outcome) {
        takeOutcome(run, *outcome);
    } else {
        app().setError(screenText(description));
        appendUninstallLog({"failed\t" + description});
    }
    // Also after a failure: some of it may have gone.
    if (!dryRun) lookAgain();
}

void UninstallState::takeOutcome(const Run& run, const Outcome& outcome) {
    const AppUninstallSession& session = outcome.session;
    const QString items = itemsText(session.movedItems.size());
    if (session.dryRun) return app().setInfo(QStringLiteral("Dry-run complete (%1).").arg(items));
    app().setInfo(QStringLiteral("Uninstalled %1 — %2.").arg(screenText(session.appName), items));
    const auto stayed = static_cast<std::size_t>(std::count_if(session.movedItems.begin(), session.movedItems.end(),
                                                               [](const auto& item) { return !item.succeeded; }));
    QStringList failures;
    if (stayed > 0) {
        failures.push_back(itemsText(stayed) + QStringLiteral(" could not be removed. See past uninstalls."));
        m_past.open(session.id);
    }
    if (outcome.receiptsThatStayed > 0)
        failures.push_back(screenText(Text::counted(static_cast<std::int64_t>(outcome.receiptsThatStayed), "receipt")) +
                           QStringLiteral(" could not be forgotten. See the log."));
    if (!failures.isEmpty()) app().setError(failures.join(QLatin1Char(' ')));
    // The user may have gone on to another application.
    if (m_planned.app() && m_planned.app()->id == run.appId) selectUninstallApp(std::nullopt);
}

void UninstallState::putBack(const QString& sessionId) {
    const AppUninstallSession* session = m_past.find(sessionId);
    if (session && !app().isClosing()) follow(bringBack(*session));
}

QCoro::Task<> UninstallState::bringBack(AppUninstallSession session) {
    const auto look = [host = host(), session] {
        return UninstallUndo::look(UninstallHistory::knownMachine(host), session);
    };
    PutBackItems before;
    {
        const auto preparing = app().prepare();
        before = co_await inBackground(Priority::userInitiated, look);
        if (app().isClosing()) co_return;
        if (countIn(before, UninstallUndo::Item::State::waiting) == 0) {
            app().setError(QStringLiteral("Nothing of %1 can come back.").arg(screenText(session.appName)));
            m_past.setItems({{session.id, before}});
            m_past.open(session.id);
            co_return;
        }
        const Dialog question = UninstallQuestions::confirmPutBack(session, before);
        const int answer = co_await app().dialogs().ask(question);
        if (answer != 0 || app().isClosing()) co_return;
    }
    const auto held = app().act({"Quit while an application is being put back?",
                                 "It will be back before the window closes.",
                                 {"Finish and Quit", "Cancel"}});
    m_past.setPuttingBackId(uniqueText(session.id));
    const auto end = qScopeGuard([this] {
        m_past.setPuttingBackId({});
        lookAgain();
    });
    const LineStream lines([this](const LineStream::Lines& told) { appendUninstallLog(told); });
    const auto act = [host = host(), session, lines] {
        const AppUninstallReporter reporter{[&lines](const std::string& line) { lines.send(line); }};
        return UninstallUndo::putBack(host, session, reporter);
    };
    PutBackItems after = co_await inBackground(Priority::userInitiated, act);
    const QString outcome = screenText(UninstallUndo::summary(before, after));
    const bool isWhole = std::none_of(after.begin(), after.end(),
                                      [](const auto& item) { return item.state != UninstallUndo::Item::State::back; });
    if (isWhole) {
        app().setInfo(outcome);
    } else {
        app().setError(outcome);
        m_past.open(session.id);
    }
    m_past.setItems({{session.id, std::move(after)}});
}

void UninstallState::lookAgain() {
    m_isWanted = true;
    app().lookAgain();
}

}  // namespace tarvik
