#include "Platform/Text/Json.h"
#include "Uninstall/AppUninstallPlan.h"
#include "Uninstall/UninstallCandidate.h"
#include "Uninstall/UninstallCategory.h"
#include "Uninstall/UninstallConfidence.h"
#include "Uninstall/UninstallSelection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarvik {
namespace {

using Category = UninstallCategory;
using testing::ElementsAre;

TEST(UninstallCategories, HaveTheirTextsLabelsAndDefaultsInOrder) {
    std::vector<std::string> lines;
    for (const Category category : allUninstallCategories()) {
        EXPECT_EQ(uninstallCategoryOf(textOf(category)), category);
        lines.push_back(std::string(textOf(category)) + ": " + labelOf(category) +
                        (defaultSelected(category) ? ", yes" : ", no"));
    }
    EXPECT_THAT(lines, ElementsAre("executable: Executables, yes", "applicationSupport: Application Support, yes",
                                   "caches: Caches, yes", "preferences: Preferences, yes", "logs: Logs, yes",
                                   "containers: Containers, yes", "groupContainers: Group Containers, yes",
                                   "httpStorages: HTTP Storages, yes", "webKit: WebKit, yes",
                                   "savedAppState: Saved App State, yes", "launchAgents: Launch Agents, yes",
                                   "launchDaemons: Launch Daemons, no", "receipts: Receipts, no",
                                   "installerSession: Installer Session, yes"));
    EXPECT_EQ(uninstallCategoryOf("Caches"), std::nullopt);
}

TEST(UninstallConfidences, HaveTheirTexts) {
    EXPECT_EQ(textOf(UninstallConfidence::high), "high");
    EXPECT_EQ(textOf(UninstallConfidence::medium), "medium");
    EXPECT_EQ(textOf(UninstallConfidence::low), "low");
    EXPECT_EQ(uninstallConfidenceOf("low"), UninstallConfidence::low);
    EXPECT_EQ(uninstallConfidenceOf("sure"), std::nullopt);
}

TEST(UninstallSelections, AreNamedForTheUsualWishes) {
    const UninstallSelection everything = {.includeData = true,
                                           .includeCaches = true,
                                           .includeLogs = true,
                                           .includePrefs = true,
                                           .includeContainers = true,
                                           .includeLaunchAgents = true};
    EXPECT_EQ(UninstallSelection::everything, everything);
    EXPECT_EQ(UninstallSelection::executableOnly, UninstallSelection());
}

/// The categories that a selection with only this field takes.
std::vector<Category> categoriesOf(bool UninstallSelection::*field) {
    UninstallSelection selection;
    selection.*field = true;
    std::vector<Category> categories;
    for (const Category category : allUninstallCategories())
        if (selection.includes(category) == true) categories.push_back(category);
    return categories;
}

TEST(UninstallSelections, SpeakOfTheirCategories) {
    using enum Category;
    EXPECT_THAT(categoriesOf(&UninstallSelection::includeData),
                ElementsAre(applicationSupport, httpStorages, webKit, savedAppState));
    EXPECT_THAT(categoriesOf(&UninstallSelection::includeCaches), ElementsAre(caches));
    EXPECT_THAT(categoriesOf(&UninstallSelection::includeLogs), ElementsAre(logs));
    EXPECT_THAT(categoriesOf(&UninstallSelection::includePrefs), ElementsAre(preferences));
    EXPECT_THAT(categoriesOf(&UninstallSelection::includeContainers), ElementsAre(containers, groupContainers));
    EXPECT_THAT(categoriesOf(&UninstallSelection::includeReceipts), ElementsAre(receipts));
    EXPECT_THAT(categoriesOf(&UninstallSelection::includeLaunchAgents), ElementsAre(launchAgents));
    EXPECT_THAT(categoriesOf(&UninstallSelection::includeLaunchDaemons), ElementsAre(launchDaemons));
    EXPECT_THAT(categoriesOf(&UninstallSelection::includeExternalTarget), ElementsAre());
    EXPECT_EQ(UninstallSelection().includes(installerSession), std::nullopt);
    EXPECT_EQ(UninstallSelection().includes(executable), std::nullopt);
}

AppUninstallPlan smallPlan() {
    return {.app = {.id = "/A.app", .bundlePath = "/A.app", .displayName = "A"},
            .candidates = {{.path = "/c1", .category = Category::caches, .sizeBytes = 3, .reason = "Matches app name"},
                           {.path = "/A.app", .category = Category::executable, .reason = "App bundle"},
                           {.path = "/c2", .category = Category::caches, .reason = "Node CLI cache"}},
            .warnings = {"Careful."},
            .totalBytes = 3,
            .selectedBytes = 2};
}

TEST(UninstallPlans, AreGroupedInTheOrderOfTheCategories) {
    const AppUninstallPlan plan = smallPlan();
    const auto groups = plan.grouped();
    ASSERT_EQ(groups.size(), 2U);
    EXPECT_EQ(groups[0].first, Category::executable);
    EXPECT_THAT(groups[0].second, ElementsAre(plan.candidates[1]));
    EXPECT_EQ(groups[1].first, Category::caches);
    EXPECT_THAT(groups[1].second, ElementsAre(plan.candidates[0], plan.candidates[2]));
    EXPECT_TRUE(AppUninstallPlan().grouped().empty());
}

constexpr const char* candidateText = R"({
  "category": "launchDaemons",
  "confidence": "low",
  "defaultSelected": true,
  "isPrivileged": true,
  "isSymlink": true,
  "path": "/p",
  "reason": "r",
  "sizeBytes": 7
}
)";

