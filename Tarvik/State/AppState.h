#pragma once

#include "Discovery/SymlinkEntry.h"
#include "Move/MoveJob.h"
#include "Move/TimeLeft.h"
#include "Platform/Cancellation.h"
#include "Platform/DriveInfo.h"
#include "Platform/Host.h"
#include "Platform/Path.h"
#include "State/AppRow.h"
#include "State/CheckedPaths.h"
#include "State/DriveRow.h"
#include "State/FilePath.h"
#include "State/JobRow.h"
#include "State/NewestValue.h"
#include "State/QuickPick.h"
#include "State/RecordListModel.h"
#include "State/RestoreRun.h"
#include "State/ScreenText.h"
#include "State/SymlinkRow.h"
#include "State/TaskGroup.h"

#include <QAbstractItemModel>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

class QJSEngine;
class QQmlEngine;

namespace tarvik {

class Dialogs;

/// What the whole window observes: every list on the screen, every flag that says that something is under way, and the
/// two message lines. Every long operation is started here and brings its result back here.
///
/// UI thread only. Operations return at once; what they start runs on as coroutines that the destructor waits for. The
/// object outlives the QML engine that shows it.
class AppState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    /// The applications, largest first once all are measured.
    Q_PROPERTY(QAbstractItemModel* apps READ appsModel CONSTANT)
    Q_PROPERTY(QAbstractItemModel* drives READ drivesModel CONSTANT)
    /// The drives that something can be moved to.
    Q_PROPERTY(QAbstractItemModel* targetDrives READ targetDrivesModel CONSTANT)
    /// The links that moves have left.
    Q_PROPERTY(QAbstractItemModel* symlinks READ symlinksModel CONSTANT)
    /// The jobs of the current or last run.
    Q_PROPERTY(QAbstractItemModel* jobs READ jobsModel CONSTANT)
    Q_PROPERTY(QAbstractItemModel* quickPicks READ quickPicksModel CONSTANT)

    Q_PROPERTY(bool hasTargetDrives READ hasTargetDrives NOTIFY targetDrivesChanged)
    Q_PROPERTY(bool hasSelectedDrive READ hasSelectedDrive NOTIFY selectedDriveChanged)
    Q_PROPERTY(QString selectedDriveId READ selectedDriveId NOTIFY selectedDriveChanged)
    Q_PROPERTY(QString selectedDriveName READ selectedDriveName NOTIFY selectedDriveChanged)
    /// Its free space, "12 GB".
    Q_PROPERTY(QString selectedDriveFree READ selectedDriveFree NOTIFY selectedDriveChanged)
    /// What is free on the volume that the user's home is on, "80 GB".
    Q_PROPERTY(QString bootFree READ bootFree NOTIFY bootFreeChanged)

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
    Q_PROPERTY(bool isScanningDrives READ isScanningDrives NOTIFY isScanningDrivesChanged)

    /// Whether something is being moved, or made ready to be: nothing else can be then. The next tells only of the
    /// latter.
    Q_PROPERTY(bool isBusy READ isBusy NOTIFY isBusyChanged)
    Q_PROPERTY(bool isPreparing READ isPreparing NOTIFY isBusyChanged)
    /// Whether a run of jobs is under way.
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY isRunningChanged)
    Q_PROPERTY(double jobsFraction READ jobsFraction NOTIFY jobsProgressChanged)
    /// "1 of 3" during a run, its outcome afterwards.
    Q_PROPERTY(QString jobsSummary READ jobsSummary NOTIFY jobsProgressChanged)
    /// The place of the job that is under way, and its label; afterwards, of the first one that has failed. Less than 0
    /// when there is none.
    Q_PROPERTY(int currentJob READ currentJob NOTIFY jobsProgressChanged)
    Q_PROPERTY(QString currentJobLabel READ currentJobLabel NOTIFY jobsProgressChanged)
    /// "About 3 minutes left" of the run, or of what is being moved back; empty while it cannot be told.
    Q_PROPERTY(QString timeLeft READ timeLeft NOTIFY timeLeftChanged)

    /// Whether items are being moved back; and how far that is, or how the last time ended.
    Q_PROPERTY(bool isRestoring READ isRestoring NOTIFY isRestoringChanged)
    Q_PROPERTY(tarvik::RestoreRun restore READ restore NOTIFY restoreChanged)

    /// The message lines; empty when there is nothing to tell. A text stands until another one is set or it is cleared.
    Q_PROPERTY(QString lastError READ lastError NOTIFY lastErrorChanged)
    Q_PROPERTY(QString lastInfo READ lastInfo NOTIFY lastInfoChanged)

