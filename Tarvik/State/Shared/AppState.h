#pragma once

#include "MovePlan/MoveJob.h"
#include "MovePlan/TimeLeft.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"
#include "Platform/Storage/DriveInfo.h"
#include "State/Jobs/JobRow.h"
#include "State/Jobs/RestoreRun.h"
#include "State/Lists/FilePath.h"
#include "State/Lists/RecordListModel.h"
#include "State/Shared/DriveRow.h"
#include "State/Shared/KeptApplications.h"
#include "State/Shared/TabState.h"
#include "State/Shared/UnderWay.h"
#include "State/Threads/TaskGroup.h"

#include <QAbstractItemModel>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

class QJSEngine;
class QQmlEngine;

namespace tarvik {

class Dialogs;
template <typename Value>
class NewestValue;
namespace AppRestore {
struct Plan;
}

/// What all tabs of the window share: the machine and its drives, what is under way and how far it is, and the two
/// message lines. What a tab shows and does is in its own object (`TabState`), which this one owns; QML reaches each by
/// the name of its class.
///
/// UI thread only. Operations return at once; what they start runs on as coroutines that the destructor waits for. The
/// object outlives the QML engine that shows it.
class AppState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    Q_PROPERTY(QAbstractItemModel* drives READ drivesModel CONSTANT)
    /// The drives that something can be moved to.
    Q_PROPERTY(QAbstractItemModel* targetDrives READ targetDrivesModel CONSTANT)
    /// The jobs of the current or last run.
    Q_PROPERTY(QAbstractItemModel* jobs READ jobsModel CONSTANT)

    Q_PROPERTY(bool hasTargetDrives READ hasTargetDrives NOTIFY targetDrivesChanged)
    Q_PROPERTY(bool hasSelectedDrive READ hasSelectedDrive NOTIFY selectedDriveChanged)
    Q_PROPERTY(QString selectedDriveId READ selectedDriveId NOTIFY selectedDriveChanged)
    Q_PROPERTY(QString selectedDriveName READ selectedDriveName NOTIFY selectedDriveChanged)
    /// Its free space, "12 GB".
    Q_PROPERTY(QString selectedDriveFree READ selectedDriveFree NOTIFY selectedDriveChanged)
    /// What is free on the volume that the user's home is on, "80 GB".
    Q_PROPERTY(QString bootFree READ bootFree NOTIFY bootFreeChanged)
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

    /// Whether a Mac keeps folders from the program that Full Disk Access would open; what the user is told then, and
    /// the page of the settings where it is changed.
    Q_PROPERTY(bool missesFullDiskAccess READ missesFullDiskAccess NOTIFY missesFullDiskAccessChanged)
    Q_PROPERTY(QString fullDiskAccessText READ fullDiskAccessText CONSTANT)
    Q_PROPERTY(QString fullDiskAccessPage READ fullDiskAccessPage CONSTANT)

    /// What a Mac's App Management has kept from being moved.
    Q_PROPERTY(tarvik::KeptApplications* keptApplications READ keptApplications CONSTANT)

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
    const std::vector<std::unique_ptr<TabState>>& tabs() const { return m_tabs; }
    /// The tab of this class.
    template <typename Tab>
    Tab& tab() const;

    const std::vector<DriveInfo>& drives() const { return m_drives.records(); }
    const std::vector<DriveInfo>& targetDrives() const { return m_targetDrives.records(); }
    const std::vector<JobRow>& jobs() const { return m_jobs.records(); }
    /// The target of all moves. It stays when its drive is gone; a run then fails with plain words.
    const std::optional<DriveInfo>& selectedDrive() const { return m_selectedDrive; }

    QAbstractItemModel* drivesModel() { return &m_drives; }
    QAbstractItemModel* targetDrivesModel() { return &m_targetDrives; }
    QAbstractItemModel* jobsModel() { return &m_jobs; }

