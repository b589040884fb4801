#include "State/Lists/LineList.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace tarvik::test {

TEST(LineList, GrowsAtItsEnd) {
    LineList list;
    QSignalSpy inserted(&list, &LineList::rowsInserted);
    list.append({"one", "two"});
    list.append({});
    list.append({"three"});
    ASSERT_EQ(inserted.count(), 2);
    EXPECT_EQ(inserted.at(1).at(1).toInt(), 2);
    EXPECT_EQ(inserted.at(1).at(2).toInt(), 2);
    EXPECT_EQ(list.lines(), QStringList({"one", "two", "three"}));
    EXPECT_EQ(list.index(2).data(Qt::UserRole).toString(), "three");
    EXPECT_FALSE(list.index(2).data(Qt::DisplayRole).isValid());
    EXPECT_EQ(list.roleNames().value(Qt::UserRole), "line");
}

TEST(LineList, BeginsAnew) {
    LineList list;
    list.append({"one", "two"});
    QSignalSpy counted(&list, &LineList::countChanged);
    list.replaceBy({"other"});
    EXPECT_EQ(counted.count(), 1);
    EXPECT_EQ(list.lines(), QStringList({"other"}));
    EXPECT_EQ(list.rowCount(list.index(0)), 0);
}

}  // namespace tarvik::test
