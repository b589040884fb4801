#include "Uninstall/AppGrouper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

AppRecord app(const std::string& name, const std::optional<std::string>& identifier) {
    const std::string path = "/Applications/" + name + ".app";
    return {.id = path, .bundlePath = path, .displayName = name, .bundleIdentifier = identifier};
}

AppRecord app(const std::string& identifier) {
    return app(identifier, identifier);
}

/// The labels of the groups of two applications with these identifiers.
std::vector<std::string> labelsOf(const std::string& first, const std::string& second) {
    std::vector<std::string> labels;
    for (const auto& group : AppGrouper::group({app(first), app(second)})) labels.push_back(group.label);
    return labels;
}

std::vector<std::string> namesOf(const std::vector<AppRecord>& records) {
    std::vector<std::string> names;
    for (const auto& record : records) names.push_back(record.displayName);
    return names;
}

TEST(AppGrouper, FoldsTheApplicationsOfOneVendor) {
    const std::vector<AppRecord> records = {app("B", "com.acme.b"), app("X", "org.other.x"), app("A", "com.acme.a")};
    const auto groups = AppGrouper::group(records);
    ASSERT_EQ(groups.size(), 1U);
    EXPECT_EQ(groups[0], (UninstallGroup{"com.acme", "Acme Group", std::nullopt, {records[0], records[2]}}));
    EXPECT_THAT(namesOf(AppGrouper::ungrouped(records)), ElementsAre("X"));
}

TEST(AppGrouper, TakesTheFirstTwoRealPieces) {
    EXPECT_THAT(labelsOf("com.acme.a", "com.acme"), ElementsAre("Acme Group"));
    EXPECT_THAT(labelsOf("com..acme.a", ".com.acme.b"), ElementsAre("Acme Group"));
    EXPECT_THAT(labelsOf("com.acme.a", "com.acme2.b"), IsEmpty());
    EXPECT_THAT(labelsOf("com.acme.a", "org.acme.a"), IsEmpty());
    EXPECT_THAT(labelsOf("com.acme.a", "com.Acme.b"), IsEmpty());
}

TEST(AppGrouper, LeavesSuppressedVendorsAlone) {
    for (const char* vendor : {"apple", "com", "org", "io", "net", "Apple", "COM"}) {
        const std::string prefix = std::string("com.") + vendor;
        EXPECT_THAT(labelsOf(prefix + ".a", prefix + ".b"), IsEmpty()) << vendor;
        EXPECT_EQ(AppGrouper::ungrouped({app(prefix + ".a"), app(prefix + ".b")}).size(), 2U) << vendor;
    }
}

TEST(AppGrouper, ShowsAVendorAsItWritesItself) {
    for (const auto& [piece, name] : std::vector<std::pair<const char*, const char*>>{
             {"openai", "OpenAI Group"},
             {"github", "GitHub Group"},
             {"googlecode", "Google Group"},
             {"google", "Google Group"},
             {"GOOGLE", "Google Group"},
             {"microsoft", "Microsoft Group"},
             {"ai", "AI Group"},
             {"todesktop", "ToDesktop Group"},
             {"acme", "Acme Group"},
             {"aCME-tools", "ACME-tools Group"},
             {"5th", "5th Group"},
             {"\u00E9clair", "\u00C9clair Group"},
             {"e\u0301clair", "E\u0301clair Group"},
         }) {
        const std::string prefix = std::string("com.") + piece;
        EXPECT_THAT(labelsOf(prefix + ".a", prefix + ".b"), ElementsAre(name));
    }
}

TEST(AppGrouper, MakesTwoGroupsOfOneLabel) {
    const auto groups =
        AppGrouper::group({app("com.github.a"), app("io.github.a"), app("com.github.b"), app("io.github.b")});
    ASSERT_EQ(groups.size(), 2U);
    EXPECT_EQ(groups[0].label, "GitHub Group");
    EXPECT_EQ(groups[1].label, "GitHub Group");
    EXPECT_EQ(groups[0].key, "com.github");
    EXPECT_EQ(groups[1].key, "io.github");
}

TEST(AppGrouper, SortsByLabelWithoutRegardToCase) {
    std::vector<std::string> labels;
    for (const auto& group : AppGrouper::group({app("com.zeta.a"), app("com.zeta.b"), app("com.openai.a"),
                                                app("com.openai.b"), app("com.oracle.a"), app("com.oracle.b"),
                                                app("com.\u00E9clair.a"), app("com.\u00E9clair.b")}))
        labels.push_back(group.label);
    EXPECT_THAT(labels, ElementsAre("\u00C9clair Group", "OpenAI Group", "Oracle Group", "Zeta Group"));
}

TEST(AppGrouper, TakesTheFirstDeveloperThatIsPresent) {
    auto records = std::vector<AppRecord>{app("com.acme.a"), app("com.acme.b"), app("com.acme.c")};
    records[1].developer = "";
    records[2].developer = "Acme Inc.";
    EXPECT_EQ(AppGrouper::group(records)[0].developer, "");
    records[1].developer.reset();
    EXPECT_EQ(AppGrouper::group(records)[0].developer, "Acme Inc.");
    EXPECT_EQ(AppGrouper::group(records)[0].label, "Acme Group");
}

TEST(AppGrouper, GroupsNoIdentifierOfOnePiece) {
    for (const char* identifier : {"", ".", "acme", "acme.", "..acme.."}) {
        const std::vector<AppRecord> records = {app("A", identifier), app("B", identifier)};
        EXPECT_THAT(AppGrouper::group(records), IsEmpty()) << identifier;
        EXPECT_EQ(AppGrouper::ungrouped(records), records) << identifier;
    }
}

TEST(AppGrouper, GroupsNothingWithoutIdentifiers) {
    const std::vector<AppRecord> records = {app("A", std::nullopt), app("B", std::nullopt)};
    EXPECT_THAT(AppGrouper::group(records), IsEmpty());
    EXPECT_EQ(AppGrouper::ungrouped(records), records);
}

TEST(AppGrouper, LeavesALoneApplicationOut) {
    const std::vector<AppRecord> records = {app("com.acme.a"), app("com.other.a"), app("com.other.b")};
    EXPECT_EQ(AppGrouper::group(records).size(), 1U);
    EXPECT_THAT(namesOf(AppGrouper::ungrouped(records)), ElementsAre("com.acme.a"));
}

TEST(AppGrouper, LeavesTheSystemsOwnOut) {
    std::vector<AppRecord> records = {app("com.acme.a"), app("com.acme.b"), app("com.acme.c")};
    records[0].kind = AppRecordKind::systemRisky;
    EXPECT_THAT(namesOf(AppGrouper::group(records)[0].apps), ElementsAre("com.acme.b", "com.acme.c"));
    EXPECT_THAT(namesOf(AppGrouper::ungrouped(records)), ElementsAre("com.acme.a"));
    records[1].kind = AppRecordKind::systemRisky;
    EXPECT_THAT(AppGrouper::group(records), IsEmpty());
    EXPECT_EQ(AppGrouper::ungrouped(records), records);
}

TEST(AppGrouper, GroupsNothingOfNothing) {
    EXPECT_THAT(AppGrouper::group({}), IsEmpty());
    EXPECT_THAT(AppGrouper::ungrouped({}), IsEmpty());
}

}  // namespace
}  // namespace tarvik
