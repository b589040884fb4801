#include "Dedupe/AppDedupePlan.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Text/Json.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

AppDedupeItem launcher(const std::string& name, std::int64_t bytes) {
    return {.path = "/Applications/" + name + ".app",
            .displayName = name,
            .bundleIdentifier = "com.acme.edit.externallauncher",
            .effectiveBundleIdentifier = "com.acme.edit",
            .kind = AppDedupeItemKind::tarvikLauncher,
            .targetPath = "/Volumes/T/Edit.app",
            .sizeBytes = bytes};
}

AppDedupePlan planOf(std::vector<AppDedupeItem> remove) {
    const AppDedupeItem keep{.path = "/Applications/Edit.app",
                             .displayName = "Edit",
                             .bundleIdentifier = "com.acme.edit",
                             .effectiveBundleIdentifier = "com.acme.edit",
                             .insideSymlinkedFolder = true,
                             .sizeBytes = 5'000'000'000};
    std::vector<AppDedupeItem> items = remove;
    items.push_back(keep);
    return {.groups = {{"com.acme.edit", "Edit", keep, std::move(remove), std::move(items), "A reason."}},
            .scannedAt = std::chrono::system_clock::time_point(std::chrono::seconds(test::madeNow))};
}

TEST(AppDedupePlan, JoinsWhatGoesOfAllGroups) {
    AppDedupePlan plan = planOf({launcher("B", 7), launcher("A", 20)});
    plan.groups.push_back(planOf({launcher("0", 100)}).groups.front());
    std::vector<std::string> names;
    for (const AppDedupeItem& item : plan.removableItems()) names.push_back(item.displayName);
    EXPECT_THAT(names, ElementsAre("B", "A", "0"));
    EXPECT_EQ(plan.removableBytes(), 127);
    EXPECT_THAT(AppDedupePlan().removableItems(), IsEmpty());
    EXPECT_EQ(AppDedupePlan().removableBytes(), 0);
}

TEST(AppDedupePlan, StandsInJsonByTheNamesOfItsFields) {
    const AppDedupeRunResult result{
        .plan = planOf({launcher("Old", 7)}),
        .dryRun = true,
        .movedItems = {{.originalPath = "/Applications/Old.app", .sizeBytes = 7, .succeeded = true}}};
    EXPECT_EQ(Json::pretty(Json::encoded(result)), R"({
  "dryRun": true,
  "movedItems": [
    {
      "category": "executable",
      "originalPath": "/Applications/Old.app",
      "sizeBytes": 7,
      "succeeded": true
    }
  ],
  "plan": {
    "groups": [
      {
        "bundleIdentifier": "com.acme.edit",
        "displayName": "Edit",
        "items": [
          {
            "bundleIdentifier": "com.acme.edit.externallauncher",
            "displayName": "Old",
            "effectiveBundleIdentifier": "com.acme.edit",
            "insideSymlinkedFolder": false,
            "kind": "tarvikLauncher",
            "path": "/Applications/Old.app",
            "sizeBytes": 7,
            "targetPath": "/Volumes/T/Edit.app"
          },
          {
            "bundleIdentifier": "com.acme.edit",
            "displayName": "Edit",
            "effectiveBundleIdentifier": "com.acme.edit",
            "insideSymlinkedFolder": true,
            "kind": "realApp",
            "path": "/Applications/Edit.app",
            "sizeBytes": 5000000000
          }
        ],
        "keep": {
          "bundleIdentifier": "com.acme.edit",
          "displayName": "Edit",
          "effectiveBundleIdentifier": "com.acme.edit",
          "insideSymlinkedFolder": true,
          "kind": "realApp",
          "path": "/Applications/Edit.app",
          "sizeBytes": 5000000000
        },
        "reason": "A reason.",
        "remove": [
          {
            "bundleIdentifier": "com.acme.edit.externallauncher",
            "displayName": "Old",
            "effectiveBundleIdentifier": "com.acme.edit",
            "insideSymlinkedFolder": false,
            "kind": "tarvikLauncher",
            "path": "/Applications/Old.app",
            "sizeBytes": 7,
            "targetPath": "/Volumes/T/Edit.app"
          }
        ]
      }
    ],
    "scannedAt": 816457543.0
  }
}
)");
    EXPECT_EQ(Json::decoded<AppDedupeRunResult>(Json::encoded(result)), result);
}

TEST(AppDedupePlan, KnowsThreeKinds) {
    for (const auto& [kind, text] : {std::pair(AppDedupeItemKind::realApp, "realApp"),
                                     std::pair(AppDedupeItemKind::tarvikLauncher, "tarvikLauncher"),
                                     std::pair(AppDedupeItemKind::symlink, "symlink")}) {
        EXPECT_EQ(textOf(kind), text);
        EXPECT_EQ(appDedupeItemKindOf(text), kind);
    }
    EXPECT_EQ(appDedupeItemKindOf("RealApp"), std::nullopt);

    nlohmann::json json = Json::encoded(launcher("Old", 7));
    json["kind"] = "folder";
    EXPECT_THROW(Json::decoded<AppDedupeItem>(json), Failure);
    json.erase("kind");
    EXPECT_THROW(Json::decoded<AppDedupeItem>(json), Failure);
}

}  // namespace
}  // namespace tarvik
