#pragma once

#include "Applications/AppRecord.h"
#include "Platform/Machine/Host.h"
#include "State/Lists/RecordListModel.h"
#include "State/Uninstall/UninstallFilter.h"
#include "State/Uninstall/UninstallListRow.h"
#include "State/Uninstall/UninstallSort.h"
#include "Uninstall/UninstallGroup.h"

#include <QAbstractItemModel>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace tarvik {

/// The applications that the Uninstall tab lists, and what the user has chosen to see of them and ticked. While sizes
/// come in and the list is in their order, its rows change places only now and then, so that they do not jump about
/// under the pointer. UI thread only.
class UninstallList : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("It belongs to UninstallState.")
    /// `UninstallListRow`.
    Q_PROPERTY(QAbstractItemModel* rows READ rowsModel CONSTANT)
    Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY choiceChanged)
    /// Places in the lists of labels.
    Q_PROPERTY(int sort READ sortIndex WRITE setSortIndex NOTIFY choiceChanged)
    Q_PROPERTY(int filter READ filterIndex WRITE setFilterIndex NOTIFY choiceChanged)
    Q_PROPERTY(QStringList sortLabels READ sortLabels CONSTANT)
    Q_PROPERTY(QStringList filterLabels READ filterLabels CONSTANT)
    Q_PROPERTY(QString sortShortLabel READ sortShortLabel NOTIFY choiceChanged)
    /// How many applications could be listed, and how many the search and the filter leave.
    Q_PROPERTY(int totalCount READ totalCount NOTIFY changed)
    Q_PROPERTY(int shownCount READ shownCount NOTIFY changed)

public:
    explicit UninstallList(Clock now, QObject* parent = nullptr);

    const std::vector<AppRecord>& apps() const { return m_apps; }
    const std::vector<UninstallGroup>& groups() const { return m_groups; }
    const std::vector<UninstallListRow>& rows() const { return m_rows.records(); }
    QAbstractItemModel* rowsModel() { return &m_rows; }
    const std::set<std::string>& markedIds() const { return m_choice.markedIds; }
    const std::set<std::string>& openGroups() const { return m_choice.openGroups; }
    bool isListOpen() const { return m_choice.isListOpen; }

    QString search() const { return m_search; }
    void setSearch(const QString& search);
    UninstallSort sort() const { return m_choice.sort; }
    void setSort(UninstallSort sort);
    UninstallFilter filter() const { return m_choice.filter; }
    void setFilter(UninstallFilter filter);
    int sortIndex() const { return static_cast<int>(sort()); }
    void setSortIndex(int index);
    int filterIndex() const { return static_cast<int>(filter()); }
    void setFilterIndex(int index);
    static QStringList sortLabels();
    static QStringList filterLabels();
    QString sortShortLabel() const;
    int totalCount() const { return m_totalCount; }
    int shownCount() const { return m_shownCount; }

    /// Takes another list, and its groups as they were made in the background. An application that is the same as
    /// before keeps its sizes until it is measured anew, and its tick.
    void setApps(std::vector<AppRecord> apps, std::vector<UninstallGroup> groups);
    /// Takes measured applications into the list, which keeps its order; of those that are not in it nothing. @returns
    /// whether any was.
    bool takeSizes(const std::unordered_map<std::string, AppRecord>& measured);

    void toggleMark(const std::string& id);
    void toggleGroup(const std::string& key);
    /// Ticks all members of the group that are to be seen, or takes their ticks away when all are ticked.
    void toggleGroupMark(const std::string& key);
    /// Closes or opens what is below the header of the whole list.
    void toggleWholeList();

signals:
    void choiceChanged();
    void changed();

private:
    void refresh();
    /// Puts the sizes into the rows, which stay where they are.
    void updateRows(const std::unordered_map<std::string, AppRecord>& measured);

    const Clock m_now;
    std::vector<AppRecord> m_apps;
    std::vector<UninstallGroup> m_groups;
    UninstallListRow::Choice m_choice;
    QString m_search;
    RecordListModel<UninstallListRow> m_rows{UninstallListRow::roles(), UninstallListRow::key};
    int m_totalCount = 0;
    int m_shownCount = 0;
    QTimer m_soon;
};

}  // namespace tarvik
