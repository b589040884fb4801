// The data of applications of `AppsState`: what is ticked in opened rows, and its way to the Trash.

#include "MovePlan/DataTrash.h"
#include "State/Apps/AppsState.h"
#include "State/Lists/ScreenText.h"
#include "State/Shared/AppState.h"
#include "State/Shared/Dialogs.h"
#include "State/Threads/Background.h"

#include <iterator>
#include <utility>

namespace tarvik {

namespace {

/// What is asked of the user who closes the window in the middle.
Dialog quitWhileTrashing() {
    return {"Quit while data is being moved to the Trash?",
            "Tarvik quits as soon as all that was ticked is there.",
            {"Finish and Quit", "Cancel"}};
}

}  // namespace

void AppsState::setCheckedDataPaths(CheckedPaths paths) {
    if (m_checkedDataPaths == paths) return;
    m_checkedDataPaths = std::move(paths);
    emit checkedDataPathsChanged();
}

void AppsState::uncheckDataOf(const fs::path& bundle) {
    const AppEntry* entry = appAt(bundle);
    if (!entry) return;
    CheckedPaths checked = m_checkedDataPaths;
    checked.removeWithin(entry->dataPaths);
    setCheckedDataPaths(std::move(checked));
}

void AppsState::moveCheckedDataToTrash(const FilePath& bundle) {
    follow(trashCheckedData(bundle.path));
}

QCoro::Task<> AppsState::trashCheckedData(fs::path bundle) {
    const AppEntry* known = appAt(bundle);
    if (!known) co_return;
    const AppEntry entry = *known;
    const std::vector<fs::path> items = m_checkedDataPaths.within(entry.dataPaths);
    if (items.empty()) co_return;
    DataTrash::Outcome outcome;
    {
        const auto preparing = app().prepare();
        const Dialog question =
            DataTrash::confirm(entry.name, std::ssize(items), m_checkedDataPaths.bytesWithin(entry.dataPaths));
        const int answer = co_await app().dialogs().ask(question);
        if (answer != 0 || app().isClosing()) co_return;
    }
    {
        const auto act = app().act(quitWhileTrashing());
        const auto move = [host = host(), roots = entry.dataPaths, items] {
            return DataTrash::moveToTrash(host, roots, items);
        };
        outcome = co_await inBackground(Priority::userInitiated, move);
    }
    CheckedPaths checked = m_checkedDataPaths;
    checked.removeWithin(entry.dataPaths);
    setCheckedDataPaths(std::move(checked));
    if (outcome.movedCount > 0) app().setInfo(screenText(DataTrash::movedText(outcome)));
    if (!outcome.failures.empty()) app().setError(screenText(DataTrash::failureText(outcome)));
    emit dataTrashed();
    refreshApps();
}

}  // namespace tarvik
