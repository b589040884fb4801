#pragma once

#include "Discovery/SymlinkEntry.h"
#include "Platform/Basics/Cancellation.h"
#include "State/Lists/RecordListModel.h"
#include "State/Shared/TabState.h"
#include "State/Symlinks/SymlinkRow.h"

#include <QAbstractItemModel>
#include <QtQml/qqmlregistration.h>

#include <vector>

class QJSEngine;
class QQmlEngine;

namespace tarvik {

/// The Symlinks tab: the links that moves have left.
class SymlinksState : public TabState {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    Q_PROPERTY(QAbstractItemModel* symlinks READ symlinksModel CONSTANT)

public:
    explicit SymlinksState(AppState& app);
    static SymlinksState* create(QQmlEngine* engine, QJSEngine* scripts);

    const std::vector<SymlinkEntry>& symlinks() const { return m_symlinks.records(); }
    QAbstractItemModel* symlinksModel() { return &m_symlinks; }

    /// Lists the links anew, and then measures what they lead to; until then each keeps the size that it had.
    Q_INVOKABLE void refreshSymlinks();

    void refresh() override { refreshSymlinks(); }
    void linksChanged() override { refreshSymlinks(); }
    void stop() override { m_stopSizing.cancel(); }

private:
    QCoro::Task<> scanSymlinks();

    RecordListModel<SymlinkEntry> m_symlinks{SymlinkRow::roles(), SymlinkRow::key};
    bool m_isScanning = false;
    /// Somebody has asked for the links since the scan that is under way began.
    bool m_isScanWanted = false;
    /// Cancelled when nobody waits any more for what the links lead to; a new one for each scan.
    Cancellation m_stopSizing;
};

}  // namespace tarvik
