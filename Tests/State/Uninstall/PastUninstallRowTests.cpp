#include "State/Uninstall/PastUninstallRow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using ItemState = UninstallUndo::Item::State;

AppUninstallSession sessionOf(const std::string& id, std::size_t gone, std::size_t stayed = 0) {
    AppUninstallSession session;
    session.id = id;
    session.appName = "Atlas";
    session.createdAt = std::chrono::system_clock::time_point(std::chrono::seconds(1'794'764'743));
    for (std::size_t number = 0; number < gone + stayed; ++number) {
        AppUninstallSession::MovedItem item;
        item.originalPath = "/Users/me/" + std::to_string(number);
        item.sizeBytes = 1'000'000;
        item.succeeded = number < gone;
        session.movedItems.push_back(item);
    }
    return session;
}

UninstallUndo::Item itemOf(ItemState state, const std::string& reason = {}) {
    UninstallUndo::Item item;
    item.originalPath = "/Users/me/item";
    item.sizeBytes = 2'000'000;
    item.state = state;
    item.place = "/Users/me/.Trash/item";
    item.reason = reason;
    return item;
}

PastUninstallRow headOf(const PastUninstall& past) {
    return PastUninstallRow::list({past}, {}, "/Users/me").front();
}

}  // namespace

TEST(PastUninstallRow, TellsHowMuchWentAndWhatStayed) {
    EXPECT_TRUE(headOf({sessionOf("a", 0), {}}).detail.endsWith(" · 0 items · Zero KB"));
    EXPECT_TRUE(headOf({sessionOf("a", 1), {}}).detail.endsWith(" · 1 item · 1 MB"));
    EXPECT_TRUE(headOf({sessionOf("a", 2), {}}).detail.endsWith(" · 2 items · 2 MB"));
    EXPECT_TRUE(headOf({sessionOf("a", 2), {}}).detail.startsWith("November 15, 2026 "));
    EXPECT_EQ(headOf({sessionOf("a", 1), {}}).note, "");
    EXPECT_EQ(headOf({sessionOf("a", 1, 1), {}}).note, "1 item could not be removed");
    EXPECT_EQ(headOf({sessionOf("a", 1, 2), {}}).note, "2 items could not be removed");
}

TEST(PastUninstallRow, TellsHowItStandsWithTheItems) {
    const auto headWith = [](std::vector<UninstallUndo::Item> items) { return headOf({sessionOf("a", 2), items}); };
    EXPECT_FALSE(headOf({sessionOf("a", 2), {}}).canPutBack) << "nobody has looked yet";
    EXPECT_TRUE(headWith({itemOf(ItemState::waiting)}).canPutBack);
    EXPECT_EQ(headWith({itemOf(ItemState::waiting)}).state, "");
    EXPECT_EQ(headWith({itemOf(ItemState::back), itemOf(ItemState::back)}).state, "put back");
    EXPECT_FALSE(headWith({itemOf(ItemState::back)}).canPutBack);
    EXPECT_EQ(headWith({itemOf(ItemState::back), itemOf(ItemState::waiting)}).state, "partly put back");
    EXPECT_EQ(headWith({itemOf(ItemState::stuck)}).note, "1 item cannot come back");
    EXPECT_EQ(headWith({itemOf(ItemState::stuck), itemOf(ItemState::stuck)}).note, "2 items cannot come back");
    EXPECT_FALSE(headWith({itemOf(ItemState::stuck)}).canPutBack);
    EXPECT_EQ(headOf({sessionOf("a", 1, 1), std::vector{itemOf(ItemState::stuck)}}).note,
              "1 item could not be removed · 1 item cannot come back");
    EXPECT_EQ(headWith({}).state, "") << "a run that took nothing";
}

TEST(PastUninstallRow, TellsThatARunWasInterruptedAndWhatItDidNotReach) {
    const auto headWith = [](std::size_t gone, std::size_t stayed) {
        return headOf({sessionOf("interrupted-20261115_174540", gone, stayed), {}});
    };
    EXPECT_EQ(headWith(2, 0).state, "interrupted");
    EXPECT_EQ(headWith(2, 0).tone, "warning");
    EXPECT_EQ(headWith(2, 0).note, "");
    EXPECT_EQ(headWith(1, 1).note, "1 item was not reached");
    EXPECT_EQ(headWith(0, 2).note, "2 items were not reached");
    EXPECT_EQ(headOf({sessionOf("20261115_174540", 2, 0), {}}).state, "");

    AppUninstallSession session = sessionOf("interrupted-20261115_174540", 1, 2);
    session.movedItems[1].stashedTo = "/Users/me/.stash";
    const PastUninstall past{session, std::vector{itemOf(ItemState::waiting)}};
    const auto rows = PastUninstallRow::list({past}, {session.id}, "/Users/me");
    ASSERT_EQ(rows.size(), 4U);
    EXPECT_EQ(rows[0].note, "1 item was not reached · 1 item could not be removed");
    EXPECT_TRUE(rows[0].canPutBack);
    EXPECT_EQ(rows[2].state, "not removed") << "the run has tried that";
    EXPECT_EQ(rows[3].state, "was not reached");
    EXPECT_EQ(rows[3].note, "");
    EXPECT_EQ(headOf({session, std::vector{itemOf(ItemState::back)}}).state, "put back");
}

TEST(PastUninstallRow, ListsItemsBelowTheOnesThatAreOpen) {
    AppUninstallSession session = sessionOf("a", 3, 1);
    session.movedItems.back().error = "No.";
    session.forgottenReceipts = {"org.atlas.pkg"};
    const PastUninstall past{session, std::vector{itemOf(ItemState::waiting), itemOf(ItemState::back),
                                                  itemOf(ItemState::stuck, "It is not in the Trash any more.")}};
    const auto rows = PastUninstallRow::list({past, {sessionOf("b", 1), {}}}, {"a"}, "/Users/me");
    std::vector<std::string> lines;
    for (const auto& row : rows)
        lines.push_back(row.name.toStdString() + "|" + row.state.toStdString() + "|" + row.note.toStdString());
    EXPECT_THAT(lines,
                ElementsAre("Atlas|partly put back|1 item could not be removed · 1 item cannot come back", "~/item||",
                            "~/item|put back|", "~/item|cannot come back|It is not in the Trash any more.",
                            "~/3|not removed|No.", "org.atlas.pkg|forgotten|Receipts do not come back.", "Atlas||"));
    EXPECT_EQ(rows[1].path, "/Users/me/.Trash/item") << "where it is now";
    EXPECT_EQ(rows[2].path, "/Users/me/item");
    std::set<std::string> keys;
    for (const auto& row : rows) keys.insert(PastUninstallRow::key(row));
    EXPECT_EQ(keys.size(), rows.size());
}

}  // namespace tarvik::test
