#include "State/Lists/LineList.h"

namespace tarvik {

void LineList::append(const QStringList& lines) {
    if (lines.isEmpty()) return;
    beginInsertRows({}, count(), count() + static_cast<int>(lines.size()) - 1);
    m_lines += lines;
    endInsertRows();
    emit countChanged();
}

void LineList::replaceBy(const QStringList& lines) {
    beginResetModel();
    m_lines = lines;
    endResetModel();
    emit countChanged();
}

int LineList::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant LineList::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count() || role != Qt::UserRole) return {};
    return m_lines[index.row()];
}

QHash<int, QByteArray> LineList::roleNames() const {
    return {{Qt::UserRole, "line"}};
}

}  // namespace tarvik
