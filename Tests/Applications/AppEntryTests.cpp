#include "Applications/AppEntry.h"

#include <gtest/gtest.h>

namespace tarvik {
namespace {

AppEntry entryWithPaths(std::vector<DataPathSize> paths) {
    return AppEntry{.id = "com.acme.foo", .name = "Foo", .bundlePath = "/Applications/Foo.app"}.withSizes(
        100, std::move(paths));
}

TEST(AppEntry, AddsUpItsSizes) {
    const auto entry = entryWithPaths({{"/a", 3}, {"/b", 0}, {"/c", 4}});
    EXPECT_EQ(entry.appSize, 100);
    EXPECT_EQ(entry.dataSize, 7);
    EXPECT_EQ(entry.totalSize(), 107);
    EXPECT_EQ(entry.withSizes(1, {}).totalSize(), 1);
}

TEST(AppEntry, KeepsAllElseInACopy) {
    AppEntry entry = entryWithPaths({{"/a", 3}});
    entry.dataPaths = {"/a", "/gone"};
    entry.isMacAppStore = true;
    auto expected = entry;
    expected.name = "Bar";
    EXPECT_EQ(entry.withDisplayName("Bar"), expected);
    expected = entry;
    expected.appSize = 1;
    expected.dataSize = 2;
    expected.dataPathSizes = {{"/b", 2}};
    EXPECT_EQ(entry.withSizes(1, {{"/b", 2}}), expected);
}

TEST(AppEntry, IsDominatedByTheFirstOfItsLargestPaths) {
    EXPECT_EQ(entryWithPaths({{"/a", 3}, {"/b", 5}, {"/c", 5}}).dominantDataPath(), (DataPathSize{"/b", 5}));
    EXPECT_EQ(entryWithPaths({{"/a", 0}, {"/b", 0}}).dominantDataPath(), (DataPathSize{"/a", 0}));
    EXPECT_EQ(entryWithPaths({}).dominantDataPath(), std::nullopt);
}

TEST(AppEntry, IsAsRiskyAsItsWorstFlag) {
    struct Case {
        bool store, loginItems, systemExtension;
        RiskLevel risk;
    };
    for (const Case& each : {Case{false, false, false, RiskLevel::low}, Case{true, false, false, RiskLevel::medium},
                             Case{false, true, false, RiskLevel::medium}, Case{true, true, false, RiskLevel::medium},
                             Case{false, false, true, RiskLevel::high}, Case{true, true, true, RiskLevel::high}}) {
        AppEntry entry;
        entry.isMacAppStore = each.store;
        entry.hasLoginItems = each.loginItems;
        entry.hasSystemExtension = each.systemExtension;
        EXPECT_EQ(entry.riskLevel(), each.risk) << each.store << each.loginItems << each.systemExtension;
    }
    EXPECT_LT(RiskLevel::low, RiskLevel::medium);
    EXPECT_LT(RiskLevel::medium, RiskLevel::high);
}

TEST(AppEntry, WarnsOfEachFlagInAFixedOrder) {
    AppEntry entry;
    EXPECT_TRUE(entry.warnings().empty());
    entry.hasLoginItems = true;
    EXPECT_EQ(entry.warnings(), (std::vector<std::string>{"Registers a login item / helper"}));
    entry.isMacAppStore = true;
    entry.hasSystemExtension = true;
    EXPECT_EQ(entry.warnings(), (std::vector<std::string>{"Mac App Store app \u2014 moving may break the receipt",
                                                          "Has a system extension \u2014 do not move",
                                                          "Registers a login item / helper"}));
    entry.isAlreadySymlinked = true;
    EXPECT_EQ(entry.warnings().back(), "Already a symlink (previously moved)");
    EXPECT_EQ(entry.warnings().size(), 4U);
}

TEST(DataPathSize, ShowsTheHomeAsATilde) {
    const auto shown = [](const char* path, const char* home = "/Users/ada") {
        return DataPathSize{path, 0}.displayPath(home);
    };
    EXPECT_EQ(shown("/Users/ada/Library/Caches/Foo"), "~/Library/Caches/Foo");
    EXPECT_EQ(shown("/Users/ada"), "~");
    EXPECT_EQ(shown("/Library/Caches/Foo"), "/Library/Caches/Foo");
    EXPECT_EQ(shown("/Users/adam/Library"), "/Users/adam/Library");
    EXPECT_EQ(shown("/Volumes/T/Users/ada/x"), "/Volumes/T/Users/ada/x");
    EXPECT_EQ(shown("/Users/ada/\xFF"), "~/\uFFFD");
    EXPECT_EQ(shown("/Library", "/"), "/Library");
    EXPECT_EQ(shown("/Library", ""), "/Library");
}

}  // namespace
}  // namespace tarvik