public:
    /// `dialogs` must outlive the object.
    AppState(Host host, Dialogs& dialogs, QObject* parent = nullptr);
    /// Waits until all that runs has ended; a run of jobs ends after the current item.
    ~AppState() override;
    /// The one that the engine was given by `QmlModule::attach`.
    static AppState* create(QQmlEngine* engine, QJSEngine* scripts);

    /// Where things go, relative to a drive's mount path: application bundles, their data, folders.
    const fs::path appsTargetFolderName;
    const fs::path dataTargetFolderName;
    const fs::path foldersTargetFolderName;

    const Host& host() const { return m_host; }
    const std::vector<AppRow>& apps() const { return m_apps.records(); }
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
    const std::vector<DriveInfo>& drives() const { return m_drives.records(); }
    const std::vector<DriveInfo>& targetDrives() const { return m_targetDrives.records(); }
    const std::vector<SymlinkEntry>& symlinks() const { return m_symlinks.records(); }
    const std::vector<JobRow>& jobs() const { return m_jobs.records(); }
    const std::vector<QuickPick>& quickPicks() const { return m_quickPicks.records(); }
    /// The target of all moves. It stays when its drive is gone; a run then fails with plain words.
    const std::optional<DriveInfo>& selectedDrive() const { return m_selectedDrive; }

    QAbstractItemModel* appsModel() { return &m_apps; }
    QAbstractItemModel* drivesModel() { return &m_drives; }
    QAbstractItemModel* targetDrivesModel() { return &m_targetDrives; }
    QAbstractItemModel* symlinksModel() { return &m_symlinks; }
    QAbstractItemModel* jobsModel() { return &m_jobs; }
    QAbstractItemModel* quickPicksModel() { return &m_quickPicks; }

    bool hasTargetDrives() const { return !targetDrives().empty(); }
    bool hasSelectedDrive() const { return m_selectedDrive.has_value(); }
    QString selectedDriveId() const;
    QString selectedDriveName() const;
    QString selectedDriveFree() const;
    QString bootFree() const { return m_bootFree; }
    bool isScanningApps() const { return m_isScanningApps; }
    int sizeProgress() const { return m_sizeProgress; }
    int sizeTotal() const { return m_sizeTotal; }
    bool includeAppData() const { return m_includeAppData; }
    void setIncludeAppData(bool includes);
    int selectedMovableCount() const { return static_cast<int>(selectedMovableApps().size()); }
    int selectedRestorableCount() const { return static_cast<int>(selectedRestorableApps().size()); }
    QString selectedTotalText() const;
    bool isScanningDrives() const { return m_isScanningDrives; }
    bool isBusy() const { return m_isRunning || m_isRestoring || m_isPreparing; }
    bool isPreparing() const { return m_isPreparing; }
    bool isRunning() const { return m_isRunning; }
    double jobsFraction() const { return overallProgress(jobs()); }
    QString jobsSummary() const;
    int currentJob() const;
    QString currentJobLabel() const;
    QString timeLeft() const { return m_timeLeft; }
    bool isRestoring() const { return m_isRestoring; }
    const RestoreRun& restore() const { return m_restore; }
    QString lastError() const { return m_lastError; }
    QString lastInfo() const { return m_lastInfo; }

    /// Looks at everything anew. Dropped, and not made up for, while applications are scanned.
    Q_INVOKABLE void refreshAll();
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
    /// Looks at the drives anew, and selects a target when none is selected.
    Q_INVOKABLE void refreshDrives();
    /// Lists the links anew, and then measures what they lead to; until then each keeps the size that it had.
    Q_INVOKABLE void refreshSymlinks();
    /// Makes a drive of the list the target of all moves. An unknown id changes nothing.
    Q_INVOKABLE void selectDrive(const QString& driveId);
    /// Moves a folder to the selected drive once the user has agreed.
    Q_INVOKABLE void moveArbitraryFolder(const tarvik::FilePath& folder);
    /// Brings back what the link at the path leads to, once the user has agreed.
    Q_INVOKABLE void restoreSymlink(const tarvik::FilePath& link);
    /// Whether the current or last run has moved the folder, and its link still stands.
    Q_INVOKABLE bool hasMoved(const tarvik::FilePath& folder) const;
    /// Forgets the last run, and what was last moved back, unless something is under way.
    Q_INVOKABLE void clearRun();
    Q_INVOKABLE void clearError();
    Q_INVOKABLE void clearInfo();

    /// Whether the window may close at once. While an item is on its way it may not: the user is then asked, and
    /// `readyToClose` follows when the item has ended.
    bool mayClose();

    /// Whether nothing is under way that the destructor would wait for.
    bool isIdle() const { return m_flows.isEmpty(); }

    /// Starts a run of planned jobs on a drive. Nothing must be under way.
    void runJobs(std::vector<MoveJob> jobs, const std::string& driveId, const fs::path& drivePath, bool quitRunning);

    /// What `JobRunner` tells. An index past the end of the list is passed over.
    void setJobStatus(std::size_t index, const JobStatus& status);
    void setJobProgress(std::size_t index, const ByteProgress& progress);
    void finishRun();
    /// Cancelled when a run shall end after its current item.
    Cancellation stopAfterItem() const { return m_stopAfterItem; }