    bool hasTargetDrives() const { return !targetDrives().empty(); }
    bool hasSelectedDrive() const { return m_selectedDrive.has_value(); }
    QString selectedDriveId() const;
    QString selectedDriveName() const;
    QString selectedDriveFree() const;
    QString bootFree() const { return m_bootFree; }
    bool isScanningDrives() const { return m_isScanningDrives; }
    bool isBusy() const { return m_underWay.isBusy(); }
    bool isPreparing() const { return m_underWay.isPreparing(); }
    bool isRunning() const { return m_isRunning; }
    double jobsFraction() const { return overallProgress(jobs()); }
    QString jobsSummary() const;
    int currentJob() const;
    QString currentJobLabel() const;
    QString timeLeft() const { return m_timeLeft; }
    bool isRestoring() const { return m_isRestoring; }
    const RestoreRun& restore() const { return m_restore; }
    bool missesFullDiskAccess() const { return m_missesFullDiskAccess; }
    QString fullDiskAccessText() const;
    QString fullDiskAccessPage() const;
    KeptApplications* keptApplications() { return &m_keptApplications; }
    QString lastError() const { return m_lastError; }
    QString lastInfo() const { return m_lastInfo; }

    /// Looks at everything anew, in every tab. Dropped, and not made up for, while one of them is still at it.
    Q_INVOKABLE void refreshAll();
    /// Looks at the drives anew, and selects a target when none is selected.
    Q_INVOKABLE void refreshDrives();
    /// Looks anew whether Full Disk Access is missing; when it has been given, at everything.
    Q_INVOKABLE void lookAtFullDiskAccess();
    /// Makes a drive of the list the target of all moves. An unknown id changes nothing.
    Q_INVOKABLE void selectDrive(const QString& driveId);
    /// Brings back what the link at the path leads to, once the user has agreed.
    Q_INVOKABLE void restoreSymlink(const tarvik::FilePath& link);
    /// Whether the current or last run has moved the folder, and its link still stands.
    bool hasMoved(const FilePath& folder) const;
    /// Forgets the last run, and what was last moved back, unless something is under way.
    Q_INVOKABLE void clearRun();
    Q_INVOKABLE void clearError();
    Q_INVOKABLE void clearInfo();

    /// Whether the window may close at once. In the middle of what must come to its end it may not: the user is then
    /// asked, and `readyToClose` follows when that has ended.
    bool mayClose();
    /// Whether nothing is under way that the destructor would wait for.
    bool isIdle() const { return m_flows.isEmpty(); }

    // For the tabs, and for what runs on their behalf.

    Dialogs& dialogs() const { return m_dialogs; }
    /// Whether the window is going: nobody would answer a question any more.
    bool isClosing() const { return m_isClosing; }
    /// Cancelled when nobody waits any more for what is being measured.
    const Cancellation& stopMeasuring() const { return m_stopMeasuring; }
    /// Cancelled when a run shall end after its current item.
    const Cancellation& stopAfterItem() const { return m_stopAfterItem; }
    /// Takes over a flow that has been started. What it throws becomes the error line.
    void follow(QCoro::Task<> flow);
    void setError(const QString& text);
    void setInfo(const QString& text);

    /// Looks at what an act has changed on the disk: at everything, or, where that is dropped, at the links.
    void lookAgain();

    /// Begins to make an act ready; see `UnderWay`. @throws Failure when something else is under way.
    [[nodiscard]] UnderWay::Hold prepare();
    /// Begins an act that must come to its end. @throws Failure when something else is under way.
    [[nodiscard]] UnderWay::Hold act(Dialog closingQuestion);
    /// Begins an act that must come to its end and keeps nothing else from beginning; see `UnderWay`.
    [[nodiscard]] UnderWay::HoldBeside actBeside(Dialog closingQuestion);

