#include "State/Lists/RecordListModel.h"

#include <QAbstractItemModelTester>
#include <QPersistentModelIndex>
#include <gtest/gtest.h>

#include <map>
#include <random>

namespace tarvik::test {

namespace {

struct Entry {
    std::string id;
    int size = 0;
    std::string note;

    bool operator==(const Entry&) const = default;
};

std::string keyOf(const Entry& entry) {
    return entry.id;
}

/// A list of entries that is watched by the toolkit's own tester, with the changes that it has announced.
struct WatchedList {
    WatchedList() {
        const auto note = [this](const char* what) { return [this, what] { ++changes[what]; }; };
        QObject::connect(&model, &QAbstractItemModel::rowsInserted, note("inserted"));
        QObject::connect(&model, &QAbstractItemModel::rowsRemoved, note("removed"));
        QObject::connect(&model, &QAbstractItemModel::rowsMoved, note("moved"));
        QObject::connect(&model, &QAbstractItemModel::modelReset, note("reset"));
        QObject::connect(&model, &QAbstractItemModel::dataChanged,
                         [this](const QModelIndex& first, const QModelIndex& last, const QList<int>& roles) {
                             ++changes["changed"];
                             changedRows.push_back(first.row());
                             EXPECT_EQ(first.row(), last.row());
                             changedRoles = roles;
                         });
    }

    void fill(const std::vector<std::string>& ids) {
        std::vector<Entry> entries;
        for (const auto& id : ids) entries.push_back({id, 0, ""});
        model.replaceAll(std::move(entries));
    }

    std::string order() const {
        std::string ids;
        for (const Entry& entry : model.records()) ids += entry.id;
        return ids;
    }

    RecordListModel<Entry> model{
        {{"id", [](const Entry& entry) -> QVariant { return QString::fromStdString(entry.id); }},
         {"size", [](const Entry& entry) -> QVariant { return entry.size; }},
         {"note", [](const Entry& entry) -> QVariant { return QString::fromStdString(entry.note); }}},
        keyOf};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
    std::map<std::string, int> changes;
    std::vector<int> changedRows;
    QList<int> changedRoles;
};

}  // namespace

TEST(RecordListModel, ShowsTheRolesOfItsTable) {
    WatchedList list;
    list.model.replaceAll({{"a", 7, "first"}});
    const auto names = list.model.roleNames();
    EXPECT_EQ(list.model.data(list.model.index(0), names.key("size")), 7);
    EXPECT_EQ(list.model.data(list.model.index(0), names.key("note")), "first");
    EXPECT_FALSE(list.model.data(list.model.index(0), Qt::DisplayRole).isValid());
    EXPECT_FALSE(list.model.data(list.model.index(5), names.key("size")).isValid());
}

TEST(RecordListModel, FillsItselfInOnePiece) {
    WatchedList list;
    list.fill({"a", "b", "c"});
    EXPECT_EQ(list.changes, (std::map<std::string, int>{{"inserted", 1}}));
    EXPECT_EQ(list.model.count(), 3);
}

TEST(RecordListModel, TouchesNothingWhenNothingDiffers) {
    WatchedList list;
    list.fill({"a", "b", "c"});
    list.changes.clear();
    list.fill({"a", "b", "c"});
    EXPECT_TRUE(list.changes.empty());
}

TEST(RecordListModel, TouchesOneRowAndTheRolesThatDiffer) {
    WatchedList list;
    list.fill({"a", "b", "c"});
    list.changes.clear();
    list.model.update(1, {"b", 5, ""});
    EXPECT_EQ(list.changes, (std::map<std::string, int>{{"changed", 1}}));
    EXPECT_EQ(list.changedRows, std::vector<int>{1});
    EXPECT_EQ(list.changedRoles, QList<int>{list.model.roleNames().key("size")});
    list.model.update(1, {"b", 5, ""});
    EXPECT_EQ(list.changes["changed"], 1);
}

TEST(RecordListModel, MovesTheOneRowThatChangedItsPlace) {
    WatchedList list;
    list.fill({"a", "b", "c", "d", "e"});
    for (const std::vector<std::string>& next : std::vector<std::vector<std::string>>{
             {"b", "c", "d", "e", "a"}, {"a", "b", "c", "d", "e"}, {"a", "c", "d", "b", "e"}}) {
        list.changes.clear();
        list.fill(next);
        EXPECT_EQ(list.changes, (std::map<std::string, int>{{"moved", 1}}));
    }
    EXPECT_EQ(list.order(), "acdbe");
}

TEST(RecordListModel, RemovesNeighboursTogether) {
    WatchedList list;
    list.fill({"a", "b", "c", "d", "e"});
    list.changes.clear();
    list.fill({"a", "e"});
    EXPECT_EQ(list.changes, (std::map<std::string, int>{{"removed", 1}}));
}

TEST(RecordListModel, TakesTheFirstOfRecordsWithTheSameKey) {
    WatchedList list;
    list.model.replaceAll({{"a", 1, ""}, {"b", 2, ""}, {"a", 3, ""}});
    EXPECT_EQ(list.order(), "ab");
    EXPECT_EQ(list.model.records()[0].size, 1);
}

TEST(RecordListModel, TellsWhenItsCountChanges) {
    WatchedList list;
    int told = 0;
    QObject::connect(&list.model, &RecordListModelBase::countChanged, [&] { ++told; });
    list.fill({"a", "b"});
    list.fill({"b", "a"});
    EXPECT_EQ(told, 1);
    list.fill({});
    EXPECT_EQ(told, 2);
    EXPECT_EQ(list.model.count(), 0);
}

TEST(RecordListModel, FollowsEveryListToTheLetterAndKeepsTrackOfItsRows) {
    std::mt19937 dice(7);
    WatchedList list;
    for (int round = 0; round < 300; ++round) {
        std::map<std::string, QPersistentModelIndex> held;
        for (int row = 0; row < list.model.count(); ++row)
            held.emplace(list.model.records()[static_cast<std::size_t>(row)].id, list.model.index(row));

        std::vector<Entry> next;
        for (char id = 'a'; id <= 'l'; ++id)
            if (dice() % 3 != 0) next.push_back({std::string(1, id), static_cast<int>(dice() % 2), ""});
        std::shuffle(next.begin(), next.end(), dice);
        list.model.replaceAll(next);

        ASSERT_EQ(list.model.records(), next);
        for (const auto& [id, index] : held) {
            if (!index.isValid()) continue;
            ASSERT_EQ(list.model.records()[static_cast<std::size_t>(index.row())].id, id);
        }
    }
    EXPECT_EQ(list.changes["reset"], 0);
}

}  // namespace tarvik::test
