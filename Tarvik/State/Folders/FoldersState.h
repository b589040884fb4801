#pragma once

#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Path.h"
#include "State/Folders/FolderSource.h"
#include "State/Folders/QuickPick.h"
#include "State/Lists/FilePath.h"
#include "State/Lists/RecordListModel.h"
#include "State/Shared/TabState.h"

#include <QAbstractItemModel>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include <vector>

class QJSEngine;
class QQmlEngine;

namespace tarvik {

/// The Folders tab: the folder that is chosen, the ones that are often large, and the move of any one.
class FoldersState : public TabState {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    /// What is about to be moved. It is looked at anew after each move, and forgotten once it has moved itself.
    Q_PROPERTY(tarvik::FolderSource* source READ source CONSTANT)
    Q_PROPERTY(QAbstractItemModel* quickPicks READ quickPicksModel CONSTANT)

public:
    explicit FoldersState(AppState& app);
    static FoldersState* create(QQmlEngine* engine, QJSEngine* scripts);

    FolderSource* source() { return &m_source; }
    const std::vector<QuickPick>& quickPicks() const { return m_quickPicks.records(); }
    QAbstractItemModel* quickPicksModel() { return &m_quickPicks; }

    /// Moves a folder to the selected drive once the user has agreed.
    Q_INVOKABLE void moveArbitraryFolder(const tarvik::FilePath& folder);

    /// Chooses the folder at a `file:` address that came from outside of the window, and asks for the tab to be shown.
    void take(const QUrl& url);

    void refresh() override;
    void stop() override { m_stopSizing.cancel(); }

signals:
    void taken();

private:
    QCoro::Task<> moveFolder(fs::path folder);
    QCoro::Task<> findQuickPicks();
    void takeMoves();

    FolderSource m_source;
    RecordListModel<QuickPick> m_quickPicks{QuickPick::roles(), QuickPick::key};
    /// Cancelled when nobody waits any more for the sizes of the quick picks; a new one for each look at them.
    Cancellation m_stopSizing;
};

}  // namespace tarvik
