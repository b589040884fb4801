#include "Dedupe/DedupeTexts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

AppDedupeRunResult resultOf(int done, int failed) {
    AppDedupeRunResult result;
    for (int i = 0; i < done; ++i) result.movedItems.push_back({.succeeded = true});
    for (int i = 0; i < failed; ++i) result.movedItems.push_back({.error = "It did not work."});
    return result;
}

AppDedupePlan planOf(const std::vector<std::string>& names) {
    AppDedupePlan plan;
    for (const std::string& name : names)
        plan.groups.push_back({.keep = {.path = "/Applications/" + name + ".app"},
                               .remove = {{.path = "/Applications/Old/" + name + ".app"}}});
    return plan;
}

TEST(DedupeTexts, TellHowManyLaunchersHaveGone) {
    using Outcome = DedupeTexts::Outcome;
    EXPECT_EQ(DedupeTexts::outcomeOf(resultOf(0, 0)), (Outcome{"Removed 0 duplicate launchers.", false}));
    EXPECT_EQ(DedupeTexts::outcomeOf(resultOf(1, 0)), (Outcome{"Removed 1 duplicate launcher.", false}));
    EXPECT_EQ(DedupeTexts::outcomeOf(resultOf(2, 0)), (Outcome{"Removed 2 duplicate launchers.", false}));
}

TEST(DedupeTexts, TellOfFailuresBeforeAllElse) {
    using Outcome = DedupeTexts::Outcome;
    EXPECT_EQ(DedupeTexts::outcomeOf(resultOf(0, 1)), (Outcome{"Dedupe completed with 1 failure.", true}));
    EXPECT_EQ(DedupeTexts::outcomeOf(resultOf(5, 2)), (Outcome{"Dedupe completed with 2 failures.", true}));
}

TEST(DedupeTexts, CountTheDuplicatesOfAGroup) {
    EXPECT_EQ(DedupeTexts::duplicates({}), "0 duplicates");
    EXPECT_EQ(DedupeTexts::duplicates({.remove = {{}}}), "1 duplicate");
    EXPECT_EQ(DedupeTexts::duplicates({.remove = {{}, {}}}), "2 duplicates");
}

TEST(DedupeTexts, NameWhatGoesBeforeItDoes) {
    EXPECT_EQ(DedupeTexts::confirmRemove(planOf({"Edit"})),
              (Dialog{"Remove 1 duplicate launcher?",
                      "Edit.app. They go to the Trash and can be put back. The real applications stay.",
                      {"Remove", "Cancel"},
                      {"/Applications/Old/Edit.app (stays: /Applications/Edit.app)"}}));
    const Dialog many = DedupeTexts::confirmRemove(planOf({"1", "2", "3", "4", "5", "6", "7", "8"}));
    EXPECT_EQ(many.title, "Remove 8 duplicate launchers?");
    EXPECT_THAT(many.text, testing::StartsWith("1.app, 2.app, 3.app, 4.app, 5.app, 6.app and 2 more. "));
    EXPECT_EQ(many.details.size(), 8U);
}

}  // namespace
}  // namespace tarvik
