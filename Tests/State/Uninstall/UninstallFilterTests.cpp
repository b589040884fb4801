#include "State/Uninstall/UninstallFilter.h"
#include "State/Uninstall/UninstallRecords.h"

#include <gtest/gtest.h>

namespace tarvik::test {

namespace {

using enum UninstallFilter;

const std::chrono::system_clock::time_point today(std::chrono::seconds(1'794'764'743));

bool isKept(UninstallFilter filter, const AppRecord& record, const std::set<std::string>& marked = {}) {
    return keeps(filter, record, marked, today);
}

}  // namespace

TEST(UninstallFilter, HasItsLabels) {
    EXPECT_EQ(labelOf(all), "All Applications");
    EXPECT_EQ(labelOf(unused), "Unused");
    EXPECT_EQ(labelOf(selected), "Selected");
    EXPECT_EQ(labelOf(incompatible), "Incompatible Applications");
    EXPECT_EQ(allUninstallFilters().size(), 4U);
}

TEST(UninstallFilter, CallsUnusedWhatHasNotChangedForMoreThan60Days) {
    AppRecord record = appRecord("Atlas");
    EXPECT_TRUE(isKept(unused, record)) << "without a date";
    record.modifiedAt = today - std::chrono::seconds(5'184'000);
    EXPECT_FALSE(isKept(unused, record));
    record.modifiedAt = today - std::chrono::seconds(5'184'001);
    EXPECT_TRUE(isKept(unused, record));
}

TEST(UninstallFilter, KeepsTheTickedOnes) {
    const AppRecord record = appRecord("Atlas");
    EXPECT_FALSE(isKept(selected, record, {"Atlas"}));
    EXPECT_TRUE(isKept(selected, record, {record.id}));
}

TEST(UninstallFilter, CallsIncompatibleLinksAndWhatHasASystemExtension) {
    AppRecord record = appRecord("Atlas");
    EXPECT_TRUE(isKept(all, record));
    EXPECT_FALSE(isKept(incompatible, record));
    record.hasSystemExtension = true;
    EXPECT_TRUE(isKept(incompatible, record));
    record.hasSystemExtension = false;
    record.kind = AppRecordKind::symlink;
    EXPECT_TRUE(isKept(incompatible, record));
}

}  // namespace tarvik::test
