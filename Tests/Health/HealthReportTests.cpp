#include "Health/HealthReport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <unordered_set>
#include <vector>

namespace tarvik {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using enum HealthIssue::Kind;

HealthIssue issue(HealthIssue::Kind kind, const fs::path& location, std::int64_t size = 0) {
    return {.kind = kind, .location = location, .sizeBytes = size};
}

}  // namespace

TEST(HealthReport, CallsEverythingAProblemButWhatIsHealthy) {
    const HealthReport report{
        .issues = {issue(healthy, "/a"), issue(orphan, "/b"), issue(healthy, "/c"), issue(dangling, "/d")}};
    EXPECT_THAT(report.problems(), ElementsAre(issue(orphan, "/b"), issue(dangling, "/d")));
    EXPECT_THAT(HealthReport{}.problems(), IsEmpty());
}

TEST(HealthReport, GroupsByKindInItsOrder) {
    const HealthReport report{.issues = {issue(orphan, "/b"), issue(healthy, "/a"), issue(orphan, "/a")}};
    const auto groups = report.grouped();
    EXPECT_EQ(groups.size(), 2U);
    EXPECT_THAT(groups.at(orphan), ElementsAre(issue(orphan, "/b"), issue(orphan, "/a")));
    EXPECT_THAT(groups.at(healthy), ElementsAre(issue(healthy, "/a")));
}

TEST(HealthReport, GivesTheLargestHealthyOnesEqualOnesInItsOrder) {
    const HealthReport report{.issues = {issue(healthy, "/small", 1), issue(healthy, "/first", 5),
                                         issue(orphan, "/orphan", 9), issue(healthy, "/second", 5)}};
    EXPECT_THAT(report.largestHealthy(2), ElementsAre(issue(healthy, "/first", 5), issue(healthy, "/second", 5)));
    EXPECT_EQ(report.largestHealthy(10).size(), 3U);
    EXPECT_THAT(HealthReport{}.largestHealthy(10), IsEmpty());
}

TEST(HealthIssueKind, EachHasANameATitleAndASeverity) {
    using enum HealthIssueKind::Severity;
    std::set<std::string_view> names;
    for (std::size_t index = 0; index < HealthIssue::kindCount; ++index) {
        const auto kind = static_cast<HealthIssue::Kind>(index);
        names.insert(HealthIssueKind::rawValue(kind));
        const bool isDanger = ((0xf0eU >> index) & 1U) != 0;
        const bool isWarning = ((0xf0U >> index) & 1U) != 0;
        EXPECT_EQ(HealthIssueKind::severity(kind), isDanger    ? danger
                                                   : isWarning ? warning
                                                               : success)
            << HealthIssueKind::title(kind);
    }
    EXPECT_EQ(names.size(), HealthIssue::kindCount);
    EXPECT_EQ(HealthIssueKind::rawValue(sandboxExternalSymlink), "sandboxExternalSymlink");
    EXPECT_EQ(HealthIssueKind::title(healthy), "Healthy");
}

TEST(HealthIssueKind, SectionsComeInTheirOrder) {
    std::vector<std::string_view> titles;
    for (const HealthIssue::Kind kind : HealthIssueKind::sections()) titles.push_back(HealthIssueKind::title(kind));
    EXPECT_THAT(titles, ElementsAre("Dangling symlinks", "Empty bundles", "Corrupted bundles", "Broken launchers",
                                    "Broken code signatures", "Sandbox path symlinked externally",
                                    "Symlinked preference plists", "Reverted by auto-updater", "Orphaned SSD bundles",
                                    "Missing tracked files", "Missing Spotlight launchers"));
}

TEST(HealthIssueKind, EachButTheHealthyOneHasASection) {
    std::set<HealthIssue::Kind> kinds(HealthIssueKind::sections().begin(), HealthIssueKind::sections().end());
    EXPECT_EQ(kinds.size(), HealthIssue::kindCount - 1);
    EXPECT_FALSE(kinds.contains(healthy));
    EXPECT_EQ(HealthIssueKind::sections().front(), dangling);
}

TEST(HealthIssue, IsKnownByAllItsFields) {
    const std::unordered_set<HealthIssue> issues = {issue(orphan, "/a"), issue(orphan, "/a"), issue(empty, "/a"),
                                                    issue(orphan, "/a", 1)};
    EXPECT_EQ(issues.size(), 3U);
}

}  // namespace tarvik
