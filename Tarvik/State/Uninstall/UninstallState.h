#pragma once

#include "Applications/AppRecord.h"
#include "Platform/Basics/AsyncSemaphore.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Machine/Host.h"
#include "State/Lists/LineList.h"
#include "State/Shared/TabState.h"
#include "State/Uninstall/PastUninstalls.h"
#include "State/Uninstall/PlannedUninstall.h"
#include "State/Uninstall/UninstallList.h"
#include "Uninstall/AppUninstallPlan.h"
#include "Uninstall/UninstallSelection.h"
#include "UninstallRun/UninstallUndo.h"

#include <QAbstractItemModel>
#include <QString>
#include <QStringList>
#include <QUrl>
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

/// The Uninstall tab: the applications and their sizes, the plan for the one that is chosen, its run, and the way back
/// of past runs. Nothing is looked for before the tab is first seen.
class UninstallState : public TabState {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    Q_PROPERTY(tarvik::UninstallList* list READ list CONSTANT)
    Q_PROPERTY(tarvik::PlannedUninstall* planned READ planned CONSTANT)
    Q_PROPERTY(tarvik::PastUninstalls* past READ past CONSTANT)
    Q_PROPERTY(QAbstractItemModel* log READ logModel CONSTANT)
    Q_PROPERTY(bool isScanningUninstall READ isScanningUninstall NOTIFY isScanningUninstallChanged)
    /// Whether a run, or a rehearsal of one, is under way.
    Q_PROPERTY(bool isUninstalling READ isUninstalling NOTIFY isUninstallingChanged)

public:
    explicit UninstallState(AppState& app);
    ~UninstallState() override;
    static UninstallState* create(QQmlEngine* engine, QJSEngine* scripts);

    UninstallList* list() { return &m_list; }
    PlannedUninstall* planned() { return &m_planned; }
    PastUninstalls* past() { return &m_past; }
    QAbstractItemModel* logModel() { return &m_log; }
    bool isScanningUninstall() const { return m_isScanning; }
    bool isUninstalling() const { return m_isUninstalling; }

    const std::vector<AppRecord>& uninstallApps() const { return m_list.apps(); }
    const std::vector<UninstallGroup>& uninstallGroups() const { return m_list.groups(); }
    const std::optional<AppRecord>& selectedUninstallApp() const { return m_planned.app(); }
    const std::optional<AppUninstallPlan>& uninstallPlan() const { return m_planned.plan(); }
    const std::set<std::string>& uninstallChecked() const { return m_planned.checked(); }
    const std::vector<AppUninstallSession>& uninstallSessions() const { return m_past.sessions(); }
    const QStringList& uninstallLogLines() const { return m_log.lines(); }
    std::int64_t checkedBytes() const { return m_planned.checkedBytes(); }

    /// Lists the applications and the past runs anew, and then measures the applications. Dropped while they are being
    /// listed.
    Q_INVOKABLE void refreshUninstall();
    /// Measures the applications in the background; an earlier measurement ends.
    void startUninstallSizing(std::vector<AppRecord> apps);
    /// The record with the size of its bundle, or of what a launcher stands for; with its footprint when the
    /// application came with another one. Blocks; any thread.
    static AppRecord measureBundle(const Host& host, const AppRecord& record, const Cancellation& cancellation);
    /// Takes measured applications into the list; those that have gone from it change nothing.
    void applySizingBatch(const std::vector<AppRecord>& batch);

    /// Chooses the application, or none, and plans its uninstall. An earlier plan that is under way never arrives.
    void selectUninstallApp(std::optional<AppRecord> record);
    /// The same for the application in a row of the list, and for none.
    Q_INVOKABLE void selectRow(int row);
    Q_INVOKABLE void clearSelection() { selectUninstallApp(std::nullopt); }
    /// The same for a bundle at an address that came from outside of the window.
    Q_INVOKABLE void inspectDroppedBundle(const QUrl& url);
    /// Removes what is ticked once the user has agreed; a rehearsal (`dryRun`) asks nothing and touches nothing.
    Q_INVOKABLE void runUninstall(bool dryRun);
    /// Brings back what a past run has removed once the user has agreed.
    Q_INVOKABLE void putBack(const QString& sessionId);

    /// A press on a row of the list: an application is chosen, a group and the header of the list open or close.
    Q_INVOKABLE void pressRow(int row);
    Q_INVOKABLE void setRowOpen(int row, bool isOpen);
    /// A press on the box of a row.
    Q_INVOKABLE void toggleRowMark(int row);
    /// The same for the rows of the plan: a press ticks a candidate, or the candidates of a section.
    Q_INVOKABLE void togglePlanRow(int row);
    Q_INVOKABLE void setPlanRowOpen(int row, bool isOpen);

    void toggleChecked(const std::string& path) { m_planned.toggleChecked(path); }
    void toggleCategoryChecked(UninstallCategory category) { m_planned.toggleCategoryChecked(category); }
    void toggleSection(UninstallCategory category) { m_planned.toggleSection(category); }
    void toggleGroup(const std::string& key) { m_list.toggleGroup(key); }
    void toggleAppMark(const std::string& id) { m_list.toggleMark(id); }
    void appendUninstallLog(const std::vector<std::string>& lines);

    /// Also while the applications are being listed: they are listed once more then.
    void refresh() override;
    /// A move may have brought an application or a launcher, or taken one.
    void linksChanged() override { refresh(); }
    void stop() override;

signals:
    void isScanningUninstallChanged();
    void isUninstallingChanged();
    void sizingBatchApplied(int count);
    void sizingEnded();

private:
    struct Sizing;
    /// What a run takes along: the plan may change while the user is asked.
    struct Run;
    struct Outcome;

    QCoro::Task<> scanApps();
    QCoro::Task<> readPast();
    QCoro::Task<> sizeAll(std::vector<AppRecord> apps, Cancellation stop);
    QCoro::Task<> sizeSome(std::shared_ptr<Sizing> sizing);
    QCoro::Task<> plan(AppRecord record, Cancellation stop);
    QCoro::Task<> inspect(QUrl url);
    QCoro::Task<> removeChecked(Run run);
    QCoro::Task<> carryOut(Run run, bool dryRun);
    /// Whether the user agrees to the plan.
    QCoro::Task<bool> confirmDestructive(AppUninstallPlan plan, std::set<std::string> checked);
    QCoro::Task<> bringBack(AppUninstallSession session);

    void takeOutcome(const Run& run, const Outcome& outcome);
    /// Looks at everything that an act on the disk has changed.
    void lookAgain();
    void setScanning(bool isScanning);
    void setUninstalling(bool isUninstalling);
    const UninstallListRow* rowAt(int row) const;

    UninstallList m_list;
    PlannedUninstall m_planned;
    PastUninstalls m_past;
    LineList m_log;
    UninstallSelection m_selection = UninstallSelection::everything;
    bool m_isScanning = false;
    /// The list has been asked for: from now on it is kept fresh.
    bool m_isWanted = false;
    /// The scan under way may have missed what has changed since it began.
    bool m_isScanDueAgain = false;
    bool m_isUninstalling = false;
    /// Counts what the user has chosen, so that what is found late can tell that it is.
    int m_choices = 0;
    /// Counts the looks at past runs.
    int m_looksAtPast = 0;
    Cancellation m_stopSizing;
    Cancellation m_stopPlanning;
    /// For all measurements, of which an older one may still be at its last application when the next begins.
    AsyncSemaphore m_walks;
};

}  // namespace tarvik
