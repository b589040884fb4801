#include "State/Health/HealthIssueRow.h"

#include <gtest/gtest.h>

#include <set>

namespace tarvik::test {

namespace {

using Kind = HealthIssue::Kind;

struct Look {
    Kind kind;
    const char* icon;
    const char* tone;
};

constexpr Look looks[] = {
    {Kind::healthy, "seal", "success"},
    {Kind::dangling, "brokenLink", "danger"},
    {Kind::empty, "emptyBundle", "danger"},
    {Kind::corrupted, "warning", "danger"},
    {Kind::reverted, "back", "warning"},
    {Kind::orphan, "drive", "warning"},
    {Kind::missingTrackedFiles, "file", "warning"},
    {Kind::missingSpotlightLaunchers, "search", "warning"},
    {Kind::brokenLauncher, "launcher", "danger"},
    {Kind::signatureBroken, "signature", "danger"},
    {Kind::unsafePrefsPlist, "sliders", "danger"},
    {Kind::sandboxExternalSymlink, "shield", "danger"},
};

}  // namespace

TEST(HealthIssueRow, GivesEachKindAnIconOfItsOwnInItsTint) {
    ASSERT_EQ(std::size(looks), HealthIssue::kindCount);
    std::set<QString> icons;
    for (const Look& look : looks) {
        EXPECT_EQ(HealthIssueRow::iconOf(look.kind), QString(look.icon));
        EXPECT_EQ(HealthIssueRow::toneOf(look.kind), QString(look.tone)) << look.icon;
        icons.insert(HealthIssueRow::iconOf(look.kind));
    }
    EXPECT_EQ(icons.size(), HealthIssue::kindCount);
}

}  // namespace tarvik::test