signals:
    void targetDrivesChanged();
    void selectedDriveChanged();
    void bootFreeChanged();
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
    void isScanningDrivesChanged();
    void isBusyChanged();
    void isRunningChanged();
    void jobsProgressChanged();
    void timeLeftChanged();
    void isRestoringChanged();
    void restoreChanged();
    void lastErrorChanged();
    void lastInfoChanged();
    /// The user wanted to leave in the middle of a run, and what could not be cut short has ended.
    void readyToClose();

private:
    /// One pass of measuring, shared by those who work at it.
    struct Sizing;

    QCoro::Task<> scanApps();
    QCoro::Task<> computeSizes(std::vector<AppEntry> entries);
    QCoro::Task<> sizeOneAfterAnother(std::shared_ptr<Sizing> sizing);
    QCoro::Task<> moveSelectedApps();
    QCoro::Task<> restoreOneApp(fs::path bundle);
    QCoro::Task<> restoreApps();
    QCoro::Task<> trashCheckedData(fs::path bundle);
    QCoro::Task<> scanDrives();
    QCoro::Task<> scanSymlinks();
    QCoro::Task<> findQuickPicks();
    QCoro::Task<> checkLinks();
    QCoro::Task<> moveFolder(fs::path folder);
    QCoro::Task<> restoreLink(fs::path link);
    QCoro::Task<> askToClose();

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
    void takeDrives(std::vector<DriveInfo> drives);
    /// @throws Failure when something else is under way.
    void refuseWhenBusy() const;
    void beginRestore(RestoreRun restore);
    /// Takes the bytes of the item that is being moved back, from any thread.
    NewestValue<ByteProgress> restoreProgressTaker();
    /// Reckons anew how long it will take.
    void reckonTimeLeft(const ByteProgress& progress);
    void forgetTimeLeft();
    void endRestore(const QString& outcome, bool hasFailed);
    void updateJob(std::size_t index, JobRow row);
    /// Those of `jobs` that are done or have failed.
    std::vector<MoveJob> endedJobs() const;
    void closeWhenReady();

    void setSelectedDrive(std::optional<DriveInfo> drive);
    void setPreparing(bool isPreparing);
    void setRunning(bool isRunning);
    void setRestoring(bool isRestoring);
    void setError(const QString& text);
    void setInfo(const QString& text);

    const Host m_host;
    Dialogs& m_dialogs;

    RecordListModel<AppRow> m_apps{AppRow::roles(), AppRow::key};
    std::set<std::string> m_selectedAppIDs;
    std::set<std::string> m_expandedAppIDs;
    CheckedPaths m_checkedDataPaths;
    RecordListModel<DriveInfo> m_drives{DriveRow::roles(), DriveRow::key};
    RecordListModel<DriveInfo> m_targetDrives{DriveRow::roles(), DriveRow::key};
    RecordListModel<SymlinkEntry> m_symlinks{SymlinkRow::roles(), SymlinkRow::key};
    RecordListModel<JobRow> m_jobs{JobRow::roles(), JobRow::key};
    RecordListModel<QuickPick> m_quickPicks{QuickPick::roles(), QuickPick::key};
    std::optional<DriveInfo> m_selectedDrive;
    QString m_bootFree;

    bool m_isScanningApps = false;
    int m_sizeProgress = 0;
    int m_sizeTotal = 0;
    bool m_includeAppData = true;
    /// Cancelled when nobody waits any more for the sizes of the applications.
    Cancellation m_stopSizingApps;
    bool m_isScanningDrives = false;
    /// Somebody has asked for the drives since the scan that is under way began.
    bool m_isDriveScanWanted = false;
    /// The same two for the links.
    bool m_isScanningSymlinks = false;
    bool m_isSymlinkScanWanted = false;
    bool m_isRunning = false;
    bool m_isRestoring = false;
    /// A move or a restore is between its request and its start: measuring, or asking.
    bool m_isPreparing = false;
    bool m_isAskingToClose = false;
    bool m_isClosing = false;
    Cancellation m_stopAfterItem;
    /// Cancelled when nobody waits any more for what is being measured.
    Cancellation m_stopMeasuring;
    /// The same for what the links lead to; a new one for each scan.
    Cancellation m_stopSizingSymlinks;
    /// And for the common candidates.
    Cancellation m_stopSizingQuickPicks;
    /// Counts what could make an earlier look at the links of the jobs untrue.
    int m_linkChanges = 0;

    RestoreRun m_restore;
    TimeLeft m_timeLeftEstimate;
    QString m_timeLeft;
    QString m_lastError;
    QString m_lastInfo;

    /// Last, so that it could not outlive what its flows use.
    TaskGroup m_flows;
};

}  // namespace tarvik
