#pragma once

#include "Applications/AppEntry.h"
#include "Platform/Basics/Path.h"
#include "State/Apps/AppRow.h"
#include "State/Apps/CheckedPaths.h"
#include "State/Lists/FilePath.h"
#include "State/Lists/RecordListModel.h"
#include "State/Shared/TabState.h"

#include <QAbstractItemModel>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

class QJSEngine;
class QQmlEngine;

namespace tarvik {

/// The Apps tab: the applications and their sizes, what is ticked in them, and the moves of that.
class AppsState : public TabState {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    /// The applications, largest first once all are measured.
    Q_PROPERTY(QAbstractItemModel* apps READ appsModel CONSTANT)
    /// True from the start of a scan of the applications to the end of its sizing; the other two tell how many are
    /// measured.
    Q_PROPERTY(bool isScanningApps READ isScanningApps NOTIFY isScanningAppsChanged)
    Q_PROPERTY(int sizeProgress READ sizeProgress NOTIFY sizeProgressChanged)
    Q_PROPERTY(int sizeTotal READ sizeTotal NOTIFY sizeProgressChanged)
    /// Whether a move also takes the data of an application.
    Q_PROPERTY(bool includeAppData READ includeAppData WRITE setIncludeAppData NOTIFY includeAppDataChanged)
    /// How many of the ticked applications can move, and how many can come back; what the former take, "1.2 GB".
    Q_PROPERTY(int selectedMovableCount READ selectedMovableCount NOTIFY selectionChanged)
    Q_PROPERTY(int selectedRestorableCount READ selectedRestorableCount NOTIFY selectionChanged)
    Q_PROPERTY(QString selectedTotalText READ selectedTotalText NOTIFY selectedTotalChanged)

public:
    explicit AppsState(AppState& app);
    static AppsState* create(QQmlEngine* engine, QJSEngine* scripts);

    const std::vector<AppRow>& apps() const { return m_apps.records(); }
    QAbstractItemModel* appsModel() { return &m_apps; }
    /// The ticked applications, in the order of `apps`, and those of them that can move or come back.
    std::vector<AppEntry> selectedApps() const;
    std::vector<AppEntry> selectedMovableApps() const;
    std::vector<AppEntry> selectedRestorableApps() const;
    /// What a move of the ticked applications would take, in bytes: a bundle that is on a drive already counts nothing.
    std::int64_t selectedTotalBytes() const;
    const std::set<std::string>& selectedAppIDs() const { return m_selectedAppIDs; }
    /// The ticked data paths of opened rows.
    const CheckedPaths& checkedDataPaths() const { return m_checkedDataPaths; }
    void setCheckedDataPaths(CheckedPaths paths);

    bool isScanningApps() const { return m_isScanningApps; }
    int sizeProgress() const { return m_sizeProgress; }
    int sizeTotal() const { return m_sizeTotal; }
    bool includeAppData() const { return m_includeAppData; }
    void setIncludeAppData(bool includes);
    int selectedMovableCount() const { return static_cast<int>(selectedMovableApps().size()); }
    int selectedRestorableCount() const { return static_cast<int>(selectedRestorableApps().size()); }
    QString selectedTotalText() const;

    /// Lists the applications anew, and then measures them. Dropped while that is under way.
    Q_INVOKABLE void refreshApps();
    /// Ticks or opens the row of a bundle, and with it those of the same identifier.
    Q_INVOKABLE void setAppSelected(const tarvik::FilePath& bundle, bool isSelected);
    Q_INVOKABLE void setAppExpanded(const tarvik::FilePath& bundle, bool isExpanded);
    void setAppsSelected(const std::vector<fs::path>& bundles, bool areSelected);
    Q_INVOKABLE void clearSelection();
    /// Moves the ticked applications to the selected drive once the user has agreed.
    Q_INVOKABLE void confirmAndMove();
    /// Brings back the application at the path, with the folder that was moved when it stands in one, once the user has
    /// agreed.
    Q_INVOKABLE void restoreApp(const tarvik::FilePath& bundle);
    /// The same for all that are ticked.
    Q_INVOKABLE void restoreSelectedApps();
    /// Moves the ticked data of an application to the Trash once the user has agreed.
    void moveCheckedDataToTrash(const FilePath& bundle);

    void refresh() override { refreshApps(); }
    bool isRefreshing() const override { return m_isScanningApps; }
    void runEnded() override { clearSelection(); }

signals:
    void isScanningAppsChanged();
    void sizeProgressChanged();
    void includeAppDataChanged();
    /// The user, or an act of theirs, has changed which applications are ticked, or the list has.
    void selectionChanged();
    void checkedDataPathsChanged();
    /// Data of applications has gone to the Trash.
    void dataTrashed();
    /// Also while the ticked ones are measured.
    void selectedTotalChanged();

private:
    /// One pass of measuring, shared by those who work at it.
    struct Sizing;

    QCoro::Task<> scanApps();
    /// Looks which of the moved applications are not there now. One look at a time; what comes meanwhile is one more.
    QCoro::Task<> lookForAbsent();
    QCoro::Task<> lookOnceForAbsent();
    QCoro::Task<> computeSizes(std::vector<AppEntry> entries);
    QCoro::Task<> sizeOneAfterAnother(std::shared_ptr<Sizing> sizing);
    QCoro::Task<> moveSelectedApps();
    QCoro::Task<> restoreOneApp(fs::path bundle);
    QCoro::Task<> restoreApps();
    QCoro::Task<> trashCheckedData(fs::path bundle);

    void takeApps(std::vector<AppEntry> entries);
    void takeSizes(AppEntry entry);
    void sortAppsBySize();
    void setScanningApps(bool isScanning);
    void setSizeProgress(int progress, int total);
    void setInSet(std::set<std::string>& ids, const FilePath& bundle, bool isIn);
    /// Takes away the ticks in the data of a row that is closed.
    void uncheckDataOf(const fs::path& bundle);
    /// Puts the changed ticks into the rows.
    void updateAppRows();
    /// Null when the list has none at this path.
    const AppEntry* appAt(const fs::path& bundle) const;

    RecordListModel<AppRow> m_apps{AppRow::roles(), AppRow::key};
    std::set<std::string> m_selectedAppIDs;
    std::set<std::string> m_expandedAppIDs;
    CheckedPaths m_checkedDataPaths;
    bool m_isScanningApps = false;
    /// What the scan under way may have missed has come.
    bool m_isScanDueAgain = false;
    /// Whether absent ones are looked for, and whether they have to be once more.
    bool m_isLooking = false;
    bool m_isLookDue = false;
    int m_sizeProgress = 0;
    int m_sizeTotal = 0;
    bool m_includeAppData = true;
};

}  // namespace tarvik
