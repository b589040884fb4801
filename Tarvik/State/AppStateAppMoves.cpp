// The moves of ticked applications of `AppState`: to a drive, and back.

#include "Discovery/AppScanner.h"
#include "Move/AppMove.h"
#include "Move/AppRestore.h"
#include "Move/MoveDialogs.h"
#include "State/AppState.h"
#include "State/Background.h"
#include "State/Dialogs.h"
#include "State/Preparing.h"
#include "State/ScreenText.h"
#include "State/UiThread.h"

#include <QPointer>

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

void AppState::confirmAndMove() {
    m_flows.add(moveSelectedApps());
}

QCoro::Task<> AppState::moveSelectedApps() {
    refuseWhenBusy();
    bool quitRunning = false;
    AppMove::Proposal proposal;
    {
        const Raised preparing([this](bool isPreparing) { setPreparing(isPreparing); });
        std::vector<AppRow> ticked;
        for (const AppRow& row : apps())
            if (row.isSelected) ticked.push_back(row);
        const auto propose = [host = m_host, ticked, drive = m_selectedDrive, includesData = m_includeAppData,
                              cancellation = m_stopMeasuring] {
            const auto chosen = measured(host, ticked, cancellation);
            return AppMove::propose(host, chosen, drive, includesData, cancellation);
        };
        proposal = co_await inBackground(Priority::userInitiated, propose);
        if (m_isClosing) co_return;  // Nobody would answer any more.
        const Dialog question = AppMove::confirmMove(proposal);
        const int answer = co_await m_dialogs.ask(question);
        if (answer != 0 || m_isClosing) co_return;

        const auto snapshot = [host = m_host] { return AppMove::takeSnapshot(host); };
        const std::optional<std::string> told = co_await inBackground(Priority::userInitiated, snapshot);
        if (told) setInfo(screenText(*told));
        const auto look = [host = m_host, movable = proposal.movable] { return AppMove::runningApps(host, movable); };
        const std::vector<std::string> running = co_await inBackground(Priority::userInitiated, look);
        if (m_isClosing) co_return;
        if (!running.empty()) {
            const Dialog warning = MoveDialogs::handleRunningApps(running);
            const int button = co_await m_dialogs.ask(warning);
            const auto choice = MoveDialogs::runningChoice(button);
            if (choice == MoveDialogs::RunningChoice::cancel || m_isClosing) co_return;
            quitRunning = choice == MoveDialogs::RunningChoice::quitAndMove;
        }
    }
    runJobs(std::move(proposal.jobs), proposal.drive.id, proposal.drive.mountPath, quitRunning);
}

void AppState::restoreApp(const FilePath& bundle) {
    m_flows.add(restoreOneApp(bundle.path));
}

QCoro::Task<> AppState::restoreOneApp(fs::path bundle) {
    refuseWhenBusy();
    const AppEntry* known = appAt(bundle);
    if (!known) co_return;
    std::optional<SymlinkEntry> link;
    {
        const Raised preparing([this](bool isPreparing) { setPreparing(isPreparing); });
        const auto find = [host = m_host, entry = *known] { return AppRestore::unmeasuredRestoreEntry(host, entry); };
        const std::string name = known->name;
        link = co_await inBackground(Priority::userInitiated, find);
        if (!link) throw Refusal("No symlink found for " + name + ".");
    }
    if (!m_isClosing) co_await restoreLink(link->location);
}

void AppState::restoreSelectedApps() {
    m_flows.add(restoreApps());
}

QCoro::Task<> AppState::restoreApps() {
    refuseWhenBusy();
    std::vector<SymlinkEntry> links;
    {
        const Raised preparing([this](bool isPreparing) { setPreparing(isPreparing); });
        const auto find = [host = m_host, entries = selectedRestorableApps(), cancellation = m_stopMeasuring] {
            return AppRestore::dedupedRestoreEntries(host, entries, cancellation);
        };
        links = co_await inBackground(Priority::userInitiated, find);
        if (m_isClosing) co_return;
        if (links.empty()) throw Refusal("Select at least one previously moved app.");
        const auto word = [host = m_host, links] { return AppRestore::confirmRestore(host, links); };
        const Dialog question = co_await inBackground(Priority::userInitiated, word);
        if (m_isClosing) co_return;
        const int answer = co_await m_dialogs.ask(question);
        if (answer != 0 || m_isClosing) co_return;
    }
    std::vector<FolderMove::WayBack> waysBack;
    std::vector<std::int64_t> sizes;
    for (const SymlinkEntry& link : links) {
        waysBack.push_back({link.location, link.target, true, {}});
        sizes.push_back(link.targetSize);
    }
    beginRestore(RestoreRun(std::move(waysBack), std::move(sizes)));
    const auto progress = restoreProgressTaker();
    const auto restore = [host = m_host, links, progress, state = QPointer(this), stop = m_stopAfterItem] {
        const auto begins = [&](std::size_t index) {
            UiThread::post([state, index] {
                if (!state) return;
                state->m_restore.begin(index);
                emit state->restoreChanged();
            });
        };
        return AppRestore::restoreAll(
            host, links, begins, [&](std::size_t, const ByteProgress& newest) { progress.send(newest); }, stop);
    };
    MoveRun::Summary summary;
    try {
        const AppRestore::Outcome outcome = co_await inBackground(Priority::userInitiated, restore);
        summary = AppRestore::summary(outcome);
    } catch (const std::exception& thrown) {
        summary = {true, thrown.what()};
    }
    clearSelection();
    endRestore(screenText(summary.text), summary.hasFailures);
    if (summary.hasFailures) refreshAll();
}

}  // namespace tarvik
