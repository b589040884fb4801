#include "Applications/AppIdentity.h"
#include "Applications/AppRecord.h"
#include "Platform/Text/Json.h"
#include "Uninstall/UninstallGroup.h"

#include <gtest/gtest.h>

#include <unordered_set>

namespace tarvik {
namespace {

using namespace std::chrono_literals;

AppRecord fullRecord() {
    return {.id = "/Applications/Foo.app",
            .bundlePath = "/Applications/Foo.app",
            .displayName = "Foo",
            .bundleIdentifier = "com.acme.foo",
            .version = "1.2",
            .executableName = "foo",
            .developer = "2026 Acme",
            .kind = AppRecordKind::symlink,
            .isSymlink = true,
            .symlinkTarget = "/Volumes/T/ExternalTarvik/Apps/Foo.app",
            .isMacAppStore = true,
            .hasLoginItems = true,
            .hasSystemExtension = true,
            .isTarvikLauncher = true,
            .externalTargetPath = "/Volumes/T/ExternalTarvik/Apps/Foo.app",
            .modifiedAt = std::chrono::system_clock::time_point(1'794'764'743s + 500ms),
            .bundleSizeBytes = 5,
            .footprintBytes = 7};
}

constexpr const char* fullText = R"({
  "bundleIdentifier": "com.acme.foo",
  "bundlePath": "/Applications/Foo.app",
  "bundleSizeBytes": 5,
  "developer": "2026 Acme",
  "displayName": "Foo",
  "executableName": "foo",
  "externalTargetPath": "/Volumes/T/ExternalTarvik/Apps/Foo.app",
  "footprintBytes": 7,
  "hasLoginItems": true,
  "hasSystemExtension": true,
  "id": "/Applications/Foo.app",
  "isMacAppStore": true,
  "isSymlink": true,
  "isTarvikLauncher": true,
  "kind": "symlink",
  "modifiedAt": 816457543.5,
  "symlinkTarget": "/Volumes/T/ExternalTarvik/Apps/Foo.app",
  "version": "1.2"
}
)";

/// A record of which each field that may be absent is.
AppRecord bareRecord() {
    return {.id = "/A.app", .bundlePath = "/A.app", .displayName = "A"};
}

/// One record for each field, that differs from the full one in that field alone.
std::vector<AppRecord> recordsThatDifferInOneField() {
    std::vector<AppRecord> records(18, fullRecord());
    auto record = records.begin();
    (record++)->id = "other";
    (record++)->bundlePath = "/other";
    (record++)->displayName = "other";
    (record++)->bundleIdentifier.reset();
    (record++)->version = "";
    (record++)->executableName.reset();
    (record++)->developer = "other";
    (record++)->kind = AppRecordKind::normal;
    (record++)->isSymlink = false;
    (record++)->symlinkTarget.reset();
    (record++)->isMacAppStore = false;
    (record++)->hasLoginItems = false;
    (record++)->hasSystemExtension = false;
    (record++)->isTarvikLauncher = false;
    (record++)->externalTargetPath = "/other";
    (record++)->modifiedAt.reset();
    (record++)->bundleSizeBytes = 6;
    (record++)->footprintBytes = 8;
    return records;
}

TEST(AppRecord, StandsInJsonUnderItsFieldNames) {
    EXPECT_EQ(Json::pretty(fullRecord()), fullText);
    EXPECT_EQ(Json::parsedAs<AppRecord>(fullText), fullRecord());
}

TEST(AppRecord, LeavesOutWhatIsAbsent) {
    EXPECT_EQ(Json::compact(bareRecord()),
              R"({"bundlePath":"/A.app","bundleSizeBytes":0,"displayName":"A","footprintBytes":0,)"
              R"("hasLoginItems":false,"hasSystemExtension":false,"id":"/A.app","isMacAppStore":false,)"
              R"("isSymlink":false,"isTarvikLauncher":false,"kind":"normal"})");
    EXPECT_EQ(Json::parsedAs<AppRecord>(Json::compact(bareRecord())), bareRecord());
}

TEST(AppRecord, IsNotReadWithoutAKeyThatItNeeds) {
    const nlohmann::json whole = fullRecord();
    for (const char* key : {"id", "bundlePath", "displayName", "kind", "isSymlink", "isMacAppStore", "hasLoginItems",
                            "hasSystemExtension", "isTarvikLauncher", "bundleSizeBytes", "footprintBytes"}) {
        auto json = whole;
        json.erase(key);
        EXPECT_THROW(Json::decoded<AppRecord>(json), Failure) << key;
    }
    for (const char* key : {"bundleIdentifier", "version", "executableName", "developer", "symlinkTarget",
                            "externalTargetPath", "modifiedAt"}) {
        auto json = whole;
        json.erase(key);
        EXPECT_NO_THROW(Json::decoded<AppRecord>(json)) << key;
        json[key] = nlohmann::json::array();
        EXPECT_THROW(Json::decoded<AppRecord>(json), Failure) << key;
    }
}

TEST(AppRecord, IsNotReadWithAKindThatIsNone) {
    nlohmann::json json = fullRecord();
    for (const nlohmann::json& kind : {nlohmann::json("Normal"), nlohmann::json(""), nlohmann::json(2)}) {
        json["kind"] = kind;
        EXPECT_THROW(Json::decoded<AppRecord>(json), Failure) << kind;
    }
}

TEST(AppRecord, KeepsABundlePathThatIsNoText) {
    auto record = bareRecord();
    record.id = "/\xFF.app";
    record.bundlePath = record.id;
    EXPECT_EQ(Json::parsedAs<AppRecord>(Json::pretty(record)), record);
}

TEST(AppRecord, HashesAllItsFields) {
    std::unordered_set<AppRecord> records = {fullRecord(), fullRecord()};
    EXPECT_EQ(records.size(), 1U);
    const std::hash<AppRecord> hash;
    for (const AppRecord& record : recordsThatDifferInOneField()) {
        EXPECT_NE(record, fullRecord());
        EXPECT_NE(hash(record), hash(fullRecord())) << Json::compact(record);
        records.insert(record);
    }
    EXPECT_EQ(records.size(), 19U);
}

TEST(AppRecord, ShowsTheFootprintOnceItIsKnown) {
    EXPECT_EQ(bareRecord().displaySizeBytes(), 0);
    EXPECT_EQ(bareRecord().withBundleSize(5).displaySizeBytes(), 5);
    EXPECT_EQ(bareRecord().withBundleSize(9).withFootprint(7).displaySizeBytes(), 7);
}

TEST(AppRecord, CountsWhatItWasPermitted) {
    EXPECT_EQ(bareRecord().permissionCount(), 0);
    auto record = bareRecord();
    record.hasLoginItems = true;
    EXPECT_EQ(record.permissionCount(), 1);
    EXPECT_EQ(fullRecord().permissionCount(), 3);
}

TEST(AppRecord, CopiesWithOneFieldChanged) {
    auto expected = fullRecord();
    expected.displayName = "Bar";
    EXPECT_EQ(fullRecord().withDisplayName("Bar"), expected);
    expected = fullRecord();
    expected.bundleSizeBytes = 11;
    EXPECT_EQ(fullRecord().withBundleSize(11), expected);
    expected = fullRecord();
    expected.footprintBytes = 12;
    EXPECT_EQ(fullRecord().withFootprint(12), expected);
}

TEST(AppRecordKind, IsStoredUnderItsName) {
    const std::vector<std::string_view> names = {"normal",         "userApplications", "symlink",    "tarvikLauncher",
                                                 "externalTarget", "macAppStore",      "systemRisky"};
    for (std::size_t index = 0; index < names.size(); ++index) {
        const auto kind = static_cast<AppRecordKind>(index);
        EXPECT_EQ(textOf(kind), names[index]);
        EXPECT_EQ(appRecordKindOf(names[index]), kind);
    }
    EXPECT_EQ(textOf(AppRecordKind::systemRisky), "systemRisky");
    for (const char* text : {"", "Normal", "normal ", "other"}) EXPECT_EQ(appRecordKindOf(text), std::nullopt) << text;
}

TEST(AppIdentity, IsFourFactsOfARecord) {
    const AppIdentity identity = {"/Applications/Foo.app", "Foo", "com.acme.foo", "foo"};
    EXPECT_EQ(AppIdentity::of(fullRecord()), identity);
    EXPECT_EQ(AppIdentity::of(bareRecord()), (AppIdentity{"/A.app", "A", std::nullopt, std::nullopt}));
}

TEST(AppIdentity, HashesAllItsFields) {
    const AppIdentity identity = {"/Foo.app", "Foo", "com.acme.foo", "foo"};
    const std::unordered_set<AppIdentity> identities = {identity,
                                                        identity,
                                                        {"/Bar.app", "Foo", "com.acme.foo", "foo"},
                                                        {"/Foo.app", "Bar", "com.acme.foo", "foo"},
                                                        {"/Foo.app", "Foo", std::nullopt, "foo"},
                                                        {"/Foo.app", "Foo", "com.acme.foo", ""}};
    EXPECT_EQ(identities.size(), 5U);
}

TEST(UninstallGroup, StandsInJsonUnderItsFieldNames) {
    const UninstallGroup group = {"com.acme", "Acme Group", "Acme", {bareRecord(), fullRecord()}};
    const nlohmann::json json = group;
    EXPECT_EQ(json.size(), 4U);
    EXPECT_EQ(json.at("key"), "com.acme");
    EXPECT_EQ(json.at("label"), "Acme Group");
    EXPECT_EQ(json.at("developer"), "Acme");
    EXPECT_EQ(json.at("apps").at(1).at("kind"), "symlink");
    EXPECT_EQ(Json::parsedAs<UninstallGroup>(Json::pretty(json)), group);
    EXPECT_EQ(group.totalApps(), 2U);
}

TEST(UninstallGroup, LeavesOutAnUnknownDeveloper) {
    const UninstallGroup group = {"com.acme", "Acme Group", std::nullopt, {}};
    EXPECT_EQ(Json::compact(group), R"({"apps":[],"key":"com.acme","label":"Acme Group"})");
    EXPECT_EQ(Json::parsedAs<UninstallGroup>(Json::compact(group)), group);
    for (const char* text : {R"({"apps":[],"key":"k"})", R"({"apps":[],"label":"l"})", R"({"key":"k","label":"l"})",
                             R"({"apps":[{}],"key":"k","label":"l"})"})
        EXPECT_EQ(Json::parsedAs<UninstallGroup>(text), std::nullopt) << text;
}

}  // namespace
}  // namespace tarvik
