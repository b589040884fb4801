// The moves of ticked applications of `AppsState`: to a drive, and back.

#include "Discovery/AppScanner.h"
#include "MovePlan/AppMove.h"
#include "MovePlan/AppRestore.h"
#include "MovePlan/MoveDialogs.h"
#include "State/Apps/AppsState.h"
#include "State/Lists/ScreenText.h"
#include "State/Shared/AppState.h"
#include "State/Shared/Dialogs.h"
#include "State/Shared/Refusal.h"
#include "State/Threads/Background.h"

#include <utility>

namespace tarvik {

namespace {

/// The applications of ticked rows, measured also where the list does not know their sizes yet, unless nothing moves
/// all the same. Blocks.
std::vector<AppEntry> measured(const Host& host, const std::vector<AppRow>& rows, const Cancellation& cancellation) {
    std::vector<AppEntry> entries;
    for (const AppRow& row : rows) {
        const bool isWanted = row.sizesPending && !row.entry.isAlreadySymlinked;
        entries.push_back(isWanted ? AppScanner::computeSizes(host, row.entry, cancellation) : row.entry);
    }
    return entries;
}

}  // namespace

void AppsState::confirmAndMove() {
    follow(moveSelectedApps());
}

QCoro::Task<> AppsState::moveSelectedApps() {
    bool quitRunning = false;
    AppMove::Plan proposal;
    {
        const auto preparing = app().prepare();
        std::vector<AppRow> ticked;
        for (const AppRow& row : apps())
            if (row.isSelected) ticked.push_back(row);
        const auto propose = [host = host(), ticked, drive = app().selectedDrive(), includesData = m_includeAppData,
                              cancellation = app().stopMeasuring()] {
            const auto chosen = measured(host, ticked, cancellation);
            return AppMove::propose(host, chosen, drive, includesData, cancellation);
        };
        proposal = co_await inBackground(Priority::userInitiated, propose);
        if (app().isClosing()) co_return;  // Nobody would answer any more.
        const Dialog question = AppMove::confirmMove(proposal);
        const int answer = co_await app().dialogs().ask(question);
        if (answer != 0 || app().isClosing()) co_return;

        const auto snapshot = [host = host()] { return AppMove::takeSnapshot(host); };
        const std::optional<std::string> told = co_await inBackground(Priority::userInitiated, snapshot);
        if (told) app().setInfo(screenText(*told));
        const auto look = [host = host(), proposal] { return AppMove::runningApps(host, proposal); };
        const std::vector<std::string> running = co_await inBackground(Priority::userInitiated, look);
        if (app().isClosing()) co_return;
        if (!running.empty()) {
            const Dialog warning = MoveDialogs::handleRunningApps(running);
            const int button = co_await app().dialogs().ask(warning);
            const auto choice = MoveDialogs::runningChoice(button);
            if (choice == MoveDialogs::RunningChoice::cancel || app().isClosing()) co_return;
            quitRunning = choice == MoveDialogs::RunningChoice::quitAndMove;
        }
    }
    app().runJobs(std::move(proposal.jobs), proposal.drive.id, proposal.drive.mountPath, quitRunning);
}

void AppsState::restoreApp(const FilePath& bundle) {
    follow(restoreOneApp(bundle.path));
}

QCoro::Task<> AppsState::restoreOneApp(fs::path bundle) {
    const AppEntry* known = appAt(bundle);
    if (!known) co_return;
    fs::path link;
    {
        const auto preparing = app().prepare();
        const auto find = [host = host(), entry = *known] { return AppRestore::linkOf(host, entry); };
        link = co_await inBackground(Priority::userInitiated, find);
    }
    if (!app().isClosing()) co_await app().restoreLink(link);
}

void AppsState::restoreSelectedApps() {
    follow(restoreApps());
}

QCoro::Task<> AppsState::restoreApps() {
    AppRestore::Plan plan;
    {
        const auto preparing = app().prepare();
        const auto find = [host = host(), entries = selectedRestorableApps(), cancellation = app().stopMeasuring()] {
            return AppRestore::planTicked(host, entries, cancellation);
        };
        plan = co_await inBackground(Priority::userInitiated, find);
        if (app().isClosing()) co_return;
        if (const auto refusal = AppRestore::refusalOf(plan)) throw Refusal(*refusal);
        const Dialog question = AppRestore::confirm(plan);
        const int answer = co_await app().dialogs().ask(question);
        if (answer != 0 || app().isClosing()) co_return;
    }
    co_await app().restoreAll(std::move(plan));
    clearSelection();
}

}  // namespace tarvik
