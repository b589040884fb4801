#pragma once

#include <QAbstractListModel>
#include <QHash>
#include <QString>
#include <QStringList>

namespace tarvik {

/// Lines that only grow at their end, until they begin anew: what a long act tells. The role is `line`. UI thread only.
class LineList : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    using QAbstractListModel::QAbstractListModel;

    const QStringList& lines() const { return m_lines; }
    int count() const { return static_cast<int>(m_lines.size()); }
    void append(const QStringList& lines);
    void replaceBy(const QStringList& lines);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

signals:
    void countChanged();

private:
    QStringList m_lines;
};

}  // namespace tarvik
