#include "State/Uninstall/UninstallListRow.h"
#include "State/Uninstall/UninstallRecords.h"
#include "Uninstall/AppGrouper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Row = UninstallListRow;
using enum UninstallSort;

constexpr std::int64_t mebibyte = std::int64_t{1} << 20;

AppRecord ofVendor(const std::string& name, const std::string& vendor, std::int64_t bytes = 0) {
    AppRecord record = appRecord(name, bytes);
    record.bundleIdentifier = "com." + vendor + "." + name;
    return record;
}

QString value(const Row& row, const std::string& role) {
    for (const auto& each : Row::roles())
        if (each.name == role) return each.value(row).toString();
    ADD_FAILURE() << "no role " << role;
    return {};
}

/// The lines as a user reads them: "[header]", "+ closed group", "- open group", "name", "  member", with a "*" where
/// ticked.
std::vector<std::string> linesOf(const std::vector<AppRecord>& apps, const Row::Choice& choice) {
    const auto now = std::chrono::system_clock::time_point(std::chrono::hours(100'000));
    std::vector<std::string> lines;
    for (const Row& row : Row::list(Row::shown(apps, choice, now), AppGrouper::group(apps), choice)) {
        std::string line = value(row, "name").toStdString();
        if (row.header()) line = "[" + line + "]";
        if (row.group()) line = (row.isOpen ? "- " : "+ ") + line + ", " + value(row, "countText").toStdString();
        if (row.isMember) line = "  " + line;
        if (row.marked != Row::Marked::none) line += row.marked == Row::Marked::all ? " *" : " (*)";
        lines.push_back(line);
    }
    return lines;
}

Row rowOf(AppRecord record) {
    return {.content = std::move(record)};
}

}  // namespace

TEST(UninstallListRow, HeadsTheListByItsOrder) {
    const std::vector<AppRecord> apps = {appRecord("One"), appRecord("Two")};
    EXPECT_THAT(linesOf(apps, {.sort = nameAZ}), ElementsAre("[All Applications]", "One", "Two"));
    EXPECT_THAT(linesOf(apps, {.sort = dateNewest}), ElementsAre("[Today]", "One", "Two"));
    EXPECT_THAT(linesOf(apps, {.sort = verificationFirst}), ElementsAre("[Not App Store Verified]", "One", "Two"));
    EXPECT_THAT(linesOf(apps, {.sort = permissionsFirst}), ElementsAre("[With Permissions]", "One", "Two"));
    EXPECT_THAT(linesOf(apps, {.sort = dateNewest, .isListOpen = false}), ElementsAre("[Today]"));
    for (const UninstallSort order : allUninstallSorts()) EXPECT_THAT(linesOf({}, {.sort = order}), IsEmpty());
}

TEST(UninstallListRow, NamesTheRangesOfSizes) {
    EXPECT_EQ(Row::sizeRange(0x40000000), "More than 1 GB");
    EXPECT_EQ(Row::sizeRange(0x3fffffff), "100 MB – 1 GB");
    EXPECT_EQ(Row::sizeRange(100 * mebibyte), "100 MB – 1 GB");
    EXPECT_EQ(Row::sizeRange(100 * mebibyte - 1), "5 MB – 100 MB");
    EXPECT_EQ(Row::sizeRange(5 * mebibyte), "5 MB – 100 MB");
    EXPECT_EQ(Row::sizeRange(5 * mebibyte - 1), "Less than 5 MB");
    EXPECT_EQ(Row::sizeRange(0), "Less than 5 MB");
}

TEST(UninstallListRow, HeadsEachRangeOfSizesOnce) {
    const std::vector<AppRecord> apps = {appRecord("Small", 1), appRecord("Huge", 2048 * mebibyte),
                                         appRecord("Middle", 6 * mebibyte), appRecord("Tiny"),
                                         appRecord("Second", 7 * mebibyte)};
    EXPECT_THAT(linesOf(apps, {.sort = sizeLargeSmall}),
                ElementsAre("[More than 1 GB]", "Huge", "[5 MB – 100 MB]", "Second", "Middle", "[Less than 5 MB]",
                            "Small", "Tiny"));
    EXPECT_THAT(linesOf(apps, {.sort = sizeSmallLarge, .isListOpen = false}),
                ElementsAre("[Less than 5 MB]", "Tiny", "Small", "[5 MB – 100 MB]", "Middle", "Second",
                            "[More than 1 GB]", "Huge"));
}

TEST(UninstallListRow, PutsAGroupAtThePlaceOfItsFirstMember) {
    const std::vector<AppRecord> apps = {ofVendor("Write", "acme", 1), appRecord("Other", 6 * mebibyte),
                                         ofVendor("Draw", "acme", 200 * mebibyte)};
    EXPECT_THAT(linesOf(apps, {.sort = nameAZ}),
                ElementsAre("[All Applications]", "+ Acme Group, 2 Applications", "Other"));
    EXPECT_THAT(linesOf(apps, {.sort = nameZA, .openGroups = {"com.acme"}}),
                ElementsAre("[All Applications]", "- Acme Group, 2 Applications", "  Write", "  Draw", "Other"));
    EXPECT_THAT(linesOf(apps, {.sort = sizeLargeSmall}),
                ElementsAre("[100 MB – 1 GB]", "+ Acme Group, 2 Applications", "[5 MB – 100 MB]", "Other"));
}

TEST(UninstallListRow, ShowsOfAGroupWhatTheSearchLeaves) {
    const std::vector<AppRecord> apps = {ofVendor("Write", "acme"), ofVendor("Draw", "acme"),
                                         ofVendor("Drive", "acme")};
    EXPECT_THAT(linesOf(apps, {.search = "dr", .sort = nameAZ, .openGroups = {"com.acme"}}),
                ElementsAre("[All Applications]", "- Acme Group, 2 Applications", "  Draw", "  Drive"));
    EXPECT_THAT(linesOf(apps, {.search = "draw", .sort = nameAZ}),
                ElementsAre("[All Applications]", "+ Acme Group, 1 Application"));
}

TEST(UninstallListRow, SearchesNamesAndIdentifiersWithoutRegardToCase) {
    AppRecord nameless = appRecord("Nameless");
    nameless.bundleIdentifier.reset();
    const std::vector<AppRecord> apps = {appRecord("ÄTLAS"), appRecord("Brush"), nameless};
    EXPECT_THAT(linesOf(apps, {.search = "ätl", .sort = nameAZ}), ElementsAre("[All Applications]", "ÄTLAS"));
    EXPECT_THAT(linesOf(apps, {.search = "ORG.BRUSH", .sort = nameAZ}), ElementsAre("[All Applications]", "Brush"));
    EXPECT_THAT(linesOf(apps, {.search = "nothing like it", .sort = nameAZ}), IsEmpty());
}

TEST(UninstallListRow, NeverListsWhatBelongsToTheSystem) {
    AppRecord system = appRecord("Mail");
    system.kind = AppRecordKind::systemRisky;
    EXPECT_THAT(linesOf({system}, {}), IsEmpty());
    EXPECT_THAT(linesOf({system}, {.search = "mail"}), IsEmpty());
}

TEST(UninstallListRow, ShowsTicksAndThoseOfGroupsByTheirMembers) {
    const std::vector<AppRecord> apps = {ofVendor("Draw", "acme"), ofVendor("Write", "acme"), appRecord("Other")};
    Row::Choice choice{.sort = nameAZ, .markedIds = {apps[0].id, apps[2].id}};
    EXPECT_THAT(linesOf(apps, choice),
                ElementsAre("[All Applications]", "+ Acme Group, 2 Applications (*)", "Other *"));
    choice.markedIds.insert(apps[1].id);
    EXPECT_THAT(linesOf(apps, choice), ElementsAre("[All Applications]", "+ Acme Group, 2 Applications *", "Other *"));
    choice.filter = UninstallFilter::selected;
    choice.markedIds = {apps[1].id};
    EXPECT_THAT(linesOf(apps, choice), ElementsAre("[All Applications]", "+ Acme Group, 1 Application *"));
}

TEST(UninstallListRow, BearsABadgeByItsKind) {
    const std::pair<AppRecordKind, const char*> badges[] = {{AppRecordKind::normal, ""},
                                                            {AppRecordKind::userApplications, "~/Apps"},
                                                            {AppRecordKind::symlink, "symlink"},
                                                            {AppRecordKind::systemRisky, "system"},
                                                            {AppRecordKind::macAppStore, ""},
                                                            {AppRecordKind::externalTarget, "external"},
                                                            {AppRecordKind::tarvikLauncher, "launcher"}};
    for (const auto& [kind, badge] : badges) {
        AppRecord record = appRecord("Atlas");
        record.kind = kind;
        EXPECT_EQ(value(rowOf(record), "badge"), badge);
    }
}

TEST(UninstallListRow, TellsSizeDateAndPermissions) {
    AppRecord record = appRecord("Atlas");
    EXPECT_EQ(value(rowOf(record), "sizeText"), "") << "not known yet";
    EXPECT_EQ(value(rowOf(record), "dateText"), "");
    EXPECT_EQ(value(rowOf(record), "permissionsText"), "");
    record.modifiedAt = std::chrono::system_clock::time_point(std::chrono::seconds(1'794'744'000));
    record.isMacAppStore = true;
    EXPECT_EQ(value(rowOf(record.withBundleSize(1'200'000)), "sizeText"), "1.2 MB");
    EXPECT_EQ(value(rowOf(record.withBundleSize(1'200'000).withFootprint(3'000'000)), "sizeText"), "3 MB");
    EXPECT_EQ(value(rowOf(record), "dateText"), "November 15, 2026");
    EXPECT_EQ(value(rowOf(record), "permissionsText"), "1 Permission");
    record.hasLoginItems = true;
    EXPECT_EQ(value(rowOf(record), "permissionsText"), "2 Permissions");
}

}  // namespace tarvik::test
