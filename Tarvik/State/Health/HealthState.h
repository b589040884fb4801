#pragma once

#include "Health/HealthReport.h"
#include "HealthRepair/HealthRepairStrategy.h"
#include "Platform/Basics/Cancellation.h"
#include "State/Health/HealthIssueRow.h"
#include "State/Lists/RecordListModel.h"
#include "State/Shared/TabState.h"

#include <QAbstractItemModel>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

#include <optional>

class QJSEngine;
class QQmlEngine;

namespace tarvik {

/// The Health tab: what the last check has found, and the repair of each finding. Nothing is checked before the user
/// asks for it.
class HealthState : public TabState {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    Q_PROPERTY(bool isScanningHealth READ isScanningHealth NOTIFY isScanningHealthChanged)
    Q_PROPERTY(bool hasReport READ hasReport NOTIFY healthReportChanged)
    Q_PROPERTY(int healthyCount READ healthyCount NOTIFY healthReportChanged)
    Q_PROPERTY(int problemCount READ problemCount NOTIFY healthReportChanged)
    Q_PROPERTY(int scannedSymlinks READ scannedSymlinks NOTIFY healthReportChanged)
    Q_PROPERTY(int scannedDrives READ scannedDrives NOTIFY healthReportChanged)
    /// "Last scan: 5:45 PM".
    Q_PROPERTY(QString lastScan READ lastScan NOTIFY healthReportChanged)
    /// What is not healthy, section by section.
    Q_PROPERTY(QAbstractItemModel* problems READ problemsModel CONSTANT)
    /// The largest healthy ones.
    Q_PROPERTY(QAbstractItemModel* largest READ largestModel CONSTANT)
    /// The ids of the findings that are being repaired, or were and wait for the report that tells how it is now.
    Q_PROPERTY(QStringList repairing READ repairing NOTIFY repairingChanged)

public:
    explicit HealthState(AppState& app);
    static HealthState* create(QQmlEngine* engine, QJSEngine* scripts);

    const std::optional<HealthReport>& healthReport() const { return m_report; }
    bool isScanningHealth() const { return m_isScanning; }
    bool hasReport() const { return m_report.has_value(); }
    int healthyCount() const;
    int problemCount() const;
    int scannedSymlinks() const;
    int scannedDrives() const;
    QString lastScan() const;
    QAbstractItemModel* problemsModel() { return &m_problems; }
    QAbstractItemModel* largestModel() { return &m_largest; }
    const QStringList& repairing() const { return m_repairing; }

    /// What heads the section of the findings of a kind, which is told by its name: `title` with their number, `icon`,
    /// `tone`, and `total`, which is empty where no sum is shown.
    Q_INVOKABLE QVariantMap section(const QString& kind) const;

    /// Checks everything anew, unless that is under way; the last report stays until the new one is there.
    Q_INVOKABLE void refreshHealth();
    /// Repairs the finding with that id in the way that one of its buttons names, tells how that went, and checks anew.
    /// A finding that is not there any more is passed over, one that is being repaired, and what is no repair of it.
    Q_INVOKABLE void repairHealth(const QString& id, int strategy);
    void repairHealth(const HealthIssue& issue, HealthRepairStrategy strategy);

    /// A check is long: it waits for the user's word.
    void refresh() override {}
    void stop() override { m_stopChecking.cancel(); }

signals:
    void isScanningHealthChanged();
    void healthReportChanged();
    void repairingChanged();

private:
    QCoro::Task<> check();
    QCoro::Task<> repair(HealthIssue issue, HealthRepairStrategy strategy);
    void take(HealthReport report);
    /// Takes those off the list of what is being repaired that were, now that the check after it has ended.
    void forgetEndedRepairs();

    std::optional<HealthReport> m_report;
    RecordListModel<HealthIssue> m_problems{HealthIssueRow::roles(), HealthIssueRow::key};
    RecordListModel<HealthIssue> m_largest{HealthIssueRow::roles(), HealthIssueRow::key};
    bool m_isScanning = false;
    QStringList m_repairing;
    /// Those of them whose repair has ended.
    QStringList m_endedRepairs;
    /// Cancelled when the window goes: nobody waits for the check any more.
    Cancellation m_stopChecking;
};

}  // namespace tarvik
