#pragma once

#include "Dedupe/AppDedupePlan.h"
#include "Platform/Basics/Cancellation.h"
#include "State/Dedupe/DedupeGroupRow.h"
#include "State/Lists/RecordListModel.h"
#include "State/Shared/TabState.h"

#include <QAbstractItemModel>
#include <QString>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

#include <optional>

class QJSEngine;
class QQmlEngine;

namespace tarvik {

/// The Dedupe tab: which launchers stand beside the real application that they open, and their removal.
class DedupeState : public TabState {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    Q_PROPERTY(bool isScanningDedupe READ isScanningDedupe NOTIFY isScanningDedupeChanged)
    Q_PROPERTY(bool isRunningDedupe READ isRunningDedupe NOTIFY isRunningDedupeChanged)
    Q_PROPERTY(bool hasPlan READ hasPlan NOTIFY dedupePlanChanged)
    Q_PROPERTY(QAbstractItemModel* groups READ groupsModel CONSTANT)
    Q_PROPERTY(int groupCount READ groupCount NOTIFY dedupePlanChanged)
    Q_PROPERTY(int removableCount READ removableCount NOTIFY dedupePlanChanged)
    /// The size of all that can go, "1.2 MB".
    Q_PROPERTY(QString removableSize READ removableSize NOTIFY dedupePlanChanged)
    /// Why something stayed that was to go in the last run, a sentence each.
    Q_PROPERTY(QStringList failures READ failures NOTIFY failuresChanged)
    /// What the tab is for, and what it shows where there is nothing to list.
    Q_PROPERTY(QString purpose READ purpose CONSTANT)
    Q_PROPERTY(QString nothingFound READ nothingFound CONSTANT)

public:
    explicit DedupeState(AppState& app);
    static DedupeState* create(QQmlEngine* engine, QJSEngine* scripts);

    const std::optional<AppDedupePlan>& dedupePlan() const { return m_plan; }
    bool isScanningDedupe() const { return m_isScanning; }
    bool isRunningDedupe() const { return m_isRunning; }
    bool hasPlan() const { return m_plan.has_value(); }
    QAbstractItemModel* groupsModel() { return &m_groups; }
    int groupCount() const { return m_groups.count(); }
    int removableCount() const;
    QString removableSize() const;
    const QStringList& failures() const { return m_failures; }
    QString purpose() const;
    QString nothingFound() const;

    /// Looks for duplicates anew, unless that is under way; the last plan stays until the new one is there. What the
    /// last run has failed at is forgotten.
    Q_INVOKABLE void refreshDedupe();
    /// Moves what the plan names to the Trash and tells how that went, unless it is under way. Asks nothing: what is in
    /// the Trash can be put back.
    Q_INVOKABLE void runDedupe();

    /// Also while a scan is under way: it is made anew then.
    void refresh() override;
    /// A move may have brought an application or a launcher, or taken one.
    void linksChanged() override { refresh(); }
    void stop() override { m_stopScanning.cancel(); }

signals:
    void isScanningDedupeChanged();
    void isRunningDedupeChanged();
    void dedupePlanChanged();
    void failuresChanged();

private:
    void beginScan();
    QCoro::Task<> scan();
    QCoro::Task<> removeDuplicates(AppDedupePlan plan);
    void take(AppDedupePlan plan);
    void setScanning(bool isScanning);
    void setRunning(bool isRunning);
    void setFailures(QStringList failures);

    std::optional<AppDedupePlan> m_plan;
    RecordListModel<AppDedupeGroup> m_groups{DedupeGroupRow::roles(), DedupeGroupRow::key};
    bool m_isScanning = false;
    bool m_isRunning = false;
    /// The disk may have changed since the scan that is under way began: what it finds may be gone.
    bool m_isScanOutdated = false;
    QStringList m_failures;
    /// Cancelled when the window goes: nobody waits for the scan any more.
    Cancellation m_stopScanning;
};

}  // namespace tarvik
