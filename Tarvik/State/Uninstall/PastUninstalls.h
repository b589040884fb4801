#pragma once

#include "Platform/Basics/Path.h"
#include "State/Lists/RecordListModel.h"
#include "State/Uninstall/PastUninstallRow.h"
#include "UninstallRun/AppUninstallSession.h"
#include "UninstallRun/UninstallUndo.h"

#include <QAbstractItemModel>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tarvik {

/// The uninstalls of the past as the Uninstall tab shows them, the newest first. UI thread only.
class PastUninstalls : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("It belongs to UninstallState.")
    /// `PastUninstallRow`.
    Q_PROPERTY(QAbstractItemModel* rows READ rowsModel CONSTANT)
    Q_PROPERTY(int count READ count NOTIFY changed)
    /// The one that is being put back; empty when none is.
    Q_PROPERTY(QString puttingBackId READ puttingBackId NOTIFY puttingBackChanged)

public:
    explicit PastUninstalls(fs::path home, QObject* parent = nullptr);

    const std::vector<AppUninstallSession>& sessions() const { return m_sessions; }
    const std::vector<PastUninstallRow>& rows() const { return m_rows.records(); }
    QAbstractItemModel* rowsModel() { return &m_rows; }
    int count() const { return static_cast<int>(m_past.size()); }
    QString puttingBackId() const { return m_puttingBackId; }
    void setPuttingBackId(const QString& id);

    /// Takes what is remembered. How it stands with the items stays as it was known, until it is told anew.
    void setSessions(std::vector<AppUninstallSession> sessions);
    /// How it stands with the items of sessions, by their ids.
    void setItems(const std::vector<std::pair<std::string, std::vector<UninstallUndo::Item>>>& items);
    /// Null when there is none with this id.
    const AppUninstallSession* find(const QString& id) const;
    /// Closes or opens what is below the line of a session; other lines have nothing below.
    Q_INVOKABLE void setRowOpen(int row, bool isOpen);
    void open(const std::string& id);

signals:
    void changed();
    void puttingBackChanged();

private:
    void updateRows();

    const fs::path m_home;
    std::vector<AppUninstallSession> m_sessions;
    std::vector<PastUninstall> m_past;
    std::set<std::string> m_openIds;
    QString m_puttingBackId;
    RecordListModel<PastUninstallRow> m_rows{PastUninstallRow::roles(), PastUninstallRow::key};
};

}  // namespace tarvik
