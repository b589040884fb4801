// The data of applications of `AppState`: what is ticked in opened rows, and its way to the Trash.

#include "Move/DataTrash.h"
#include "State/AppState.h"
#include "State/Background.h"
#include "State/Dialogs.h"
#include "State/Preparing.h"
#include "State/ScreenText.h"

#include <iterator>
#include <utility>

namespace tarvik {

void AppState::setCheckedDataPaths(CheckedPaths paths) {
    if (m_checkedDataPaths == paths) return;
    m_checkedDataPaths = std::move(paths);
    emit checkedDataPathsChanged();
}

void AppState::uncheckDataOf(const fs::path& bundle) {
    const AppEntry* entry = appAt(bundle);
    if (!entry) return;
    CheckedPaths checked = m_checkedDataPaths;
    checked.removeWithin(entry->dataPaths);
    setCheckedDataPaths(std::move(checked));
}

void AppState::moveCheckedDataToTrash(const FilePath& bundle) {
    m_flows.add(trashCheckedData(bundle.path));
}

QCoro::Task<> AppState::trashCheckedData(fs::path bundle) {
    refuseWhenBusy();
    const AppEntry* known = appAt(bundle);
    if (!known) co_return;
    const AppEntry entry = *known;
    const std::vector<fs::path> items = m_checkedDataPaths.within(entry.dataPaths);
    if (items.empty()) co_return;
    DataTrash::Outcome outcome;
    {
        // Nothing else is moved meanwhile.
        const Raised preparing([this](bool isPreparing) { setPreparing(isPreparing); });
        const Dialog question =
            DataTrash::confirm(entry.name, std::ssize(items), m_checkedDataPaths.bytesWithin(entry.dataPaths));
        const int answer = co_await m_dialogs.ask(question);
        if (answer != 0 || m_isClosing) co_return;
        const auto move = [host = m_host, roots = entry.dataPaths, items] {
            return DataTrash::moveToTrash(host, roots, items);
        };
        outcome = co_await inBackground(Priority::userInitiated, move);
    }
    CheckedPaths checked = m_checkedDataPaths;
    checked.removeWithin(entry.dataPaths);
    setCheckedDataPaths(std::move(checked));
    if (outcome.movedCount > 0) setInfo(screenText(DataTrash::movedText(outcome)));
    if (!outcome.failures.empty()) setError(screenText(DataTrash::failureText(outcome)));
    emit dataTrashed();
    refreshApps();
}

}  // namespace tarvik
