#include "State/Uninstall/UninstallRecords.h"
#include "State/Uninstall/UninstallSort.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using enum UninstallSort;

std::vector<std::string> namesIn(UninstallSort order, const std::vector<AppRecord>& records) {
    std::vector<std::string> names;
    for (const AppRecord& record : sorted(records, order)) names.push_back(record.displayName);
    return names;
}

}  // namespace

TEST(UninstallSort, HasItsLabels) {
    std::vector<std::string> labels, shortLabels, headers;
    for (const UninstallSort order : allUninstallSorts()) {
        labels.push_back(labelOf(order));
        shortLabels.push_back(shortLabelOf(order));
        headers.push_back(listHeaderOf(order));
    }
    EXPECT_THAT(labels, ElementsAre("Name: A to Z", "Name: Z to A", "Size: Large to Small", "Size: Small to Large",
                                    "Date: Newest to Oldest", "Date: Oldest to Newest",
                                    "App Verification: Not Verified First", "Permissions: Most First"));
    EXPECT_THAT(shortLabels,
                ElementsAre("Name", "Name", "Size", "Size", "Date", "Date", "Verification", "Permissions"));
    EXPECT_THAT(headers, ElementsAre("All Applications", "All Applications", "", "", "Today", "Today",
                                     "Not App Store Verified", "With Permissions"));
    for (const UninstallSort order : allUninstallSorts())
        EXPECT_EQ(isSizeSort(order), order == sizeLargeSmall || order == sizeSmallLarge);
}

TEST(UninstallSort, SortsByNameWithoutRegardToCase) {
    const std::vector<AppRecord> records = {appRecord("beta"), appRecord("Alpha"), appRecord("alpha"),
                                            appRecord("Gamma")};
    EXPECT_THAT(namesIn(nameAZ, records), ElementsAre("Alpha", "alpha", "beta", "Gamma"));
    EXPECT_THAT(namesIn(nameZA, records), ElementsAre("Gamma", "beta", "Alpha", "alpha"));
}

TEST(UninstallSort, SortsBySizeAndTakesAFootprintForIt) {
    const std::vector<AppRecord> records = {appRecord("Small", 1), appRecord("Large", 30),
                                            appRecord("Wide", 2).withFootprint(20), appRecord("Unknown")};
    EXPECT_THAT(namesIn(sizeLargeSmall, records), ElementsAre("Large", "Wide", "Small", "Unknown"));
    EXPECT_THAT(namesIn(sizeSmallLarge, records), ElementsAre("Unknown", "Small", "Wide", "Large"));
}

TEST(UninstallSort, TakesAMissingDateForTheDistantPast) {
    AppRecord old = appRecord("Old"), fresh = appRecord("Fresh");
    old.modifiedAt = std::chrono::system_clock::time_point(std::chrono::seconds(-1'000'000'000));
    fresh.modifiedAt = std::chrono::system_clock::time_point(std::chrono::seconds(2));
    const std::vector<AppRecord> records = {appRecord("Dateless"), old, fresh};
    EXPECT_THAT(namesIn(dateNewest, records), ElementsAre("Fresh", "Old", "Dateless"));
    EXPECT_THAT(namesIn(dateOldest, records), ElementsAre("Dateless", "Old", "Fresh"));
}

TEST(UninstallSort, PutsWhatIsNotFromTheStoreFirstAndKeepsTheOrderOfEquals) {
    AppRecord store = appRecord("Store");
    store.isMacAppStore = true;
    EXPECT_THAT(namesIn(verificationFirst, {store, appRecord("Two"), appRecord("One")}),
                ElementsAre("Two", "One", "Store"));
}

TEST(UninstallSort, PutsTheMostPermissionsFirst) {
    AppRecord one = appRecord("One"), three = appRecord("Three");
    one.hasLoginItems = true;
    three.hasLoginItems = three.hasSystemExtension = three.isMacAppStore = true;
    EXPECT_THAT(namesIn(permissionsFirst, {appRecord("None"), one, three}), ElementsAre("Three", "One", "None"));
}

}  // namespace tarvik::test
