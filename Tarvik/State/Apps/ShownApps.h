#pragma once

#include "State/Apps/AppRow.h"
#include "State/Lists/RecordListModel.h"

#include <QAbstractItemModel>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace tarvik {

class AppsState;

/// The applications that the Apps tab shows: those of `AppsState` in the chosen scope that fit the search, in the
/// chosen order. It follows the list; while sizes come in it does so only now and then, so that the rows do not jump
/// about under the pointer. UI thread only.
class ShownApps : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(tarvik::AppsState* state READ state WRITE setState NOTIFY stateChanged)
    Q_PROPERTY(QAbstractItemModel* rows READ rowsModel CONSTANT)
    Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY choiceChanged)
    Q_PROPERTY(SortKey sortBy READ sortBy WRITE setSortBy NOTIFY choiceChanged)
    Q_PROPERTY(Scope scope READ scope WRITE setScope NOTIFY choiceChanged)
    Q_PROPERTY(bool hideRisky READ hideRisky WRITE setHideRisky NOTIFY choiceChanged)
    /// How many there are to see, in all, and in each scope, whatever the search is.
    Q_PROPERTY(int count READ count NOTIFY changed)
    Q_PROPERTY(int totalCount READ totalCount NOTIFY changed)
    Q_PROPERTY(int onDriveCount READ onDriveCount NOTIFY changed)
    Q_PROPERTY(int localCount READ localCount NOTIFY changed)
    /// Whether all that are to be seen are ticked.
    Q_PROPERTY(bool areAllSelected READ areAllSelected NOTIFY changed)

public:
    enum class SortKey { size, name, risk };
    Q_ENUM(SortKey)
    enum class Scope { onDrive, local, all };
    Q_ENUM(Scope)

    explicit ShownApps(QObject* parent = nullptr);

    AppsState* state() const { return m_state; }
    void setState(AppsState* state);
    const std::vector<AppRow>& rows() const { return m_rows.records(); }
    QAbstractItemModel* rowsModel() { return &m_rows; }
    QString search() const { return m_search; }
    void setSearch(const QString& search);
    SortKey sortBy() const { return m_sortBy; }
    void setSortBy(SortKey key);
    Scope scope() const { return m_scope; }
    void setScope(Scope scope);
    bool hideRisky() const { return m_hideRisky; }
    void setHideRisky(bool hides);

    int count() const { return m_rows.rowCount(); }
    int totalCount() const;
    int onDriveCount() const { return m_onDriveCount; }
    int localCount() const { return totalCount() - m_onDriveCount; }
    bool areAllSelected() const;

    /// Ticks all that are to be seen, or takes their ticks away when all are ticked.
    Q_INVOKABLE void toggleAll();

    /// Those of `rows` that are to be seen, in their order; rows that count as equal keep theirs. Pure.
    static std::vector<AppRow> filtered(const std::vector<AppRow>& rows, Scope scope, const QString& search,
                                        bool hideRisky, SortKey key);

signals:
    void stateChanged();
    void choiceChanged();
    void changed();

private:
    void refresh();
    void refreshSoon();
    template <typename Value>
    void choose(Value& known, const Value& chosen);

    QPointer<AppsState> m_state;
    RecordListModel<AppRow> m_rows{AppRow::roles(), AppRow::key};
    QString m_search;
    SortKey m_sortBy = SortKey::size;
    Scope m_scope = Scope::onDrive;
    bool m_hideRisky = false;
    int m_onDriveCount = 0;
    QTimer m_soon;
};

}  // namespace tarvik
