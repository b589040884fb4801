#include "Installers/Inspection/InstallerInspection.h"
#include "Platform/Text/Json.h"

#include <gtest/gtest.h>

#include <unordered_set>

namespace tarvik {
namespace {

InstallerInspection fullInspection() {
    return {.sourcePath = "/Users/ada/Downloads/Editor.pkg",
            .kind = InstallerKind::pkg,
            .items = {{.id = "/Users/ada/Downloads/Editor.pkg",
                       .kind = InstallerKind::pkg,
                       .path = "/Users/ada/Downloads/Editor.pkg",
                       .label = "Editor.pkg",
                       .sizeBytes = 4096}},
            .warnings = {"Package contains install scripts."},
            .trust = {.status = "trusted",
                      .details = {"Status: signed by Acme"},
                      .hasScripts = true,
                      .hasPrivilegedPayload = false}};
}

constexpr const char* fullText = R"({
  "items": [
    {
      "id": "/Users/ada/Downloads/Editor.pkg",
      "kind": "pkg",
      "label": "Editor.pkg",
      "path": "/Users/ada/Downloads/Editor.pkg",
      "sizeBytes": 4096
    }
  ],
  "kind": "pkg",
  "sourcePath": "/Users/ada/Downloads/Editor.pkg",
  "trust": {
    "details": [
      "Status: signed by Acme"
    ],
    "hasPrivilegedPayload": false,
    "hasScripts": true,
    "status": "trusted"
  },
  "warnings": [
    "Package contains install scripts."
  ]
}
)";

TEST(InstallerRecords, HoldEachFieldAndNothingElse) {
    EXPECT_EQ(Json::pretty(Json::encoded(fullInspection())), fullText);
    EXPECT_EQ(Json::parsedAs<InstallerInspection>(fullText), fullInspection());
}

TEST(InstallerRecords, NeedEveryKeyAndAKindThatIsKnown) {
    const auto json = *Json::parsed(fullText);
    const auto isRead = [](const nlohmann::json& changed) {
        return Json::parsedAs<InstallerInspection>(changed.dump()).has_value();
    };
    ASSERT_TRUE(isRead(json));
    for (const char* place : {"", "/items/0", "/trust"}) {
        const nlohmann::json::json_pointer pointer(place);
        for (const auto& [key, value] : json.at(pointer).items()) {
            auto broken = json;
            broken[pointer].erase(key);
            EXPECT_FALSE(isRead(broken)) << place << "/" << key;
            broken[pointer][key] = nullptr;
            EXPECT_FALSE(isRead(broken)) << place << "/" << key;
        }
    }
    for (const char* kind : {"Pkg", "rpm", ""}) {
        auto broken = json;
        broken["kind"] = kind;
        EXPECT_FALSE(isRead(broken)) << kind;
    }
}

TEST(InstallerRecords, KeepNamesThatAreNoText) {
    InstallableItem item = fullInspection().items.front();
    item.path = "/Volumes/Old/caf\xE9.app";
    item.id = item.path.native();
    item.label = "caf\xE9.app";
    EXPECT_EQ(Json::parsedAs<InstallableItem>(Json::compact(Json::encoded(item))), item);
}

TEST(InstallerRecords, CanStandInASet) {
    InstallerInspection other = fullInspection();
    other.trust.details.emplace_back("more");
    const std::unordered_set<InstallerInspection> set = {fullInspection(), other, fullInspection()};
    EXPECT_EQ(set.size(), 2U);
    InstallableItem item = fullInspection().items.front();
    const std::hash<InstallableItem> hash;
    EXPECT_EQ(hash(item), hash(fullInspection().items.front()));
    item.sizeBytes = 1;
    EXPECT_NE(hash(item), hash(fullInspection().items.front()));
}

TEST(InstallerKinds, HaveTheirTextsInOrder) {
    int place = 0;
    for (const char* text : {"app", "dmg", "zip", "pkg", "mpkg", "script", "unknown"}) {
        const auto kind = static_cast<InstallerKind>(place++);
        EXPECT_EQ(textOf(kind), text);
        EXPECT_EQ(installerKindOf(text), kind);
    }
    EXPECT_EQ(installerKindOf("App"), std::nullopt);
}

}  // namespace
}  // namespace tarvik