TEST(UninstallRecords, OfCandidatesHoldEachFieldAndNothingElse) {
    const UninstallCandidate candidate = {.path = "/p",
                                          .category = Category::launchDaemons,
                                          .sizeBytes = 7,
                                          .confidence = UninstallConfidence::low,
                                          .reason = "r",
                                          .defaultSelected = true,
                                          .isPrivileged = true,
                                          .isSymlink = true};
    EXPECT_EQ(Json::pretty(Json::encoded(candidate)), candidateText);
    EXPECT_EQ(Json::parsedAs<UninstallCandidate>(candidateText), candidate);
}

TEST(UninstallRecords, OfPlansAndSelectionsComeBack) {
    EXPECT_EQ(Json::parsedAs<AppUninstallPlan>(Json::pretty(Json::encoded(smallPlan()))), smallPlan());
    EXPECT_EQ(Json::compact(Json::encoded(UninstallSelection::executableOnly)),
              R"({"includeCaches":false,"includeContainers":false,"includeData":false,"includeExternalTarget":false,)"
              R"("includeLaunchAgents":false,"includeLaunchDaemons":false,"includeLogs":false,"includePrefs":false,)"
              R"("includeReceipts":false})");
    EXPECT_EQ(Json::parsedAs<UninstallSelection>(Json::compact(Json::encoded(UninstallSelection::everything))),
              UninstallSelection::everything);
}

TEST(UninstallRecords, WithoutAKeyOrWithAnUnknownWordAreNone) {
    const auto candidate = *Json::parsed(candidateText);
    const auto plan = Json::encoded(smallPlan());
    for (const auto& [key, value] : candidate.items()) {
        auto broken = candidate;
        broken.erase(key);
        EXPECT_EQ(Json::parsedAs<UninstallCandidate>(broken.dump()), std::nullopt) << key;
    }
    for (const auto& [key, value] : plan.items()) {
        auto broken = plan;
        broken.erase(key);
        EXPECT_EQ(Json::parsedAs<AppUninstallPlan>(broken.dump()), std::nullopt) << key;
    }
    for (const char* key : {"category", "confidence"}) {
        auto broken = candidate;
        broken[key] = "unheard of";
        EXPECT_EQ(Json::parsedAs<UninstallCandidate>(broken.dump()), std::nullopt) << key;
    }
}

}  // namespace
}  // namespace tarvik
