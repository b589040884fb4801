#pragma once

#include <QAbstractListModel>
#include <QByteArray>
#include <QHash>
#include <QList>
#include <QVariant>

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <functional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace tarvik {

/// What does not depend on the kind of record. See `RecordListModel`.
class RecordListModelBase : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    int count() const { return rowCount({}); }
    QHash<int, QByteArray> roleNames() const override;

signals:
    void countChanged();

protected:
    RecordListModelBase(std::vector<QByteArray> roleNames, QObject* parent);

    /// The number of a role in the table, which is what a view asks for.
    static int roleNumber(std::size_t position) { return Qt::UserRole + static_cast<int>(position); }
    /// The positions of a longest run of `values` that grow from one to the next.
    static std::vector<std::size_t> longestGrowingRun(const std::vector<std::size_t>& values);

private:
    std::vector<QByteArray> m_roleNames;
};

/// One column of a record as QML sees it.
template <typename Record>
struct Role {
    const char* name;
    QVariant (*value)(const Record&);
};

/// A list of records for a view, with a role for each line of a table of names and getters. UI thread only.
///
/// The model says exactly what has changed: rows that stay are not touched, and of a row that differs only the roles
/// that differ. So a list keeps its place when it is filled anew, and one row that progresses repaints alone.
template <typename Record>
class RecordListModel final : public RecordListModelBase {
public:
    /// What makes a record the same one when the list is filled anew.
    using Key = std::string (*)(const Record&);

    RecordListModel(std::vector<Role<Record>> roles, Key key, QObject* parent = nullptr)
        : RecordListModelBase(namesOf(roles), parent), m_roles(std::move(roles)), m_key(key) {}

    const std::vector<Record>& records() const { return m_records; }

    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(m_records.size());
    }

    QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid() || index.row() >= rowCount()) return {};
        const int position = role - roleNumber(0);
        if (position < 0 || position >= static_cast<int>(m_roles.size())) return {};
        return m_roles[static_cast<std::size_t>(position)].value(m_records[static_cast<std::size_t>(index.row())]);
    }

    /// Replaces one record and announces the roles that differ. `index` must be in the list.
    void update(std::size_t index, Record record) {
        if constexpr (std::equality_comparable<Record>)
            if (m_records[index] == record) return;
        QList<int> changed;
        for (std::size_t role = 0; role < m_roles.size(); ++role)
            if (m_roles[role].value(m_records[index]) != m_roles[role].value(record))
                changed.push_back(roleNumber(role));
        m_records[index] = std::move(record);
        const QModelIndex row = createIndex(static_cast<int>(index), 0);
        if (!changed.isEmpty()) emit dataChanged(row, row, changed);
    }

    /// Makes the list hold `records` in their order, with the fewest moves of rows. Of records with the same key only
    /// the first is taken.
    void replaceAll(std::vector<Record> records) {
        const std::size_t before = m_records.size();
        dropRepeated(records);
        removeRowsNotIn(records);
        moveRowsInto(records);
        insertRowsOf(records);
        for (std::size_t row = 0; row < records.size(); ++row) update(row, std::move(records[row]));
        if (m_records.size() != before) emit countChanged();
    }

private:
    using Positions = std::unordered_map<std::string, std::size_t>;

    static std::vector<QByteArray> namesOf(const std::vector<Role<Record>>& roles) {
        std::vector<QByteArray> names;
        names.reserve(roles.size());
        for (const auto& role : roles) names.emplace_back(role.name);
        return names;
    }

    Positions positionsOf(const std::vector<Record>& records) const {
        Positions positions;
        for (std::size_t i = 0; i < records.size(); ++i) positions.emplace(m_key(records[i]), i);
        return positions;
    }

    void dropRepeated(std::vector<Record>& records) const {
        std::unordered_set<std::string> seen;
        std::erase_if(records, [&](const Record& record) { return !seen.insert(m_key(record)).second; });
    }

    void removeRowsNotIn(const std::vector<Record>& records) {
        const Positions kept = positionsOf(records);
        const auto goes = [&](std::size_t row) { return !kept.contains(m_key(m_records[row])); };
        for (std::size_t end = m_records.size(); end > 0;) {
            if (!goes(end - 1)) {
                --end;
                continue;
            }
            std::size_t begin = end - 1;
            while (begin > 0 && goes(begin - 1)) --begin;
            beginRemoveRows({}, static_cast<int>(begin), static_cast<int>(end) - 1);
            m_records.erase(iteratorAt(begin), iteratorAt(end));
            endRemoveRows();
            end = begin;
        }
    }

    /// Brings the rows that are there into the order of `records`: a longest run that is in order already stays, and
    /// each other row goes behind the one that it shall follow.
    void moveRowsInto(const std::vector<Record>& records) {
        const Positions goals = positionsOf(records);
        std::vector<std::size_t> order;
        for (const Record& record : m_records) order.push_back(goals.at(m_key(record)));
        std::vector<bool> isStanding(records.size(), false);
        for (const std::size_t position : longestGrowingRun(order)) isStanding[order[position]] = true;

        std::vector<std::size_t> sorted = order;
        std::sort(sorted.begin(), sorted.end());
        for (std::size_t i = 0; i < sorted.size(); ++i) {
            if (isStanding[sorted[i]]) continue;
            const std::size_t from = indexOf(order, sorted[i]);
            const std::size_t to = i == 0 ? 0 : indexOf(order, sorted[i - 1]) + 1;
            moveRow(from, to);
            moveElement(order, from, to);
        }
    }

    void insertRowsOf(const std::vector<Record>& records) {
        const Positions present = positionsOf(m_records);
        for (std::size_t begin = 0; begin < records.size();) {
            std::size_t end = begin;
            while (end < records.size() && !present.contains(m_key(records[end]))) ++end;
            if (end == begin) {
                ++begin;
                continue;
            }
            beginInsertRows({}, static_cast<int>(begin), static_cast<int>(end) - 1);
            m_records.insert(iteratorAt(begin), records.begin() + static_cast<std::ptrdiff_t>(begin),
                             records.begin() + static_cast<std::ptrdiff_t>(end));
            endInsertRows();
            begin = end;
        }
    }

    /// `to` is the row before which the moved one shall stand, counted before the move.
    void moveRow(std::size_t from, std::size_t to) {
        if (!beginMoveRows({}, static_cast<int>(from), static_cast<int>(from), {}, static_cast<int>(to))) return;
        moveElement(m_records, from, to);
        endMoveRows();
    }

    template <typename Element>
    static void moveElement(std::vector<Element>& elements, std::size_t from, std::size_t to) {
        const auto at = [&](std::size_t i) { return elements.begin() + static_cast<std::ptrdiff_t>(i); };
        // Not by `std::rotate`, which swaps: three times as much for each record in between.
        Element moved = std::move(elements[from]);
        const auto freed = from < to ? std::move(at(from + 1), at(to), at(from))
                                     : std::move_backward(at(to), at(from), at(from + 1)) - 1;
        *freed = std::move(moved);
    }

    static std::size_t indexOf(const std::vector<std::size_t>& values, std::size_t value) {
        return static_cast<std::size_t>(std::find(values.begin(), values.end(), value) - values.begin());
    }

    auto iteratorAt(std::size_t row) { return m_records.begin() + static_cast<std::ptrdiff_t>(row); }

    std::vector<Role<Record>> m_roles;
    Key m_key;
    std::vector<Record> m_records;
};

}  // namespace tarvik
