#include "State/Folders/FoldersState.h"

#include "MovePlan/FolderMove.h"
#include "Platform/Files/Files.h"
#include "Platform/Storage/SizeCalculator.h"
#include "State/Shared/AppState.h"
#include "State/Shared/Dialogs.h"
#include "State/Shared/EngineObjects.h"
#include "State/Shared/Refusal.h"
#include "State/Threads/Background.h"

#include <utility>

namespace tarvik {

FoldersState::FoldersState(AppState& app) : TabState(app), m_source(app.host()) {
    connect(&app, &AppState::isRunningChanged, this, &FoldersState::takeMoves);
    connect(&app, &AppState::isRestoringChanged, &m_source, &FolderSource::refresh);
}

FoldersState* FoldersState::create(QQmlEngine* engine, QJSEngine*) {
    return &EngineObjects::stateOf(*engine)->tab<FoldersState>();
}

void FoldersState::takeMoves() {
    // What has moved is done with here; the list of jobs offers its way back.
    if (!app().isRunning() && app().hasMoved(m_source.path())) {
        m_source.clear();
    } else {
        m_source.refresh();
    }
}

void FoldersState::refresh() {
    m_source.refresh();
    follow(findQuickPicks());
}

QCoro::Task<> FoldersState::findQuickPicks() {
    // What is being measured now would be old when it is there.
    m_stopSizing.cancel();
    const Cancellation cancellation = m_stopSizing = {};
    const auto look = [host = host()] { return QuickPick::suggestions(host); };
    auto picks = co_await inBackground(Priority::utility, look);
    if (cancellation.isCancelled()) co_return;
    for (QuickPick& pick : picks)
        for (const QuickPick& known : quickPicks())
            if (known.path == pick.path) pick.bytes = known.bytes;
    m_quickPicks.replaceAll(picks);

    for (std::size_t index = 0; index < picks.size(); ++index) {
        const auto measure = [host = host(), path = picks[index].path, cancellation] {
            return SizeCalculator::size(host, Files::resolved(path).value_or(path), cancellation);
        };
        picks[index].bytes = co_await inBackground(Priority::utility, measure);
        if (cancellation.isCancelled()) co_return;
        m_quickPicks.update(index, picks[index]);
    }
}

void FoldersState::take(const QUrl& url) {
    m_source.setUrl(url);
    emit taken();
}

void FoldersState::moveArbitraryFolder(const FilePath& folder) {
    follow(moveFolder(folder.path));
}

QCoro::Task<> FoldersState::moveFolder(fs::path folder) {
    if (!app().selectedDrive()) throw Refusal("Select a target drive first.");
    const DriveInfo drive = *app().selectedDrive();
    std::vector<MoveJob> jobs;
    {
        const auto preparing = app().prepare();
        const auto plan = [host = host(), folder, drive, cancellation = app().stopMeasuring()] {
            return FolderMove::plan(host, folder, drive, cancellation);
        };
        jobs.push_back(co_await inBackground(Priority::userInitiated, plan));
        if (app().isClosing()) co_return;  // Nobody would answer any more.
        const Dialog question = FolderMove::confirmMove(jobs.front(), drive);
        const int answer = co_await app().dialogs().ask(question);
        if (answer != 0 || app().isClosing()) co_return;
    }
    app().runJobs(std::move(jobs), drive.id, drive.mountPath, false);
}

}  // namespace tarvik