    /// Starts a run of planned jobs on a drive. @throws Failure when something else is under way.
    void runJobs(std::vector<MoveJob> jobs, const std::string& driveId, const fs::path& drivePath, bool quitRunning);
    /// What `JobRunner` tells. An index past the end of the list is passed over.
    void setJobStatus(std::size_t index, const JobStatus& status);
    void setJobProgress(std::size_t index, const ByteProgress& progress);
    void finishRun();

    /// `restoreSymlink` as a part of another flow.
    QCoro::Task<> restoreLink(fs::path link);
    /// Brings several back, one after the other, which the user has agreed to. @throws Failure when something else is
    /// under way.
    QCoro::Task<> restoreAll(AppRestore::Plan plan);

signals:
    void targetDrivesChanged();
    void selectedDriveChanged();
    void bootFreeChanged();
    void isScanningDrivesChanged();
    void isBusyChanged();
    void isRunningChanged();
    void jobsProgressChanged();
    void timeLeftChanged();
    void isRestoringChanged();
    void restoreChanged();
    void missesFullDiskAccessChanged();
    void lastErrorChanged();
    void lastInfoChanged();
    /// The user wanted to leave in the middle of something, and what could not be cut short has ended.
    void readyToClose();

private:
    QCoro::Task<> scanDrives();
    QCoro::Task<> checkLinks();
    QCoro::Task<> tryFullDiskAccess();
    QCoro::Task<> askToClose();

    /// Whether a refresh of all is dropped.
    bool isRefreshing() const;
    void takeDrives(std::vector<DriveInfo> drives);
    void setSelectedDrive(std::optional<DriveInfo> drive);
    void refuseWhenBusy() const;
    void closeWhenReady();

    void setRunning(bool isRunning);
    void updateJob(std::size_t index, JobRow row);
    /// Those of `jobs` that are done or have failed.
    std::vector<MoveJob> endedJobs() const;
    std::vector<KeptApplications::Failed> failedJobs() const;

    void beginRestore(RestoreRun restore);
    void beginRestoreOf(std::size_t item);
    /// Takes the bytes of the item that is being moved back, from any thread.
    NewestValue<ByteProgress> restoreProgressTaker();
    void endRestore(const QString& outcome, bool hasFailed);
    void setRestoring(bool isRestoring);
    /// Reckons anew how long it will take.
    void reckonTimeLeft(const ByteProgress& progress);
    void forgetTimeLeft();

    const Host m_host;
    Dialogs& m_dialogs;

    RecordListModel<DriveInfo> m_drives{DriveRow::roles(), DriveRow::key};
    RecordListModel<DriveInfo> m_targetDrives{DriveRow::roles(), DriveRow::key};
    RecordListModel<JobRow> m_jobs{JobRow::roles(), JobRow::key};
    std::optional<DriveInfo> m_selectedDrive;
    QString m_bootFree;
    bool m_isScanningDrives = false;
    /// Somebody has asked for the drives since the scan that is under way began.
    bool m_isDriveScanWanted = false;

    UnderWay m_underWay;
    /// Of the run, or of the way back.
    UnderWay::Hold m_act;
    bool m_isRunning = false;
    bool m_isRestoring = false;
    bool m_isAskingToClose = false;
    bool m_isClosing = false;
    Cancellation m_stopAfterItem;
    Cancellation m_stopMeasuring;
    /// Counts what could make an earlier look at the links of the jobs untrue.
    int m_linkChanges = 0;

    RestoreRun m_restore;
    TimeLeft m_timeLeftEstimate;
    QString m_timeLeft;
    bool m_missesFullDiskAccess = false;
    KeptApplications m_keptApplications;
    QString m_lastError;
    QString m_lastInfo;

    std::vector<std::unique_ptr<TabState>> m_tabs;
    /// Last, so that it could not outlive what its flows use.
    TaskGroup m_flows;
};

template <typename Tab>
Tab& AppState::tab() const {
    for (const auto& each : m_tabs)
        if (auto* const found = qobject_cast<Tab*>(each.get())) return *found;
    throw std::logic_error("The window has no such tab.");
}

}  // namespace tarvik
